#include "insight/timeline.h"

#include "tests/support/made_history.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;
using history::Opinion;

namespace {

constexpr TimePoint start{std::chrono::days{20780}};
constexpr TimePoint nine = start + 9h;

/// A history, and what is seen of its day.
struct TimelineTest : testing::Test, protected MadeHistory {
    static constexpr auto far = KeyState::away;

    Timeline timeline() {
        return timelineOf({.minutes = minutes(), .names = names, .day = day, .zone = zone});
    }

    /// All events, but for what is not known before and after.
    std::vector<std::string> told(bool withDetails = false) {
        std::vector<std::string> texts;
        for (const Event& event : timeline().events)
            if (event.kind != Kind::unknown && (withDetails || !event.isDetail))
                texts.push_back(zone.exactTime(event.wall) + " " + event.text.builtIn());
        return texts;
    }

    using Texts = std::vector<std::string>;
    Names names{{1, "Telefoon"}, {2, "Horloge"}};
    Span day{start, start + 24h};
    Zone zone = greenwich();
};

} // namespace

TEST_F(TimelineTest, HasALaneForEachKeyWithWhatWasHeardAndJudged) {
    setKeys(nine, {{2, -80}, {1, -75}});
    judge(nine, nine + 3s, {{1, KeyState::near}});
    judge(nine + 3s, nine + 6s, {{1, KeyState::leaving}, {2, far}});
    hear(1, nine + 1s, -50);
    hear(1, nine + 2s, -60);
    const Timeline seen = timeline();
    ASSERT_EQ(seen.lanes.size(), 2U);
    EXPECT_EQ(seen.lanes[0].name, "Telefoon");
    EXPECT_EQ(seen.lanes[0].signal.within(day), (Strengths{-60, -60, -50}));
    EXPECT_EQ(seen.lanes[0].states,
              (std::vector<Stretch<KeyState>>{{{nine, nine + 3s}, KeyState::near},
                                              {{nine + 3s, nine + 5s}, KeyState::leaving}}));
    EXPECT_EQ(seen.lanes[1].states,
              (std::vector<Stretch<KeyState>>{{{nine + 3s, nine + 5s}, far}}));
}

TEST_F(TimelineTest, AKeyThatNobodyHasANameForIsANumber) {
    judge(nine, nine + 2s, {{7, far}});
    EXPECT_EQ(timeline().lanes.at(0).name, "Sleutel 7");
}

TEST_F(TimelineTest, AThresholdHoldsUntilItIsSetOtherwise) {
    setKeys(nine, {{1, -75}});
    judge(nine, nine + 1min, {{1, KeyState::near}});
    setKeys(nine + 20s, {{1, -80}});
    setKeys(nine + 40s, {});
    EXPECT_EQ(timeline().lanes.at(0).thresholds,
              (std::vector<Stretch<Dbm>>{{{nine, nine + 20s}, Dbm{-75}},
                                         {{nine + 20s, nine + 40s}, Dbm{-80}}}));
}

TEST_F(TimelineTest, WhatWasSetAndEnteredBeforeTheDayHoldsInIt) {
    setKeys(start - 20s, {{1, -75}});
    enter(start - 20s, "present", "keyNear");
    judge(start - 20s, start + 5s, {{1, KeyState::near}});
    const Timeline seen = timeline();
    EXPECT_EQ(seen.lanes.at(0).thresholds,
              (std::vector<Stretch<Dbm>>{{{start, start + 4s}, Dbm{-75}}}));
    EXPECT_EQ(seen.phases, (std::vector<Stretch<Phase>>{{{start, start + 4s}, phase::Present{}}}));
    ASSERT_EQ(seen.events.size(), 1U);
    EXPECT_EQ(seen.events[0].text.builtIn(), "Hierna is niets bekend");
}

TEST_F(TimelineTest, PhasesFollowEachOther) {
    judge(nine, nine + 30s, {});
    enter(nine, "present", "keyNear");
    enter(nine + 10s, "leaving", "keyNotNear");
    enter(nine + 20s, "nobodyKnows", "");
    EXPECT_EQ(timeline().phases,
              (std::vector<Stretch<Phase>>{{{nine, nine + 10s}, phase::Present{}},
                                           {{nine + 10s, nine + 20s}, phase::Leaving{}}}));
}

