#include "model/settings.h"

#include "model/key_codec.h"
#include "tests/support/world.h"

#include <cmath>
#include <limits>

using namespace wegslot;

namespace {

/// Counts writes, to tell a write of an equal value from none.
class CountingStore final : public MemoryStore {
public:
    using MemoryStore::MemoryStore;

    void write(std::string_view name, PreferenceValue value) override {
        ++writes;
        MemoryStore::write(name, std::move(value));
    }

    int writes = 0;
};

struct SettingsTest : testing::Test {
    CountingStore store;
    Settings settings{store};

    double thresholdFor(std::optional<Dbm> rssi) {
        settings.keys.set({});
        settings.addKey({.id = numbered(1), .rssi = rssi});
        return settings.keys.get().at(0).threshold.value;
    }

    [[nodiscard]] std::string storedKeys() const { return store.data("keys")->bytes; }
};

const std::string validKeys = *encodeKeys({keyNamed("Telefoon", 1)});

} // namespace

TEST_F(SettingsTest, AFreshStoreYieldsTheDefaults) {
    EXPECT_TRUE(settings.enabled.get());
    EXPECT_TRUE(settings.keys.get().empty());
    EXPECT_EQ(settings.rule.get(), LockRule::allAway);
    EXPECT_EQ(settings.awayDelay.get(), Seconds{5});
    EXPECT_EQ(settings.lostTimeout.get(), Seconds{15});
    EXPECT_TRUE(settings.warningEnabled.get());
    EXPECT_EQ(settings.warningSeconds.get(), Seconds{5});
    EXPECT_TRUE(settings.pauseDuringMeetings.get());
    EXPECT_TRUE(settings.pauseWhileActive.get());
    EXPECT_FALSE(settings.showOtherDevices.get());
    EXPECT_EQ(store.writes, 0); // defaults are registered, not written
}

TEST_F(SettingsTest, EveryFieldIsWrittenThroughUnderItsName) {
    settings.enabled.set(false);
    settings.rule.set(LockRule::anyAway);
    settings.awayDelay.set(Seconds{7.5});
    settings.lostTimeout.set(Seconds{30});
    settings.warningEnabled.set(false);
    settings.warningSeconds.set(Seconds{10});
    settings.pauseDuringMeetings.set(false);
    settings.pauseWhileActive.set(false);
    settings.showOtherDevices.set(true);
    settings.keys.set({keyNamed("Telefoon", 1)});
    EXPECT_EQ(store.values(), (Preferences{{"enabled", false},
                                           {"rule", std::string("anyAway")},
                                           {"awayDelay", 7.5},
                                           {"lostTimeout", 30.0},
                                           {"warningEnabled", false},
                                           {"warningSeconds", 10.0},
                                           {"pauseDuringMeetings", false},
                                           {"pauseWhileActive", false},
                                           {"showOtherDevices", true},
                                           {"keys", Data{validKeys}}}));
    const Settings again{store};
    EXPECT_EQ(again.rule.get(), LockRule::anyAway);
    EXPECT_EQ(again.awayDelay.get(), Seconds{7.5});
    EXPECT_EQ(again.keys.get(), settings.keys.get());
    EXPECT_FALSE(again.enabled.get());
}

TEST_F(SettingsTest, ObserversAreToldBeforeTheValueIsStoredOrWritten) {
    bool storedThen = true;
    int writesThen = -1;
    const auto subscription = settings.enabled.onChange([&](bool) {
        storedThen = settings.enabled.get();
        writesThen = store.writes;
    });
    settings.enabled.set(false);
    EXPECT_TRUE(storedThen);
    EXPECT_EQ(writesThen, 0);
    EXPECT_EQ(store.writes, 1);
}

TEST_F(SettingsTest, AnyDoubleIsStoredAsItStands) {
    for (const double value : {-5.0, 1e300, 0.1}) {
        settings.awayDelay.set(Seconds{value});
        EXPECT_EQ(store.number("awayDelay"), value);
    }
    settings.awayDelay.set(Seconds{std::numeric_limits<double>::quiet_NaN()});
    EXPECT_TRUE(std::isnan(store.number("awayDelay")));
}

