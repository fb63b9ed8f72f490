#include "ui/signal_bar.h"

#include <algorithm>

namespace wegslot {

double signalFraction(Dbm strength) { return std::clamp((strength.value + 100) / 70, 0.0, 1.0); }

SignalBar signalBar(const std::optional<Dbm>& rssi, Dbm threshold) {
    SignalBar bar{.fill = std::nullopt, .marker = signalFraction(threshold)};
    if (rssi)
        bar.fill = {.fraction = signalFraction(*rssi),
                    .color = *rssi >= threshold ? brand::success : brand::orange};
    return bar;
}

double fillLength(double fraction, double width) {
    return std::max(width * fraction, SignalBar::shortestFill);
}

double markerStart(double fraction, double width) {
    return width * fraction - SignalBar::markerWidth / 2;
}

void FillMotion::moveTo(double fraction, TimePoint now) {
    if (fraction == to_) return;
    from_ = at(now);
    to_ = fraction;
    start_ = now;
}

double FillMotion::at(TimePoint now) const {
    if (!isMoving(now)) return to_;
    const double passed = Seconds{now - start_} / Seconds{duration};
    const double left = (1 - passed) * (1 - passed);
    return to_ + (from_ - to_) * left;
}

bool FillMotion::isMoving(TimePoint now) const { return start_ <= now && now < start_ + duration; }

} // namespace wegslot
