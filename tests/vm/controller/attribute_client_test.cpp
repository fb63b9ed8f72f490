// Asks a real server, with the services of a heart rate monitor.
#include "attribute_client.h"

#include <gtest/gtest.h>

#include "attribute_server.h"

namespace controller {
namespace {

Bytes numberOf(unsigned value) {
    Bytes bytes;
    append16(bytes, value);
    return bytes;
}

/// Three services, of which the second is that of the heart rate: what is measured, and where.
AttributeTable monitor() {
    const auto service = static_cast<std::uint16_t>(Declaration::PrimaryService);
    const auto characteristic = static_cast<std::uint16_t>(Declaration::Characteristic);
    AttributeTable table;
    table.add({.handle = 1, .type = service, .value = numberOf(0x1800)});
    table.add({.handle = 5, .type = service, .value = numberOf(0x180D)});
    table.add({.handle = 6, .type = characteristic, .value = {0x10, 7, 0, 0x37, 0x2A}});
    table.add({.handle = 7, .type = 0x2A37, .value = {}, .reading = Reading::Never});
    table.add({.handle = 8, .type = characteristic, .value = {0x02, 9, 0, 0x38, 0x2A}});
    table.add({.handle = 9, .type = 0x2A38, .value = {1}, .reading = Reading::WhenEncrypted});
    table.add({.handle = 20, .type = service, .value = numberOf(0x180A)});
    return table;
}

struct AttributeClientTest : testing::Test {
    /// Until it has nothing more to ask.
    void talk(std::optional<Bytes> question, LinkSecurity security = LinkSecurity::Plain) {
        while (question)
            question = client.receive(server.answer(*question, security).value());
    }

    AttributeClient client{247};
    AttributeServer server{monitor(), 247};
};

TEST_F(AttributeClientTest, SeesEveryServiceAndIsRefusedWhatIsProtected) {
    talk(client.start());
    EXPECT_EQ(client.services(), (std::vector<std::uint16_t>{0x1800, 0x180D, 0x180A}));
    EXPECT_TRUE(client.isRefused());
    EXPECT_EQ(client.sensorLocation(), std::nullopt);
}

TEST_F(AttributeClientTest, AsksAgainForWhatItWasRefused) {
    talk(client.start());
    talk(client.askAgain(), LinkSecurity::Encrypted);
    EXPECT_FALSE(client.isRefused());
    EXPECT_EQ(client.sensorLocation(), Bytes{1});
    EXPECT_EQ(client.askAgain(), std::nullopt);
}

TEST_F(AttributeClientTest, AsksOneThingAtATime) {
    client.start();
    EXPECT_EQ(client.askAgain(), std::nullopt);
}

TEST_F(AttributeClientTest, WithoutAHeartRateThereIsNothingToAskFor) {
    AttributeTable table;
    table.add({.handle = 1,
               .type = static_cast<std::uint16_t>(Declaration::PrimaryService),
               .value = numberOf(0x1800)});
    server.replaceTable(table);
    talk(client.start());
    EXPECT_EQ(client.services(), (std::vector<std::uint16_t>{0x1800}));
    EXPECT_EQ(client.askAgain(), std::nullopt);
}

TEST_F(AttributeClientTest, ARefusalThatPairingDoesNotCureIsNone) {
    client.start();
    client.receive(Bytes{0x03, 0xF7, 0x00});
    client.receive(Bytes{0x11, 6, 1, 0, 0xFF, 0xFF, 0x0D, 0x18});
    client.receive(Bytes{0x09, 7, 2, 0, 0x02, 0xFF, 0xFF, 0x38, 0x2A});
    client.receive(Bytes{0x01, 0x0A, 0xFF, 0xFF, 0x0E});
    EXPECT_FALSE(client.isRefused());
    EXPECT_TRUE(client.askAgain());
}

TEST_F(AttributeClientTest, AListThatContradictsItselfEndsTheSearch) {
    client.start();
    client.receive(Bytes{0x03, 0xF7, 0x00});
    EXPECT_EQ(client.receive(Bytes{0x11, 7, 1, 0, 9, 0, 0x0D, 0x18, 0}), std::nullopt);
    EXPECT_EQ(client.receive(Bytes{0x11, 0x00, 0x01}), std::nullopt);
    EXPECT_EQ(client.receive(Bytes{0x11}), std::nullopt);
    EXPECT_EQ(client.receive(Bytes{}), std::nullopt);
}

TEST_F(AttributeClientTest, TellsAnswersFromQuestions) {
    EXPECT_TRUE(AttributeClient::isForClient(Bytes{0x01, 0x0A, 3, 0, 0x0F}));
    EXPECT_TRUE(AttributeClient::isForClient(Bytes{0x1B, 7, 0, 60}));
    EXPECT_FALSE(AttributeClient::isForClient(Bytes{0x0A, 3, 0}));
    EXPECT_FALSE(AttributeClient::isForClient(Bytes{}));
}

} // namespace
} // namespace controller
