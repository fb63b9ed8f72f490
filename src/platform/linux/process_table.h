// Reads the process table, a folder with one folder for each process ("/proc"). Processes come and
// go meanwhile; one that has gone reads as empty.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace wegslot::process_table {

/// The numbers of the processes, in no order; none where there is no table.
[[nodiscard]] std::vector<pid_t> processes(const std::filesystem::path& table);

/// The name that the process goes by, see `longestName`: at first its file's, later what it likes.
[[nodiscard]] std::string nameOf(const std::filesystem::path& process);

/// The kernel cuts names at so many characters (TASK_COMM_LEN, less its end).
inline constexpr std::size_t longestName = 15;

/// Who started it, whatever rights it has taken since; nothing when it has ended, also when its
/// parent does not know yet.
[[nodiscard]] std::optional<uid_t> userOf(const std::filesystem::path& process);

/// Whose rights it has; nothing as above.
[[nodiscard]] std::optional<uid_t> effectiveUserOf(const std::filesystem::path& process);

/// The file that it runs, without its folder, also when that has been replaced since. Nothing where
/// it cannot be read: of processes with other rights than ours.
[[nodiscard]] std::optional<std::string> executableOf(const std::filesystem::path& process);

/// Whether it sees the processes and files that we see, as far as that can be told: what a sandbox
/// or a container holds, sees its own.
[[nodiscard]] bool sharesOurWorld(const std::filesystem::path& process);

/// The words that it was started with, the program first.
[[nodiscard]] std::vector<std::string> wordsOf(const std::filesystem::path& process);

} // namespace wegslot::process_table
