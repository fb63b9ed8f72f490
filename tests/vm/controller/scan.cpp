#include "scan.h"

namespace controller {

void Scan::setParameters(ScanKind kind, ScanFilterPolicy policy) {
    kind_ = kind;
    policy_ = policy;
}

void Scan::start(bool filterDuplicates) {
    on_ = true;
    filtersDuplicates_ = filterDuplicates;
    delivered_.clear();
    ++timesStarted_;
}

bool Scan::takes(const Address& address, const std::set<Address>& acceptList) {
    if (!on_) return false;
    if (policy_ == ScanFilterPolicy::AcceptListOnly && !acceptList.contains(address)) return false;
    if (!filtersDuplicates_ || duplicateFilter_ == DuplicateFilter::Ignore) return true;
    return delivered_.insert(address).second;
}

void Scan::reset() {
    on_ = false;
    filtersDuplicates_ = false;
    kind_ = ScanKind::Passive;
    policy_ = ScanFilterPolicy::Everyone;
    delivered_.clear();
}

} // namespace controller
