#include "trace/disguise.h"

#include "model/key_codec.h"
#include "scanner/model_identifier.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

struct DisguiseTest : testing::Test {
    unsigned given = 1000;
    Disguise disguise{[this] { return numbered(++given); }};

    template <typename Event>
    Event masked(Event event) {
        return std::get<Event>(disguise.disguised(std::move(event)));
    }

    [[nodiscard]] std::optional<std::string> nameOf(unsigned device, std::string name) {
        return masked(trace::Known{numbered(device), std::move(name)}).name;
    }
};

trace::SettingsChange withKeys(const std::vector<KeyDevice>& keys) {
    return {{{"keys", Data{encodeKeys(keys).value()}}, {"awayDelay", 5.0}}};
}

} // namespace

TEST_F(DisguiseTest, AnIdBecomesTheSameOneWhereverItStands) {
    const Uuid id = numbered(1);
    const Uuid other = masked(trace::Connected{id}).id;
    EXPECT_NE(other, id);
    EXPECT_EQ(masked(trace::Known{id, {}}).id, other);
    EXPECT_EQ(masked(trace::Heard{.id = id, .rssi = -50}).id, other);
    EXPECT_EQ(masked(trace::ConnectFailed{id}).id, other);
    EXPECT_EQ(masked(trace::Disconnected{id, {}}).id, other);
    EXPECT_EQ(masked(trace::RssiRead{id, -40}).id, other);
    EXPECT_EQ(masked(trace::Services{id, {}}).id, other);
    EXPECT_EQ(masked(trace::Characteristics{id, {}}).id, other);
    EXPECT_EQ(masked(trace::Value{.id = id, .characteristic = GattUuid{1}}).id, other);
    EXPECT_EQ(masked(trace::AddKey{id}).value, other);
    EXPECT_EQ(masked(trace::RemoveKey{id}).value, other);
    EXPECT_EQ(masked(trace::SetThreshold{id, Dbm{-70}}).id, other);
    EXPECT_EQ(masked(trace::Identity{id, numbered(2)}).from, other);
    EXPECT_EQ(masked(trace::Identity{numbered(2), id}).to, other);
    EXPECT_NE(masked(trace::Connected{numbered(2)}).id, other);
}

TEST_F(DisguiseTest, DevicesAreNumberedInTheOrderInWhichTheirNamesAppear) {
    EXPECT_EQ(nameOf(7, "Telefoon van Jan"), "Apparaat 1");
    EXPECT_EQ(nameOf(3, "Horloge"), "Apparaat 2");
    EXPECT_EQ(nameOf(7, "Telefoon van Piet"), "Apparaat 1");
}

TEST_F(DisguiseTest, WhatHasNoNameKeepsNoneAndTakesNoNumber) {
    EXPECT_EQ(nameOf(1, ""), "");
    EXPECT_EQ(masked(trace::Known{numbered(1), {}}).name, std::nullopt);
    EXPECT_EQ(nameOf(2, "Horloge"), "Apparaat 1");
    EXPECT_EQ(nameOf(1, "Telefoon"), "Apparaat 2");
}

TEST_F(DisguiseTest, AKeyHasTheIdAndTheNameOfItsDevice) {
    const auto heard = masked(trace::Heard{.id = numbered(1), .rssi = -50, .localName = "Tag"});
    EXPECT_EQ(heard.localName, "Apparaat 1");
    KeyDevice key = keyNamed("Mijn tag", 1);
    key.model = "iPhone14,2";
    const auto change = masked(withKeys({key, keyNamed("", 2)}));
    EXPECT_EQ(std::get<double>(change.value.at("awayDelay")), 5);
    const auto keys = decodeKeys(std::get<Data>(change.value.at("keys")).bytes).value();
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].id, heard.id);
    EXPECT_EQ(keys[0].name, "Apparaat 1");
    EXPECT_EQ(keys[0].model, "iPhone14,2");
    EXPECT_EQ(keys[0].isApple, true);
    EXPECT_EQ(keys[0].threshold, Dbm{-75});
    EXPECT_EQ(keys[1].name, "");
}

