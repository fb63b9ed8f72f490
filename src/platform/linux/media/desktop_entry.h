// A desktop entry: the file by which an application tells the desktop its name and how it is
// started. Read from bytes that anybody may have written; reading never fails, it only finds less.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

struct DesktopEntry {
    std::string name;        ///< in the user's language, else the untranslated; may hold any bytes
    std::string program;     ///< the base name of the first word of Exec
    std::string windowClass; ///< StartupWMClass
    bool hidden = false;     ///< the user took the application away

    std::string type;
    std::string executable;       ///< the first word of Exec, whole
    std::string neededExecutable; ///< TryExec; without that program the entry does not count
    bool startsAtLogin = true;    ///< X-GNOME-Autostart-enabled, which counts in autostart folders
    std::optional<std::vector<std::string>> onlyShowIn; ///< desktops
    std::vector<std::string> notShowIn;

    friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

/// Nothing when the text has no group "Desktop Entry". No other group is looked at.
[[nodiscard]] std::optional<DesktopEntry> readDesktopEntry(std::string_view text);

} // namespace wegslot
