// A day of the history as it is looked at: what was heard of each key, what it was judged to be,
// the phases, and a list of what happened, in words. Made of what was kept; nothing in it is judged
// anew.
#pragma once

#include "base/translation.h"
#include "history/minute.h"
#include "insight/signal.h"
#include "insight/zone.h"
#include "monitor/key_state.h"
#include "monitor/phase.h"
#include "scanner/dbm.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::insight {

using Names = std::map<history::Row, std::string>;

/// Something that held for a while.
template <typename T>
struct Stretch {
    Span span;
    T what{};
    friend bool operator==(const Stretch&, const Stretch&) = default;
};

/// One key.
struct Lane {
    history::Row row = 0;
    std::string name; ///< for the user
    Signal signal;
    std::vector<Stretch<Dbm>> thresholds;
    std::vector<Stretch<KeyState>> states;
};

enum class Kind {
    warning,
    lock,
    lockConfirmed,
    lockFailed,
    unlock,
    pause,
    phase,
    key,
    settings,
    radio,
    unknown
};

struct Event {
    TimePoint wall;
    std::int64_t run = 0; ///< with `at`: where the history has it
    TimePoint at{};       ///< of the clock that judges
    Kind kind{};
    Message text{};
    /// Comes and goes with every walk to the coffee machine.
    bool isDetail = false;
    /// Wegslot did it by itself, so that one can find it wrong.
    bool isDeed = false;
    history::Opinion::Of opinion = history::Opinion::Of::none;
};

struct Timeline {
    Span day;
    std::vector<Lane> lanes{};            ///< in the order of their rows
    std::vector<Stretch<Phase>> phases{}; ///< without what they carry
    std::vector<Span> unknown{};
    std::vector<Event> events{}; ///< in the order of the clock on the wall

    [[nodiscard]] bool isEmpty() const { return unknown.size() == 1 && unknown.front() == day; }
};

struct Sources {
    /// Of the day, in any order. Those of before tell which settings and which phase it begins
    /// with, and any of them may hold what the user thought of it.
    const std::vector<history::Minute>& minutes;
    const Names& names; ///< of the keys that still have one
    Span day;
    const Zone& zone;
};

/// How long a judgement counts at most. One comes each second: after this long without one nobody
/// knows what was.
inline constexpr Nanoseconds longestSilence = std::chrono::seconds{10};

[[nodiscard]] Timeline timelineOf(const Sources& sources);

/// How strongly a key was heard, and its threshold at the end: "-92 tot -47 dBm, meestal -58".
[[nodiscard]] std::vector<Message> summary(const Lane& lane, const Span& visible);

} // namespace wegslot::insight
