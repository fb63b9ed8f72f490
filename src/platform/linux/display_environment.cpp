#include "platform/linux/display_environment.h"

#include <cstdlib>

namespace wegslot {
namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

DisplayEnvironment displayEnvironment() {
    return {.waylandDisplay = variable("WAYLAND_DISPLAY"),
            .runtimeFolder = variable("XDG_RUNTIME_DIR"),
            .sessionType = variable("XDG_SESSION_TYPE"),
            .x11Display = variable("DISPLAY")};
}

std::optional<std::string> compositorSocket(const DisplayEnvironment& environment) {
    const std::string& named = environment.waylandDisplay;
    if (named.empty() && environment.sessionType == "x11") return std::nullopt;
    if (named.starts_with('/')) return named;
    if (!environment.runtimeFolder.starts_with('/')) return std::nullopt;
    return environment.runtimeFolder + "/" + (named.empty() ? "wayland-0" : named);
}

std::optional<std::string> plainX11Display(const DisplayEnvironment& environment) {
    if (environment.x11Display.empty() || !environment.waylandDisplay.empty() ||
        environment.sessionType == "wayland")
        return std::nullopt;
    return environment.x11Display;
}

DisplayKind displayKind(const DisplayEnvironment& environment) {
    if (!environment.waylandDisplay.empty() || environment.sessionType == "wayland")
        return DisplayKind::wayland;
    return environment.x11Display.empty() ? DisplayKind::none : DisplayKind::x11;
}

} // namespace wegslot
