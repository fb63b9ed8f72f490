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

// Not at once: a timer may be ended from within its own signal.
void endTimerLater(QTimer* timer) {
    timer->stop();
    timer->disconnect();
    timer->deleteLater();
}

Timer started(Nanoseconds duration, bool once, std::function<void()> action) {
    std::shared_ptr<QTimer> timer(std::make_unique<QTimer>().release(), endTimerLater);
    timer->setTimerType(Qt::PreciseTimer);
    timer->setSingleShot(once);
    QObject::connect(timer.get(), &QTimer::timeout,
                     [action = std::make_shared<const std::function<void()>>(std::move(action))] {
                         // What it holds must outlive the call, even if it ends its own timer.
                         const auto held = action; // NOLINT(performance-unnecessary-copy-*)
                         (*held)();
                     });
    timer->start(milliseconds(duration));
    return Timer{[timer = std::move(timer)]() mutable { timer.reset(); }};
}

} // namespace

Timer QtScheduler::after(Nanoseconds delay, std::function<void()> action) {
    return started(delay, true, std::move(action));
}

Timer QtScheduler::every(Nanoseconds interval, std::function<void()> action) {
    return started(interval, false, std::move(action));
}

} // namespace wegslot
