// The parts that the panel is made of, as plain values: the text, the tooltip, whether the part can
// be used, and the value it shows. Texts are UTF-8 and plain, never markup; an empty one stands for
// none. How a part is drawn, and in which font, is up to the toolkit.
#pragma once

#include "base/time.h"
#include "model/choice_range.h"
#include "scanner/dbm.h"
#include "ui/brand.h"

#include <string>

namespace wegslot::panel {

struct Button {
    std::string symbol; ///< a name of ui/symbols.h; empty for a button of text alone
    std::string text;
    std::string tooltip = {};
    bool isEnabled = true;

    friend bool operator==(const Button&, const Button&) = default;
};

/// Every choice that is on or off.
enum class Choice {
    enabled,
    showOtherDevices,
    warningEnabled,
    pauseDuringMeetings,
    pauseWhileActive,
    launchAtLogin,
};

/// A switch or a checkbox.
struct Toggle {
    Choice choice{};
    std::string text;
    std::string tooltip;
    bool isOn = false;

    friend bool operator==(const Toggle&, const Toggle&) = default;
};

/// Every choice of a number of seconds.
enum class Delay { awayDelay, lostTimeout, warningSeconds };

struct Stepper {
    Delay delay{};
    std::string before; ///< the value
    std::string value;
    std::string after;
    bool canDecrease = false;
    bool canIncrease = false;
    bool isIndented = false;
    bool isShown = true;

    [[nodiscard]] std::string text() const { return before + value + after; }

    friend bool operator==(const Stepper&, const Stepper&) = default;
};

/// Continuous, from `lowest` to `highest`.
struct ThresholdSlider {
    static constexpr Dbm lowest = thresholdChoice.lowest;
    static constexpr Dbm highest = thresholdChoice.highest;

    Dbm value;

    friend bool operator==(const ThresholdSlider&, const ThresholdSlider&) = default;
};

struct Badge {
    std::string text;
    Color color;

    /// Of the capsule behind the text.
    [[nodiscard]] constexpr Color ground() const { return color.withOpacity(0.14); }

    friend bool operator==(const Badge&, const Badge&) = default;
};

} // namespace wegslot::panel
