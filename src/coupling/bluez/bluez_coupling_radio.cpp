#include "coupling/bluez/bluez_coupling_radio.h"

#include <utility>

namespace wegslot::coupling {

BluezCouplingRadio::BluezCouplingRadio(dbus::Connection::Open open, dbus::Connection::Attach attach,
                                       Scheduler& scheduler, bluez::Links& links, Borrow borrow,
                                       std::filesystem::path note)
    : note_(std::move(note)),
      world_{.open = std::move(open),
             .attach = std::move(attach),
             .scheduler = scheduler,
             .links = links,
             .note = note_},
      borrow_(std::move(borrow)),
      delayed_(scheduler) {}

BluezCouplingRadio::~BluezCouplingRadio() {
    // Nobody waits any more: it is sent with what is left of the time.
    if (!removal_) return;
    if (const auto bus = world_.open()) (*bus)->send(*removing_);
}

void BluezCouplingRadio::putBack() {
    if (stay_ || note_.adapters().empty()) return;
    repair_ = std::make_unique<PairableRepair>(
        world_.open, world_.attach, world_.scheduler, note_, [this] {
            repaired_ = world_.scheduler.after(Nanoseconds{0}, [this] { repair_.reset(); });
        });
}

void BluezCouplingRadio::appear(const std::string& name, Confirmation confirmation) {
    if (stay_) return;
    visitor_.reset();
    repair_.reset(); // the stay puts back what is noted
    loan_ = borrow_();
    stay_ = std::make_unique<Stay>(world_, name, confirmation,
                                   [this] { delayed_.after(Nanoseconds{0}, [this] { over(); }); });
}

void BluezCouplingRadio::over() {
    visitor_ = stay_->removalOfVisitor();
    stay_.reset();
    loan_.reset();
    putBack(); // of a daemon that went
    world_.tell(&CouplingListener::isGone);
}

void BluezCouplingRadio::askForBond() {
    if (stay_) stay_->askForBond();
}

void BluezCouplingRadio::answer(bool same) {
    if (stay_) stay_->answer(same);
}

void BluezCouplingRadio::forget() {
    if (stay_) return stay_->forget();
    if (!visitor_) return;
    removing_ = std::exchange(visitor_, std::nullopt);
    removal_ = std::make_unique<LaterRemoval>(
        world_.open, world_.attach, world_.scheduler, *removing_,
        [this] { delayed_.after(Nanoseconds{0}, [this] { removed(); }); });
}

void BluezCouplingRadio::removed() {
    removal_.reset();
    if (std::exchange(isAwaited_, false)) world_.tell(&CouplingListener::isGone);
}

void BluezCouplingRadio::disappear() {
    if (stay_) return stay_->leave();
    if (removal_) {
        isAwaited_ = true;
        return;
    }
    delayed_.after(Nanoseconds{0}, [this] { world_.tell(&CouplingListener::isGone); });
}

} // namespace wegslot::coupling