TEST_F(DisguiseTest, OfTheMakersDataTheTypeIsLeft) {
    const auto left = [this](std::vector<std::uint8_t> data) {
        return *masked(trace::Heard{
                           .id = numbered(1), .rssi = -50, .manufacturerData = std::move(data)})
                    .manufacturerData;
    };
    using Bytes = std::vector<std::uint8_t>;
    EXPECT_EQ(left({0x4C, 0x00, 0x10, 0x05, 0xAB, 0xCD}), (Bytes{0x4C, 0x00, 0x10}));
    EXPECT_EQ(left({0x4C, 0x00}), (Bytes{0x4C, 0x00}));
    EXPECT_EQ(left({0x06, 0x00, 0x10, 0x05}), (Bytes{0x06, 0x00}));
    EXPECT_EQ(left({0x4C, 0x01, 0x10}), (Bytes{0x4C, 0x01}));
    EXPECT_EQ(left({0x4C}), (Bytes{0x4C}));
    EXPECT_EQ(left({}), Bytes{});
}

TEST_F(DisguiseTest, OnlyTheModelIsLeftOfWhatWasRead) {
    EXPECT_EQ(masked(trace::Value{.id = numbered(1),
                                  .characteristic = ModelIdentifier::modelCharacteristic,
                                  .value = "iPhone14,2",
                                  .name = "Telefoon van Jan"})
                  .value,
              "iPhone14,2");
    EXPECT_EQ(masked(trace::Value{.id = numbered(1),
                                  .characteristic = GattUuid{0x2A00},
                                  .value = "Telefoon van Jan"})
                  .value,
              std::nullopt);
}

TEST_F(DisguiseTest, ApplicationsAreNumbered) {
    EXPECT_EQ(masked(trace::Microphone{"Vergaderen"}).value, "App 1");
    EXPECT_EQ(masked(trace::Microphone{"Opname"}).value, "App 2");
    EXPECT_EQ(masked(trace::Microphone{"Vergaderen"}).value, "App 1");
    EXPECT_EQ(masked(trace::Microphone{""}).value, "");
    EXPECT_EQ(masked(trace::Microphone{std::nullopt}).value, std::nullopt);
}

TEST_F(DisguiseTest, AReasonThatNamesSomebodyIsReplaced) {
    EXPECT_EQ(nameOf(1, "Telefoon van Jan"), "Apparaat 1");
    const auto reason = [this](std::string text) {
        return masked(trace::Disconnected{numbered(1), std::move(text)}).error;
    };
    EXPECT_EQ(reason("geen antwoord meer"), "geen antwoord meer");
    EXPECT_EQ(reason("reden 0x3B"), "reden 0x3B");
    for (const char* const telling :
         {"Telefoon van Jan ging uit", "AA:BB:CC:DD:EE:01 ging uit", "dev_aa_bb_cc ging uit",
          "0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6"}) {
        EXPECT_EQ(reason(telling), "onbekende reden") << telling;
        EXPECT_EQ(masked(trace::ConnectFailed{numbered(1), telling}).error, "onbekende reden");
        EXPECT_EQ(masked(trace::RssiRead{numbered(1), {}, telling}).error, "onbekende reden");
    }
    EXPECT_EQ(masked(trace::Disconnected{numbered(1), {}}).error, std::nullopt);
}

TEST_F(DisguiseTest, WhoTurnsOutToBeAnotherKeepsOneName) {
    EXPECT_EQ(nameOf(1, "Telefoon"), "Apparaat 1");
    static_cast<void>(masked(trace::Identity{numbered(1), numbered(2)}));
    EXPECT_EQ(nameOf(2, "Telefoon"), "Apparaat 1");
    EXPECT_EQ(nameOf(3, "Horloge"), "Apparaat 2");
    static_cast<void>(masked(trace::Identity{numbered(2), numbered(3)}));
    EXPECT_EQ(nameOf(3, "Horloge"), "Apparaat 2");
}
