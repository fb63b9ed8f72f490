// The devices nearby that could become keys: which ones the list shows, in which order and how.
// Devices of the maker come first, by name; devices without a name of their own are folded away,
// and those of other makers are shown on request.
#pragma once

#include "scanner/seen_device.h"
#include "ui/panel_parts.h"

#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace wegslot::panel {

/// A device that was not heard for as long is not listed.
inline constexpr Nanoseconds nearbyAge = std::chrono::seconds{30};

/// How many devices of other makers are shown at most.
inline constexpr std::size_t mostOthers = 25;

struct NearbyRow {
    std::string symbol;
    Color symbolColor = brand::lila;
    std::string name;   ///< one line
    std::string detail; ///< one line, quiet
    std::string signal; ///< in a frame of 56 pixels; empty without a signal
    /// Why it cannot be chosen, on a line of its own below; empty when it can.
    std::string obstacle;
    Button choose; ///< where there is an obstacle, what takes it away

    friend bool operator==(const NearbyRow&, const NearbyRow&) = default;
};

/// Where a row stands. It is empty when its device has gone while the list was held.
struct NearbyPlace {
    Uuid id;
    std::optional<NearbyRow> row;

    friend bool operator==(const NearbyPlace&, const NearbyPlace&) = default;
};

struct NearbyList {
    std::vector<NearbyPlace> places;
    std::string placeholder; ///< in place of the rows when there are none

    friend bool operator==(const NearbyList&, const NearbyList&) = default;
};

/// In the order in which they are shown; a divider stands before `others`.
struct NearbyGroup {
    struct Nameless {
        std::string label;
        bool isOpen = false;
        NearbyList list;
        friend bool operator==(const Nameless&, const Nameless&) = default;
    };

    struct Others {
        std::string explanation;
        NearbyList list;
        friend bool operator==(const Others&, const Others&) = default;
    };

    std::string title; ///< of a section
    bool isOpen = false;
    std::string explanation;
    NearbyList named;
    std::optional<Nameless> nameless;
    Toggle showOthers;
    std::optional<Others> others;

    friend bool operator==(const NearbyGroup&, const NearbyGroup&) = default;
};

/// Who stands where in the three lists.
struct NearbyPlaces {
    std::vector<Uuid> named;
    std::vector<Uuid> nameless;
    std::vector<Uuid> others;

    friend bool operator==(const NearbyPlaces&, const NearbyPlaces&) = default;
};

struct NearbyFacts {
    std::span<const SeenDevice> devices;
    std::set<Uuid> keys;
    TimePoint now; ///< on the clock of `lastSeen`
    std::function<bool(const Uuid&)> changesAddress;
    bool showOthers = false; ///< the setting
    bool isOpen = false;
    bool isNamelessOpen = false;
    /// As they were shown last; nothing while nobody points at the lists.
    std::optional<NearbyPlaces> held = {};
};

/// Lists that are folded away are left empty.
[[nodiscard]] NearbyGroup nearbyGroup(const NearbyFacts& facts);

[[nodiscard]] NearbyPlaces placesOf(const NearbyGroup& group);

} // namespace wegslot::panel
