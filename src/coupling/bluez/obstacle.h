// What keeps this computer from appearing as a peripheral, as far as BlueZ's objects show before
// anything is tried.
#pragma once

#include "coupling/coupling_radio.h"
#include "scanner/bluez/central_state.h"

#include <optional>

namespace wegslot::coupling {

[[nodiscard]] std::optional<Obstacle> obstacle(const bluez::Adapter& adapter);

/// Of the adapter in use, or of there being none.
[[nodiscard]] std::optional<Obstacle> obstacle(const bluez::Surroundings& surroundings);

} // namespace wegslot::coupling
