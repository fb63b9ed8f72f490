// How often each device's signal strength was told, and what it was last. Devices are known by
// their address; signals name only an object path, so the addresses behind the paths are kept.
#pragma once

#include <map>
#include <string>

namespace counter {

class SignalCount {
public:
    void learnAddress(const std::string& path, const std::string& address) {
        addresses_[path] = address;
    }

    void count(const std::string& path, int rssi);

    /// One line of JSON: {"signals":N,"devices":{"ADDRESS":{"count":N,"rssi":DBM},...}}.
    std::string summary() const;

private:
    struct Heard {
        unsigned long count = 0;
        int lastRssi = 0;
    };

    std::string addressOf(const std::string& path) const;

    unsigned long signals_ = 0;
    std::map<std::string, std::string> addresses_;
    std::map<std::string, Heard> heard_;
};

} // namespace counter
