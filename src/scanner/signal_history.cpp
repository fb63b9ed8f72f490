#include "scanner/signal_history.h"

#include <algorithm>
#include <iterator>

namespace wegslot {

void SignalHistory::add(TimePoint now, int rssi) {
    samples_.push_back({now, rssi});
    while (now - samples_[first_].date > retention)
        ++first_;
    if (first_ <= samples_.size() / 2) return;
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(first_));
    first_ = 0;
}

std::optional<Dbm> SignalHistory::median(TimePoint now, Nanoseconds window) const {
    // In order of time, so those in the window are the last ones.
    auto newest = samples_.end();
    const auto oldest = samples_.begin() + static_cast<std::ptrdiff_t>(first_);
    while (newest != oldest && now - std::prev(newest)->date <= window)
        --newest;
    if (newest == samples_.end()) return std::nullopt;

    std::vector<int> values;
    values.reserve(static_cast<std::size_t>(samples_.end() - newest));
    std::transform(newest, samples_.end(), std::back_inserter(values),
                   [](const Sample& sample) { return sample.rssi; });
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return Dbm{static_cast<double>(*middle)};
}

std::vector<SignalHistory::Sample> SignalHistory::since(TimePoint since) const {
    const auto oldest = samples_.begin() + static_cast<std::ptrdiff_t>(first_);
    const auto later = std::ranges::upper_bound(oldest, samples_.end(), since, {}, &Sample::date);
    return {later, samples_.end()};
}

void SignalHistory::merge(const SignalHistory& other) {
    const auto own = static_cast<std::ptrdiff_t>(samples_.size());
    samples_.insert(samples_.end(),
                    other.samples_.begin() + static_cast<std::ptrdiff_t>(other.first_),
                    other.samples_.end());
    std::inplace_merge(samples_.begin() + static_cast<std::ptrdiff_t>(first_),
                       samples_.begin() + own, samples_.end(),
                       [](const Sample& a, const Sample& b) { return a.date < b.date; });
}

} // namespace wegslot
