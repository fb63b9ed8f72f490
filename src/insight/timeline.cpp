#include "insight/timeline.h"

#include "base/text.h"
#include "control/told_phase.h"
#include "insight/chronicle.h"

#include <algorithm>
#include <utility>

namespace wegslot::insight {
namespace {

using history::Minute;

/// Something that goes on until something else is told.
template <typename T>
class Course {
public:
    void tell(TimePoint wall, const std::optional<T>& what) {
        if (what == now_) return;
        rest(wall);
        now_ = what;
        since_ = wall;
    }

    /// Nothing is known from here on, until it is taken up again.
    void rest(TimePoint wall) {
        if (now_ && since_ < wall) past_.push_back({{since_, wall}, *now_});
        since_ = std::max(since_, wall);
    }
    void takeUp(TimePoint wall) { since_ = std::max(since_, wall); }
    void forget() { now_.reset(); }

    /// What is outside of `day` is cut off.
    [[nodiscard]] std::vector<Stretch<T>> within(const Span& day) const {
        std::vector<Stretch<T>> result;
        for (Stretch<T> stretch : past_) {
            stretch.span = {std::max(stretch.span.from, day.from),
                            std::min(stretch.span.to, day.to)};
            if (stretch.span.from < stretch.span.to) result.push_back(std::move(stretch));
        }
        return result;
    }

private:
    std::vector<Stretch<T>> past_;
    std::optional<T> now_;
    TimePoint since_ = TimePoint::min();
};

struct GrowingLane {
    std::vector<Signal::Point> points;
    Course<Dbm> threshold;
    Course<KeyState> state;
};

/// A timeline while it is being made, minute after minute.
class Growing {
public:
    explicit Growing(const Sources& sources)
        : sources_(sources),
          chronicle_(sources.names, sources.zone) {}

    void take(const Minute& minute);
    [[nodiscard]] Timeline finish() &&;

private:
    void hear(const Minute& minute);
    void judge(const Minute& minute, std::size_t number);
    void isKnown(TimePoint wall, std::int64_t run);
    void begin(std::int64_t run);
    void takeOpinions(const Minute& minute);
    void follow(TimePoint wall);
    void rest(TimePoint wall);
    [[nodiscard]] std::vector<Lane> lanes();
    void addUnknown(Timeline& timeline) const;

