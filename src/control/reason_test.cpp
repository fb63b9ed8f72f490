#include "control/reason.h"

#include "monitor/away_message.h"
#include "monitor/pause.h"
#include "scanner/radio_words.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::control;

namespace {

using Names = std::vector<std::string>;

Message away(const Names& names) {
    return awayMessage(std::vector<Message>(names.begin(), names.end()));
}

} // namespace

TEST(Reason, EverythingThatIsTheMatterWithTheRadioHasACode) {
    EXPECT_EQ(reasonOf(radioWords(CentralState::poweredOff)), (Reason{"bluetoothOff", {}}));
    EXPECT_EQ(reasonOf(radioWords(CentralState::unknown)), (Reason{"bluetoothStarting", {}}));
    EXPECT_EQ(reasonOf(radioWords(CentralState::unsupported)),
              (Reason{"bluetoothUnsupported", {}}));
    EXPECT_EQ(reasonOf(radioWords(CentralState::unauthorized)), (Reason{"bluetoothDenied", {}}));
    EXPECT_EQ(reasonOf(withoutRadioService()), (Reason{"bluetoothNotRunning", {}}));
    EXPECT_EQ(reasonOf(lentRadio()), (Reason{"bluetoothCoupling", {}}));
}

TEST(Reason, EveryPauseHasACode) {
    EXPECT_EQ(reasonOf(text(pause::Active{})), (Reason{"userActive", {}}));
    EXPECT_EQ(reasonOf(text(pause::Camera{})), (Reason{"cameraInUse", {}}));
    EXPECT_EQ(reasonOf(text(pause::Microphone{"Vergaderapp"})),
              (Reason{"microphoneInUse", {"Vergaderapp"}}));
    EXPECT_EQ(reasonOf(text(pause::Microphone{ActivityDetector::unnamedApplication})),
              (Reason{"microphoneInUse", {}}));
}

TEST(Reason, TheNamesOfThoseThatAreAwayAreOneByOneAndMakeTheSentenceAgain) {
    for (const Names& names :
         {Names{}, {"A"}, {"A", "B"}, {"A", "B", "C"}, {"A", "B", "%1", "", "E"}}) {
        const Message sentence = away(names);
        EXPECT_EQ(reasonOf(sentence), (Reason{"keysAway", names})) << sentence;
        EXPECT_EQ(words({"keysAway", names}), sentence);
    }
}

TEST(Reason, WhatHasNoCodeHasNone) {
    EXPECT_EQ(reasonOf("Camera is in gebruik, zegt Ans"), Reason{});
    EXPECT_EQ(reasonOf(""), Reason{});
}

TEST(Reason, ACodeThatIsUnknownOrDoesNotGoWithItsNamesHasNoWords) {
    EXPECT_EQ(words({"keysaway", {}}), std::nullopt);
    EXPECT_EQ(words({"", {}}), std::nullopt);
    EXPECT_EQ(words({"cameraInUse", {"Ans"}}), std::nullopt);
    EXPECT_EQ(words({"microphoneInUse", {"A", "B"}}), std::nullopt);
}

TEST(Reason, NeitherTooManyNamesNorTooLongOnesArePutIntoWords) {
    EXPECT_NE(words({"keysAway", Names(Reason::mostArguments, "A")}), std::nullopt);
    EXPECT_EQ(words({"keysAway", Names(Reason::mostArguments + 1, "A")}), std::nullopt);
    EXPECT_NE(words({"keysAway", {std::string(Reason::longestArgument, 'A')}}), std::nullopt);
    EXPECT_EQ(words({"keysAway", {std::string(Reason::longestArgument + 1, 'A')}}), std::nullopt);
}
