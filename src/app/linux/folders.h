// Where this user's files live, according to the environment (XDG Base Directory Specification 0.8;
// Desktop Application Autostart Specification 0.5). Only names folders; creates none.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace wegslot::folders {

/// The value of an environment variable; empty when it is not set.
[[nodiscard]] std::string variable(const char* name);

[[nodiscard]] std::filesystem::path home();
[[nodiscard]] std::filesystem::path configuration();
[[nodiscard]] std::filesystem::path data();
/// For what outlasts a restart and is no loss elsewhere.
[[nodiscard]] std::filesystem::path state();

/// For files that may be gone tomorrow: TMPDIR, or /tmp where that is no folder.
[[nodiscard]] std::filesystem::path temporary();

/// Where entries of programs to start at login are, the user's first.
[[nodiscard]] std::vector<std::filesystem::path> autostart();

} // namespace wegslot::folders
