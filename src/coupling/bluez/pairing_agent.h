// The agent that bluetoothd asks whether a device may bond: says yes to the visitor alone, and
// where there is a code only when a person has compared it.
#pragma once

#include "coupling/bluez/served.h"
#include "coupling/coupling_radio.h"
#include "dbus/bus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot::coupling {

/// Who knows the visitor.
class AgentListener {
public:
    AgentListener() = default;
    AgentListener(const AgentListener&) = delete;
    AgentListener& operator=(const AgentListener&) = delete;
    virtual ~AgentListener() = default;

    /// Whether the device at `path` is the one that is to bond now.
    [[nodiscard]] virtual bool mayBond(std::string_view path) const = 0;
    /// The visitor's code is to be compared: `PairingAgent::answer` is waited for.
    virtual void codeAsked(std::uint32_t code) = 0;
    /// It is not waited for any more.
    virtual void codeDropped() = 0;
    /// Somebody else's request was turned down.
    virtual void turnedDown(const std::string& path) = 0;
};

class PairingAgent {
public:
    static constexpr auto path = "/nl/wegslot/coupling/agent";

    /// Shows the agent on `bus`, until this ends.
    PairingAgent(dbus::Bus& bus, const IsDaemon& isDaemon, Confirmation confirmation,
                 AgentListener& listener);
    PairingAgent(const PairingAgent&) = delete;
    PairingAgent& operator=(const PairingAgent&) = delete;

    /// What it says of itself that it can show and ask.
    [[nodiscard]] std::string capability() const;

    /// Whether the code that was asked about is the visitor's; nothing where none is.
    void answer(bool same);

private:
    [[nodiscard]] dbus::Interface interface(const IsDaemon& isDaemon);
    void confirm(const dbus::Message& call, dbus::Answer answer);
    void authorize(const dbus::Message& call, dbus::Answer answer);
    void withdraw();

    Confirmation confirmation_;
    AgentListener& listener_;
    std::optional<dbus::Answer> waiting_;
    Subscription shown_;
};

} // namespace wegslot::coupling