    const Sources& sources_;
    Chronicle chronicle_;
    std::map<history::Row, GrowingLane> lanes_;
    Course<std::string> phase_;
    std::vector<Span> unknown_;
    std::optional<TimePoint> known_;      ///< until when, on the wall
    std::int64_t run_ = 0;                ///< of what is known
    std::optional<std::int64_t> lastRun_; ///< that something was told of
};

void Growing::rest(TimePoint wall) {
    for (auto& [row, lane] : lanes_) {
        lane.threshold.rest(wall);
        lane.state.tell(wall, std::nullopt);
    }
    phase_.rest(wall);
}

/// Something is known of this instant: what was not known before it ends here.
void Growing::isKnown(TimePoint wall, std::int64_t run) {
    const TimePoint before = known_.value_or(sources_.day.from);
    const bool isOtherRun = known_ && run != run_;
    const bool isGap = isOtherRun || wall - before > longestSilence;
    if (known_ && isGap) {
        rest(*known_);
        chronicle_.lost();
    }
    if (isGap) unknown_.push_back({before, wall});
    if (isGap || !known_) {
        for (auto& [row, lane] : lanes_)
            lane.threshold.takeUp(wall);
        phase_.takeUp(wall);
    }
    run_ = run;
    known_ = wall;
}

void Growing::judge(const Minute& minute, std::size_t number) {
    const TimePoint wall = later(minute.judged[number], minute.wallOffset);
    isKnown(wall, minute.run);
    chronicle_.at(minute.judged[number], minute);
    for (const auto& [row, key] : minute.keys) {
        const auto state = number < key.states.size() ? key.states[number] : std::nullopt;
        chronicle_.judged(row, state);
        lanes_[row].state.tell(wall, state);
    }
}

void Growing::hear(const Minute& minute) {
    for (const auto& [row, key] : minute.keys) {
        auto& points = lanes_[row].points;
        for (const history::Sample& sample : key.samples) {
            const TimePoint wall = later(sample.at, minute.wallOffset);
            if (sources_.day.contains(wall)) points.push_back({wall, sample.rssi});
        }
    }
}

/// Takes over what the chronicle knows by now.
void Growing::follow(TimePoint wall) {
    std::map<history::Row, Dbm> thresholds;
    for (const KeyDevice& key : chronicle_.keys())
        if (const auto row = history::rowOf(key.id)) thresholds[*row] = key.threshold;
    for (const auto& [row, threshold] : thresholds)
        lanes_[row].threshold.tell(wall, threshold);
    for (auto& [row, lane] : lanes_)
        if (!thresholds.contains(row)) lane.threshold.tell(wall, std::nullopt);
    if (!chronicle_.phase().empty()) phase_.tell(wall, chronicle_.phase());
}

/// Another run knows nothing of the one before.
void Growing::begin(std::int64_t run) {
    if (std::exchange(lastRun_, run) == run) return;
    chronicle_.ended();
    // How long it lasted nobody knows: as far as something is known, if anything is.
    if (known_) phase_.rest(*known_);
    phase_.forget();
}

void Growing::take(const Minute& minute) {
    const TimePoint wall = later(minute.start, minute.wallOffset);
    if (wall >= sources_.day.to) return takeOpinions(minute);
    begin(minute.run);
    // Of long before the day counts only what was set and entered.
    const bool isOfTheDay = later(wall, Minute::length + longestSilence) >= sources_.day.from;
    const std::size_t judgements = isOfTheDay ? minute.judged.size() : 0;
    if (isOfTheDay) hear(minute);
    std::size_t number = 0;
    for (const history::Event& event : minute.events) {
        // An instant is judged after what came in at it, and before what came of it.
        const bool isOutcome = std::holds_alternative<history::PhaseEntered>(event.what);
        while (number < judgements && (minute.judged[number] < event.at ||
                                       (isOutcome && minute.judged[number] == event.at)))
            judge(minute, number++);
        chronicle_.at(event.at, minute);
        chronicle_.happened(event.what);
        const auto* const told = std::get_if<trace::Event>(&event.what);
        const bool isSetting =
            told != nullptr && std::holds_alternative<trace::SettingsChange>(*told);
        if (isOutcome || isSetting) follow(later(event.at, minute.wallOffset));
    }
    while (number < judgements)
        judge(minute, number++);
}

/// Of after the day counts only what its user thought of it since.
void Growing::takeOpinions(const Minute& minute) {
    for (const history::Event& event : minute.events)
        if (std::holds_alternative<history::Opinion>(event.what)) chronicle_.happened(event.what);
}

std::vector<Lane> Growing::lanes() {
    std::vector<Lane> result;
    for (auto& [row, lane] : lanes_) {
        Lane made{.row = row,
                  .name = chronicle_.nameOf(row).translated(),
                  .signal = Signal(lane.points),
                  .thresholds = lane.threshold.within(sources_.day),
                  .states = lane.state.within(sources_.day)};
        lane = {};
        const bool isOfTheDay =
            made.signal.size() > 0 || !made.thresholds.empty() || !made.states.empty();
        if (isOfTheDay) result.push_back(std::move(made));
    }
    return result;
}

void Growing::addUnknown(Timeline& timeline) const {
    const Span& day = timeline.day;
    for (Span span : unknown_) {
        span = {std::max(span.from, day.from), std::min(span.to, day.to)};
        if (span.from >= span.to) continue;
        timeline.unknown.push_back(span);
    }
    const TimePoint last = std::max(known_.value_or(day.from), day.from);
    const bool isWhole = !known_ || last <= day.from;
    if (isWhole || day.to - last > longestSilence) timeline.unknown.push_back({last, day.to});
    for (const Span& span : timeline.unknown) {
        const Message text = span == day         ? message("Van deze dag is niets bewaard")
                             : span.to == day.to ? message("Hierna is niets bekend")
                                                 : message("Niets bekend tot %1",
                                                           {sources_.zone.clockTime(span.to)});
        timeline.events.push_back({.wall = span.from, .kind = Kind::unknown, .text = text});
    }
}

Timeline Growing::finish() && {
    if (known_) rest(*known_);
    Timeline timeline{.day = sources_.day, .lanes = lanes()};
    for (const auto& [span, name] : phase_.within(sources_.day))
        if (auto phase = control::phaseNamed(name))
            timeline.phases.push_back({span, *std::move(phase)});
    for (Event& event : std::move(chronicle_).finish())
        if (sources_.day.contains(event.wall)) timeline.events.push_back(std::move(event));
    addUnknown(timeline);
    std::ranges::stable_sort(timeline.events, {}, &Event::wall);
    return timeline;
}

} // namespace

Timeline timelineOf(const Sources& sources) {
    std::vector<const Minute*> inOrder;
    for (const Minute& minute : sources.minutes)
        inOrder.push_back(&minute);
    std::ranges::stable_sort(
        inOrder, {}, [](const Minute* minute) { return later(minute->start, minute->wallOffset); });
    Growing growing(sources);
    for (const Minute* const minute : inOrder)
        growing.take(*minute);
    return std::move(growing).finish();
}

std::vector<Message> summary(const Lane& lane, const Span& visible) {
    std::vector<Message> texts;
    if (const auto heard = lane.signal.within(visible))
        texts.push_back(message("%1 tot %2 dBm, meestal %3",
                                {std::to_string(heard->lowest), std::to_string(heard->highest),
                                 std::to_string(heard->median)}));
    else
        texts.push_back(message("Niet gehoord"));
    const Stretch<Dbm>* last = nullptr;
    for (const Stretch<Dbm>& threshold : lane.thresholds)
        if (threshold.span.from < visible.to && threshold.span.to > visible.from) last = &threshold;
    if (last != nullptr) texts.push_back(message("drempel %1 dBm", {decimal(last->what.value)}));
    return texts;
}

} // namespace wegslot::insight
