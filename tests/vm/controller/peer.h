// What the controller needs of a device at the far end of a link.
#pragma once

#include "aes.h"
#include "l2cap.h"

namespace controller {

class Link;

/// The key under which the kernel wants to encrypt, with the two numbers by which the device finds
/// its copy of it.
struct EncryptionKey {
    Key key{};
    std::array<std::uint8_t, 8> random{};
    std::uint16_t diversifier = 0;

    bool operator==(const EncryptionKey&) const = default;
};

class Peer {
public:
    Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    virtual ~Peer() = default;

    /// How strongly the controller hears it over the link; 127 for "not known".
    virtual int linkRssi() const = 0;

    /// The link lives until `unlinked`.
    virtual void linked(Link& link) = 0;
    virtual void unlinked() = 0;

    virtual void receive(const Frame& frame) = 0;

    /// Whether the device has this key as well.
    virtual bool agreesOn(const EncryptionKey& key) = 0;

    /// From now on the link is encrypted with the key last agreed on.
    virtual void encrypted() = 0;

    /// The key that the device wanted to use, as the central, is not known to the kernel.
    virtual void encryptionRefused() = 0;
};

} // namespace controller
