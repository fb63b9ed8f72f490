// The running Wegslot's side: an object on the session bus (nl.wegslot.Wegslot1), beside the one
// that a second start activates. Publishes the state and does the few things that may be asked for,
// logging each with the name of the program that asked.
#pragma once

#include "control/control_status.h"
#include "control/pause_allowance.h"
#include "dbus/connection.h"
#include "dbus/object.h"

#include <functional>
#include <optional>
#include <string>

namespace wegslot {

class ControlService {
public:
    struct Actions {
        std::function<void()> lock;
        std::function<void(Seconds)> pause;
        std::function<void()> resume;
        std::function<void()> updateNow;
        /// Takes the descriptor over; says why not.
        std::function<std::optional<Failure>(int descriptor, bool anonymous)> record;
        std::function<void()> stopRecording;
        /// Opens the window that couples a device; why not.
        std::function<std::optional<Failure>()> couple;
        /// Takes in the identities that are kept; says why not.
        std::function<std::optional<Failure>()> readIdentities;
    };

    ControlService(dbus::Connection& sessionBus, const control::Sources& sources, Actions actions);
    ControlService(const ControlService&) = delete;
    ControlService& operator=(const ControlService&) = delete;

private:
    void busChanged(dbus::Bus* bus);
    void phaseChanged(const Phase& next);
    [[nodiscard]] control::Status status() const;
    [[nodiscard]] dbus::Interface interface();
    [[nodiscard]] std::vector<dbus::Property> properties();
    [[nodiscard]] std::vector<dbus::Method> methods();
    void pause(const dbus::Message& call, dbus::Writer& answer);
    void record(const dbus::Message& call, dbus::Writer& answer);
    void stopRecording();
    void readIdentities(const dbus::Message& call, dbus::Writer& answer);
    void couple(const dbus::Message& call, dbus::Writer& answer);
    /// Does what a program asked for, which counts as no person's action.
    void pass(const std::function<void()>& action);
    void logRequest(const std::string& what, const dbus::Message& call);

    control::Sources sources_;
    Phase phase_; ///< the one that was told last
    control::Reason reason_;
    Actions actions_;
    control::PauseAllowance allowance_;
    bool passing_ = false;
    dbus::Bus* bus_ = nullptr;
    Subscription shown_;
    Subscription recordingFor_; ///< whoever asked for the recording; it ends when they go
    Subscription phases_;
    Subscription persons_;
    Subscription connection_;
};

} // namespace wegslot
