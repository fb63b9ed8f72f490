#include "ui/key_row.h"

#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::panel;

namespace {

KeyFacts phone() {
    return {.key = keyNamed("Mijn iPhone", 7),
            .rssi = Dbm{-60},
            .state = KeyState::near,
            .isHeardOverConnection = true};
}

KeyFacts withThreshold(double value) {
    KeyFacts facts = phone();
    facts.key.threshold = Dbm{value};
    return facts;
}

} // namespace

TEST(KeyRow, APastedKeySaysSoAndWhatToDoUntilItIsHeard) {
    KeyFacts facts = phone();
    facts.key.isApple = false;
    facts.key.isPasted = true;
    EXPECT_EQ(keyRow(facts).note, "Identiteit geplakt, alleen luisteren");
    EXPECT_EQ(keyRow(facts).trouble, "");
    facts.isUnheard = true;
    EXPECT_EQ(keyRow(facts).trouble, "Nog niet gehoord, ontgrendel het apparaat");
    facts.key.isPasted = false;
    EXPECT_EQ(keyRow(facts).trouble, "");
}

TEST(KeyRow, AKeyThatIsHeardShowsAllOfIt) {
    EXPECT_EQ(keyRow(phone()),
              (KeyRow{.id = numbered(7),
                      .symbol = "iphone",
                      .symbolColor = brand::navy,
                      .name = "Mijn iPhone",
                      .note = "",
                      .badge = {"Dichtbij", brand::success},
                      .remove = {"xmark.circle.fill", "", "Verwijder deze sleutel"},
                      .trouble = "",
                      .signal = "Nu -60 dBm",
                      .link = "verbonden",
                      .limit = "Lockt onder -75 dBm",
                      .bar = signalBar(Dbm{-60}, Dbm{-75}),
                      .farEnd = "Ver",
                      .threshold = {Dbm{-75}},
                      .nearEnd = "Dichtbij",
                      .setFromHere = Button{"", "Stel in vanaf hier",
                                            "Zet de drempel 15 dBm onder het huidige signaal. Doe "
                                            "dit terwijl je achter je Mac zit."}}));
}

TEST(KeyRow, WhatTheThresholdWasSetToAddsUpWithTheNumbersOfTheRow) {
    const auto said = [](double threshold, double signal) {
        KeyFacts facts = withThreshold(threshold);
        facts.justSetBy = Dbm{signal};
        return keyRow(facts).justSet;
    };
    EXPECT_EQ(said(-65, -47), "Drempel -65 dBm, 18 dB onder nu");
    EXPECT_EQ(said(-66, -50.5), "Drempel -66 dBm, 16 dB onder nu"); // it says: Nu -50 dBm
    EXPECT_EQ(said(-90, -90), "Drempel -90 dBm, 0 dB onder nu");
    EXPECT_EQ(said(-90, -93), "Drempel -90 dBm, 3 dB boven nu");
    EXPECT_EQ(keyRow(phone()).justSet, "");
}

TEST(KeyRow, AKeyThatIsNotHeardKeepsItsBadgeAndHasNothingToSetFrom) {
    KeyFacts facts = phone();
    facts.rssi.reset();
    facts.state = KeyState::leaving;
    const KeyRow row = keyRow(facts);
    EXPECT_EQ(row.signal, "Geen signaal");
    EXPECT_FALSE(row.bar.fill);
    EXPECT_FALSE(row.setFromHere);
    EXPECT_EQ(row.badge.text, "Zwak");
    EXPECT_EQ(row.limit, "Lockt onder -75 dBm");
}

TEST(KeyRow, TheBadgeFollowsTheJudgement) {
    const auto badge = [](std::optional<KeyState> state) {
        KeyFacts facts = phone();
        facts.state = state;
        return keyRow(facts).badge;
    };
    EXPECT_EQ(badge(KeyState::near), (Badge{"Dichtbij", brand::success}));
    EXPECT_EQ(badge(KeyState::leaving), (Badge{"Zwak", brand::orange}));
    EXPECT_EQ(badge(KeyState::away), (Badge{"Weg", brand::lila}));
    EXPECT_EQ(badge(std::nullopt), (Badge{"Weg", brand::lila}));
    EXPECT_EQ(badge(KeyState::near).ground(), (Color{43, 182, 115, 0.14}));
}

