// Drives a D-Bus connection from Qt's event loop.
#pragma once

#include "dbus/connection.h"

namespace wegslot {

/// Handles what comes in on `bus` until the handle ends or the bus closes, which is told once.
[[nodiscard]] Handle pump(dbus::Bus& bus, std::function<void()> lost);

} // namespace wegslot
