// What commands read and change.
#pragma once

#include "advertising.h"
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
    Advertising advertising;
    /// Belongs to the test, and stays after a reset.
    AdvertisingAbility advertisingAbility;
    AcceptList acceptList;
    Initiator initiator;
    Outbox outbox;
    Links links{outbox};

    bool hasExtendedAdvertising() const {
        return advertisingAbility.commands == AdvertisingAbility::Commands::Extended;
    }

    EventForm eventForm() const {
        return hasExtendedAdvertising() ? EventForm::Enhanced : EventForm::Older;
    }

    /// As after power-on. Nobody is told but the devices.
    void reset() {
        scan.reset();
        advertising.clear();
        acceptList.clear();
        initiator.stop();
        links.forgetAll();
    }
};

} // namespace controller