TEST_F(SettingsTest, TheStartingThresholdIs15BelowTheSignalWithinItsRange) {
    EXPECT_EQ(thresholdFor(Dbm{-40}), -65);
    EXPECT_EQ(thresholdFor(Dbm{-70}), -85);
    EXPECT_EQ(thresholdFor(Dbm{-80}), -90);
    EXPECT_EQ(thresholdFor(std::nullopt), -75);
    EXPECT_EQ(thresholdFor(Dbm{-52.5}), -68); // -67.5, halves away from zero
    // The bounds in threes.
    EXPECT_EQ(thresholdFor(Dbm{-51}), -66);
    EXPECT_EQ(thresholdFor(Dbm{-50}), -65);
    EXPECT_EQ(thresholdFor(Dbm{-49}), -65);
    EXPECT_EQ(thresholdFor(Dbm{-74}), -89);
    EXPECT_EQ(thresholdFor(Dbm{-75}), -90);
    EXPECT_EQ(thresholdFor(Dbm{-76}), -90);
}

TEST_F(SettingsTest, AKeyCopiesWhatIsKnownOfTheDevice) {
    settings.addKey({.id = numbered(7),
                     .continuityType = 0x10,
                     .rssi = Dbm{-60},
                     .name = std::nullopt,
                     .model = "iPhone14,2"});
    EXPECT_EQ(settings.keys.get(), (std::vector{KeyDevice{.id = numbered(7),
                                                          .name = "iPhone",
                                                          .model = "iPhone14,2",
                                                          .isApple = true,
                                                          .threshold = Dbm{-75}}}));
}

TEST_F(SettingsTest, NewKeysComeAtTheEnd) {
    settings.addKey({.id = numbered(9), .name = "eerste"});
    settings.addKey({.id = numbered(1), .name = "tweede"});
    EXPECT_EQ(settings.keys.get().at(0).name, "eerste");
    EXPECT_EQ(settings.keys.get().at(1).name, "tweede");
    EXPECT_EQ(settings.keys.get().at(1).isApple, false);
}

TEST_F(SettingsTest, AddingAKeyTwiceChangesAndWritesNothing) {
    settings.addKey({.id = numbered(1), .name = "eerste"});
    const auto before = settings.keys.get();
    settings.addKey({.id = numbered(1), .name = "tweede"});
    EXPECT_EQ(settings.keys.get(), before);
    EXPECT_EQ(store.writes, 1);
}

TEST_F(SettingsTest, AThresholdIsRoundedAndNotClamped) {
    settings.addKey({.id = numbered(1)});
    settings.setThreshold(Dbm{-71.5}, numbered(1));
    EXPECT_EQ(settings.keys.get().at(0).threshold, Dbm{-72});
    settings.setThreshold(Dbm{-20}, numbered(1));
    EXPECT_EQ(settings.keys.get().at(0).threshold, Dbm{-20});
    EXPECT_NE(storedKeys().find("\"threshold\":-20}"), std::string::npos);
    EXPECT_EQ(store.writes, 3);
}

TEST_F(SettingsTest, AThresholdOfAnUnknownKeyWritesNothing) {
    settings.setThreshold(Dbm{-70}, numbered(1));
    EXPECT_EQ(store.writes, 0);
}

TEST_F(SettingsTest, AThresholdThatCannotBeEncodedStaysInMemoryAndOutOfTheStore) {
    settings.addKey({.id = numbered(1)});
    const std::string before = storedKeys();
    settings.setThreshold(Dbm{std::numeric_limits<double>::quiet_NaN()}, numbered(1));
    EXPECT_TRUE(std::isnan(settings.keys.get().at(0).threshold.value));
    EXPECT_EQ(storedKeys(), before);
}

