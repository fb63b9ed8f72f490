// Lets a second start of Wegslot open the first one's panel: a name on the session bus with an
// object that takes the request, as the Desktop Entry Specification describes for applications that
// can be activated. Which of the two may work with the preferences is decided by `InstanceLock`.
#pragma once

#include "base/application_id.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "dbus/object.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace wegslot {

/// The side of the first one.
class Activation {
public:
    static constexpr auto name = applicationId;
    static constexpr auto path = "/nl/wegslot/Wegslot";
    static constexpr auto interfaceName = "org.freedesktop.Application";

    /// `activationToken`: what lets a window take the focus on Wayland; empty for none.
    using Activated = std::function<void(const std::string& activationToken)>;

    /// Calls `activated` each time that somebody starts Wegslot or opens something with it.
    Activation(dbus::Connection& sessionBus, Activated activated);
    Activation(const Activation&) = delete;
    Activation& operator=(const Activation&) = delete;
    ~Activation();

private:
    void busChanged(dbus::Bus* bus);
    [[nodiscard]] dbus::Interface interface() const;

    Activated activated_;
    dbus::Bus* bus_ = nullptr;
    Subscription shown_;
    Subscription connection_;
};

/// The side of a second one: asks the first to show itself, as soon as that is there.
class ActivationRequest {
public:
    /// A person who started it waits for no longer.
    static constexpr Nanoseconds patience = std::chrono::seconds{2};

    /// Calls `done` once, from the loop: whether somebody took it before `patience` was over.
    /// `activationToken`: this start's own, to be passed on; empty for none.
    ActivationRequest(dbus::Connection& sessionBus, Scheduler& scheduler,
                      std::string activationToken, std::function<void(bool taken)> done);
    ActivationRequest(const ActivationRequest&) = delete;
    ActivationRequest& operator=(const ActivationRequest&) = delete;

private:
    void busChanged(dbus::Bus* bus);
    void ownerChanged(const std::optional<std::string>& owner);
    void ask(const std::string& owner);
    void end(bool taken);

    std::string activationToken_;
    std::function<void(bool taken)> done_;
    dbus::Bus* bus_ = nullptr;
    std::optional<std::string> asked_; ///< the owner
    Subscription asking_;
    Subscription owner_;
    Timer patience_;
    Subscription connection_;
};

} // namespace wegslot
