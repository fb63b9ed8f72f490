// The command line's side: asks a running Wegslot over the session bus and prints its answer. Never
// starts one.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "control/control_status.h"
#include "control/request.h"
#include "dbus/bus.h"

#include <functional>
#include <string>
#include <string_view>

namespace wegslot {

class ControlClient {
public:
    /// Exit status where no Wegslot runs.
    static constexpr int notRunning = 3;

    /// A Wegslot that is well answers within milliseconds.
    static constexpr std::chrono::seconds patience{5};

    struct Failed {
        Message message;
        int status;
    };
    static Failed absent() { return {message("Wegslot draait niet"), notRunning}; }

    struct Output {
        std::function<void(std::string_view line)> print;
        std::function<void(std::string_view line)> complain;
        /// Called once, from the loop; it may end the client.
        std::function<void(int status)> end;
    };

    /// `bus` must be driven, and outlive this. `wallTime` writes instants of the clock on the wall.
    /// `absence`: the message and the status when no Wegslot is to be found there.
    ControlClient(dbus::Bus& bus, const Clock& clock, ClockTime wallTime, Scheduler& scheduler,
                  control::Request request, Output output, Failed absence = absent());
    ControlClient(const ControlClient&) = delete;
    ControlClient& operator=(const ControlClient&) = delete;

private:
    struct Ask;

    void ownerChanged(const std::optional<std::string>& owner);
    void call(const char* interface, const char* member, std::vector<dbus::Argument> arguments,
              std::function<void(dbus::Reader&)> done);
    void readStatus(std::function<void(const control::Status&)> done);
    void follow(bool json);
    void list(bool others);
    void awaitIdentity(const Uuid& id, TimePoint until);
    void fail(const Failed& failed);
    void end(int status);

    dbus::Bus& bus_;
    const Clock& clock_;
    ClockTime wallTime_;
    Scheduler& scheduler_;
    control::Request request_;
    Output output_;
    Failed absence_;
    std::string owner_;
    bool statusIsTold_ = false;
    control::Status next_; ///< what was told of the change of phase that follows
    bool listIsExplained_ = false;
    bool identityIsTold_ = false;
    std::function<void()> takeBack_; ///< what was kept and is not taken yet
    Subscription calling_;
    Subscription told_;
    Subscription changes_;
    Subscription owners_;
    Timer again_;
};

} // namespace wegslot