TEST_F(SettingsTest, RemovingKeepsTheOrderOfTheOthersAndAlwaysWrites) {
    for (const unsigned number : {3U, 1U, 2U})
        settings.addKey({.id = numbered(number)});
    settings.removeKey(numbered(1));
    EXPECT_EQ(settings.keys.get().at(0).id, numbered(3));
    EXPECT_EQ(settings.keys.get().at(1).id, numbered(2));
    EXPECT_EQ(store.writes, 4);
    settings.removeKey(numbered(1));
    EXPECT_EQ(settings.keys.get().size(), 2U);
    EXPECT_EQ(store.writes, 5);
}

TEST_F(SettingsTest, AKeyIsPutBackWhereItStoodAndOnlyIfItIsNone) {
    for (const unsigned number : {3U, 1U, 2U})
        settings.addKey({.id = numbered(number)});
    const auto all = settings.keys.get();
    for (const std::size_t place : {0U, 1U, 2U}) {
        settings.removeKey(all.at(place).id);
        settings.insertKey(all.at(place), place);
        EXPECT_EQ(settings.keys.get(), all) << place;
        settings.insertKey(all.at(place), 0);
        EXPECT_EQ(settings.keys.get(), all) << place;
    }
    settings.removeKey(all.at(2).id);
    settings.insertKey(all.at(2), 9);
    EXPECT_EQ(settings.keys.get(), all);
}

TEST_F(SettingsTest, AKeyThatIsAnotherDeviceThanThoughtKeepsWhatBelongsToIt) {
    settings.addKey({.id = numbered(1)});
    settings.setThreshold(Dbm{-62}, numbered(1));
    settings.moveKey(numbered(1), numbered(2));
    ASSERT_EQ(settings.keys.get().size(), 1U);
    EXPECT_EQ(settings.keys.get().front().id, numbered(2));
    EXPECT_EQ(settings.keys.get().front().threshold, Dbm{-62});
    settings.moveKey(numbered(1), numbered(3)); // none any more
    EXPECT_EQ(settings.keys.get().front().id, numbered(2));
    settings.addKey({.id = numbered(4)});
    settings.moveKey(numbered(4), numbered(2));
    EXPECT_EQ(settings.keys.get().size(), 1U);
}

TEST(StoredSettings, AKeyListThatCannotBeDecodedLoadsAsEmptyAndStaysStored) {
    const std::string broken =
        R"([{"id":"0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6","name":"Telefoon"}])";
    MemoryStore store{{{"keys", Data{broken}}}};
    Settings settings{store};
    EXPECT_TRUE(settings.keys.get().empty());
    EXPECT_EQ(store.data("keys"), Data{broken});
    settings.keys.set({});
    EXPECT_EQ(store.data("keys"), Data{"[]"});
}

TEST(StoredSettings, ARecordWithoutModelAndMakerLoadsWithoutThem) {
    MemoryStore store{
        {{"keys",
          Data{
              R"([{"id":"00000000-0000-0000-0000-000000000001","name":"Tag","threshold":-70}])"}}}};
    const Settings settings{store};
    ASSERT_EQ(settings.keys.get().size(), 1U);
    EXPECT_EQ(settings.keys.get()[0].model, std::nullopt);
    EXPECT_EQ(settings.keys.get()[0].isApple, std::nullopt);
}

TEST(StoredSettings, ARuleInTheWrongCaseLoadsAsAllAway) {
    for (const char* const text : {"AnyAway", "", "anyaway", "iets"}) {
        MemoryStore store{{{"rule", std::string(text)}}};
        EXPECT_EQ(Settings{store}.rule.get(), LockRule::allAway) << text;
    }
    MemoryStore store{{{"rule", std::string("anyAway")}}};
    EXPECT_EQ(Settings{store}.rule.get(), LockRule::anyAway);
}

TEST(StoredSettings, AValueOfAnotherTypeReadsAsTheDefault) {
    MemoryStore store{{{"enabled", 0.0}, {"awayDelay", std::string("9")}, {"keys", true}}};
    const Settings settings{store};
    EXPECT_TRUE(settings.enabled.get());
    EXPECT_EQ(settings.awayDelay.get(), Seconds{5});
    EXPECT_TRUE(settings.keys.get().empty());
}
