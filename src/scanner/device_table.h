// Every device heard lately: its record and its samples. Holds no policy of the radio; the
// scanner decides what enters and which devices are watched.
#pragma once

#include "scanner/seen_device.h"
#include "scanner/signal_history.h"

#include <cstddef>
#include <functional>
#include <set>
#include <unordered_map>
#include <vector>

namespace wegslot {

class DeviceTable {
public:
    /// A device with what the scanner notes of it, to look it up once for each advertisement.
    struct Record : SeenDevice {
        bool isHeld = false;   ///< its peripheral is
        bool isLogged = false; ///< it has been
        int lastRSSI = -128;
    };

    /// An unwatched device that was not heard for longer is forgotten.
    static constexpr Nanoseconds staleAge = std::chrono::seconds{120};

    /// More are not held, but for those that count: a radio nearby can make up addresses.
    static constexpr std::size_t mostDevices = 20'000;

    /// A device so strong is near its user, and what they may be looking for.
    static constexpr int nearFrom = -69;

    /// The window of the published signal strengths: long enough for a phone that advertises
    /// every two seconds, short enough to notice who leaves.
    static constexpr Nanoseconds smoothingWindow = std::chrono::seconds{5};

    /// Adds a sample taken `now`, making the record when there is none. `rssi` is not checked.
    Record& addSample(const Uuid& id, int rssi, TimePoint now);

    /// Null when the device is unknown.
    [[nodiscard]] SeenDevice* find(const Uuid& id);
    [[nodiscard]] const SeenDevice* find(const Uuid& id) const;

    /// Nothing for an unknown device and for one without samples in the window.
    [[nodiscard]] std::optional<Dbm> smoothedRSSI(const Uuid& id, Nanoseconds window,
                                                  TimePoint now) const;

    /// What is kept of a device's samples after `since`, oldest first.
    [[nodiscard]] std::vector<SignalHistory::Sample> samplesSince(const Uuid& id,
                                                                  TimePoint since) const;

    /// Forgets the stale devices that are not in `watched` and returns their ids.
    std::vector<Uuid> forgetStale(const std::set<Uuid>& watched, TimePoint now);

    [[nodiscard]] std::size_t size() const { return entries_.size(); }

    [[nodiscard]] bool isTooLarge() const { return entries_.size() > limit_; }

    /// Forgets those unheard for longest until there is room for some more, and returns their ids.
    /// Never one that is near or that `isKept`.
    std::vector<Uuid> makeRoom(const std::function<bool(const Uuid&)>& isKept);

    /// All records with their smoothed signal, strongest first; equal ones in order of id.
    [[nodiscard]] std::vector<SeenDevice> snapshot(TimePoint now) const;

    /// `from` turned out to be `to`: its record and samples move there. The name, model and type
    /// that `to` has already stay; it was last seen when either was, and what is noted of either is
    /// of both.
    void move(const Uuid& from, const Uuid& to);

    /// Calls `visit` with each record, in no particular order.
    template <typename Visitor>
    void forEach(Visitor&& visit) const {
        for (const auto& [id, entry] : entries_)
            visit(entry.device);
    }

private:
    // What every advertisement touches stands together: with many devices that is what it costs.
    struct Entry {
        SignalHistory samples;
        Record device;
    };

    std::unordered_map<Uuid, Entry> entries_;
    std::size_t limit_ = mostDevices; ///< more while there are none that can be forgotten
};

} // namespace wegslot