TEST_F(TimelineTest, TellsADepartureAndAReturn) {
    setKeys(nine, {{2, -80}, {1, -75}});
    enter(nine, "present", "keyNear");
    judge(nine, nine + 10s, {{1, KeyState::near}, {2, KeyState::near}});
    enter(nine + 10s, "leaving", "keyNotNear");
    judge(nine + 10s, nine + 15s, {{1, KeyState::leaving}, {2, far}});
    judge(nine + 15s, nine + 30s, {{1, far}, {2, far}});
    enter(nine + 15s, "warning", "keysAway", PhaseCause::judgement, nine + 20s);
    enter(nine + 20s, "locked", "keysAway");
    happen(nine + 21s, trace::Event{trace::Session{SessionEvent::locked}});
    happen(nine + 25s, trace::Event{trace::Session{SessionEvent::unlocked}});
    enter(nine + 25s, "waitingForReturn", "screenUnlocked", PhaseCause::screen);
    enter(nine + 27s, "present", "keyNear");
    EXPECT_EQ(told(), (Texts{"09:00:00 Je bent in de buurt",
                             "09:00:15 Waarschuwing: Horloge en Telefoon zijn buiten bereik",
                             "09:00:20 Gelockt: Horloge en Telefoon zijn buiten bereik",
                             "09:00:21 Lock bevestigd", "09:00:25 Scherm ontgrendeld",
                             "09:00:27 Je bent in de buurt"}));
}

TEST_F(TimelineTest, WhatComesAndGoesIsADetail) {
    setKeys(nine, {{1, -75}});
    enter(nine, "present", "keyNear");
    judge(nine, nine + 5s, {{1, KeyState::near}});
    enter(nine + 5s, "leaving", "keyNotNear");
    judge(nine + 5s, nine + 9s, {{1, KeyState::leaving}});
    judge(nine + 9s, nine + 12s, {{1, KeyState::near}});
    enter(nine + 9s, "present", "keyNear");
    EXPECT_EQ(told(), Texts{"09:00:00 Je bent in de buurt"});
    EXPECT_EQ(told(true),
              (Texts{"09:00:00 Telefoon is dichtbij", "09:00:00 Je bent in de buurt",
                     "09:00:05 Telefoon is zwak te horen", "09:00:05 Signaal zwak, even afwachten",
                     "09:00:09 Telefoon is dichtbij", "09:00:09 Je bent in de buurt"}));
}

TEST_F(TimelineTest, ALockThatNothingConfirmsHasFailed) {
    enter(nine, "locked", "lockAsked", PhaseCause::request);
    enter(nine + 5s, "waitingForReturn", "lockNotConfirmed");
    EXPECT_EQ(told(), (Texts{"09:00:00 Gelockt: Lock gevraagd",
                             "09:00:05 Lock mislukt: Geen bevestiging van lock ontvangen"}));
}

TEST_F(TimelineTest, ALockBySomebodyElseIsToldOnceWhicheverCameFirst) {
    enter(nine, "locked", "screenLocked", PhaseCause::screen);
    happen(nine, trace::Event{trace::Session{SessionEvent::locked}});
    happen(nine + 1min, trace::Event{trace::Session{SessionEvent::locked}});
    enter(nine + 1min, "locked", "screenLocked", PhaseCause::screen);
    EXPECT_EQ(told(),
              (Texts{"09:00:00 Gelockt: Scherm gelockt", "09:01:00 Gelockt: Scherm gelockt"}));
}

TEST_F(TimelineTest, PausesTellWhyAndUntilWhen) {
    begin(1, 1h); // the clock on the wall is ahead
    enter(nine, "paused", "cameraInUse");
    enter(nine + 1min, "snoozed", "pauseAsked", PhaseCause::request, nine + 16min);
    happen(nine + 2min, trace::Event{trace::Action{action::Resume{}}});
    enter(nine + 3min, "snoozed", "warningCancelled", PhaseCause::request, nine + 13min);
    EXPECT_EQ(told(), (Texts{"10:00:00 Pauze: Camera is in gebruik",
                             "10:01:00 Pauze gevraagd, pauze tot 10:16", "10:02:00 Hervat",
                             "10:03:00 Waarschuwing geannuleerd, pauze tot 10:13"}));
}

TEST_F(TimelineTest, TheRadioAndThePhaseSayTheSameOnce) {
    const auto radio = [](CentralState state) {
        return trace::Event{trace::RadioState{.state = state, .authorization = {}}};
    };
    happen(nine, radio(CentralState::poweredOn));
    happen(nine + 1min, radio(CentralState::poweredOff));
    enter(nine + 1min + 2s, "bluetoothUnavailable", "bluetoothOff");
    happen(nine + 2min, radio(CentralState::poweredOff));
    happen(nine + 3min, radio(CentralState::poweredOn));
    enter(nine + 3min, "waitingForReturn", "guardBegins");
    EXPECT_EQ(told(), (Texts{"09:01:00 Bluetooth staat uit", "09:03:00 Bluetooth staat aan",
                             "09:03:00 Wacht tot je sleutel in de buurt is"}));
    enter(nine + 4min, "bluetoothUnavailable", "bluetoothNotRunning");
    enter(nine + 4min + 3s, "bluetoothUnavailable", "bluetoothNotRunning"); // not the same moment
    EXPECT_EQ(told().size(), 5U);
}

