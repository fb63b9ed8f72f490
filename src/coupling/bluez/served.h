// Methods of ours that bluetoothd calls. Whoever learns our name on the bus can call them too, and
// is refused.
#pragma once

#include "dbus/object.h"

#include <functional>
#include <string>

namespace wegslot::coupling {

/// Whether the daemon itself has sent the call.
using IsDaemon = std::function<bool(const dbus::Message& call)>;

using Serve = std::function<void(const dbus::Message& call, dbus::Answer answer)>;

/// A method `name` that is served to the daemon alone.
[[nodiscard]] dbus::Method served(IsDaemon isDaemon, std::string name, std::string arguments,
                                  std::string results, Serve serve);

/// Likewise one that does nothing.
[[nodiscard]] dbus::Method servedWithNothing(IsDaemon isDaemon, std::string name);

} // namespace wegslot::coupling
