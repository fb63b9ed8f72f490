// One connection between the kernel and a device: carries frames both ways, cut into the pieces
// that the air takes.
#pragma once

#include "abilities.h"
#include "link_events.h"
#include "outbox.h"
#include "peer.h"

namespace controller {

class Link {
public:
    struct Ends {
        Address own;
        Address peer;
    };

    Link(LinkHandle handle, const Ends& ends, Peer& peer, Outbox& outbox);

    LinkHandle handle() const { return handle_; }

    /// The addresses that were used when it was made.
    const Ends& ends() const { return ends_; }

    Peer& peer() const { return peer_; }

    bool isEncrypted() const { return isEncrypted_; }

    void setEncrypted() { isEncrypted_ = true; }

    /// The device is not there: nothing that is sent is ever taken, nothing asked ever answered.
    void setUnheard() { isHeard_ = false; }

    bool isHeard() const { return isHeard_; }

    /// Both sides take long pieces from now on.
    void lengthenPieces() { pieceLength_ = maximumDataOctets; }

    /// From the kernel to the device.
    void receive(const DataPacket& packet);

    /// From the device to the kernel.
    void send(Channel channel, ByteView payload);

private:
    LinkHandle handle_;
    Ends ends_;
    Peer& peer_;
    Outbox& outbox_;
    Reassembler reassembler_;
    std::size_t pieceLength_ = defaultDataOctets;
    bool isEncrypted_ = false;
    bool isHeard_ = true;
};

} // namespace controller
