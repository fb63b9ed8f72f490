#include "coupling/listening.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace wegslot::coupling {

Audibility audibilityOf(const Heard& heard) {
    if (!heard.everHeard || heard.longestGap > longestGap) return audibility::Silent{};
    if (heard.longestGap <= longestGoodGap) return audibility::Good{};
    return audibility::Moderate{std::chrono::duration_cast<Seconds>(heard.longestGap)};
}

Seconds lostTimeoutFor(Seconds gap) {
    constexpr double step = 5;
    return Seconds{std::ceil(gap.count() * 1.5 / step) * step};
}

Listening::Listening(Scanner& scanner, const Clock& clock, Scheduler& scheduler, const Uuid& id,
                     Nanoseconds duration, std::function<void(const Heard&)> done)
    : scanner_(scanner),
      clock_(clock),
      id_(id),
      end_(clock.now() + duration),
      done_(std::move(done)),
      begin_(clock.now()),
      lastSign_(begin_) {
    trial_ = scanner.tryOut(id);
    looking_ = scheduler.every(std::chrono::seconds{1}, [this] { look(); });
}

void Listening::look() {
    const TimePoint now = clock_.now();
    // What was heard before it began says nothing of how it is heard now.
    const auto seen = scanner_.lastSeen(id_);
    if (seen && *seen >= begin_ && *seen != lastSign_) {
        heard_.everHeard = true;
        heard_.longestGap = std::max(heard_.longestGap, *seen - lastSign_);
        lastSign_ = *seen;
        if (const auto strength = scanner_.smoothedRSSI(id_)) strengths_.push_back(*strength);
    }
    if (now >= end_) finish();
}

void Listening::finish() {
    heard_.longestGap = std::max(heard_.longestGap, clock_.now() - lastSign_);
    if (!strengths_.empty()) {
        const auto middle = strengths_.begin() + static_cast<std::ptrdiff_t>(strengths_.size() / 2);
        std::nth_element(strengths_.begin(), middle, strengths_.end());
        heard_.strength = *middle;
    }
    looking_.reset();
    const auto done = std::exchange(done_, nullptr); // it may end this
    const Heard heard = heard_;
    done(heard);
}

} // namespace wegslot::coupling
