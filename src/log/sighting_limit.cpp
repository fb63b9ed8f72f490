#include "log/sighting_limit.h"

#include <utility>

namespace wegslot {

bool SightingLimit::allows(std::string_view message, TimePoint now) {
    if (!message.starts_with("Gezien: ")) return true;
    if (!minute_) minute_ = now;
    return ++count_ <= perMinute;
}

std::optional<std::string> SightingLimit::leftOut(TimePoint now, bool atOnce) {
    if (!minute_ || (!atOnce && now - *minute_ < std::chrono::minutes{1})) return std::nullopt;
    minute_.reset();
    const std::size_t count = std::exchange(count_, 0);
    if (count <= perMinute) return std::nullopt;
    return "Gezien: nog " + std::to_string(count - perMinute) + " apparaten in een minuut";
}

} // namespace wegslot
