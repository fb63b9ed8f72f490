// Where the buses are, as every program finds them: what the environment says, and else the place
// where they always are.
#pragma once

#include <optional>
#include <string>

namespace wegslot::dbus {

[[nodiscard]] std::string systemBusAddress();

/// Nothing where the environment says neither the address nor the folder of the session.
[[nodiscard]] std::optional<std::string> sessionBusAddress();

/// A path as a part of an address.
[[nodiscard]] std::string escapedPath(const std::string& path);

} // namespace wegslot::dbus