TEST(KeyRow, OnlyAKeyThatIsKnownToBeForeignIsCalledSoHoweverItIsHeard) {
    for (const bool overConnection : {false, true}) {
        const auto row = [&](std::optional<bool> isApple) {
            KeyFacts facts = phone();
            facts.key.isApple = isApple;
            facts.isHeardOverConnection = overConnection;
            return keyRow(facts);
        };
        EXPECT_EQ(row(false).note, "Ander merk, alleen luisteren");
        EXPECT_EQ(row(std::nullopt).note, "");
        EXPECT_EQ(row(true).note, "");
        // What is said of the connection stands elsewhere, and says nothing of the make.
        for (const auto isApple :
             {std::optional<bool>(), std::optional(false), std::optional(true)})
            EXPECT_EQ(row(isApple).link, overConnection ? "verbonden" : "");
    }
}

TEST(KeyRow, AKeyThatLostItsBondSaysSo) {
    KeyFacts facts = phone();
    facts.isHeardOverConnection = false;
    facts.changesAddress = true;
    const KeyRow row = keyRow(facts);
    EXPECT_EQ(row.trouble, "Wisselt van adres, koppel opnieuw");
    EXPECT_EQ(row.troubleColor, brand::danger);
    EXPECT_EQ(row.link, "");
}

TEST(KeyRow, TheSymbolIsThatOfNameAndModel) {
    KeyFacts facts = phone();
    facts.key.name = "Sleutelbos";
    EXPECT_EQ(keyRow(facts).symbol, "dot.radiowaves.left.and.right");
    facts.key.model = "Watch6,1";
    EXPECT_EQ(keyRow(facts).symbol, "applewatch");
}

TEST(KeyRow, ANameCannotTakeASecondLine) {
    KeyFacts facts = phone();
    facts.key.name = "Tag\nDichtbij";
    EXPECT_EQ(keyRow(facts).name, "Tag\uFFFDDichtbij");
}

TEST(KeyRow, NumbersAreCutOffTowardsZero) {
    KeyFacts facts = withThreshold(-75.9);
    facts.rssi = Dbm{-60.9};
    EXPECT_EQ(keyRow(facts).signal, "Nu -60 dBm");
    EXPECT_EQ(keyRow(facts).limit, "Lockt onder -75 dBm");
}

TEST(KeyRow, TheSliderGoesFromMinus95ToMinus40AndTheTextBeyond) {
    EXPECT_EQ(keyRow(withThreshold(-96)).threshold.value, Dbm{-95});
    EXPECT_EQ(keyRow(withThreshold(-95)).threshold.value, Dbm{-95});
    EXPECT_EQ(keyRow(withThreshold(-94)).threshold.value, Dbm{-94});
    EXPECT_EQ(keyRow(withThreshold(-41)).threshold.value, Dbm{-41});
    EXPECT_EQ(keyRow(withThreshold(-40)).threshold.value, Dbm{-40});
    EXPECT_EQ(keyRow(withThreshold(-39)).threshold.value, Dbm{-40});
    EXPECT_EQ(keyRow(withThreshold(-100)).limit, "Lockt onder -100 dBm");
}

TEST(KeyRow, TheSliderStaysUnderTheFingerWhileTheRestShowsWhatIsStored) {
    KeyFacts facts = withThreshold(-71);
    facts.held = Dbm{-71.4};
    const KeyRow row = keyRow(facts);
    EXPECT_EQ(row.threshold.value, Dbm{-71.4});
    EXPECT_EQ(row.limit, "Lockt onder -71 dBm");
    EXPECT_EQ(row.bar.marker, signalFraction(Dbm{-71}));
}

TEST(KeyRow, FromHereIs15BelowTheSignalWithinMinus90AndMinus65) {
    const auto fromHere = [](double rssi) { return thresholdFromHere(Dbm{rssi}).value; };
    EXPECT_EQ(fromHere(-40), -65);
    EXPECT_EQ(fromHere(-49), -65);
    EXPECT_EQ(fromHere(-50), -65);
    EXPECT_EQ(fromHere(-51), -66);
    EXPECT_EQ(fromHere(-70), -85);
    EXPECT_EQ(fromHere(-74), -89);
    EXPECT_EQ(fromHere(-75), -90);
    EXPECT_EQ(fromHere(-76), -90);
    EXPECT_EQ(fromHere(-80), -90);
}
