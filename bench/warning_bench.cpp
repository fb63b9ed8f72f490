// What the warning costs while it counts down, and that it costs nothing while it is hidden.
// Painted without a screen; what an X server adds is not in it.

#include "app/qt/qt_scheduler.h"
#include "base/virtual_time.h"
#include "hud/qt/qt_warning_hud.h"
#include "platform/linux/system_clock.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

using namespace wegslot;
using namespace std::chrono_literals;

void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// Counts how often anything is painted.
class Frames final : public QObject {
public:
    Frames() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++count;
        return false;
    }

    int count = 0;
};

void runForASecond() {
    QEventLoop loop;
    QTimer::singleShot(1s, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Twenty frames, timer and event loop included: a real second.
void secondOfCountdown(benchmark::State& state) {
    const SystemClock clock;
    QtScheduler scheduler;
    QtWarningHud hud(clock, scheduler);
    hud.show(clock.now() + 24h, Seconds{24.0 * 3600}, "Telefoon is buiten bereik", [] {});
    runForASecond();
    const Frames frames;
    for (auto _ : state)
        runForASecond();
    state.counters["frames"] = benchmark::Counter(frames.count, benchmark::Counter::kAvgIterations);
    hud.hide();
    settle();
}

/// The same second after the panel has gone.
void secondHidden(benchmark::State& state) {
    const SystemClock clock;
    QtScheduler scheduler;
    QtWarningHud hud(clock, scheduler);
    hud.show(clock.now() + 5s, Seconds{5}, "Telefoon is buiten bereik", [] {});
    settle();
    hud.hide();
    settle();
    const Frames frames;
    for (auto _ : state)
        runForASecond();
    state.counters["frames"] = benchmark::Counter(frames.count, benchmark::Counter::kAvgIterations);
}

void shownAndHidden(benchmark::State& state) {
    VirtualTime time{TimePoint{500000h}};
    QtWarningHud hud(time, time);
    for (auto _ : state) {
        hud.show(later(time.now(), 5s), Seconds{5}, "Telefoon is buiten bereik", [] {});
        settle();
        hud.hide();
        settle();
    }
    if (time.pending() != 0) state.SkipWithError("something runs while it is hidden");
}

BENCHMARK(secondOfCountdown)
    ->Iterations(10)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(secondHidden)->Iterations(3)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);
BENCHMARK(shownAndHidden)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1); // NOLINT(concurrency-mt-unsafe): nothing runs yet
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
