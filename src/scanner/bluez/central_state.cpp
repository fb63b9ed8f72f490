#include "scanner/bluez/central_state.h"

#include "scanner/radio_words.h"

namespace wegslot::bluez {
namespace {

int suitability(const Adapter& adapter) {
    if (!adapter.isCentral) return 0;
    return adapter.powered ? 2 : 1;
}

CentralState stateOf(const Adapter& adapter) {
    if (!adapter.isCentral) return CentralState::unsupported;
    if (adapter.powered) return CentralState::poweredOn;
    if (adapter.powerState == "off-enabling") return CentralState::resetting;
    return CentralState::poweredOff; // switched off or blocked: for a person the same
}

/// It would be on, but somebody has it.
bool isAway(const Surroundings& surroundings) {
    return surroundings.isLent && surroundings.daemon == Daemon::ready && surroundings.adapter &&
           stateOf(*surroundings.adapter) == CentralState::poweredOn;
}

} // namespace

std::optional<std::string> chosenAdapter(const ObjectTree& objects) {
    std::optional<std::string> best;
    int bestSuitability = -1;
    for (const auto& [path, adapter] : objects.adapters()) {
        if (suitability(adapter) <= bestSuitability) continue;
        best = path;
        bestSuitability = suitability(adapter);
    }
    return best;
}

CentralState stateIn(const Surroundings& surroundings) {
    if (isAway(surroundings)) return CentralState::resetting;
    switch (surroundings.daemon) {
    case Daemon::unknown:
        return CentralState::unknown;
    case Daemon::denied:
        return CentralState::unauthorized;
    case Daemon::loading:
        return CentralState::resetting;
    case Daemon::absent:
        return surroundings.graceIsOver ? CentralState::unsupported : CentralState::resetting;
    case Daemon::ready:
        break;
    }
    if (surroundings.adapter) return stateOf(*surroundings.adapter);
    if (surroundings.graceIsOver) return CentralState::unsupported;
    return surroundings.hadAdapter ? CentralState::poweredOff : CentralState::resetting;
}

std::optional<Message> wordsIn(const Surroundings& surroundings) {
    if (isAway(surroundings)) return lentRadio();
    if (surroundings.daemon != Daemon::absent || !surroundings.graceIsOver) return std::nullopt;
    return withoutRadioService();
}

std::optional<Nanoseconds> graceFor(const Surroundings& surroundings) {
    if (surroundings.daemon == Daemon::absent) return daemonGrace;
    if (surroundings.daemon == Daemon::ready && !surroundings.adapter) return adapterGrace;
    return std::nullopt;
}

} // namespace wegslot::bluez