TEST_F(TimelineTest, PhasesThatCarryNothingTellTheirReason) {
    enter(nine, "disabled", "switchedOff", PhaseCause::request);
    enter(nine + 1min, "noKeys", "");
    EXPECT_EQ(told(),
              (Texts{"09:00:00 Bewaking uitgezet", "09:01:00 Kies een sleutel om te beginnen"}));
}

TEST_F(TimelineTest, AChangeOfASettingIsToldAndWhatIsRepeatedIsNot) {
    set(nine, "awayDelay", 5.0);
    setKeys(nine, {{1, -75}});
    begin(2); // which says what is set, once more
    set(nine + 1min, "awayDelay", 5.0);
    setKeys(nine + 1min, {{1, -75}});
    setKeys(nine + 2min, {{1, -80}});
    EXPECT_EQ(told(), Texts{"09:02:00 Drempel van Telefoon: -80 dBm, was -75"});
}

TEST_F(TimelineTest, BetweenTwoRunsNothingIsKnown) {
    setKeys(nine, {{1, -75}});
    enter(nine, "present", "keyNear");
    judge(nine, nine + 5s, {{1, KeyState::near}});
    begin(2);
    judge(nine + 8s, nine + 12s, {{1, KeyState::near}});
    const Timeline seen = timeline();
    EXPECT_EQ(seen.unknown,
              (std::vector<Span>{{start, nine}, {nine + 4s, nine + 8s}, {nine + 11s, day.to}}));
    EXPECT_EQ(seen.lanes.at(0).states,
              (std::vector<Stretch<KeyState>>{{{nine, nine + 4s}, KeyState::near},
                                              {{nine + 8s, nine + 11s}, KeyState::near}}));
    EXPECT_EQ(seen.lanes.at(0).thresholds,
              (std::vector<Stretch<Dbm>>{{{nine, nine + 4s}, Dbm{-75}},
                                         {{nine + 8s, nine + 11s}, Dbm{-75}}}));
    EXPECT_EQ(seen.phases, (std::vector<Stretch<Phase>>{{{nine, nine + 4s}, phase::Present{}}}));
    Texts texts;
    for (const Event& event : seen.events)
        if (event.kind == Kind::unknown)
            texts.push_back(zone.exactTime(event.wall) + " " + event.text.builtIn());
    EXPECT_EQ(texts, (Texts{"00:00:00 Niets bekend tot 09:00", "09:00:04 Niets bekend tot 09:00",
                            "09:00:11 Hierna is niets bekend"}));
}

TEST_F(TimelineTest, AnotherRunDoesNotConfirmTheLockOfTheOneBefore) {
    judge(nine, nine + 2s, {});
    enter(nine, "locked", "lockAsked", PhaseCause::request);
    begin(2);
    judge(nine + 1min, nine + 2min, {});
    happen(nine + 61s, trace::Event{trace::Session{SessionEvent::locked}});
    EXPECT_EQ(told(), Texts{"09:00:00 Gelockt: Lock gevraagd"});
}

TEST_F(TimelineTest, NothingIsKnownAfterMoreThanTenSecondsWithoutAJudgement) {
    enter(nine, "present", "keyNear");
    judge(nine, {{1, KeyState::near}});
    judge(nine + 10s, {{1, KeyState::near}});
    judge(nine + 20s + 1ns, {{1, KeyState::near}});
    judge(nine + 21s, {{1, KeyState::near}});
    const Timeline seen = timeline();
    EXPECT_EQ(
        seen.unknown,
        (std::vector<Span>{{start, nine}, {nine + 10s, nine + 20s + 1ns}, {nine + 21s, day.to}}));
    // It slept, and is where it was.
    EXPECT_EQ(seen.phases,
              (std::vector<Stretch<Phase>>{{{nine, nine + 10s}, phase::Present{}},
                                           {{nine + 20s + 1ns, nine + 21s}, phase::Present{}}}));
}

TEST_F(TimelineTest, ADayThatIsKnownFromEndToEndHasNoGaps) {
    const auto unknownWith = [this](Nanoseconds first, Nanoseconds last) {
        minutes().clear();
        for (TimePoint at = start + first; at < day.to - last; at += 10s)
            judge(at, {});
        judge(day.to - last, {});
        return timeline().unknown;
    };
    EXPECT_TRUE(unknownWith(0s, 1s).empty());
    EXPECT_TRUE(unknownWith(10s, 10s).empty());
    EXPECT_EQ(unknownWith(10s + 1ns, 10s), (std::vector<Span>{{start, start + 10s + 1ns}}));
    EXPECT_EQ(unknownWith(10s, 10s + 1ns), (std::vector<Span>{{day.to - 10s - 1ns, day.to}}));
}

