#include "insight/axis.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace wegslot::insight {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::array<Nanoseconds, 18> steps{
    seconds{1}, seconds{2}, seconds{5}, seconds{10}, seconds{15}, seconds{30},
    minutes{1}, minutes{2}, minutes{5}, minutes{10}, minutes{15}, minutes{30},
    hours{1},   hours{2},   hours{3},   hours{4},    hours{6},    hours{12}};

} // namespace

std::vector<Tick> ticks(const Span& visible, TimePoint dayBegin, int most, const Zone& zone) {
    std::vector<Tick> result;
    if (most < 1 || visible.length() <= Nanoseconds{0}) return result;
    const Nanoseconds least = visible.length() / most;
    const auto* const fitting =
        std::ranges::find_if(steps, [least](Nanoseconds step) { return step > least; });
    const Nanoseconds step = fitting == steps.end() ? steps.back() : *fitting;
    const Nanoseconds sinceBegin = visible.from - dayBegin;
    TimePoint wall = dayBegin + (sinceBegin + step - Nanoseconds{1}) / step * step;
    for (; wall < visible.to; wall += step)
        result.push_back({wall, step < minutes{1} ? zone.exactTime(wall) : zone.clockTime(wall)});
    return result;
}

} // namespace wegslot::insight
