// Has a radio listen when the policy says so, and not otherwise: the policy's timer and its one
// line to the radio.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "scanner/bluetooth_central.h"
#include "scanner/scan_policy.h"

#include <set>

namespace wegslot {

/// What a schedule makes do. Each call is an order that holds until the next one.
class ScanRadio {
public:
    ScanRadio() = default;
    ScanRadio(const ScanRadio&) = delete;
    ScanRadio& operator=(const ScanRadio&) = delete;
    virtual ~ScanRadio() = default;

    virtual void startScan() = 0;
    /// Starts the running scan once more, so that the controller reports every device again.
    virtual void restartScan() = 0;
    virtual void stopScan() = 0;
};

class ScanSchedule {
public:
    /// All must outlive the schedule.
    ScanSchedule(ScanRadio& radio, Scheduler& scheduler, const Clock& clock)
        : radio_(radio),
          scheduler_(scheduler),
          clock_(clock) {}

    /// The radio can scan from now on and is not scanning: begins at once if anything is wanted.
    void start();

    /// The radio cannot scan any more. Gives no order.
    void stop();

    [[nodiscard]] bool isRunning() const { return running_; }

    /// Whether the radio was last ordered to scan.
    [[nodiscard]] bool isScanning() const { return scanning_; }

    /// Keys whose signal comes over a connection are not in `keys`.
    void want(bool list, std::set<Uuid> keys);
    void setUnfiltered(bool unfiltered);
    void heard(const Uuid& id);

    /// A connection is about to be made: most radios cannot do that while they scan.
    void makeWay();
    /// It was made, or failed.
    void resume();

private:
    void decide();
    void order(ScanPolicy::Scan scan);

    ScanRadio& radio_;
    Scheduler& scheduler_;
    const Clock& clock_;
    ScanPolicy policy_;
    bool running_ = false;
    bool scanning_ = false;
    Timer timer_;
};

} // namespace wegslot
