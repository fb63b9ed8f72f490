#include "app/qt/coupling_assistant.h"

#include "platform/linux/random_uuid.h"

#include <QEventLoop>

#include <variant>

namespace wegslot {
namespace {

bool isClosed(const coupling::Step& step) {
    return std::holds_alternative<coupling::step::Closed>(step);
}

} // namespace

coupling::Coupling::World couplingWorld(coupling::CouplingRadio& radio, AppModel& model,
                                        const Clock& clock, Scheduler& scheduler) {
    return {.radio = radio,
            .scanner = model.scanner(),
            .settings = model.settings(),
            .clock = clock,
            .scheduler = scheduler,
            .suffix = [] {
                const Uuid random = randomUuid();
                return static_cast<std::uint16_t>(random.bytes[0] << 8U | random.bytes[1]);
            }};
}

void putBack(coupling::Coupling& coupling, Scheduler& scheduler) {
    if (isClosed(coupling.step().get())) return;
    QEventLoop loop;
    bool isBack = false;
    const auto steps = coupling.step().onChange([&](const coupling::Step& step) {
        if (!isClosed(step)) return;
        isBack = true;
        loop.quit();
    });
    const auto limit = scheduler.after(std::chrono::seconds{8}, [&loop] { loop.quit(); });
    coupling.act(coupling::Action::close);
    if (!isBack) loop.exec();
}

CouplingAssistant::~CouplingAssistant() {
    steps_.reset();
    window_.reset();
    if (coupling_) putBack(*coupling_, scheduler_);
}

void CouplingAssistant::open() {
    if (!coupling_) {
        ending_.reset();
        auto world = couplingWorld(radio_, model_, clock_, scheduler_);
        world.paste = paste_;
        coupling_.emplace(std::move(world));
        window_.emplace(*coupling_,
                        CouplingWindow::Surroundings{.images = appearance_.images,
                                                     .scheme = appearance_.colors.scheme(),
                                                     .clock = clock_,
                                                     .scheduler = scheduler_});
        steps_ = coupling_->step().onChange([this](const coupling::Step& step) {
            if (!isClosed(step)) return;
            // It may be one of their buttons that is being pressed.
            ending_ = scheduler_.after(Nanoseconds{0}, [this] {
                steps_.reset();
                window_.reset();
                coupling_.reset();
            });
        });
    }
    window_->open();
}

} // namespace wegslot
