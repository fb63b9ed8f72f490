// What is kept of one minute: everything that the judgement of the keys rested on, and what came of
// it. Instants are those of the clock that judges, in whole milliseconds.
#pragma once

#include "base/time.h"
#include "history/row.h"
#include "monitor/key_state.h"
#include "monitor/phase.h"
#include "trace/event.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace wegslot::history {

struct Sample {
    TimePoint at;
    int rssi = 0; ///< dBm
    friend bool operator==(const Sample&, const Sample&) = default;
};

/// A phase was entered.
struct PhaseEntered {
    std::string name;   ///< the case alone: "waitingForReturn"
    std::string reason; ///< the code of why, as others are told; empty where there is none
    PhaseCause cause = PhaseCause::judgement;
    std::optional<TimePoint> until; ///< the end of a pause, the deadline of a warning

    [[nodiscard]] bool isJudgedLock() const {
        return name == "locked" && cause == PhaseCause::judgement;
    }

    friend bool operator==(const PhaseEntered&, const PhaseEntered&) = default;
};

/// What the user thinks of what happened at `of`.
struct Opinion {
    enum class Of { unjust, late, none };
    TimePoint of;
    Of opinion = Of::none; ///< none takes back one that was given
    friend bool operator==(const Opinion&, const Opinion&) = default;
};

/// Between the minute before and this one nothing was judged: the computer slept.
struct Rested {
    friend bool operator==(const Rested&, const Rested&) = default;
};

/// What came to the core or out of it, in order. Of a trace's events those that a judgement can
/// depend on: the settings (keys by rows, without names), the radio's state, the screen, input,
/// what was answered of camera and microphone (without a name), and what somebody asked for.
using Happening = std::variant<trace::Event, PhaseEntered, Opinion, Rested>;

struct Event {
    TimePoint at;
    Happening what;

    /// The event of a trace; null when it is another, or none.
    template <typename Told>
    [[nodiscard]] const Told* as() const {
        const auto* const told = std::get_if<trace::Event>(&what);
        return told == nullptr ? nullptr : std::get_if<Told>(told);
    }

    /// Null when it is none.
    [[nodiscard]] const PhaseEntered* phase() const { return std::get_if<PhaseEntered>(&what); }
};

struct KeyMinute {
    /// Oldest first. The first of all may be older than its minute.
    std::vector<Sample> samples;
    /// One for each judgement of the minute; nothing while it was no key.
    std::vector<std::optional<KeyState>> states;
};

struct Minute {
    static constexpr Nanoseconds length = std::chrono::minutes{1};

    /// One for each time that the program ran: between two of them nothing is known, and their
    /// clocks may differ.
    std::int64_t run = 0;
    TimePoint start; ///< whole minutes
    /// What the clock on the wall is ahead of the one that judges.
    Nanoseconds wallOffset{0};
    std::vector<TimePoint> judged; ///< when the keys were judged: each second, or as asked
    std::map<Row, KeyMinute> keys;
    std::vector<Event> events;
};

} // namespace wegslot::history
