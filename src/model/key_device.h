// A key: a Bluetooth device whose presence keeps the computer unlocked.
#pragma once

#include "base/uuid.h"
#include "scanner/dbm.h"

#include <algorithm>
#include <optional>
#include <string>

namespace wegslot {

struct KeyDevice {
    Uuid id;
    std::string name;                 ///< as shown when the key was added
    std::optional<std::string> model; ///< model number, when it was known then
    std::optional<bool> isApple;      ///< false: listened to only, never connected
    Dbm threshold;                    ///< below it the key counts as away
    bool isPasted = false;            ///< known by an identity that the user pasted

    friend bool operator==(const KeyDevice&, const KeyDevice&) = default;
};

/// The threshold of a key that was not heard when it was added.
inline constexpr Dbm thresholdUnheard{-75.0};

/// The threshold for somebody who sits at the computer and hears the key with `rssi`: 15 dB below
/// it (a body in between costs about that much), within -90 and -65 dBm. Narrower than what can be
/// chosen by hand: a quick choice is never an extreme one.
[[nodiscard]] inline Dbm thresholdFromHere(Dbm rssi) {
    return {std::clamp(rssi.value - 15.0, -90.0, -65.0)};
}

} // namespace wegslot
