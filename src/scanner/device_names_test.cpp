#include "scanner/device_names.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(DeviceNames, ModelsHaveFamilies) {
    EXPECT_EQ(DeviceNames::friendly("iPhone14,2"), "iPhone");
    EXPECT_EQ(DeviceNames::friendly("Watch6,1"), "Apple Watch");
    EXPECT_EQ(DeviceNames::friendly("iPad8,1"), "iPad");
    EXPECT_EQ(DeviceNames::friendly("AudioAccessory5,1"), "HomePod");
    EXPECT_EQ(DeviceNames::friendly("AppleTV11,1"), "Apple TV");
}

TEST(DeviceNames, MacIsFoundAnywhereInTheModel) {
    EXPECT_EQ(DeviceNames::friendly("MacBookPro18,1"), "Mac");
    EXPECT_EQ(DeviceNames::friendly("iMac21,1"), "Mac");
}

TEST(DeviceNames, AnUnknownModelIsItsOwnName) {
    EXPECT_EQ(DeviceNames::friendly("Foo1,1"), "Foo1,1");
    EXPECT_EQ(DeviceNames::friendly("xiPhone"), "xiPhone"); // a prefix, not a part
    EXPECT_EQ(DeviceNames::friendly("watch1"), "watch1");   // case-sensitive
    EXPECT_EQ(DeviceNames::friendly(""), "");
}

TEST(DeviceNames, WithoutNameAndModelTheSymbolIsTheRadioWaves) {
    EXPECT_EQ(DeviceNames::symbol({}, {}), "dot.radiowaves.left.and.right");
    EXPECT_EQ(DeviceNames::symbol("Tag", {}), "dot.radiowaves.left.and.right");
}

TEST(DeviceNames, TheSymbolComesFromNameOrModelInAnyCase) {
    EXPECT_EQ(DeviceNames::symbol("Viopakza's iPhone", {}), "iphone");
    EXPECT_EQ(DeviceNames::symbol({}, "IPHONE14,2"), "iphone");
    EXPECT_EQ(DeviceNames::symbol("Mijn iPad", {}), "ipad");
    EXPECT_EQ(DeviceNames::symbol({}, "iMac21,1"), "laptopcomputer");
    EXPECT_EQ(DeviceNames::symbol("Watch", "Watch6,1"), "applewatch");
}

TEST(DeviceNames, AWatchWinsOverAPhone) {
    EXPECT_EQ(DeviceNames::symbol("iPhone van Watchman", {}), "applewatch");
    EXPECT_EQ(DeviceNames::symbol("iPhone", "Watch6,1"), "applewatch");
}

TEST(DeviceNames, MacMatchesInsideAnyWord) {
    EXPECT_EQ(DeviceNames::symbol("Macro-speaker", {}), "laptopcomputer");
}

TEST(DeviceNames, NameAndModelDoNotRunTogether) {
    EXPECT_EQ(DeviceNames::symbol("wat", "ch"), "dot.radiowaves.left.and.right");
}
