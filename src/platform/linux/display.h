// Which kind of display server this session has, as its environment says.
#pragma once

#include "platform/locker_programs.h"

#include <cstdlib>
#include <string_view>

namespace wegslot {

/// An X server that Wayland runs for old programs does not count as X11.
[[nodiscard]] inline DisplayKind displayKind() {
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::string_view(value == nullptr ? "" : value);
    };
    if (!variable("WAYLAND_DISPLAY").empty() || variable("XDG_SESSION_TYPE") == "wayland")
        return DisplayKind::wayland;
    return variable("DISPLAY").empty() ? DisplayKind::none : DisplayKind::x11;
}

} // namespace wegslot
