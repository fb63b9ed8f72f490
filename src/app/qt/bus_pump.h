// Drives a D-Bus connection from Qt's event loop.
#pragma once

#include "dbus/connection.h"

#include <chrono>

namespace wegslot {

/// Handles what comes in on `bus` until the handle ends or the bus closes, which is told once.
[[nodiscard]] Handle pump(dbus::Bus& bus, std::function<void()> lost);

/// Likewise, for a bus with much traffic that may wait: while it is busy it is read once in a
/// `batchInterval`, for to wake up costs more than to handle a message. What breaks a silence is
/// handled at once, and so are answers to calls that have a time-out.
[[nodiscard]] Handle pumpInBatches(dbus::Bus& bus, std::function<void()> lost);

/// Many reports of a busy radio; little beside the second between two judgements.
constexpr std::chrono::milliseconds batchInterval{100};

} // namespace wegslot
