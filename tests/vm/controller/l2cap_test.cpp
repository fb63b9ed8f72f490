#include "l2cap.h"

#include <gtest/gtest.h>

namespace controller {
namespace {

constexpr bool first = false;
constexpr bool continuation = true;

TEST(Reassembler, FrameInOnePieceIsWhole) {
    Reassembler reassembler;
    const Bytes piece = toBytes(Channel::Attributes, Bytes{0x0A, 0x03, 0x00});
    const std::optional<Frame> frame = reassembler.take({1, first, piece});
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->channel, 4);
    EXPECT_EQ(frame->payload, (Bytes{0x0A, 0x03, 0x00}));
}

TEST(Reassembler, FrameCutInsideItsHeaderIsPutTogether) {
    Reassembler reassembler;
    const Bytes whole = toBytes(Channel::Security, Bytes{1, 2, 3});
    const ByteView view = whole;
    EXPECT_FALSE(reassembler.take({1, first, view.first(2)}));
    EXPECT_FALSE(reassembler.take({1, continuation, view.subspan(2, 4)}));
    const std::optional<Frame> frame = reassembler.take({1, continuation, view.subspan(6)});
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->channel, 6);
    EXPECT_EQ(frame->payload, (Bytes{1, 2, 3}));
}

TEST(Reassembler, ContinuationWithoutBeginningIsDropped) {
    Reassembler reassembler;
    EXPECT_FALSE(reassembler.take({1, continuation, toBytes(Channel::Attributes, Bytes{1})}));
}

TEST(Reassembler, BytesBeyondTheLengthMakeNoFrame) {
    Reassembler reassembler;
    Bytes tooLong = toBytes(Channel::Attributes, Bytes{1});
    tooLong.push_back(2);
    EXPECT_FALSE(reassembler.take({1, first, tooLong}));
    EXPECT_TRUE(reassembler.take({1, first, toBytes(Channel::Attributes, Bytes{1})}));
}

TEST(Signalling, UnknownRequestIsRefusedUnderItsNumber) {
    EXPECT_EQ(answerSignal(Bytes{0x14, 7, 0, 0}), (Bytes{0x01, 7, 2, 0, 0, 0}));
}

TEST(Signalling, AnswersAreNotAnswered) {
    EXPECT_EQ(answerSignal(Bytes{0x01, 7, 2, 0, 0, 0}), std::nullopt);
    EXPECT_EQ(answerSignal(Bytes{0x13, 7, 2, 0, 0, 0}), std::nullopt);
}

} // namespace
} // namespace controller
