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
    for (const Uuid& id : keys)
        if (!keys_.contains(id)) lastHeard_[id] = now - nextScan;
    keys_ = std::move(keys);
    std::erase_if(lastHeard_, [this](const auto& entry) { return !keys_.contains(entry.first); });
}

bool ScanPolicy::heard(const Uuid& id, TimePoint now) {
    if (!keys_.contains(id)) return false;
    lastHeard_[id] = now;
    return true;
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
    if (now >= *since_ + longestBurst) searchedAt_ = since_;
    return turn(isContinuous(now) && !isWayAsked() ? Scan::anew : Scan::off, now);
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

bool ScanPolicy::isSearching() const {
    return !searchedAt_ || *since_ - *searchedAt_ >= searchInterval;
}

bool ScanPolicy::isWayAsked() const { return wayMadeAt_ && *wayMadeAt_ >= *since_; }

ScanPolicy::Heard ScanPolicy::heardInBurst(TimePoint now) const {
    const bool searching = isSearching();
    Heard heard = Heard::noneIsHere;
    for (const auto& [id, lastHeard] : lastHeard_) {
        if (!searching && !isPresent(lastHeard, now)) continue;
        if (lastHeard < *since_) return Heard::some;
        heard = Heard::all;
    }
    return heard;
}

TimePoint ScanPolicy::burstEnd(TimePoint now) const {
    const TimePoint full = *since_ + longestBurst;
    // Once every key that is here has been heard, the rest of the burst would tell nothing new.
    const Heard heard = heardInBurst(now);
    if (isWayAsked()) return heard == Heard::some ? full : *wayMadeAt_;
    if (isContinuous(now)) {
        const TimePoint limit = *listSince_ + listLimit;
        return unfiltered_ ? limit : std::min(full, limit);
    }
    return heard == Heard::all ? *since_ + shortestBurst : full;
}

TimePoint ScanPolicy::gapEnd(TimePoint now) const {
    if (!since_ || (isContinuous(now) && !wayMadeAt_)) return now;
    // Nobody here to grow old: the longest gap, after which a key that returns is caught.
    TimePoint end = *since_ + nextScan;
    for (const auto& [id, lastHeard] : lastHeard_)
        if (isPresent(lastHeard, now)) end = std::min(end, lastHeard + nextScan);
    return std::max(end, *since_ + shortestGap);
}

} // namespace wegslot
