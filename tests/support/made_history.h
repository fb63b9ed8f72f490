// A history that a test makes up, minute after minute, and a calendar to read it by.
#pragma once

#include "base/text.h"
#include "history/minute.h"
#include "insight/timeline.h"
#include "model/key_codec.h"

#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace wegslot {

class MadeHistory {
public:
    /// What is made from now on is of this run, whose clock the wall's is so far ahead of.
    void begin(std::int64_t run, Nanoseconds wallOffset = {}) {
        run_ = run;
        wallOffset_ = wallOffset;
    }

    void hear(history::Row row, TimePoint at, int rssi) {
        minute(at).keys[row].samples.push_back({at, rssi});
    }

    void judge(TimePoint at, const std::map<history::Row, KeyState>& states) {
        history::Minute& minute = this->minute(at);
        for (const auto& [row, state] : states)
            minute.keys[row].states.resize(minute.judged.size());
        minute.judged.push_back(at);
        for (auto& [row, key] : minute.keys) {
            const auto state = states.find(row);
            key.states.push_back(state == states.end() ? std::nullopt
                                                       : std::optional(state->second));
        }
    }

    /// Each second, `to` not included.
    void judge(TimePoint from, TimePoint to, const std::map<history::Row, KeyState>& states) {
        for (TimePoint at = from; at < to; at += std::chrono::seconds{1})
            judge(at, states);
    }

    void happen(TimePoint at, history::Happening what) {
        minute(at).events.push_back({at, std::move(what)});
    }

    void enter(TimePoint at, std::string phase, std::string reason,
               PhaseCause cause = PhaseCause::judgement, std::optional<TimePoint> until = {}) {
        happen(at, history::PhaseEntered{.name = std::move(phase),
                                         .reason = std::move(reason),
                                         .cause = cause,
                                         .until = until});
    }

    void set(TimePoint at, std::string name, PreferenceValue value) {
        happen(at, trace::Event{trace::SettingsChange{{{std::move(name), std::move(value)}}}});
    }

    /// The keys, with their thresholds.
    void setKeys(TimePoint at, const std::vector<std::pair<history::Row, double>>& keys) {
        std::vector<KeyDevice> list;
        list.reserve(keys.size());
        for (const auto& [row, threshold] : keys)
            list.push_back({.id = history::idOf(row),
                            .name = {},
                            .model = {},
                            .isApple = {},
                            .threshold = Dbm{threshold}});
        set(at, "keys", Data{*encodeKeys(list)});
    }

    [[nodiscard]] std::vector<history::Minute>& minutes() { return minutes_; }

private:
    history::Minute& minute(TimePoint at) {
        const TimePoint start = std::chrono::floor<std::chrono::minutes>(at);
        if (minutes_.empty() || minutes_.back().start != start || minutes_.back().run != run_)
            minutes_.push_back({run_, start, wallOffset_, {}, {}, {}});
        return minutes_.back();
    }

    std::int64_t run_ = 1;
    Nanoseconds wallOffset_{0};
    std::vector<history::Minute> minutes_;
};

/// Days begin at midnight in Greenwich.
[[nodiscard]] inline insight::Zone greenwich() {
    using namespace std::chrono;
    return {
        .dayOf = [](TimePoint wall) { return local_days{floor<days>(wall).time_since_epoch()}; },
        .beginOf = [](insight::Day day) { return TimePoint{day.time_since_epoch()}; },
        .clockTime = [](TimePoint wall) { return utcText(wall).substr(11, 5); },
        .exactTime = [](TimePoint wall) { return utcText(wall).substr(11, 8); },
        .name =
            [](insight::Day day) {
                return utcText(TimePoint{day.time_since_epoch()}).substr(0, 10);
            }};
}

} // namespace wegslot
