#include "l2cap.h"

#include <algorithm>
#include <iterator>

namespace controller {

namespace {

constexpr std::size_t frameHeader = 4;

constexpr std::size_t signalHeader = 4;
constexpr std::uint8_t commandReject = 0x01;
constexpr unsigned notUnderstood = 0x0000;
/// Refusals, and answers to requests for terms, channels and credits.
constexpr std::uint8_t answers[] = {0x01, 0x13, 0x15, 0x18, 0x1A};

} // namespace

Bytes toBytes(Channel channel, ByteView payload) {
    Bytes bytes;
    bytes.reserve(frameHeader + payload.size());
    append16(bytes, static_cast<unsigned>(payload.size()));
    append16(bytes, static_cast<unsigned>(channel));
    append(bytes, payload);
    return bytes;
}

std::optional<Frame> Reassembler::take(const DataPacket& piece) {
    if (!piece.isContinuation) collected_.clear();
    // What goes on a frame whose beginning was never seen has no length to be measured against.
    if (piece.isContinuation && collected_.empty()) return std::nullopt;
    append(collected_, piece.data);
    if (collected_.size() < frameHeader) return std::nullopt;
    const std::size_t length = frameHeader + read16(collected_, 0);
    if (collected_.size() < length) return std::nullopt;
    const bool isWhole = collected_.size() == length;
    Frame frame{.channel = read16(collected_, 2),
                .payload = Bytes(std::next(collected_.begin(), frameHeader), collected_.end())};
    collected_.clear();
    return isWhole ? std::optional(std::move(frame)) : std::nullopt;
}

std::optional<Bytes> answerSignal(ByteView signal) {
    if (signal.size() < signalHeader) return std::nullopt;
    if (std::find(std::begin(answers), std::end(answers), signal[0]) != std::end(answers))
        return std::nullopt;
    Bytes refusal;
    append8(refusal, commandReject);
    append8(refusal, signal[1]); // the number of the request
    append16(refusal, 2);        // bytes that follow
    append16(refusal, notUnderstood);
    return refusal;
}

} // namespace controller
