#include "app/linux/folders.h"

#include <cstdlib>
#include <sstream>
#include <system_error>

#include <pwd.h>
#include <unistd.h>

namespace wegslot::folders {

namespace fs = std::filesystem;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

fs::path home() {
    if (const std::string folder = variable("HOME"); folder.starts_with('/')) return folder;
    const passwd* const user = getpwuid(getuid());
    return user == nullptr ? "/" : user->pw_dir;
}

namespace {

/// What `name` says, or its place in the home folder. Relative paths are to be ignored.
fs::path folderOf(const char* name, const char* otherwise) {
    const std::string folder = variable(name);
    return folder.starts_with('/') ? fs::path(folder) : home() / otherwise;
}

} // namespace

fs::path configuration() { return folderOf("XDG_CONFIG_HOME", ".config"); }

fs::path data() { return folderOf("XDG_DATA_HOME", ".local/share"); }

fs::path state() { return folderOf("XDG_STATE_HOME", ".local/state"); }

fs::path temporary() {
    std::error_code unusable;
    const fs::path folder = fs::temp_directory_path(unusable);
    return unusable ? "/tmp" : folder;
}

std::vector<fs::path> autostart() {
    std::vector<fs::path> folders{configuration() / "autostart"};
    const std::string shared = variable("XDG_CONFIG_DIRS");
    std::istringstream list(shared.empty() ? "/etc/xdg" : shared);
    for (std::string folder; std::getline(list, folder, ':');)
        if (folder.starts_with('/')) folders.push_back(fs::path(folder) / "autostart");
    return folders;
}

} // namespace wegslot::folders
