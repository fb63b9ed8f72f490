// A phone that has connected, and the packets that reach the kernel from it.
#include "central.h"

#include <gtest/gtest.h>

#include "link.h"

namespace controller {
namespace {

constexpr std::uint8_t mtuRequest = 0x02;
constexpr std::uint8_t pairingRequest = 0x01;
constexpr EncryptionKey kept{.key = {5, 6, 7}, .diversifier = 9};

/// Whose link it is does not matter here.
struct Nobody final : Peer {
    int linkRssi() const override { return 0; }

    void linked(Link&) override {}

    void unlinked() override {}

    void receive(const Frame&) override {}

    bool agreesOn(const EncryptionKey&) override { return false; }

    void encrypted() override {}

    void encryptionRefused() override {}
};

struct CentralTest : testing::Test {
    Central make(const CentralHabits& habits) {
        return {{.address = {}, .resolvingKey = Key{1}}, habits, 247, bond};
    }

    /// What was said last on this channel; nothing if it was on another, or an event.
    std::optional<Bytes> lastOn(Channel channel) const {
        constexpr std::size_t header = 9; // of the packet and of the frame
        if (sent.empty() || sent.back().size() < header || sent.back()[0] != 0x02 ||
            read16(sent.back(), 7) != static_cast<std::uint16_t>(channel))
            return std::nullopt;
        return Bytes(sent.back().begin() + header, sent.back().end());
    }

    bool isKeyAskedFor() const { return !sent.empty() && sent.back()[0] == 0x04; }

    bool pairs() const {
        const std::optional<Bytes> last = lastOn(Channel::Security);
        return last && last->front() == pairingRequest;
    }

    bool looks() const {
        const std::optional<Bytes> last = lastOn(Channel::Attributes);
        return last && last->front() == mtuRequest;
    }

    /// As a heart rate monitor whose one value is protected.
    static void refuse(Central& central) {
        central.receiveAttribute(Bytes{0x03, 247, 0});
        central.receiveAttribute(Bytes{0x11, 6, 1, 0, 0xFF, 0xFF, 0x0D, 0x18});
        central.receiveAttribute(Bytes{0x09, 7, 2, 0, 0x02, 3, 0, 0x38, 0x2A});
        central.receiveAttribute(Bytes{0x01, 0x08, 4, 0, 0x0A});
        central.receiveAttribute(Bytes{0x01, 0x0A, 3, 0, 0x0F});
    }

    std::vector<Bytes> sent;
    Outbox outbox{[this](ByteView packet) { sent.emplace_back(packet.begin(), packet.end()); }};
    Nobody nobody;
    Bond bond;
    Link link{1, {.own = {}, .peer = {}, .role = LinkRole::Peripheral}, nobody, outbox};
};

TEST_F(CentralTest, AStrangerLooksFirstAndPairsWhenItIsRefused) {
    Central phone = make({});
    phone.begin(link);
    EXPECT_TRUE(looks());
    refuse(phone);
    EXPECT_TRUE(pairs());
}

TEST_F(CentralTest, OneThatPairsAtOnceLooksAtNothingBefore) {
    Central phone = make({.pairs = CentralHabits::Pairs::AtOnce});
    phone.begin(link);
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_TRUE(pairs());
}

TEST_F(CentralTest, OneThatWaitsPairsWhenItIsAskedTo) {
    Central phone = make({.pairs = CentralHabits::Pairs::WhenAsked});
    phone.begin(link);
    refuse(phone);
    EXPECT_FALSE(pairs());
    phone.receiveSecurity(Bytes{0x0B, 0x01});
    EXPECT_TRUE(pairs());
}

TEST_F(CentralTest, OneThatPairsAlreadyIsNotAskedTwice) {
    Central phone = make({.pairs = CentralHabits::Pairs::AtOnce});
    phone.begin(link);
    phone.receiveSecurity(Bytes{0x0B, 0x01});
    EXPECT_EQ(sent.size(), 1U);
}

TEST_F(CentralTest, WithABondItAsksForItsKeyAndLooksOnceThatIsUsed) {
    bond.asCentral = kept;
    Central phone = make({});
    phone.begin(link);
    EXPECT_TRUE(isKeyAskedFor());
    EXPECT_EQ(link.takeKeyAskedFor(), kept.key);
    phone.encrypted();
    EXPECT_TRUE(looks());
}

TEST_F(CentralTest, ABondThatTheOtherHasLostIsReplaced) {
    bond.asCentral = kept;
    Central phone = make({});
    phone.begin(link);
    phone.encryptionRefused();
    EXPECT_TRUE(phone.wasBondRefused());
    EXPECT_TRUE(looks());
    refuse(phone);
    EXPECT_TRUE(pairs());
}

TEST_F(CentralTest, AnOwnerWhoIsAskedNothingHasNothingToAnswer) {
    Central phone = make({});
    phone.begin(link);
    EXPECT_FALSE(phone.answer({}));
}

TEST_F(CentralTest, ALinkThatIsLostLeavesNoPairingUnderWay) {
    Central phone = make({.pairs = CentralHabits::Pairs::AtOnce});
    phone.begin(link);
    phone.unlinked();
    EXPECT_FALSE(phone.pairing().isUnderWay());
    phone.pair();
    EXPECT_EQ(sent.size(), 1U);
}

} // namespace
} // namespace controller
