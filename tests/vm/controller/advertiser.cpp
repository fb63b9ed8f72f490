#include "advertiser.h"

#include <utility>

namespace controller {

Advertiser::Advertiser(Advertisement advertisement, Duration interval, TimePoint first)
    : advertisement_(std::move(advertisement)),
      interval_(interval),
      due_(first) {}

void Advertiser::makeLoud(TimePoint now) {
    if (loud_) return;
    loud_ = true;
    due_ = now;
}

bool Advertiser::advertiseIfDue(TimePoint now, Controller& controller) {
    if (!loud_ || due_ > now) return false;
    const auto missed = (now - due_) / interval_;
    due_ += missed * interval_;
    const bool isFresh = missed == 0;
    due_ += interval_;
    if (!isFresh) return false;
    controller.advertise(advertisement_.type, advertisement_.address, advertisement_.data,
                         advertisement_.rssi);
    return true;
}

} // namespace controller
