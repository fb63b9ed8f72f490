#include "stage/staged_central.h"

#include "tests/support/world.h"

using namespace wegslot;

TEST(StagedCentral, KnowsWhatWasHeardOrNamedInOrderOfIds) {
    StagedCentral central;
    central.know(numbered(3));
    central.advertise({.id = numbered(1), .rssi = -60});
    central.connected(numbered(2)); // a callback makes nothing known
    EXPECT_EQ(central.retrieve({numbered(1), numbered(2), numbered(3)}),
              (std::vector{numbered(1), numbered(3)}));
}

TEST(StagedCentral, KeepsAStatePerPeripheral) {
    StagedCentral central;
    const Uuid id = numbered(1);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    central.connect(id);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connecting);
    central.connected(id);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::connected);
    central.cancelConnection(id);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
    central.connect(id);
    central.connectFailed(id);
    EXPECT_EQ(central.peripheralState(id), PeripheralState::disconnected);
}

TEST(StagedCentral, KeepsTheLastNameThatAnythingGave) {
    StagedCentral central;
    const Uuid id = numbered(1);
    EXPECT_EQ(central.peripheralName(id), std::nullopt);
    central.know(id, "een");
    central.advertise({.id = id, .rssi = -60});
    EXPECT_EQ(central.peripheralName(id), "een");
    central.advertise({.id = id, .rssi = -60, .peripheralName = ""});
    EXPECT_EQ(central.peripheralName(id), "");
    central.value(id, GattUuid{0x2A24}, std::nullopt, "twee");
    EXPECT_EQ(central.peripheralName(id), "twee");
}

TEST(StagedCentral, StateNameAndKnowledgeMoveToTheIdentity) {
    StagedCentral central;
    central.know(numbered(1), "een");
    central.connected(numbered(1));
    central.identify(numbered(1), numbered(2));
    EXPECT_EQ(central.retrieve({numbered(1), numbered(2)}), std::vector{numbered(2)});
    EXPECT_EQ(central.peripheralName(numbered(2)), "een");
    EXPECT_EQ(central.peripheralState(numbered(2)), PeripheralState::connected);
}
