// Which display servers the session's environment names. Tells where to look, not whether a server
// is there.
#pragma once

#include "platform/locker_programs.h"

#include <optional>
#include <string>

namespace wegslot {

/// What is empty counts as not set.
struct DisplayEnvironment {
    std::string waylandDisplay; ///< WAYLAND_DISPLAY
    std::string runtimeFolder;  ///< XDG_RUNTIME_DIR
    std::string sessionType;    ///< XDG_SESSION_TYPE
    std::string x11Display;     ///< DISPLAY

    friend bool operator==(const DisplayEnvironment&, const DisplayEnvironment&) = default;
};

/// As this process was started.
[[nodiscard]] DisplayEnvironment displayEnvironment();

/// The socket of the session's compositor, where any Wayland program looks for it; nothing in an
/// X11 session that names none, for what stands at the usual place belongs to another session.
[[nodiscard]] std::optional<std::string> compositorSocket(const DisplayEnvironment& environment);

/// The display of a session that is X11 itself; nothing under Wayland, where an X server sees only
/// what is typed into programs of its own.
[[nodiscard]] std::optional<std::string> plainX11Display(const DisplayEnvironment& environment);

/// Which lockers fit the session.
[[nodiscard]] DisplayKind displayKind(const DisplayEnvironment& environment);

} // namespace wegslot
