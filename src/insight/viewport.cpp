#include "insight/viewport.h"

#include <algorithm>
#include <cmath>

namespace wegslot::insight {

void Viewport::place(TimePoint from, Nanoseconds length) {
    const Nanoseconds held = std::min(std::max(length, least), whole_.length());
    visible_.from = std::clamp(from, whole_.from, whole_.to - held);
    visible_.to = visible_.from + held;
}

void Viewport::zoom(double factor, TimePoint about) {
    if (!(factor > 0)) return;
    const auto length = static_cast<double>(visible_.length().count());
    const Nanoseconds most = whole_.length();
    const double wanted = length * factor;
    const Nanoseconds next =
        wanted < static_cast<double>(most.count())
            ? std::max(Nanoseconds{std::llround(wanted)}, std::min(least, most))
            : most;
    const TimePoint still = std::clamp(about, visible_.from, visible_.to);
    const double fraction =
        length > 0 ? static_cast<double>((still - visible_.from).count()) / length : 0;
    const Nanoseconds before{std::llround(fraction * static_cast<double>(next.count()))};
    place(still - before, next);
}

void Viewport::move(Nanoseconds by) {
    // Held within the day first, so that no sum is too large.
    const Nanoseconds held = std::clamp(by, -whole_.length(), whole_.length());
    place(visible_.from + held, visible_.length());
}

void Viewport::reveal(TimePoint wall) {
    const Nanoseconds room = visible_.length() / 10;
    if (wall < visible_.from + room) return place(wall - room, visible_.length());
    if (wall > visible_.to - room) place(wall + room - visible_.length(), visible_.length());
}

} // namespace wegslot::insight
