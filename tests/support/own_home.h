// A user of a test's own: a home, preferences, both buses on one daemon, and nothing of the desktop
// that the test runs on.
#pragma once

#include "tests/support/bus_loop.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace wegslot {

class OwnHome {
public:
    /// What a program of that user finds in its environment. An empty value takes one away.
    [[nodiscard]] std::map<std::string, std::string> variables(const BusLoop& loop) const {
        return {{"HOME", path().string()},
                {"XDG_CONFIG_HOME", (path() / "config").string()},
                {"XDG_CONFIG_DIRS", (path() / "shared").string()},
                {"XDG_DATA_HOME", ""},
                {"XDG_RUNTIME_DIR", path().string()},
                {"DBUS_SYSTEM_BUS_ADDRESS", loop.daemon.address()},
                {"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()},
                {"XDG_SESSION_TYPE", ""},
                {"XDG_SESSION_ID", ""},
                {"WAYLAND_DISPLAY", ""},
                {"DISPLAY", ""},
                {"PULSE_SERVER", ""}};
    }

    void write(const std::string& name, const std::string& content) const {
        const auto file = path() / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << content;
    }
    void setPreferences(const std::string& content) const {
        write("config/wegslot/preferences.json", content);
    }

    /// Empty when there are none yet.
    [[nodiscard]] std::string preferences() const {
        return folder_.read("config/wegslot/preferences.json");
    }
    [[nodiscard]] std::string log() const { return folder_.read("Library/Logs/Wegslot.log"); }

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
};

} // namespace wegslot
