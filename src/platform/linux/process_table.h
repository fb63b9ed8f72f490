// Reading of the process table, a folder with a folder for each process ("/proc"). Processes come
// and go meanwhile; what has gone reads as empty.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace wegslot::process_table {

/// The numbers of the processes, in no order; none where there is no table.
[[nodiscard]] std::vector<pid_t> processes(const std::filesystem::path& table);

/// The program's name as the kernel keeps it, see `longestName`.
[[nodiscard]] std::string nameOf(const std::filesystem::path& process);

/// The kernel cuts names at so many characters (TASK_COMM_LEN, less its end).
inline constexpr std::size_t longestName = 15;

/// Who started it, whatever rights it has taken since; nothing when it has ended, also when its
/// parent does not know yet.
[[nodiscard]] std::optional<uid_t> userOf(const std::filesystem::path& process);

/// The words that it was started with, the program first.
[[nodiscard]] std::vector<std::string> wordsOf(const std::filesystem::path& process);

} // namespace wegslot::process_table
