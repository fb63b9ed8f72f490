#include "ui/qt/local_clock_time.h"

#include <QDateTime>

namespace wegslot {
namespace {

QString shortForm(const QTime& time, const QLocale& language) {
    // No language at all writes seconds too, which is nobody's short form.
    if (language.language() == QLocale::C) return time.toString(QStringLiteral("HH:mm"));
    return language.toString(time, QLocale::ShortFormat);
}

} // namespace

ClockTime localClockTime(const Clock& clock, const QLocale& language) {
    return [&clock, wallTime = wallClockTime(language)](TimePoint steady) {
        return wallTime(later(steady, clock.wallClock() - clock.now()));
    };
}

ClockTime wallClockTime(const QLocale& language) {
    return [language](TimePoint wall) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(wall).time_since_epoch();
        return shortForm(QDateTime::fromSecsSinceEpoch(seconds.count()).time(), language)
            .toStdString();
    };
}

Nanoseconds untilMorning(TimePoint wall) {
    using std::chrono::milliseconds;
    const QTime six(6, 0);
    const auto now = std::chrono::floor<milliseconds>(wall).time_since_epoch();
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(now.count());
    const QDate day = local.time() < six ? local.date() : local.date().addDays(1);
    return TimePoint{milliseconds{QDateTime(day, six).toMSecsSinceEpoch()}} - wall;
}

} // namespace wegslot
