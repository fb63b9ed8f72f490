// What the state of the radio is, from what is known of the bus, the daemon and its adapters. A
// daemon or an adapter that has gone is given some time to come back before it counts as none.
#pragma once

#include "base/time.h"
#include "scanner/bluetooth_central.h"
#include "scanner/bluez/object_tree.h"
#include "scanner/bluez/object_watch.h"

#include <optional>
#include <string>

namespace wegslot::bluez {

/// A service manager restarts a crashed daemon within seconds; ten is more than any was seen
/// to take.
inline constexpr Nanoseconds daemonGrace = std::chrono::seconds{10};

/// A USB adapter that was reset, or that slept, is back within two or three seconds.
inline constexpr Nanoseconds adapterGrace = std::chrono::seconds{5};

/// The adapter to use: the first by path that is on and can scan, else the first that can, else
/// the first. Nothing when there is none.
[[nodiscard]] std::optional<std::string> chosenAdapter(const ObjectTree& objects);

struct Surroundings {
    Daemon daemon = Daemon::unknown;
    std::optional<Adapter> adapter;
    bool hadAdapter = false;  ///< since the daemon was found
    bool graceIsOver = false; ///< for the daemon or the adapter that is missing
    bool isLent = false;      ///< the radio, to who appears as a peripheral
};

[[nodiscard]] CentralState stateIn(const Surroundings& surroundings);

/// Where a radio that may well be there has nobody to serve it, that is what there is to say.
[[nodiscard]] std::optional<Message> wordsIn(const Surroundings& surroundings);

/// How long what is missing may stay away; nothing when nothing is.
[[nodiscard]] std::optional<Nanoseconds> graceFor(const Surroundings& surroundings);

} // namespace wegslot::bluez
