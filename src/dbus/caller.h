// Says who called a method of ours, for the log: what the system knows about the program, beside
// the name that it gave itself.
#pragma once

#include "dbus/bus.h"
#include "dbus/message.h"

#include <chrono>
#include <string>

namespace wegslot::dbus {

/// The bus is on this computer and quick; nobody else is waited for.
constexpr std::chrono::milliseconds callerPatience{100};

/// "busctl (/usr/bin/busctl in /user.slice/...)", with control and format characters made visible:
/// the name that the program chose, its executable and its cgroup, as far as they can be read. Of a
/// call through a sandbox's proxy it is the proxy's.
[[nodiscard]] std::string callerOf(Bus& bus, const Message& call);

} // namespace wegslot::dbus
