// What whoever judges asks of the radio: whether it listens, when a key was heard last, and how
// strongly. The scanner answers from what is heard now; what was heard once can answer too.
#pragma once

#include "base/time.h"
#include "base/translation.h"
#include "base/uuid.h"
#include "scanner/dbm.h"

#include <optional>
#include <set>

namespace wegslot {

class KeySignals {
public:
    KeySignals() = default;
    KeySignals(const KeySignals&) = delete;
    KeySignals& operator=(const KeySignals&) = delete;
    virtual ~KeySignals() = default;

    [[nodiscard]] virtual bool isPoweredOn() const = 0;

    /// The state of the radio as a sentence for a person.
    [[nodiscard]] virtual Message stateDescription() const = 0;

    /// Hears what has come in. Before each judgement.
    virtual void refreshSnapshot() = 0;

    /// When the device was last heard; nothing when it is unknown or forgotten.
    [[nodiscard]] virtual std::optional<TimePoint> lastSeen(const Uuid& id) const = 0;

    /// The median signal of the last `window`; nothing without a sample in it.
    [[nodiscard]] virtual std::optional<Dbm> smoothedRSSI(const Uuid& id,
                                                          Seconds window = Seconds{5.0}) const = 0;

    /// All keys: what they send always counts and they are never forgotten.
    virtual void setWatchedIDs(std::set<Uuid> ids) = 0;

    /// Those of the keys that are only listened to, never connected.
    virtual void setPassiveIDs(std::set<Uuid> ids) = 0;

    /// Whether named devices of other makers are listed too.
    virtual void setIncludeOtherDevices(bool include) = 0;
};

} // namespace wegslot
