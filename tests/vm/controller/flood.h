// A crowd of devices with random static addresses that take turns to advertise, evenly spread over
// time. Everything about it follows from the number of a report, so every run is the same.
//
// When it is over, every device repeats its last report twice, each time after a pause and as if
// the controller had never heard it. The kernel loses what arrives in the tens of milliseconds
// around each restart of its scan, every ten seconds or so; the pause is longer than that, so one
// of the two is heard, and what a listener knows at the end does not hang on when the flood ended.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "controller.h"
#include "time_point.h"

namespace controller {

struct FloodPlan {
    unsigned devices = 0;
    /// Reports a second, of all devices together.
    double rate = 0;
    double seconds = 0;
};

class Flood {
public:
    Flood(const FloodPlan& plan, TimePoint start);

    bool hasEnded() const { return next_ >= total_; }

    /// When the next report falls due, unless it has ended.
    TimePoint due() const { return due_; }

    /// Sends what has fallen due; a report that nobody scans for is lost.
    void advertiseIfDue(TimePoint now, Controller& controller);

    /// What was delivered, in JSON: {"reports":N,"devices":{"ADDRESS":last RSSI,...}}. Devices that
    /// were never delivered are left out.
    std::string summary() const;

private:
    /// How often everything has been said when this report's turn comes: 0 in the flood proper.
    unsigned long repetitionOf(unsigned long number) const;
    TimePoint dueOf(unsigned long number) const;
    unsigned long contentOf(unsigned long number) const;
    void advertise(unsigned long number, Controller& controller);

    TimePoint start_;
    double rate_;
    /// How many reports the flood proper has, each repetition, and all together.
    unsigned long planned_;
    unsigned long repeated_;
    unsigned long total_;
    unsigned long next_ = 0;
    TimePoint due_;
    unsigned long delivered_ = 0;
    std::vector<std::optional<int>> lastRssi_;
};

} // namespace controller
