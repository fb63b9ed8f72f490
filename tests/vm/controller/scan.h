// The controller's scan: what the kernel asked for, and whether a device on the air would be
// reported to it.
#pragma once

#include <cstdint>
#include <set>

#include "address.h"

namespace controller {

/// What a controller makes of the wish to hear every device once only. Real ones differ, and the
/// kernel always asks.
enum class DuplicateFilter { Obey, Ignore };

enum class ScanKind { Passive, Active };

enum class ScanFilterPolicy { Everyone, AcceptListOnly };

class Scan {
public:
    bool isOn() const { return on_; }

    bool isActive() const { return kind_ == ScanKind::Active; }

    /// How often the kernel has switched the scan on, for ever: scripts wait for it to grow.
    unsigned long timesStarted() const { return timesStarted_; }

    /// Whether the kernel wants duplicates left out.
    bool filtersDuplicates() const { return filtersDuplicates_; }

    void setParameters(ScanKind kind, ScanFilterPolicy policy);
    void start(bool filterDuplicates);

    void stop() { on_ = false; }

    void setDuplicateFilter(DuplicateFilter filter) { duplicateFilter_ = filter; }

    /// To be asked once for each advertisement that is about to be delivered: a duplicate filter
    /// remembers the question.
    bool takes(const Address& address, const std::set<Address>& acceptList);

    /// A duplicate filter starts afresh.
    void forgetDelivered() { delivered_.clear(); }

    /// As after power-on. The count of starts and the kind of duplicate filter belong to the test
    /// and stay.
    void reset();

private:
    bool on_ = false;
    bool filtersDuplicates_ = false;
    ScanKind kind_ = ScanKind::Passive;
    ScanFilterPolicy policy_ = ScanFilterPolicy::Everyone;
    DuplicateFilter duplicateFilter_ = DuplicateFilter::Ignore;
    unsigned long timesStarted_ = 0;
    std::set<Address> delivered_;
};

} // namespace controller
