// How soon the window "Inzicht" is there over seven days of three keys, and what a frame costs
// while a day of three keys that report ten times a second is zoomed, without a screen.

#include "insight/qt/insight_window.h"
#include "insight/qt/local_zone.h"
#include "tests/support/made_history.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <chrono>
#include <optional>
#include <vector>

namespace {

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

constexpr Day lastDay{std::chrono::days{20780}};

/// Days of three keys that are near, but for a minute each hour in which they leave.
std::vector<history::Minute> keptDays(int days, Nanoseconds between) {
    MadeHistory made;
    const TimePoint end{(lastDay + std::chrono::days{1}).time_since_epoch()};
    const TimePoint begin = end - std::chrono::days{days};
    made.setKeys(begin, {{1, -75}, {2, -75}, {3, -75}});
    made.enter(begin, "present", "keyNear");
    unsigned dice = 1;
    for (TimePoint at = begin; at < end; at += 1s) {
        const bool isAway = at.time_since_epoch() % 1h < 1min;
        if (at.time_since_epoch() % 1h == 10s) made.enter(at, "warning", "keysAway");
        if (at.time_since_epoch() % 1h == 15s) made.enter(at, "locked", "keysAway");
        if (at.time_since_epoch() % 1h == 1min) made.enter(at, "present", "keyNear");
        const auto state = isAway ? KeyState::away : KeyState::near;
        made.judge(at, {{1, state}, {2, state}, {3, state}});
        for (Nanoseconds after{0}; after < 1s; after += between)
            for (const history::Row row : {1, 2, 3}) {
                dice = dice * 1664525 + 1013904223;
                const int noise = static_cast<int>(dice >> 16U) % 12;
                made.hear(row, at + after, (isAway ? -90 : -60) + noise);
            }
    }
    return std::move(made.minutes());
}

struct Desk {
    explicit Desk(std::vector<history::Minute> kept) : minutes(std::move(kept)) {}

    void open() {
        model.setKept(InsightModel::Days{lastDay - std::chrono::days{6}, lastDay});
        window.emplace(model, Surroundings{images, scheme});
        window->open();
        turn();
    }

    /// What changed is drawn.
    static void turn() { QCoreApplication::processEvents(); }

    std::vector<history::Minute> minutes;
    Names names{{1, "Telefoon"}, {2, "Horloge"}, {3, "Bandje"}};
    SymbolImages images;
    Observable<Scheme> scheme{Scheme::light};
    InsightModel model{{.load =
                            [this](Day day) {
                                model.show(day, timelineOf({.minutes = minutes,
                                                            .names = names,
                                                            .day = model.zone().span(day),
                                                            .zone = model.zone()}));
                            },
                        .why = {},
                        .judge = {},
                        .forget = {}},
                       localZone(QLocale::c()),
                       {}};
    std::optional<InsightWindow> window;
};

/// From the press to the first frame: `days` of minutes are handed over, a report a second.
void opening(benchmark::State& state) {
    Desk desk(keptDays(static_cast<int>(state.range(0)), 1s));
    for (auto _ : state) {
        desk.open();
        state.PauseTiming();
        desk.window.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(opening)->ArgName("days")->Arg(1)->Arg(7)->Unit(benchmark::kMillisecond);

/// A day of ten reports a second, made ready to be drawn.
void readying(benchmark::State& state) {
    Desk desk(keptDays(1, 100ms));
    for (auto _ : state)
        desk.model.setKept(InsightModel::Days{lastDay, lastDay});
}
BENCHMARK(readying)->Unit(benchmark::kMillisecond);

/// In to ten seconds and out to the day again, a frame for each notch of the wheel.
void zooming(benchmark::State& state) {
    Desk desk(keptDays(1, 100ms));
    desk.open();
    desk.window->resize(1040, 660);
    Desk::turn();
    const TimePoint about{lastDay.time_since_epoch() + 13h};
    double factor = 0.8;
    for (auto _ : state) {
        desk.model.zoom(factor, about);
        Desk::turn();
        if (desk.model.viewport().isClosest()) factor = 1.25;
        if (desk.model.viewport().showsAll()) factor = 0.8;
    }
}
BENCHMARK(zooming)->Unit(benchmark::kMillisecond);

/// The dearest frame: all of the day.
void wholeDay(benchmark::State& state) {
    Desk desk(keptDays(1, 100ms));
    desk.open();
    desk.window->resize(1040, 660);
    for (auto _ : state) {
        desk.model.showAll();
        Desk::turn();
    }
}
BENCHMARK(wholeDay)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
