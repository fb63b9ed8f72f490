// What the scanner ought to know of the devices around, kept the plain way: a list of times and
// strengths per device, searched and sorted at every question. Part of the oracle.
#pragma once

#include "scanner/advertisement.h"
#include "scanner/dbm.h"

#include "base/time.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace wegslot::oracle {

class PlainRadio {
public:
    struct Listed {
        Uuid id;
        std::optional<double> strength;
        TimePoint lastSeen;
        friend bool operator==(const Listed&, const Listed&) = default;
    };

    std::set<Uuid> watched;
    bool includesOthers = false;

    /// `advertisement` as it was sent: the name that the stack keeps is this class's business.
    void advertised(const Advertisement& advertisement, TimePoint now);
    void signalRead(const Uuid& id, std::optional<int> rssi, TimePoint now);
    void renamed(const Uuid& id, const std::string& name) { stackNames_[id] = name; }

    void identified(const Uuid& from, const Uuid& to);

    /// Forgets the unwatched that were silent too long.
    void refresh(TimePoint now);

    [[nodiscard]] std::optional<TimePoint> lastSeen(const Uuid& id) const;
    [[nodiscard]] std::optional<Dbm> strength(const Uuid& id, Nanoseconds window,
                                              TimePoint now) const;
    [[nodiscard]] std::vector<Listed> list(TimePoint now) const;

private:
    struct Sample {
        TimePoint time;
        int rssi = 0;
    };

    struct Device {
        TimePoint lastSeen;
        std::vector<Sample> samples;
    };

    void add(const Uuid& id, int rssi, TimePoint now);

    std::map<Uuid, Device> devices_;
    std::map<Uuid, std::string> stackNames_;
};

} // namespace wegslot::oracle
