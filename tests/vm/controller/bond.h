// What a device keeps of a pairing: the keys for the next link, whichever side makes it.
#pragma once

#include <optional>

#include "peer.h"

namespace controller {

struct Bond {
    /// When the other side connects to the device.
    std::optional<EncryptionKey> asPeripheral;
    /// When the device connects to the other side.
    std::optional<EncryptionKey> asCentral;

    bool isKept() const { return asPeripheral || asCentral; }

    void forget() {
        asPeripheral.reset();
        asCentral.reset();
    }
};

} // namespace controller
