// What a running Wegslot tells others on the session bus about itself, as plain values. They may
// look, lock and pause; nothing they can ask for unlocks the screen, removes a key or changes a
// setting.
#pragma once

#include "base/clock.h"
#include "base/result.h"
#include "base/time.h"
#include "base/uuid.h"
#include "control/reason.h"
#include "model/settings.h"
#include "monitor/key_state.h"
#include "monitor/monitor.h"
#include "scanner/scanner.h"
#include "ui/phase_presentation.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot::control {

inline constexpr auto interfaceName = "nl.wegslot.Wegslot1";

/// More would make an answer that takes long to write, and nobody reads as many.
inline constexpr std::size_t mostDevices = 1000;

/// As long as the panel's longest.
inline constexpr std::uint32_t longestPause = 14400;

struct Key {
    std::string id;
    std::string name;        ///< as the key has it, whatever characters
    std::string state;       ///< "near", "leaving", "away"
    std::optional<Dbm> rssi; ///< smoothed; nothing while it is not heard
    Dbm threshold;

    friend bool operator==(const Key&, const Key&) = default;
};

struct Status {
    std::string phase;                       ///< the case alone: "waitingForReturn"
    std::string text;                        ///< Dutch, for a person
    Reason reason;                           ///< why it was entered; of an older one without a code
    std::optional<std::int64_t> pausedUntil; ///< seconds since 1970, on the wall's clock
    std::vector<Key> keys;

    friend bool operator==(const Status&, const Status&) = default;
};

/// One of those that are heard nearby, a key or not.
struct Device {
    std::string id;
    std::optional<std::string> name; ///< as it sends it, whatever characters
    std::string kind;                ///< what it would be called without a name
    std::optional<Dbm> rssi;         ///< smoothed; nothing while it is not heard
    bool changesAddress = false;     ///< and is of no use as a key

    friend bool operator==(const Device&, const Device&) = default;
};

struct Nearby {
    std::string radio;           ///< Dutch, while it does not listen; empty while it does
    bool includesOthers = false; ///< those of other makers are listened to as well
    std::vector<Device> devices; ///< strongest first

    friend bool operator==(const Nearby&, const Nearby&) = default;
};

struct Change {
    std::string phase;
    std::string text;
    std::string why; ///< Dutch
    Reason reason;   ///< the same
    std::optional<std::int64_t> pausedUntil;

    friend bool operator==(const Change&, const Change&) = default;
};

/// What changes are made of; all must outlive the use.
struct Sources {
    const Settings& settings;
    const Scanner& scanner;
    const Monitor& monitor;
    const Clock& clock;
    const ClockTime& clockTime;
};

/// `phase`: the one that is told; `reason`: why it was entered.
[[nodiscard]] Status status(const Sources& sources, const Phase& phase, const Reason& reason);

/// As of the scanner's last list, no more than `mostDevices`. Without `others`: what is Apple's or
/// a key.
[[nodiscard]] Nearby nearby(const Scanner& scanner, bool others);

/// From within a listener of the monitor's phase, which is told `next`.
[[nodiscard]] Change change(const Sources& sources, const Phase& next);

/// Reads "15m", "15 min", "90s", "1.5h", "1,5u" or a number of seconds: 1 second to `longestPause`.
[[nodiscard]] Result<std::uint32_t> pauseDuration(std::string_view text);

/// What is wrong with a pause of that many seconds; nothing when it may be asked for.
[[nodiscard]] std::optional<Failure> pauseFault(std::uint32_t seconds);

} // namespace wegslot::control
