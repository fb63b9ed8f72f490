#include "scanner/bluez/assigned_numbers.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::bluez;

TEST(AssignedNumbers, AreReadFromUuidsOverTheBase) {
    EXPECT_EQ(assignedNumber("0000180a-0000-1000-8000-00805f9b34fb"), GattUuid{0x180A});
    EXPECT_EQ(assignedNumber("12345678-0000-1000-8000-00805F9B34FB"), GattUuid{0x12345678});
    EXPECT_EQ(assignedNumber("0000180a-0000-1000-8000-00805f9b34fc"), std::nullopt);
    EXPECT_EQ(assignedNumber("180a"), std::nullopt);
    EXPECT_EQ(assignedNumber(""), std::nullopt);
}

TEST(AssignedNumbers, OfClassicProfilesEndWhereGattBegins) {
    EXPECT_FALSE(isClassic(GattUuid{0x0FFF}));
    EXPECT_TRUE(isClassic(GattUuid{0x1000}));
    EXPECT_TRUE(isClassic(GattUuid{0x110A})); // audio source
    EXPECT_TRUE(isClassic(GattUuid{0x17FF}));
    EXPECT_FALSE(isClassic(GattUuid{0x1800}));
}
