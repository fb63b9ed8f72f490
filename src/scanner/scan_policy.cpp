#include "scanner/scan_policy.h"

#include <algorithm>
#include <utility>

namespace wegslot {

void ScanPolicy::want(bool list, std::set<Uuid> keys, TimePoint now) {
    if (!list) {
        listSince_.reset();
    } else if (!listSince_) {
        listSince_ = now;
    }
    keys_ = std::move(keys);
    std::erase_if(lastHeard_, [this](const auto& entry) { return !keys_.contains(entry.first); });
}

bool ScanPolicy::heard(const Uuid& id, TimePoint now) {
    if (!keys_.contains(id)) return false;
    lastHeard_[id] = now;
    return true;
}

void ScanPolicy::makeWay(TimePoint now) {
    wayMadeAt_ = now;
    if (std::exchange(scanning_, false)) since_ = now;
}

void ScanPolicy::reset() {
    scanning_ = false;
    since_.reset();
    wayMadeAt_.reset();
}

ScanPolicy::Decision ScanPolicy::decide(TimePoint now) {
    if (!listSince_ && keys_.empty()) {
        scanning_ = false;
        since_.reset();
        return {};
    }
    if (!scanning_) {
        const TimePoint end = gapEnd(now);
        return now < end ? Decision{Scan::off, end} : turn(Scan::on, now);
    }
    const TimePoint end = burstEnd(now);
    if (now < end) return {Scan::on, end};
    return turn(isContinuous(now) ? Scan::anew : Scan::off, now);
}

ScanPolicy::Decision ScanPolicy::turn(Scan scan, TimePoint now) {
    scanning_ = scan != Scan::off;
    since_ = now;
    return {scan, scanning_ ? burstEnd(now) : gapEnd(now)};
}

bool ScanPolicy::isContinuous(TimePoint now) const {
    return listSince_ && now < *listSince_ + listLimit;
}

bool ScanPolicy::isPresent(TimePoint lastHeard, TimePoint now) const {
    return now - lastHeard < presence;
}

TimePoint ScanPolicy::burstEnd(TimePoint now) const {
    if (isContinuous(now)) {
        const TimePoint limit = *listSince_ + listLimit;
        return unfiltered_ ? limit : std::min(*since_ + longestBurst, limit);
    }
    // Once every key that is here has been heard, the rest of the burst would tell nothing new.
    bool anyPresent = false;
    bool allHeard = true;
    for (const auto& [id, lastHeard] : lastHeard_) {
        if (!isPresent(lastHeard, now)) continue;
        anyPresent = true;
        allHeard = allHeard && lastHeard >= *since_;
    }
    return *since_ + (anyPresent && allHeard ? shortestBurst : longestBurst);
}

TimePoint ScanPolicy::gapEnd(TimePoint now) const {
    TimePoint end = now;
    if (since_) {
        // Nobody here to grow old: the longest gap, after which a key that returns is caught.
        end = *since_ + nextScan;
        for (const auto& [id, lastHeard] : lastHeard_)
            if (isPresent(lastHeard, now)) end = std::min(end, lastHeard + nextScan);
        end = isContinuous(now) ? now : std::max(end, *since_ + shortestGap);
    }
    if (wayMadeAt_ && isContinuous(now)) end = std::max(end, *wayMadeAt_ + nextScan);
    return end;
}

} // namespace wegslot
