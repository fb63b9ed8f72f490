// Judges one key from two facts: when it was last heard and how strong its signal is. One
// threshold serves both directions; the median and the away delay are all the damping.
#pragma once

#include "base/time.h"
#include "model/key_device.h"
#include "model/settings.h"
#include "monitor/key_state.h"
#include "scanner/key_signals.h"

#include <map>

namespace wegslot {

class Presence {
public:
    Presence(const Settings& settings, const KeySignals& signals)
        : settings_(settings),
          signals_(signals) {}

    /// Judges `key`; the first weak reading of a run starts its clock.
    [[nodiscard]] KeyState evaluate(const KeyDevice& key, TimePoint now);

    /// Judges every key of the settings. A repeated id stops the program.
    [[nodiscard]] KeyStates evaluateAll(TimePoint now);

    /// Forgets since when keys have been weak: monitoring starts anew.
    void restart() { belowSince_.clear(); }

private:
    const Settings& settings_;
    const KeySignals& signals_;
    std::map<Uuid, TimePoint> belowSince_;
};

} // namespace wegslot
