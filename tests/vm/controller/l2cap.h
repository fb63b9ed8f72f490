// The frames that a link carries: each for one fixed channel, cut into pieces for the air.
#pragma once

#include <optional>

#include "bytes.h"
#include "h4.h"

namespace controller {

/// The numbers are those of the air.
enum class Channel : std::uint16_t { Attributes = 4, Signalling = 5, Security = 6 };

struct Frame {
    /// Any number, also of channels that nobody serves.
    std::uint16_t channel = 0;
    Bytes payload;
};

/// Header and payload in one.
Bytes toBytes(Channel channel, ByteView payload);

/// Puts frames together from the pieces of one link.
class Reassembler {
public:
    /// The frame that this piece completes, if any. Pieces that make no frame are dropped.
    std::optional<Frame> take(const DataPacket& piece);

private:
    Bytes collected_;
};

/// What a device says on the signalling channel to this: it refuses what it does not know, and it
/// knows nothing. Nothing to what is itself an answer.
std::optional<Bytes> answerSignal(ByteView signal);

} // namespace controller
