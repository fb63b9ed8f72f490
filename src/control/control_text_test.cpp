#include "control/control_text.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::control;

namespace {

const Status present{.phase = "present",
                     .text = "Je bent in de buurt",
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

} // namespace

TEST(ControlText, TheStateComesFirstAndThenALineForEachKey) {
    EXPECT_EQ(statusText(present),
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
    EXPECT_EQ(statusJson({.phase = "snoozed", .text = "x", .pausedUntil = 1790000000, .keys = {}}),
              R"({"phase":"snoozed","text":"x","pausedUntil":1790000000,"keys":[]})");
}

TEST(ControlText, AChangeSaysWhenWhatAndWhy) {
    const Change warning{
        .phase = "warning", .text = "Lockt zo", .reason = "Telefoon is buiten bereik"};
    EXPECT_EQ(changeText(warning, "14:02:11"),
              "14:02:11  Lockt zo                              Telefoon is buiten bereik");
    EXPECT_EQ(changeJson(warning, 1790000000),
              R"({"time":1790000000,"phase":"warning","text":"Lockt zo",)"
              R"("reason":"Telefoon is buiten bereik"})");
}

TEST(ControlText, BytesThatAreNoTextDoNotSpoilTheAnswer) {
    const Status odd{.phase = "p", .text = "\xFF", .pausedUntil = std::nullopt, .keys = {}};
    EXPECT_EQ(statusJson(odd),
              "{\"phase\":\"p\",\"text\":\"\uFFFD\",\"pausedUntil\":null,\"keys\":[]}");
}
