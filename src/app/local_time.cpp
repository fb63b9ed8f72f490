#include "app/local_time.h"

#include <charconv>
#include <ctime>
#include <vector>

namespace wegslot {
namespace {

/// The numbers of `text`, each of exactly so many digits, with these signs between them.
std::optional<std::vector<int>> numbers(std::string_view text, std::string_view pattern) {
    std::vector<int> found;
    if (text.size() != pattern.size()) return std::nullopt;
    for (std::size_t at = 0; at < pattern.size();) {
        if (pattern[at] != '0') {
            if (pattern[at] != text[at]) return std::nullopt;
            ++at;
            continue;
        }
        const std::size_t end = std::min(pattern.find_first_not_of('0', at), pattern.size());
        int number = 0;
        const auto [read, error] = std::from_chars(text.data() + at, text.data() + end, number);
        if (read != text.data() + end || error != std::errc{} || number < 0) return std::nullopt;
        found.push_back(number);
        at = end;
    }
    return found;
}

std::tm local(TimePoint instant) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch();
    const auto count = static_cast<std::time_t>(seconds.count());
    std::tm parts{};
    localtime_r(&count, &parts);
    return parts;
}

/// Nothing for a day or time that does not exist.
std::optional<TimePoint> instantOf(std::tm parts) {
    const std::tm asked = parts;
    parts.tm_isdst = -1;
    const std::time_t count = std::mktime(&parts);
    if (count == -1 || parts.tm_mday != asked.tm_mday || parts.tm_mon != asked.tm_mon ||
        parts.tm_min != asked.tm_min || parts.tm_sec != asked.tm_sec)
        return std::nullopt;
    return TimePoint{std::chrono::seconds{count}};
}

} // namespace

std::string localTime(TimePoint wallTime) {
    const std::tm parts = local(wallTime);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%d-%m %H:%M:%S", &parts)};
}

std::optional<TimePoint> typedTime(std::string_view typed, TimePoint now) {
    std::string text(typed);
    constexpr std::string_view day = "0000-00-00";
    if (text.size() > day.size() && text[day.size()] == 'T') text[day.size()] = ' ';
    std::tm parts = local(now);
    parts.tm_hour = parts.tm_min = parts.tm_sec = 0;
    const bool isOfToday = text.size() < day.size();
    const auto setTime = [&parts](const std::vector<int>& found, std::size_t from) {
        parts.tm_hour = found[from];
        parts.tm_min = found[from + 1];
        if (found.size() > from + 2) parts.tm_sec = found[from + 2];
        return parts.tm_hour < 24;
    };
    for (const std::string_view pattern :
         {"00:00", "00:00:00", "0000-00-00", "0000-00-00 00:00", "0000-00-00 00:00:00"}) {
        const auto found = numbers(text, pattern);
        if (!found) continue;
        if (!isOfToday) {
            parts.tm_year = (*found)[0] - 1900;
            parts.tm_mon = (*found)[1] - 1;
            parts.tm_mday = (*found)[2];
        }
        const std::size_t from = isOfToday ? 0 : 3;
        if (found->size() > from && !setTime(*found, from)) return std::nullopt;
        auto instant = instantOf(parts);
        if (instant && isOfToday && *instant > now) {
            --parts.tm_mday;
            parts.tm_isdst = -1;
            instant = TimePoint{std::chrono::seconds{std::mktime(&parts)}};
        }
        return instant;
    }
    return std::nullopt;
}

} // namespace wegslot
