#include "insight/qt/local_zone.h"

#include "ui/qt/local_clock_time.h"

#include <QDateTime>

namespace wegslot::insight {
namespace {

using std::chrono::milliseconds;

constexpr qint64 epoch = 2'440'588; ///< the first day that is counted, as Qt counts days

QDateTime qtTime(TimePoint wall) {
    return QDateTime::fromMSecsSinceEpoch(
        std::chrono::floor<milliseconds>(wall).time_since_epoch().count());
}

QDate qtDate(Day day) { return QDate::fromJulianDay(day.time_since_epoch().count() + epoch); }

/// The short form, with seconds.
QString exactFormat(const QLocale& language) {
    if (language.language() == QLocale::C) return QStringLiteral("HH:mm:ss");
    QString format = language.timeFormat(QLocale::ShortFormat);
    return format.replace(QStringLiteral("mm"), QStringLiteral("mm:ss"));
}

} // namespace

Zone localZone(const QLocale& language) {
    return {.dayOf =
                [](TimePoint wall) {
                    return Day{std::chrono::days{qtTime(wall).date().toJulianDay() - epoch}};
                },
            .beginOf =
                [](Day day) {
                    return TimePoint{milliseconds{qtDate(day).startOfDay().toMSecsSinceEpoch()}};
                },
            .clockTime = wallClockTime(language),
            .exactTime =
                [language, format = exactFormat(language)](TimePoint wall) {
                    return language.toString(qtTime(wall).time(), format).toStdString();
                },
            .name =
                [language](Day day) {
                    return language.toString(qtDate(day), QLocale::LongFormat).toStdString();
                }};
}

} // namespace wegslot::insight
