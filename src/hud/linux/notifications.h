// How the desktop is asked for notifications: the names of its service, and what every notification
// of ours says of itself.
#pragma once

#include "dbus/bus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::notifications {

inline constexpr auto service = "org.freedesktop.Notifications";
inline constexpr auto path = "/org/freedesktop/Notifications";

[[nodiscard]] dbus::Call callTo(const char* member, std::vector<dbus::Argument> arguments);

struct Content {
    std::string title;
    std::string text;
    std::vector<std::string> actions = {}; ///< name and label, in turn
    dbus::Dictionary hints = {};           ///< besides those that all have
};

/// Shows one that is critical, so that it does not go by itself.
[[nodiscard]] dbus::Call notify(const Content& content);

[[nodiscard]] dbus::Call close(std::uint32_t id);

/// The number that the service gives to what it shows, if it is next; nothing for what is none.
[[nodiscard]] std::optional<std::uint32_t> idIn(dbus::Reader reader);

} // namespace wegslot::notifications
