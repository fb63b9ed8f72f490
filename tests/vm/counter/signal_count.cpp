#include "signal_count.h"

#include <algorithm>

namespace counter {

void SignalCount::count(const std::string& path, int rssi) {
    Heard& heard = heard_[addressOf(path)];
    ++heard.count;
    heard.lastRssi = rssi;
    ++signals_;
}

std::string SignalCount::summary() const {
    std::string text = "{\"signals\":" + std::to_string(signals_) + ",\"devices\":{";
    const char* separator = "";
    for (const auto& [address, heard] : heard_) {
        text += separator;
        text += '"' + address + "\":{\"count\":" + std::to_string(heard.count) +
                ",\"rssi\":" + std::to_string(heard.lastRssi) + '}';
        separator = ",";
    }
    return text + "}}";
}

std::string SignalCount::addressOf(const std::string& path) const {
    const auto known = addresses_.find(path);
    if (known != addresses_.end()) return known->second;
    // Not announced to us: the path holds the address that the object began with.
    std::string tail =
        path.substr(path.rfind("dev_") == std::string::npos ? 0 : path.rfind("dev_") + 4);
    std::replace(tail.begin(), tail.end(), '_', ':');
    return tail;
}

} // namespace counter
