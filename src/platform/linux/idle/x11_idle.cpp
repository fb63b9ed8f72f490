#include "platform/linux/idle/x11_idle.h"

namespace wegslot {

X11Idle::X11Idle(const DisplayEnvironment& environment, Scheduler& scheduler) {
    const auto display = plainX11Display(environment);
    if (!display) return;
    worker_.emplace(*display);
    worker_->connect();
    retry_ = scheduler.every(retryInterval, [this] { worker_->connect(); });
}

std::optional<Seconds> X11Idle::idleTime() {
    if (!worker_) return std::nullopt;
    return worker_->idleTime(answerPatience);
}

} // namespace wegslot
