// A Bluetooth controller as the kernel sees one through H4 packets: answers its commands and
// reports to it what the air brings. It knows neither time nor devices.
#pragma once

#include <functional>
#include <string_view>

#include "commands.h"

namespace controller {

class Controller {
public:
    /// Takes one whole packet for the kernel.
    using Send = std::function<void(ByteView)>;

    Controller(const Address& address, Send send);

    /// One whole packet from the kernel. Data packets are ignored: there are no connections.
    void receive(ByteView packet);

    /// An advertisement on the air. A connectable device also answers an active scan, with nothing
    /// to add: without that answer the kernel would withhold a lone device for ever.
    /// True if it was delivered.
    bool advertise(ReportType type, const Address& address, ByteView data, int rssi);

    Scan& scan() { return state_.scan; }

    const Scan& scan() const { return state_.scan; }

private:
    ControllerState state_;
    Send send_;
};

} // namespace controller
