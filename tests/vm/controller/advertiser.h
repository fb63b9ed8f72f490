// A named device that advertises at a steady interval until it is silenced.
#pragma once

#include <string>

#include "address.h"
#include "controller.h"
#include "time_point.h"

namespace controller {

struct Advertisement {
    Address address;
    ReportType type = ReportType::NotConnectable;
    Bytes data;
    int rssi = -60;
};

class Advertiser {
public:
    Advertiser(Advertisement advertisement, Duration interval, TimePoint first);

    void setRssi(int rssi) { advertisement_.rssi = rssi; }

    void silence() { loud_ = false; }

    void makeLoud(TimePoint now);

    bool isLoud() const { return loud_; }

    /// When it advertises next, if it is loud.
    TimePoint due() const { return due_; }

    /// Advertises if it is time. What fell due more than an interval ago, while nobody scanned, is
    /// past; the device keeps its beat.
    void advertiseIfDue(TimePoint now, Controller& controller);

private:
    Advertisement advertisement_;
    Duration interval_;
    TimePoint due_;
    bool loud_ = true;
};

} // namespace controller
