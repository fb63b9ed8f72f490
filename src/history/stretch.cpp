#include "history/stretch.h"

#include "scanner/device_table.h"
#include "scanner/signal_history.h"

#include <algorithm>
#include <utility>

namespace wegslot::history {
namespace {

bool follows(const Minute& minute, const Minute& before) {
    if (minute.run != before.run) return false;
    return minute.start == before.start + Minute::length ||
           std::ranges::any_of(minute.events, [](const Event& event) {
               return std::holds_alternative<Rested>(event.what);
           });
}

/// Judging needs all settings; of what was before, some may have been forgotten.
bool tellsHowThingsStand(const Minute& minute) {
    return std::ranges::any_of(minute.events, [](const Event& event) {
        const auto* const change = event.as<trace::SettingsChange>();
        return change != nullptr && change->value.contains("keys") &&
               change->value.contains("rule");
    });
}

/// Replays the samples of one key in step with the instants.
struct Listener {
    SignalHistory samples;
    std::optional<TimePoint> last;

    void hear(const std::vector<Sample>& heard, std::size_t& next, TimePoint until) {
        for (; next < heard.size() && heard[next].at <= until; ++next) {
            samples.add(heard[next].at, heard[next].rssi);
            last = heard[next].at;
        }
    }

    [[nodiscard]] std::optional<Stretch::Heard> at(TimePoint now) const {
        if (!last) return std::nullopt;
        return Stretch::Heard{*last, samples.median(now, DeviceTable::smoothingWindow)};
    }
};

class Joining {
public:
    void add(const Minute& minute) {
        const std::size_t before = stretch_.instants.size();
        for (const TimePoint at : minute.judged)
            stretch_.instants.push_back({.at = at});
        for (const auto& [row, kept] : minute.keys)
            addKey(row, kept, before);
        for (auto& [row, key] : stretch_.keys) {
            key.heard.resize(stretch_.instants.size());
            key.states.resize(stretch_.instants.size());
        }
        stretch_.events.insert(stretch_.events.end(), minute.events.begin(), minute.events.end());
        stretch_.wallOffset = minute.wallOffset;
    }

    Stretch finished() {
        std::ranges::stable_sort(stretch_.events, {}, &Event::at);
        settle();
        return std::move(stretch_);
    }

private:
    void addKey(Row row, const KeyMinute& kept, std::size_t before) {
        Stretch::Key& key = stretch_.keys[row];
        Listener& listener = listeners_.try_emplace(row).first->second;
        key.heard.resize(before);
        key.states.resize(before);
        std::size_t next = 0;
        for (std::size_t i = before; i < stretch_.instants.size(); ++i) {
            listener.hear(kept.samples, next, stretch_.instants[i].at);
            key.heard.push_back(listener.at(stretch_.instants[i].at));
        }
        key.states.insert(key.states.end(), kept.states.begin(), kept.states.end());
    }

    // Present, and near before: nobody waits for anything. Nor did anybody ask for this judgement,
    // out of the beat of the others.
    void settle() {
        std::string phase;
        std::size_t next = 0;
        for (std::size_t i = 0; i < stretch_.instants.size(); ++i) {
            bool isAsked = false;
            for (; next < stretch_.events.size() &&
                   stretch_.events[next].at <= stretch_.instants[i].at;
                 ++next) {
                const Event& event = stretch_.events[next];
                if (const auto* const entered = event.phase()) phase = entered->name;
                isAsked |=
                    event.at == stretch_.instants[i].at && event.as<trace::Action>() != nullptr;
            }
            stretch_.instants[i].isSettled = phase == "present" && !isAsked && allNear(i);
        }
    }

    [[nodiscard]] bool allNear(std::size_t i) const {
        return std::ranges::all_of(stretch_.keys, [i](const auto& key) {
            return key.second.states[i].value_or(KeyState::near) == KeyState::near;
        });
    }

    Stretch stretch_;
    std::map<Row, Listener> listeners_;
};

} // namespace

std::size_t Stretch::from(TimePoint at) const {
    const auto found = std::ranges::lower_bound(instants, at, {}, &Instant::at);
    return static_cast<std::size_t>(found - instants.begin());
}

Preferences Stretch::settingsAt(TimePoint at) const {
    Preferences settings;
    for (const Event& event : events) {
        if (event.at > at) break;
        if (const auto* const change = event.as<trace::SettingsChange>())
            for (const auto& [name, value] : change->value)
                settings.insert_or_assign(name, value);
    }
    return settings;
}

std::vector<Stretch> stretches(const std::vector<Minute>& minutes) {
    std::vector<Stretch> found;
    for (auto minute = minutes.begin(); minute != minutes.end();) {
        if (!tellsHowThingsStand(*minute)) {
            ++minute;
            continue;
        }
        Joining joining;
        const Minute* before = nullptr;
        for (; minute != minutes.end() && (before == nullptr || follows(*minute, *before));
             ++minute) {
            joining.add(*minute);
            before = &*minute;
        }
        found.push_back(joining.finished());
    }
    return found;
}

} // namespace wegslot::history
