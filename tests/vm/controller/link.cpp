#include "link.h"

#include <algorithm>

namespace controller {

Link::Link(LinkHandle handle, const Ends& ends, Peer& peer, Outbox& outbox)
    : handle_(handle),
      ends_(ends),
      peer_(peer),
      outbox_(outbox) {}

void Link::receive(const DataPacket& packet) {
    if (!isHeard_) return;
    outbox_.put(onePacketCompleted(handle_));
    const std::optional<Frame> frame = reassembler_.take(packet);
    if (frame) peer_.receive(*frame);
}

void Link::send(Channel channel, ByteView payload) {
    const Bytes frame = toBytes(channel, payload);
    const ByteView whole = frame;
    for (std::size_t start = 0; start < whole.size(); start += pieceLength_) {
        const std::size_t length = std::min(pieceLength_, whole.size() - start);
        outbox_.put(toHost({.handle = handle_,
                            .isContinuation = start > 0,
                            .data = whole.subspan(start, length)}));
    }
}

void Link::askForKey(const EncryptionKey& key) {
    keyAskedFor_ = key.key;
    outbox_.put(longTermKeyRequest(handle_, key.random, key.diversifier));
}

} // namespace controller
