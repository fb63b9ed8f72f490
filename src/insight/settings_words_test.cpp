#include "insight/settings_words.h"

#include "tests/support/made_history.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::insight;

namespace {

Preferences keysSetting(const std::vector<std::pair<history::Row, double>>& keys) {
    MadeHistory history;
    history.setKeys(TimePoint{}, keys);
    const auto& what = history.minutes().front().events.front().what;
    return std::get<trace::SettingsChange>(std::get<trace::Event>(what)).value;
}

std::vector<std::string> told(const Preferences& before, const Preferences& after) {
    std::vector<std::string> texts;
    for (const Message& text : changesOf(before, after, [](const Uuid& id) {
             return "Sleutel " + std::to_string(*history::rowOf(id));
         }))
        texts.push_back(text.builtIn());
    return texts;
}

} // namespace

TEST(SettingsWords, TellEachThatChanged) {
    const Preferences before{
        {"awayDelay", 5.0},         {"lostTimeout", 15.0}, {"pauseDuringMeetings", true},
        {"pauseWhileActive", true}, {"rule", "allAway"},   {"warningEnabled", false},
        {"warningSeconds", 5.0}};
    const Preferences after{
        {"awayDelay", 7.5},          {"lostTimeout", 20.0}, {"pauseDuringMeetings", false},
        {"pauseWhileActive", false}, {"rule", "anyAway"},   {"warningEnabled", true},
        {"warningSeconds", 10.0}};
    EXPECT_EQ(told(before, after),
              (std::vector<std::string>{
                  "Weg na 7.5 s zwak signaal", "Weg na 20 s geen signaal",
                  "Niet locken tijdens videobellen: uit", "Niet locken als je je Mac gebruikt: uit",
                  "Locken als één sleutel weg is", "Waarschuw voordat je Mac lockt: aan",
                  "Aftellen vanaf 10 s"}));
}

TEST(SettingsWords, PassOverWhatStaysWhatWasNotKnownAndWhatNothingIsJudgedBy) {
    EXPECT_TRUE(told({{"awayDelay", 5.0}}, {{"awayDelay", 5.0}, {"lostTimeout", 3.0}}).empty());
    EXPECT_TRUE(told({{"showOtherDevices", false}}, {{"showOtherDevices", true}}).empty());
    EXPECT_TRUE(told({{"enabled", false}}, {{"enabled", true}}).empty()); // a phase says so
    EXPECT_TRUE(told({{"awayDelay", 5.0}}, {}).empty());
}

TEST(SettingsWords, TellOfKeysThatCameWentAndHaveAnotherThreshold) {
    EXPECT_EQ(told(keysSetting({{1, -75}, {2, -80}, {3, -70}}),
                   keysSetting({{4, -75}, {2, -80}, {3, -72.5}})),
              (std::vector<std::string>{"Nieuwe sleutel: Sleutel 4",
                                        "Drempel van Sleutel 3: -72.5 dBm, was -70",
                                        "Geen sleutel meer: Sleutel 1"}));
}

TEST(SettingsWords, AListThatCannotBeReadSaysNothing) {
    EXPECT_TRUE(told({{"keys", Data{"?"}}}, keysSetting({{1, -75}})).empty());
}
