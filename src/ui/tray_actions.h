// What a person can do with the status icon, and who is told.
#pragma once

#include "base/time.h"

#include <functional>
#include <optional>
#include <string>

namespace wegslot {

/// Where the icon was clicked, by the desktop's own account: on the screen, relative to the bar,
/// or zeros. Not to be trusted before it is compared with the screens.
struct TrayPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const TrayPoint&, const TrayPoint&) = default;
};

struct TrayClick {
    std::optional<TrayPoint> at; ///< nothing when it was chosen from the menu
    /// What lets a window take the focus on Wayland (XDG_ACTIVATION_TOKEN); empty for none.
    std::string activationToken = {};

    friend bool operator==(const TrayClick&, const TrayClick&) = default;
};

struct TrayActions {
    std::function<void(const TrayClick&)> open;
    std::function<void()> lock;
    std::function<void(Seconds)> pause;
    std::function<void()> pauseUntilMorning;
    std::function<void()> resume;
    std::function<void()> couple;  ///< opens the window for it
    std::function<void()> insight; ///< opens that window
    std::function<void()> quit;
};

} // namespace wegslot
