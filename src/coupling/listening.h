// Listens to one device for a while, to say what it is worth as a key.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "scanner/scanner.h"

#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace wegslot::coupling {

/// How a device was heard.
struct Heard {
    bool everHeard = false;
    /// Without a sign of it, its beginning and its end included. To the second.
    Nanoseconds longestGap{};
    std::optional<Dbm> strength; ///< the median; nothing where it was never heard

    friend bool operator==(const Heard&, const Heard&) = default;
};

namespace audibility {

/// Heard often enough for a lock soon after it has gone.
struct Good {
    friend bool operator==(const Good&, const Good&) = default;
};

/// Heard, with gaps that must not count as having gone.
struct Moderate {
    Seconds longestGap;
    friend bool operator==(const Moderate&, const Moderate&) = default;
};

/// Silent for so long that it cannot be told from one that has gone.
struct Silent {
    friend bool operator==(const Silent&, const Silent&) = default;
};

} // namespace audibility

using Audibility = std::variant<audibility::Good, audibility::Moderate, audibility::Silent>;

/// The longest gap of what is heard well: a device that is seldom heard has longer gaps in a day
/// than in two minutes, and half as much again is the `lostTimeout` that Wegslot begins with.
inline constexpr Nanoseconds longestGoodGap = std::chrono::seconds{10};
/// Of what can be a key at all: a lock that comes a minute and a half later protects little.
inline constexpr Nanoseconds longestGap = std::chrono::seconds{60};

[[nodiscard]] Audibility audibilityOf(const Heard& heard);

/// The `lostTimeout` that lets such a gap pass: half as much again, to the panel's five seconds.
[[nodiscard]] Seconds lostTimeoutFor(Seconds gap);

class Listening {
public:
    /// Has `scanner` count every report of `id` for `duration`, and calls `done` once. All must
    /// outlive this; ended earlier, nothing is called.
    Listening(Scanner& scanner, const Clock& clock, Scheduler& scheduler, const Uuid& id,
              Nanoseconds duration, std::function<void(const Heard&)> done);
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;

private:
    void look();
    void finish();

    Scanner& scanner_;
    const Clock& clock_;
    Uuid id_;
    TimePoint end_;
    std::function<void(const Heard&)> done_;
    TimePoint begin_;
    TimePoint lastSign_;
    Heard heard_;
    std::vector<Dbm> strengths_; ///< one of each second in which it was heard
    Subscription trial_;
    Timer looking_;
};

} // namespace wegslot::coupling