TEST_F(TimelineTest, ThePhaseOfARunEndsWithIt) {
    setKeys(start - 5h, {{1, -75}});
    enter(start - 5h, "present", "keyNear");
    begin(2);
    judge(nine, nine + 5s, {{1, KeyState::near}});
    const Timeline seen = timeline();
    EXPECT_TRUE(seen.phases.empty());
    EXPECT_EQ(seen.lanes.at(0).thresholds, // which the settings keep
              (std::vector<Stretch<Dbm>>{{{nine, nine + 4s}, Dbm{-75}}}));
}

TEST_F(TimelineTest, WhatComesAfterTheDayIsNotOfIt) {
    judge(nine, nine + 5s, {});
    enter(nine, "present", "keyNear");
    enter(day.to, "locked", "lockAsked", PhaseCause::request);
    judge(day.to, day.to + 5s, {});
    const Timeline seen = timeline();
    EXPECT_EQ(seen.phases, (std::vector<Stretch<Phase>>{{{nine, nine + 4s}, phase::Present{}}}));
    EXPECT_EQ(seen.unknown, (std::vector<Span>{{start, nine}, {nine + 4s, day.to}}));
}

TEST_F(TimelineTest, ADayOfWhichNothingIsKeptSaysSo) {
    setKeys(start - 1h, {{1, -75}});
    const Timeline seen = timeline();
    EXPECT_TRUE(seen.isEmpty());
    EXPECT_TRUE(seen.lanes.empty());
    ASSERT_EQ(seen.events.size(), 1U);
    EXPECT_EQ(seen.events[0].text.builtIn(), "Van deze dag is niets bewaard");
}

TEST_F(TimelineTest, WhatWasThoughtOfADeedStandsWithItUntilItIsTakenBack) {
    enter(nine, "warning", "keysAway");
    enter(nine + 5s, "locked", "keysAway");
    enter(nine + 1h, "locked", "lockAsked", PhaseCause::request);
    const auto think = [this](TimePoint of, Opinion::Of opinion) {
        // Days later, when it is looked at.
        happen(start + 50h, Opinion{.of = of, .opinion = opinion});
    };
    const auto opinions = [this] {
        std::vector<Opinion::Of> all;
        for (const Event& event : timeline().events)
            if (event.kind != Kind::unknown) all.push_back(event.opinion);
        return all;
    };
    using enum Opinion::Of;
    think(nine, late);
    think(nine + 5s, unjust);
    think(nine + 1h, unjust); // somebody asked for that one
    EXPECT_EQ(opinions(), (std::vector{late, unjust, none}));
    think(nine + 5s, none);
    EXPECT_EQ(opinions(), (std::vector{late, none, none}));
}

TEST_F(TimelineTest, AnEventKnowsWhereTheHistoryHasIt) {
    begin(3, 2h);
    enter(nine, "locked", "keysAway");
    const Event event = timeline().events.back();
    EXPECT_EQ(event.run, 3);
    EXPECT_EQ(event.at, nine);
    EXPECT_EQ(event.wall, nine + 2h);
    EXPECT_TRUE(event.isDeed);
}

TEST_F(TimelineTest, MinutesMayComeInAnyOrder) {
    setKeys(nine, {{1, -75}});
    judge(nine, nine + 3min, {{1, KeyState::near}});
    const Timeline inOrder = timeline();
    std::ranges::reverse(minutes());
    const Timeline reversed = timeline();
    EXPECT_EQ(reversed.lanes.at(0).states, inOrder.lanes.at(0).states);
    EXPECT_EQ(reversed.unknown, inOrder.unknown);
}

TEST_F(TimelineTest, ALaneIsSummedUpForWhatIsSeenOfIt) {
    setKeys(nine, {{1, -75}});
    judge(nine, nine + 1min, {{1, KeyState::near}});
    for (int i = 0; i < 10; ++i)
        hear(1, nine + std::chrono::seconds{i}, -50 - i);
    setKeys(nine + 20s, {{1, -80}});
    const Lane lane = timeline().lanes.at(0);
    const auto summed = [&lane](const Span& span) {
        Texts texts;
        for (const Message& text : summary(lane, span))
            texts.push_back(text.builtIn());
        return texts;
    };
    EXPECT_EQ(summed(day), (Texts{"-59 tot -50 dBm, meestal -55", "drempel -80 dBm"}));
    EXPECT_EQ(summed({nine, nine + 3s}),
              (Texts{"-52 tot -50 dBm, meestal -51", "drempel -75 dBm"}));
    EXPECT_EQ(summed({start, nine}), Texts{"Niet gehoord"});
}
