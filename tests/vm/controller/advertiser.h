// Advertises at a steady interval until it is silenced.
#pragma once

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

    const Advertisement& advertisement() const { return advertisement_; }

    void setRssi(int rssi) { advertisement_.rssi = rssi; }

    void setAddress(const Address& address) { advertisement_.address = address; }

    void setType(ReportType type) { advertisement_.type = type; }

    void silence() { loud_ = false; }

    void makeLoud(TimePoint now);

    bool isLoud() const { return loud_; }

    /// When it advertises next, if it is loud.
    TimePoint due() const { return due_; }

    /// Advertises if it is time; true if it did. What fell due more than an interval ago, while
    /// nobody listened, is past; the beat is kept.
    bool advertiseIfDue(TimePoint now, Controller& controller);

private:
    Advertisement advertisement_;
    Duration interval_;
    TimePoint due_;
    bool loud_ = true;
};

} // namespace controller
