// Clock times as the user's language writes them in short, and the next morning.
#pragma once

#include "base/clock.h"
#include "ui/phase_presentation.h"

#include <QLocale>

namespace wegslot {

/// `clock` must outlive it: the clock on the wall is asked at each call, for it may be set.
[[nodiscard]] ClockTime localClockTime(const Clock& clock,
                                       const QLocale& language = QLocale::system());

/// For instants of the clock on the wall instead of the steady one.
[[nodiscard]] ClockTime wallClockTime(const QLocale& language = QLocale::system());

/// How long it is from `wall`, which is what a person's clock shows, until that next shows six in
/// the morning.
[[nodiscard]] Nanoseconds untilMorning(TimePoint wall);

} // namespace wegslot
