// How soon the panel is there: from the click to its first frame, the first time and later, over
// three keys and thirty devices, without a screen. And what a change costs that is drawn.

#include "tests/support/panel_world.h"
#include "ui/qt/panel/panel_window.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEvent>

#include <memory>
#include <string>

namespace {

using namespace wegslot;

/// A desk with its keys, and a room around it.
struct Desk : PanelWorld {
    SymbolImages images;
    PanelModel::Objects objects =
        run({keyNamed("iPhone", 1), keyNamed("Apple Watch", 2), keyNamed("Bandje", 3)});

    Desk() {
        world.settings().showOtherDevices.set(true);
        for (unsigned number = 1; number <= 33; ++number)
            world.hearApple(number, -40 - static_cast<int>(number), 0x10,
                            "Apparaat " + std::to_string(number));
        world.pass(std::chrono::seconds{1});
    }

    /// Opens it and waits for its first frame.
    static void open(PanelWindow& window) {
        struct FirstFrame final : QObject {
            bool isPainted = false;
            bool eventFilter(QObject*, QEvent* event) override {
                isPainted = isPainted || event->type() == QEvent::Paint;
                return false;
            }
        } frame;
        window.installEventFilter(&frame);
        window.open({});
        while (!frame.isPainted)
            QCoreApplication::processEvents();
        window.removeEventFilter(&frame);
    }
};

void firstOpening(benchmark::State& state) {
    Desk desk;
    for (auto _ : state) {
        auto window = std::make_unique<PanelWindow>(desk.objects, desk.images, PanelHost::window);
        Desk::open(*window);
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(firstOpening)->Unit(benchmark::kMillisecond);

void laterOpening(benchmark::State& state) {
    Desk desk;
    PanelWindow window(desk.objects, desk.images, PanelHost::window);
    Desk::open(window);
    for (auto _ : state) {
        state.PauseTiming();
        window.hide();
        QCoreApplication::processEvents();
        state.ResumeTiming();
        Desk::open(window);
    }
}
BENCHMARK(laterOpening)->Unit(benchmark::kMillisecond);

/// A second in which everything is heard and judged, with the panel open on its lists or closed.
void second(benchmark::State& state) {
    Desk desk;
    PanelWindow window(desk.objects, desk.images, PanelHost::window);
    if (state.range(0) != 0) Desk::open(window);
    int strength = 0;
    for (auto _ : state) {
        desk.world.hearApple(1, -50 - ++strength % 20);
        desk.world.pass(std::chrono::seconds{1});
        QCoreApplication::processEvents();
    }
}
BENCHMARK(second)->ArgName("open")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
