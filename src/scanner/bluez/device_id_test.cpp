#include "scanner/bluez/device_id.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(DeviceId, IsTheNameBasedUuidOfTheStandard) {
    // RFC 9562, appendix A.4: "www.example.com" in the namespace of domain names.
    const Uuid domains = *Uuid::parse("6BA7B810-9DAD-11D1-80B4-00C04FD430C8");
    EXPECT_EQ(nameBased(domains, "www.example.com").text(), "2ED6657D-E927-568B-95E1-2665A8AEA6A2");
}

TEST(DeviceId, DependsOnAddressAndTypeAndNothingElse) {
    const Uuid id = deviceId("AA:BB:CC:DD:EE:FF", "public");
    EXPECT_EQ(deviceId("aa:bb:cc:dd:ee:ff", "public"), id);
    EXPECT_NE(deviceId("AA:BB:CC:DD:EE:FF", "random"), id);
    EXPECT_NE(deviceId("AA:BB:CC:DD:EE:FE", "public"), id);
}

TEST(DeviceId, NeverChangesBetweenVersions) {
    // Stored keys hold these: a change here makes every one of them a stranger.
    EXPECT_EQ(deviceId("AA:BB:CC:DD:EE:FF", "public").text(),
              "0474E8CB-39ED-5E26-A69F-B722957B753A");
}

TEST(DeviceId, OnlyPublicAndStaticAddressesStay) {
    EXPECT_FALSE(isChangingAddress("00:11:22:33:44:55", "public"));
    EXPECT_FALSE(isChangingAddress("C0:00:00:00:00:01", "random"));
    EXPECT_FALSE(isChangingAddress("ff:11:22:33:44:55", "random"));
    EXPECT_TRUE(isChangingAddress("BF:11:22:33:44:55", "random")); // reserved
    EXPECT_TRUE(isChangingAddress("7F:11:22:33:44:55", "random")); // resolvable
    EXPECT_TRUE(isChangingAddress("40:11:22:33:44:55", "random"));
    EXPECT_TRUE(isChangingAddress("3F:11:22:33:44:55", "random")); // not resolvable
    EXPECT_TRUE(isChangingAddress("", "random"));
}
