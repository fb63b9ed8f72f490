// Applications as an update finds them, small enough for a test to make: folders with an Info.json
// and a program that is a script.
#pragma once

#include "update/bundle_info.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace wegslot {

inline constexpr auto testIdentifier = "nl.wegslot.Wegslot";

inline void writeText(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

/// Makes an application of this version and build in `folder`. Its program prints the version, as
/// `--version` must; without that word it writes its build into `started` beside the application.
inline void makeApplication(const std::filesystem::path& folder, const std::string& version,
                            int build, const std::string& further = "",
                            const std::string& identifier = testIdentifier) {
    namespace fs = std::filesystem;
    writeText(folder / infoFile, R"({"CFBundleIdentifier":")" + identifier +
                                     R"(","CFBundleShortVersionString":")" + version +
                                     R"(","CFBundleVersion":")" + std::to_string(build) + "\"" +
                                     further + "}");
    writeText(folder / "icons" / "icon.svg", "<svg/>");
    writeText(folder / programFile, "#!/bin/sh\n[ \"$1\" = --version ] && echo '" +
                                        versionLine(version, build) + "' && exit\necho " +
                                        std::to_string(build) +
                                        " > \"$(dirname \"$0\")/../started\"\n");
    fs::permissions(folder / programFile, fs::perms::owner_all);
}

/// Every file below a folder and what is in it; links by where they lead.
inline std::map<std::string, std::string> contentsOf(const std::filesystem::path& folder) {
    namespace fs = std::filesystem;
    std::map<std::string, std::string> contents;
    if (!fs::exists(folder)) return contents;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        std::ostringstream text;
        if (entry.is_symlink())
            text << "-> " << fs::read_symlink(entry.path()).string();
        else if (entry.is_regular_file())
            text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        contents[fs::relative(entry.path(), folder)] = text.str();
    }
    return contents;
}

} // namespace wegslot
