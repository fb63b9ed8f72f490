// What keeps the screen open although the keys are away: a pause until some time, or something
// that the user is doing right now.
#pragma once

#include "base/observable.h"
#include "base/time.h"
#include "base/translation.h"
#include "model/settings.h"
#include "platform/activity_detector.h"

#include <optional>
#include <string>
#include <variant>

namespace wegslot {

/// The pause until a given time. Manual ones last their time; automatic ones, taken after a
/// cancelled warning, also end when the keys return or the screen is unlocked.
class Snooze {
public:
    /// After a cancelled warning: long enough not to nag, short enough to protect a desk.
    static constexpr Nanoseconds automatic = std::chrono::seconds{600};

    [[nodiscard]] const Observable<bool>& isManual() const { return isManual_; }

    [[nodiscard]] const std::optional<TimePoint>& until() const { return until_; }

    void startManual(TimePoint until);
    void startAutomatic(TimePoint until);
    void end();
    void endAutomatic();

    /// Whether it holds at `now`; if not, it has ended.
    [[nodiscard]] bool holds(TimePoint now, bool keysNotNear);

private:
    std::optional<TimePoint> until_;
    Observable<bool> isManual_{false};
};

namespace pause {

/// The user types or moves the mouse.
struct Active {
    friend bool operator==(const Active&, const Active&) = default;
};

/// Somebody may be seeing the user.
struct Camera {
    friend bool operator==(const Camera&, const Camera&) = default;
};

/// Somebody may be hearing the user, by means of the program named.
struct Microphone {
    std::string user;
    friend bool operator==(const Microphone&, const Microphone&) = default;
};

} // namespace pause

using PauseReason = std::variant<pause::Active, pause::Camera, pause::Microphone>;

/// The user counts as active when the last input is less than this old.
inline constexpr Seconds activityWindow{10.0};

/// The first reason that applies and is switched on, asked afresh.
[[nodiscard]] std::optional<PauseReason> pauseReason(const Settings& settings,
                                                     ActivityDetector& activity);

/// The reason as the paused phase shows it.
[[nodiscard]] Message text(const PauseReason& reason);

} // namespace wegslot
