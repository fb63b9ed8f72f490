// A desktop entry: the file by which an application tells the desktop its name and how it is
// started. Read from bytes that anybody may have written; reading never fails, it only finds less.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

struct DesktopEntry {
    std::string name;        ///< the Dutch one, else the untranslated; may hold any bytes
    std::string program;     ///< the base name of the first word of Exec
    std::string windowClass; ///< StartupWMClass
    bool hidden = false;     ///< the user took the application away

    friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

/// Nothing when the text has no group "Desktop Entry". No other group is looked at.
[[nodiscard]] std::optional<DesktopEntry> readDesktopEntry(std::string_view text);

} // namespace wegslot
