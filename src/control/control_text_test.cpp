#include "control/control_text.h"

#include "base/text.h"
#include "tests/support/glossary.h"

#include <gtest/gtest.h>

#include <limits>

using namespace wegslot;
using namespace wegslot::control;

namespace {

const Status present{.phase = "present",
                     .text = "Je bent in de buurt",
                     .reason = {},
                     .pausedUntil = std::nullopt,
                     .keys = {{.id = "A",
                               .name = "Zoë's \"telefoon\"",
                               .state = "near",
                               .rssi = Dbm{-52.5},
                               .threshold = Dbm{-75}},
                              {.id = "B",
                               .name = "Plaatje\n",
                               .state = "away",
                               .rssi = std::nullopt,
                               .threshold = Dbm{-80}}}};

const ClockTime wallTime = [](TimePoint wall) { return utcText(wall).substr(11, 5); };

} // namespace

TEST(ControlText, TheStateComesFirstAndThenALineForEachKey) {
    EXPECT_EQ(statusText(present, wallTime),
              "Je bent in de buurt\n"
              "  Zoë's \"telefoon\"          dichtbij  -53 dBm   drempel -75 dBm\n"
              "  Plaatje\uFFFD                  weg       -         drempel -80 dBm");
}

TEST(ControlText, KeysHaveTheirIds) {
    EXPECT_EQ(keysText(present),
              "A  Zoë's \"telefoon\"          dichtbij  -53 dBm   drempel -75 dBm\n"
              "B  Plaatje\uFFFD                  weg       -         drempel -80 dBm");
    EXPECT_EQ(keysText({}), "Geen sleutels");
}

TEST(ControlText, JsonIsOneLineWithNullForWhatIsNotThere) {
    EXPECT_EQ(
        statusJson(present),
        R"({"phase":"present","text":"Je bent in de buurt","pausedUntil":null,"keys":[)"
        R"({"id":"A","name":"Zoë's \"telefoon\"","state":"near","rssi":-52.5,"threshold":-75.0},)"
        R"({"id":"B","name":"Plaatje\n","state":"away","rssi":null,"threshold":-80.0}]})");
    EXPECT_EQ(keysJson({}), "[]");
}

TEST(ControlText, APauseEndsAtASecondOfTheWall) {
    EXPECT_EQ(
        statusJson(
            {.phase = "snoozed", .text = "x", .reason = {}, .pausedUntil = 1790000000, .keys = {}}),
        R"({"phase":"snoozed","text":"x","pausedUntil":1790000000,"keys":[]})");
}

TEST(ControlText, AChangeSaysWhenWhatAndWhy) {
    const Change warning{.phase = "warning",
                         .text = "Lockt zo",
                         .why = "Telefoon is buiten bereik",
                         .reason = {},
                         .pausedUntil = std::nullopt};
    EXPECT_EQ(changeText(warning, "14:02:11", wallTime),
              "14:02:11  Lockt zo                              Telefoon is buiten bereik");
    EXPECT_EQ(changeJson(warning, 1790000000),
              R"({"time":1790000000,"phase":"warning","text":"Lockt zo",)"
              R"("reason":"Telefoon is buiten bereik"})");
}

TEST(ControlText, BytesThatAreNoTextDoNotSpoilTheAnswer) {
    const Status odd{
        .phase = "p", .text = "\xFF", .reason = {}, .pausedUntil = std::nullopt, .keys = {}};
    EXPECT_EQ(statusJson(odd),
              "{\"phase\":\"p\",\"text\":\"\uFFFD\",\"pausedUntil\":null,\"keys\":[]}");
}

TEST(ControlText, AChangeIsInTheReadersLanguageWhateverLanguageItCameIn) {
    const Glossary english{{"Lockt zo", "About to lock"},
                           {"%1 is buiten bereik", "%1 is out of reach"}};
    const Change warning{.phase = "warning",
                         .text = "Lockt zo",
                         .why = "Telefoon is buiten bereik",
                         .reason = {"keysAway", {"Telefoon\n"}},
                         .pausedUntil = std::nullopt};
    EXPECT_EQ(changeText(warning, "14:02:11", wallTime),
              "14:02:11  About to lock                         Telefoon\uFFFD is out of reach");
    EXPECT_NE(changeJson(warning, 0).find("Telefoon is buiten bereik"), std::string::npos);
}

TEST(ControlText, APauseIsOnTheReadersClockToo) {
    const Glossary english{{"Gepauzeerd tot %1", "Paused until %1"}};
    const Status paused{.phase = "snoozed",
                        .text = "Gepauzeerd tot 12.00",
                        .reason = {"pauseAsked", {}},
                        .pausedUntil = 1790000000,
                        .keys = {}};
    EXPECT_EQ(statusText(paused, wallTime), "Paused until 14:13");
}

TEST(ControlText, WhatANewerOneSaysIsShownAsItSaysIt) {
    const Glossary english{{"Lockt zo", "About to lock"}, {"Gepauzeerd tot %1", "Paused until %1"}};
    const auto shown = [](const char* phase, const Reason& reason) {
        return statusText({.phase = phase,
                           .text = "Zoals het er staat",
                           .reason = reason,
                           .pausedUntil = std::nullopt,
                           .keys = {}},
                          wallTime);
    };
    EXPECT_EQ(shown("warning", {"keysAway", {}}), "About to lock");
    EXPECT_EQ(shown("warning", {"somethingElse", {}}), "About to lock");
    EXPECT_EQ(shown("warning", {}), "Zoals het er staat"); // of an older one
    EXPECT_EQ(shown("dreaming", {"keysAway", {}}), "Zoals het er staat");
    EXPECT_EQ(shown("paused", {"onFire", {}}), "Zoals het er staat");
    EXPECT_EQ(shown("paused", {"cameraInUse", {"Ans"}}), "Zoals het er staat");
    EXPECT_EQ(shown("paused", {"cameraInUse", {}}), "Pauze: Camera is in gebruik");
    EXPECT_EQ(shown("snoozed", {"pauseAsked", {}}), "Zoals het er staat"); // until when?
}

TEST(ControlText, APauseWithoutEndIsNoneThatCannotBeWritten) {
    for (const std::int64_t until : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1},
                                     std::numeric_limits<std::int64_t>::max()}) {
        const Status paused{.phase = "snoozed",
                            .text = "x",
                            .reason = {"pauseAsked", {}},
                            .pausedUntil = until,
                            .keys = {}};
        EXPECT_TRUE(statusText(paused, wallTime).starts_with("Gepauzeerd tot ")) << until;
    }
}

TEST(ControlText, KindsOfDevicesAndWhatIsTheMatterAreInTheReadersLanguageAndNamesAreNames) {
    const Glossary english{{"Apple-apparaat", "Apple device"},
                           {"Bluetooth staat uit", "Bluetooth is off"}};
    const Nearby one{
        .radio = "",
        .includesOthers = false,
        .devices = {
            {.id = "A", .name = "Apple-apparaat", .kind = "Apple-apparaat", .rssi = Dbm{-50}}}};
    EXPECT_EQ(nearbyLines(one),
              std::vector<std::string>{"A  Apple-apparaat            Apple device        -50 dBm"});
    const Nearby off{.radio = "Bluetooth staat uit", .includesOthers = false, .devices = {}};
    EXPECT_EQ(nearbyLines(off), std::vector<std::string>{"Bluetooth is off"});
}
