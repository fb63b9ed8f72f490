// A Bluetooth controller as the kernel sees one through H4 packets: answers its commands, reports
// to it what the air brings, tells the air what the kernel sends, and carries its links. It knows
// no devices, and no time but the one it is handed.
#pragma once

#include "admission.h"
#include "commands.h"

namespace controller {

class Controller {
public:
    Controller(const Address& address, Send send);

    /// One whole packet from the kernel.
    void receive(ByteView packet);

    /// An advertisement on the air. A connectable device also answers an active scan, with nothing
    /// to add: without that answer the kernel would withhold a lone device for ever.
    /// True if it was delivered.
    bool advertise(ReportType type, const Address& address, ByteView data, int rssi);

    /// The device can be connected now, under this address; whether the kernel has been waiting
    /// for that is known here.
    void offer(const Address& address, Peer& peer, const Admission& admission);

    /// What the kernel has it advertise.
    const Advertising& advertising() const { return state_.advertising; }

    /// Under which address this set is seen.
    Address addressOf(const AdvertisingSet& set, SetHandle handle) const;

    /// How it can advertise, for kernels that ask from now on.
    void setAdvertisingAbility(const AdvertisingAbility& ability) {
        state_.advertisingAbility = ability;
    }

    const AdvertisingAbility& advertisingAbility() const { return state_.advertisingAbility; }

    /// A device, under this address, answers an advertisement of ours with a connection: this set
    /// is off the air.
    void connectFrom(const Address& address, Peer& peer, SetHandle set);

    /// Null if the device has none.
    Link* linkOf(const Peer& peer) { return state_.links.find(peer); }

    /// When `passTime` is to be called next.
    std::optional<TimePoint> due() const { return state_.advertising.due(); }

    /// Ends what was to last until now.
    void passTime(TimePoint now);

    /// Ends the device's link, if it has one.
    void drop(const Peer& peer, std::uint8_t reason);

    /// The kernel is told that the controller is broken; it answers with a reset.
    void reportHardwareError(std::uint8_t code);

    /// The kernel has lost its controller.
    void unplugged() { state_.reset(); }

    /// Whether advertisements can matter to the kernel at present.
    bool isListening() const { return state_.scan.isOn() || state_.initiator.isOn(); }

    bool isConnecting() const { return state_.initiator.isOn(); }

    Scan& scan() { return state_.scan; }

    const Scan& scan() const { return state_.scan; }

private:
    void receive(const Command& command);
    void receive(const DataPacket& packet);

    ControllerState state_;
};

} // namespace controller
