#include "coupling/bluez/obstacle.h"

namespace wegslot::coupling {

std::optional<Obstacle> obstacle(const bluez::Adapter& adapter) {
    // One that is off does not tell what it could do.
    if (!adapter.powered) return Obstacle::off;
    if (!adapter.isPeripheral || !adapter.advertisingRoom) return Obstacle::noPeripheral;
    if (*adapter.advertisingRoom < 1) return Obstacle::noRoom;
    // Only an adapter that is not discoverable says in its advertisement that it has no classic
    // half to pair with, and phones prefer that one.
    if (adapter.discoverable) return Obstacle::discoverable;
    return std::nullopt;
}

std::optional<Obstacle> obstacle(const bluez::Surroundings& surroundings) {
    if (surroundings.daemon == bluez::Daemon::denied) return Obstacle::denied;
    if (surroundings.daemon != bluez::Daemon::ready || !surroundings.adapter)
        return Obstacle::noRadio;
    return obstacle(*surroundings.adapter);
}

} // namespace wegslot::coupling
