// What commands read and change.
#pragma once

#include "initiator.h"
#include "links.h"
#include "scan.h"

namespace controller {

struct ControllerState {
    ControllerState(const Address& publicAddress, Send send)
        : address(publicAddress),
          outbox(std::move(send)) {}

    Address address;
    /// The other name that the kernel may give us on the air.
    Address randomAddress{.type = AddressType::Random};
    Scan scan;
    AcceptList acceptList;
    Initiator initiator;
    Outbox outbox;
    Links links{outbox};

    /// As after power-on. Nobody is told but the devices.
    void reset() {
        scan.reset();
        acceptList.clear();
        initiator.stop();
        links.forgetAll();
    }
};

} // namespace controller
