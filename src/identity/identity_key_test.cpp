#include "identity/identity_key.h"

#include "scanner/bluez/device_id.h"
#include "tests/support/known_identities.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

std::string complaintOf(std::string_view text) {
    const auto pasted = readIdentity(text);
    return pasted ? "" : pasted.failure().message.builtIn();
}

const std::string propertyList = R"(<dict>
	<key>Public</key>
	<string>aa-bb-cc-dd-ee-01</string>
	<key>Remote IRK</key>
	<data>
	7AI0o1fIrQU0EBCmCjl9mw==
	</data>
</dict>)";

} // namespace

TEST(PastedIdentity, IsReadInEachFormThatASourceGives) {
    for (const std::string_view text :
         {"ec0234a357c8ad05341010a60a397d9b", "  EC0234A357C8AD05341010A60A397D9B\n",
          "ec:02:34:a3:57:c8:ad:05:34:10:10:a6:0a:39:7d:9b",
          "ec-02-34-a3-57-c8-ad-05-34-10-10-a6-0a-39-7d-9b",
          "ec 02 34 a3 57 c8 ad 05 34 10 10 a6 0a 39 7d 9b", "0xec0234a357c8ad05341010a60a397d9b",
          "irk:ec0234a357c8ad05341010a60a397d9b", "IRK: ec0234a357c8ad05341010a60a397d9b",
          "irk=ec0234a357c8ad05341010a60a397d9b", "Key=EC0234A357C8AD05341010A60A397D9B",
          "[IdentityResolvingKey]\nKey=EC0234A357C8AD05341010A60A397D9B\n",
          "\"IRK\"=hex:ec,02,34,a3,57,c8,ad,05,34,10,10,a6,\\\r\n  0a,39,7d,9b",
          "\"ec0234a357c8ad05341010a60a397d9b\"", "7AI0o1fIrQU0EBCmCjl9mw==",
          "<key>Remote IRK</key><data>7AI0o1fIrQU0EBCmCjl9mw==</data>"}) {
        const auto pasted = readIdentity(text);
        ASSERT_TRUE(pasted) << text << ": " << pasted.failure().message.builtIn();
        EXPECT_EQ(pasted->key, keyOf(phonesKey)) << text;
        EXPECT_FALSE(pasted->id) << text;
    }
}

TEST(PastedIdentity, OfAPropertyListBringsTheFixedAddressAlong) {
    const auto pasted = readIdentity(propertyList);
    ASSERT_TRUE(pasted) << pasted.failure().message.builtIn();
    EXPECT_EQ(pasted->key, keyOf(phonesKey));
    EXPECT_EQ(pasted->id, deviceId("AA:BB:CC:DD:EE:01", "public"));
    const auto inBytes = readIdentity("<key>Public</key><data>qrvM3e4B</data>"
                                      "<key>Remote IRK</key><data>7AI0o1fIrQU0EBCmCjl9mw==</data>");
    ASSERT_TRUE(inBytes);
    EXPECT_EQ(inBytes->id, pasted->id);
}

TEST(PastedIdentity, ThatBeginsLikeALabelIsReadWhole) {
    const auto pasted = readIdentity("irkeyAAAAAAAAAAAAAAAAA==");
    ASSERT_TRUE(pasted);
    EXPECT_EQ(pasted->key.bytes[0], 0x8A);
}

TEST(PastedIdentity, ThatIsNoneIsToldWhatIsWrongAndRepeatsNothingOfIt) {
    EXPECT_EQ(complaintOf(""), "er is geen identiteit gegeven");
    EXPECT_EQ(complaintOf(" irk: \n"), "er is geen identiteit gegeven");
    EXPECT_EQ(complaintOf("ec0234a357c8ad05341010a60a397d9"),
              "een identiteit heeft 32 hexadecimale cijfers; dit heeft er 31");
    EXPECT_EQ(complaintOf("ec0234a357c8ad05341010a60a397d9b00"),
              "een identiteit heeft 32 hexadecimale cijfers; dit heeft er 34");
    EXPECT_EQ(complaintOf("ec0234g357c8ad05341010a60a397d9b"),
              "dit is geen identiteit: teken 7 is geen hexadecimaal cijfer");
    EXPECT_EQ(complaintOf("7AI0o1fIrQU0EBCmCjl9mw"),
              "dit is geen identiteit: teken 3 is geen hexadecimaal cijfer");
    EXPECT_EQ(complaintOf("7AI0o1fIrQU0EBCmCjl9mx=="),
              "dit is geen identiteit: geen base64 van 16 bytes");
    EXPECT_EQ(complaintOf("<dict><key>Public</key><string>aa-bb</string></dict>"),
              "in dit stuk plist staat geen \"Remote IRK\"");
    EXPECT_EQ(complaintOf("<key>Public</key><string>aa-bb</string>"
                          "<key>Remote IRK</key><data>7AI0o1fIrQU0EBCmCjl9mw==</data>"),
              "in dit stuk plist staat bij \"Public\" geen Bluetooth-adres");
    EXPECT_EQ(complaintOf("00000000000000000000000000000000"),
              "dit is de lege identiteit: dit apparaat heeft er geen");
    EXPECT_EQ(complaintOf(std::string(longestPasted + 1, 'e')),
              "dit is geen identiteit: langer dan 16 kB");
}

TEST(IdentityKeyTest, GivesTheSameIdInEitherOrderAndAnotherToAnotherKey) {
    const auto other = readIdentity("9b7d390aa6101034 05adc857a33402ec");
    ASSERT_TRUE(other);
    EXPECT_EQ(keyOf(phonesKey).reversed(), other->key);
    EXPECT_EQ(keyOf(phonesKey).deviceId(), other->key.deviceId());
    EXPECT_NE(keyOf(phonesKey).deviceId(), keyOf("ec0234a357c8ad05341010a60a397d9c").deviceId());
    // Stored keys hold it.
    EXPECT_EQ(keyOf(phonesKey).deviceId().text(), "7EE91005-368B-5837-9892-338E953AC1E4");
}

TEST(IdentityKeyTest, IsWrittenAsItIsRead) {
    std::pmr::string text;
    keyOf(phonesKey).appendHexadecimal(text);
    EXPECT_EQ(text, phonesKey);
    EXPECT_FALSE(IdentityKey::fromHexadecimal("ec0234a357c8ad05341010a60a397d9"));
    EXPECT_FALSE(IdentityKey::fromHexadecimal("ec0234a357c8ad05341010a60a397d:b"));
}

TEST(IdentityKeyTest, LeavesNothingBehindWhereItWas) {
    alignas(IdentityKey) std::array<std::uint8_t, sizeof(IdentityKey)> place{};
    auto* const made = new (place.data()) IdentityKey(keyOf(phonesKey));
    ASSERT_EQ(place[0], 0xEC);
    made->~IdentityKey();
    EXPECT_EQ(place, (std::array<std::uint8_t, sizeof(IdentityKey)>{}));
}
