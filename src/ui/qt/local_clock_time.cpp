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
    return [&clock, language](TimePoint steady) {
        const TimePoint wall = later(steady, clock.wallClock() - clock.now());
        const auto seconds = std::chrono::floor<std::chrono::seconds>(wall).time_since_epoch();
        return shortForm(QDateTime::fromSecsSinceEpoch(seconds.count()).time(), language)
            .toStdString();
    };
}

} // namespace wegslot
