// One connection between the kernel and a device: carries frames both ways, cut into the pieces
// that the air takes.
#pragma once

#include <optional>
#include <utility>

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
        LinkRole role = LinkRole::Central;
    };

    Link(LinkHandle handle, const Ends& ends, Peer& peer, Outbox& outbox);

    LinkHandle handle() const { return handle_; }

    /// The addresses that were used when it was made, and who we are.
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

    /// The device, as the central, wants the link encrypted; the kernel is asked for the key.
    void askForKey(const EncryptionKey& key);

    /// The key that the device has used, if the kernel still owes it.
    std::optional<Key> takeKeyAskedFor() { return std::exchange(keyAskedFor_, std::nullopt); }

private:
    LinkHandle handle_;
    Ends ends_;
    Peer& peer_;
    Outbox& outbox_;
    Reassembler reassembler_;
    std::size_t pieceLength_ = defaultDataOctets;
    bool isEncrypted_ = false;
    std::optional<Key> keyAskedFor_;
    bool isHeard_ = true;
};

} // namespace controller
