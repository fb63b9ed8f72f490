// Keeps the keys connected that can be, and reads their signal while they are. Knows which keys
// are watched, which of those are only listened to, and which peripherals the stack has handed
// out. A lost key is connected again two seconds later, for ever.
#pragma once

#include "base/delayed_calls.h"
#include "base/observable.h"
#include "base/scheduler.h"
#include "scanner/bluetooth_central.h"

#include <optional>
#include <set>
#include <unordered_set>

namespace wegslot {

/// Whether any device may be connected. Who looks on, beside a Wegslot that may hold the
/// connections, only listens.
enum class Connecting { allowed, never };

class KeyConnections {
public:
    /// Often enough for two samples in the smoothing window.
    static constexpr Nanoseconds pollInterval = std::chrono::seconds{2};

    /// Leaves the radio room between attempts at a device that refuses.
    static constexpr Nanoseconds reconnectDelay = std::chrono::seconds{2};

    KeyConnections(BluetoothCentral& central, Scheduler& scheduler,
                   const Observable<CentralState>& state, Connecting connecting)
        : central_(central),
          state_(state),
          mayConnect_(connecting == Connecting::allowed),
          delayed_(scheduler) {}

    [[nodiscard]] bool mayConnect() const { return mayConnect_; }

    [[nodiscard]] const std::set<Uuid>& watched() const { return watched_; }

    [[nodiscard]] const std::set<Uuid>& passive() const { return passive_; }

    /// True when the set differs from the one before; `update` is due then.
    [[nodiscard]] bool setWatched(std::set<Uuid> ids);
    [[nodiscard]] bool setPassive(std::set<Uuid> ids);

    /// A watched key that is not only listened to: it has to stay connected, where any may be.
    [[nodiscard]] bool isActive(const Uuid& id) const;

    /// Connects every active key that is not, and disconnects every other peripheral but the
    /// one that is being identified. Does nothing unless the radio is on.
    void update(const std::optional<Uuid>& identifying);

    /// The watched keys, by what is to be done with them.
    [[nodiscard]] std::set<Uuid> active() const;
    [[nodiscard]] std::set<Uuid> onlyHeard() const;

    /// Asks each connected active key for its signal.
    void pollRSSI();

    /// A reading of the link's strength ended; `told`: it gave one.
    void strengthRead(const Uuid& id, bool told);

    /// Whether the link stands and told its strength when it was last asked.
    [[nodiscard]] bool tellsStrength(const Uuid& id) const;

    /// Connects `id` in a while, if it is still an active key and still disconnected by then.
    void reconnectLater(const Uuid& id);

    /// The peripherals at hand: those heard and those the stack was asked for.
    [[nodiscard]] bool holds(const Uuid& id) const { return held_.contains(id); }

    void hold(const Uuid& id) { held_.insert(id); }

    void release(const Uuid& id) {
        held_.erase(id);
        telling_.erase(id);
    }

    /// Cancels the connection of `id` unless it is an active key or disconnected already.
    void letGo(const Uuid& id);

private:
    [[nodiscard]] bool isDisconnected(const Uuid& id) const;

    BluetoothCentral& central_;
    const Observable<CentralState>& state_;
    const bool mayConnect_;
    std::set<Uuid> watched_;
    std::set<Uuid> passive_;
    std::unordered_set<Uuid> held_;
    std::unordered_set<Uuid> telling_; ///< whose last reading gave a strength
    DelayedCalls delayed_;
};

} // namespace wegslot
