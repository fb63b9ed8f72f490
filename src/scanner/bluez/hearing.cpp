#include "scanner/bluez/hearing.h"

#include <algorithm>
#include <utility>

namespace wegslot::bluez {

void Hearing::listen(bool listening, TimePoint now) {
    listenedInVain_ = silence(now);
    listeningSince_ = listening ? std::optional(now) : std::nullopt;
}

bool Hearing::heard(const Uuid& id, TimePoint now) {
    auto known = std::ranges::find(last_, id, &Heard::id);
    if (known == last_.end()) known = std::ranges::min_element(last_, {}, &Heard::at);
    *known = {id, now};

    listenedInVain_ = Nanoseconds{0};
    if (listeningSince_) listeningSince_ = now;
    remedies_ = 0;
    nextRest_ = firstRest;
    wait_ = wasLively() ? patience : patienceWhenAlone;
    return std::exchange(treated_, false);
}

std::optional<Hearing::Remedy> Hearing::remedy(TimePoint now) {
    if (silence(now) < wait_) return std::nullopt;
    listenedInVain_ = Nanoseconds{0};
    if (listeningSince_) listeningSince_ = now;
    treated_ = true;

    const auto remedy = static_cast<Remedy>(remedies_);
    wait_ = patience;
    ++remedies_;
    if (remedy == Remedy::renewConnection) {
        remedies_ = 0;
        wait_ = nextRest_;
        nextRest_ = std::min(nextRest_ * 2, longestRest);
    }
    return remedy;
}

std::optional<TimePoint> Hearing::due() const {
    if (!listeningSince_) return std::nullopt;
    return *listeningSince_ + (wait_ - listenedInVain_);
}

Nanoseconds Hearing::silence(TimePoint now) const {
    return listenedInVain_ + (listeningSince_ ? now - *listeningSince_ : Nanoseconds{0});
}

bool Hearing::wasLively() const {
    const auto [oldest, newest] = std::ranges::minmax(last_, {}, &Heard::at);
    return oldest.at != TimePoint{} && newest.at - oldest.at <= recently;
}

} // namespace wegslot::bluez
