// One key in the panel: what it is, what it is judged to be, its signal against its threshold, and
// what can be done with it.
#pragma once

#include "model/key_device.h"
#include "monitor/key_state.h"
#include "scanner/seen_device.h"
#include "ui/panel_parts.h"
#include "ui/signal_bar.h"

#include <optional>
#include <string>

namespace wegslot::panel {

/// For how long a row says what the threshold was set to.
inline constexpr Nanoseconds justSetTime = std::chrono::seconds{6};

/// What is known of a key.
struct KeyFacts {
    KeyDevice key;
    std::optional<Dbm> rssi;       ///< nothing: it is not heard
    std::optional<KeyState> state; ///< nothing: not judged yet
    bool isHeardOverConnection = false;
    bool changesAddress = false;  ///< it was a key before it lost its bond
    bool isUnheard = false;       ///< not even once since the start
    std::optional<Dbm> held = {}; ///< where a finger holds the slider
    /// The signal that the threshold was just set by; nothing when that is a while ago.
    std::optional<Dbm> justSetBy = {};
};

struct KeyRow {
    Uuid id;
    std::string symbol;
    Color symbolColor = brand::navy;
    std::string name; ///< one line
    std::string note; ///< of another make; quiet, behind the name where both have room
    Badge badge;
    Button remove;
    std::string trouble; ///< a line of its own below the name, in `troubleColor`
    Color troubleColor = brand::danger;
    std::string signal;
    std::string link; ///< behind the signal: it is that of a connection
    std::string limit;
    SignalBar bar;
    std::string farEnd; ///< before the slider
    ThresholdSlider threshold;
    std::string nearEnd; ///< behind it
    std::optional<Button> setFromHere;
    std::string justSet; ///< what became of that, behind the button; quiet, empty most of the time

    friend bool operator==(const KeyRow&, const KeyRow&) = default;
};

[[nodiscard]] KeyRow keyRow(const KeyFacts& facts);

/// In the place of a key that was just removed, for as long as it can be taken back.
struct RemovedRow {
    Uuid id;
    std::string name; ///< one line
    std::string text; ///< quiet, behind the name
    Button putBack;

    friend bool operator==(const RemovedRow&, const RemovedRow&) = default;
};

[[nodiscard]] RemovedRow removedRow(const KeyDevice& key);

} // namespace wegslot::panel
