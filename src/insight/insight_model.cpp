#include "insight/insight_model.h"

#include <algorithm>
#include <utility>

namespace wegslot::insight {

void InsightModel::setKept(std::optional<Days> kept) {
    kept_ = kept;
    isForgettingAsked_ = false;
    if (!kept_) {
        isShown_ = false;
        show(day_, {});
        isShown_ = false;
        return changed();
    }
    const bool isOneOfThem = isShown_ && kept_->first <= day_ && day_ <= kept_->last;
    load(isOneOfThem ? day_ : kept_->last);
    changed();
}

void InsightModel::load(Day day) {
    if (day != day_) isShown_ = false;
    day_ = day;
    requests_.load(day);
}

void InsightModel::show(Day day, Timeline timeline) {
    if (day != day_) return;
    const bool isSame = isShown_ && timeline_.day == timeline.day;
    const Event before = chosen_ ? timeline_.events[*chosen_] : Event{};
    timeline_ = std::move(timeline);
    isShown_ = true;
    if (!isSame) viewport_ = Viewport(timeline_.day);
    // The same event may have another number by now.
    const auto isBefore = [&before](const Event& event) {
        return event.run == before.run && event.at == before.at && event.wall == before.wall &&
               event.text == before.text;
    };
    const auto found = std::ranges::find_if(timeline_.events, isBefore);
    if (isSame && chosen_ && found != timeline_.events.end()) {
        chosen_ = static_cast<std::size_t>(found - timeline_.events.begin());
    } else {
        chosen_.reset();
        answer_ = {};
    }
    list();
    changed();
}

std::string InsightModel::dayName() const { return kept_ ? zone_.name(day_) : std::string(); }

bool InsightModel::canGo(int days) const {
    const Day wanted = day_ + std::chrono::days{days};
    return kept_ && kept_->first <= wanted && wanted <= kept_->last;
}

void InsightModel::go(int days) {
    if (!canGo(days)) return;
    load(day_ + std::chrono::days{days});
    changed();
}

void InsightModel::zoom(double factor, TimePoint about) {
    viewport_.zoom(factor, about);
    changed();
}

void InsightModel::zoom(double factor) {
    const Span& visible = viewport_.visible();
    const Event* const event = chosenEvent();
    zoom(factor, event != nullptr && visible.contains(event->wall)
                     ? event->wall
                     : visible.from + visible.length() / 2);
}

void InsightModel::move(Nanoseconds by) {
    viewport_.move(by);
    changed();
}

void InsightModel::showAll() {
    viewport_.showAll();
    changed();
}

void InsightModel::list() {
    listed_.clear();
    for (std::size_t i = 0; i < timeline_.events.size(); ++i)
        if (listsDetails_ || !timeline_.events[i].isDetail) listed_.push_back(i);
    if (chosen_ && !std::ranges::binary_search(listed_, *chosen_)) {
        chosen_.reset();
        answer_ = {};
    }
}

void InsightModel::listDetails(bool wanted) {
    if (wanted == listsDetails_) return;
    listsDetails_ = wanted;
    list();
    changed();
}

const Event* InsightModel::chosenEvent() const {
    return chosen_ ? &timeline_.events[*chosen_] : nullptr;
}

void InsightModel::choose(std::size_t event) {
    if (event >= timeline_.events.size() || chosen_ == event) return;
    chosen_ = event;
    answer_ = {};
    viewport_.reveal(timeline_.events[event].wall);
    changed();
}

void InsightModel::walk(int places) {
    if (listed_.empty()) return;
    if (!chosen_) {
        const TimePoint from = viewport_.visible().from;
        const auto first = std::ranges::find_if(listed_, [this, from](std::size_t event) {
            return timeline_.events[event].wall >= from;
        });
        return choose(first == listed_.end() ? listed_.back() : *first);
    }
    const auto place = std::ranges::lower_bound(listed_, *chosen_) - listed_.begin();
    const auto last = static_cast<std::ptrdiff_t>(listed_.size()) - 1;
    choose(listed_[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(place + places, 0, last))]);
}

void InsightModel::chooseFirst() {
    if (!listed_.empty()) choose(listed_.front());
}

void InsightModel::chooseLast() {
    if (!listed_.empty()) choose(listed_.back());
}

std::string InsightModel::rowText(std::size_t event) const {
    const Event& shown = timeline_.events[event];
    std::string text = zone_.clockTime(shown.wall) + " " + shown.text.translated();
    switch (shown.opinion) {
    case Opinion::unjust:
        return text + " (" + translated("onterecht") + ")";
    case Opinion::late:
        return text + " (" + translated("te laat") + ")";
    case Opinion::none:
        break;
    }
    return text;
}

void InsightModel::why(std::size_t event) {
    if (event >= timeline_.events.size() || !canBeAsked(timeline_.events[event])) return;
    choose(event);
    requests_.why(event);
}

void InsightModel::showAnswer(std::size_t event, Message answer) {
    if (chosen_ != event) return; // it was about another one
    answer_ = std::move(answer);
    changed();
}

std::string InsightModel::answer() const { return answer_.translated(); }

void InsightModel::judge(Opinion opinion) {
    if (!chosen_ || !timeline_.events[*chosen_].isDeed) return;
    Event& event = timeline_.events[*chosen_];
    event.opinion = event.opinion == opinion ? Opinion::none : opinion;
    requests_.judge(*chosen_, event.opinion);
    changed();
}

void InsightModel::askForgetting(bool wanted) {
    isForgettingAsked_ = wanted && kept_;
    changed();
}

void InsightModel::forget() {
    if (!std::exchange(isForgettingAsked_, false)) return;
    requests_.forget();
    changed();
}

} // namespace wegslot::insight
