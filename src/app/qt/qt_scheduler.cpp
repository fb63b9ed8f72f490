#include "app/qt/qt_scheduler.h"

#include <QTimer>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace wegslot {
namespace {

int milliseconds(Nanoseconds duration) {
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(duration).count();
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, std::numeric_limits<int>::max()));
}

Timer started(Nanoseconds duration, bool once, std::function<void()> action) {
    const auto timer = std::make_shared<QTimer>();
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(once);
    // A copy of the action runs: it may end its own timer.
    QObject::connect(timer.get(), &QTimer::timeout,
                     [action = std::make_shared<const std::function<void()>>(std::move(action))] {
                         const auto running = action;
                         (*running)();
                     });
    timer->start(milliseconds(duration));
    // Deleted from the loop, in case it is ended from within its own signal.
    return Timer{[timer]() mutable {
        timer->stop();
        timer->disconnect();
        QTimer::singleShot(0, [last = std::move(timer)] {});
    }};
}

} // namespace

Timer QtScheduler::after(Nanoseconds delay, std::function<void()> action) {
    return started(delay, true, std::move(action));
}

Timer QtScheduler::every(Nanoseconds interval, std::function<void()> action) {
    return started(interval, false, std::move(action));
}

} // namespace wegslot
