// How long the user has been idle, as the compositor of a Wayland session tells over a connection
// of our own, by whichever of two protocols it offers. The value is up to a second short of the
// truth, and 0 while it is less than that. Looks for a compositor for as long as it lives.
#pragma once

#include "base/clock.h"
#include "base/descriptors.h"
#include "base/scheduler.h"
#include "platform/activity_sources.h"
#include "platform/linux/display_environment.h"
#include "platform/linux/idle/idle_watch.h"
#include "platform/linux/idle/wayland_connection.h"

#include <memory>
#include <optional>
#include <string>

namespace wegslot {

class WaylandIdle final : public IdleSource {
public:
    /// Between two attempts to connect.
    static constexpr Nanoseconds retryInterval = std::chrono::seconds{5};

    /// All must outlive this.
    WaylandIdle(const DisplayEnvironment& environment, const Clock& clock, Scheduler& scheduler,
                Descriptors& descriptors);

    /// With the protocol in use.
    [[nodiscard]] std::string name() const override;

    /// True when the compositor offers a protocol and has a seat.
    [[nodiscard]] bool isThere() const override;

    [[nodiscard]] std::optional<Seconds> idleTime() override;
    [[nodiscard]] bool canBeHeldUp() const override { return watch_ && watch_->canBeHeldUp(); }

private:
    void connect();
    void handle();
    void lose();

    const std::optional<std::string> socket_;
    const Clock& clock_;
    Scheduler& scheduler_;
    Descriptors& descriptors_;
    std::unique_ptr<WaylandConnection> connection_;
    std::unique_ptr<IdleWatch> watch_;
    Subscription reading_;
    Timer retry_;
};

} // namespace wegslot
