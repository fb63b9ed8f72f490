#include "scanner/scan_schedule.h"

#include <utility>

namespace wegslot {

void ScanSchedule::start() {
    running_ = true;
    scanning_ = false;
    policy_.reset();
    decide();
}

void ScanSchedule::stop() {
    running_ = false;
    scanning_ = false;
    timer_.reset();
}

void ScanSchedule::want(bool list, std::set<Uuid> keys) {
    policy_.want(list, std::move(keys), clock_.now());
    decide();
}

void ScanSchedule::setUnfiltered(bool unfiltered) {
    policy_.setUnfiltered(unfiltered);
    decide();
}

void ScanSchedule::heard(const Uuid& id) {
    // Only a key can bring the end of a burst nearer; most of what is heard is none.
    if (policy_.heard(id, clock_.now())) decide();
}

void ScanSchedule::makeWay() {
    policy_.makeWay(clock_.now());
    decide();
}

void ScanSchedule::resume() {
    policy_.resume();
    decide();
}

void ScanSchedule::decide() {
    if (!running_) return;
    const TimePoint now = clock_.now();
    const ScanPolicy::Decision decision = policy_.decide(now);
    timer_.reset();
    if (decision.until) timer_ = scheduler_.after(*decision.until - now, [this] { decide(); });
    order(decision.scan);
}

void ScanSchedule::order(ScanPolicy::Scan scan) {
    const bool before = std::exchange(scanning_, scan != ScanPolicy::Scan::off);
    if (scan == ScanPolicy::Scan::anew) return radio_.restartScan();
    if (scanning_ == before) return;
    if (scanning_) {
        radio_.startScan();
    } else {
        radio_.stopScan();
    }
}

} // namespace wegslot
