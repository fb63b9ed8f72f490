// How long the user has been idle, as the X server of an X11 session counts it. Under Wayland it
// is never there: an X server in a compositor sees only what is typed into X programs. Looks for
// a server for as long as it lives.
#pragma once

#include "base/scheduler.h"
#include "platform/activity_sources.h"
#include "platform/linux/display_environment.h"
#include "platform/linux/idle/x11_worker.h"

#include <optional>
#include <string>

namespace wegslot {

class X11Idle final : public IdleSource {
public:
    /// Between two attempts to connect.
    static constexpr Nanoseconds retryInterval = std::chrono::seconds{5};

    X11Idle(const DisplayEnvironment& environment, Scheduler& scheduler);

    [[nodiscard]] std::string name() const override { return "X11"; }
    [[nodiscard]] bool isThere() const override { return worker_ && worker_->isConnected(); }
    [[nodiscard]] std::optional<Seconds> idleTime() override;

private:
    std::optional<X11Worker> worker_; ///< none where there is nothing to look for
    Timer retry_;
};

} // namespace wegslot
