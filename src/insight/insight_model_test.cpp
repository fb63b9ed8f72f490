#include "insight/insight_model.h"

#include "tests/support/made_history.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

namespace {

constexpr Day monday{std::chrono::days{20780}};
constexpr TimePoint early{std::chrono::days{20780}};

/// A window's model whose requests are written down.
struct InsightModelTest : testing::Test, protected MadeHistory {
    using Opinion = InsightModel::Opinion;
    static constexpr std::size_t lock = 5; ///< with details, and what is not known before
    using Texts = std::vector<std::string>;

    InsightModelTest() {
        setKeys(early + 9h, {{1, -75}});
        enter(early + 9h, "present", "keyNear");
        judge(early + 9h, early + 9h + 5min, {{1, KeyState::near}});
        enter(early + 9h + 1min, "leaving", "keyNotNear");
        enter(early + 9h + 2min, "warning", "keysAway");
        enter(early + 9h + 3min, "locked", "keysAway");
    }

    void open() {
        model.setKept(InsightModel::Days{monday - std::chrono::days{1}, monday});
        model.show(monday, timeline());
        asked.clear();
    }

    Timeline timeline() {
        return timelineOf({.minutes = minutes(),
                           .names = names,
                           .day = greenwich().span(monday),
                           .zone = model.zone()});
    }

    Texts takeAsked() { return std::exchange(asked, {}); }

    [[nodiscard]] std::string chosenText() const {
        return model.chosen() ? model.rowText(*model.chosen()) : "";
    }

    Names names{{1, "Telefoon"}};
    Texts asked;
    int changes = 0;
    InsightModel model{
        {.load = [this](Day day) { asked.push_back("load " + greenwich().name(day)); },
         .why = [this](std::size_t event) { asked.push_back("why " + std::to_string(event)); },
         .judge =
             [this](std::size_t event, Opinion opinion) {
                 asked.push_back("judge " + std::to_string(event) + " " +
                                 std::to_string(static_cast<int>(opinion)));
             },
         .forget = [this] { asked.emplace_back("forget"); }},
        greenwich(),
        [this] { ++changes; }};
};

} // namespace

TEST_F(InsightModelTest, IsEmptyWhereNothingIsKept) {
    EXPECT_FALSE(model.kept());
    EXPECT_FALSE(model.isLoading());
    EXPECT_EQ(model.dayName(), "");
    EXPECT_TRUE(model.listed().empty());
    EXPECT_FALSE(model.canGo(0));
    model.setKept({});
    EXPECT_EQ(takeAsked(), Texts{});
}

TEST_F(InsightModelTest, BeginsWithTheLastDay) {
    model.setKept(InsightModel::Days{monday - std::chrono::days{6}, monday});
    EXPECT_EQ(takeAsked(), Texts{"load 2026-11-23"});
    EXPECT_EQ(model.dayName(), "2026-11-23");
    EXPECT_TRUE(model.isLoading());
    model.show(monday, timeline());
    EXPECT_FALSE(model.isLoading());
    EXPECT_EQ(model.viewport().visible(), greenwich().span(monday));
}

TEST_F(InsightModelTest, GoesFromDayToDayAsFarAsSomethingIsKept) {
    open();
    EXPECT_FALSE(model.canGo(1));
    model.go(1);
    EXPECT_EQ(takeAsked(), Texts{});
    EXPECT_TRUE(model.canGo(-1));
    model.go(-1);
    EXPECT_EQ(takeAsked(), Texts{"load 2026-11-22"});
    EXPECT_TRUE(model.isLoading());
    EXPECT_FALSE(model.canGo(-1));
}

TEST_F(InsightModelTest, ADayThatComesTooLateIsPassedOver) {
    open();
    model.go(-1);
    model.show(monday, timeline());
    EXPECT_TRUE(model.isLoading());
}

TEST_F(InsightModelTest, WhatIsLookedAtStaysWhenMoreIsKept) {
    open();
    model.walk(1);
    model.walk(1);
    model.zoom(0.1);
    const Span visible = model.viewport().visible();
    const std::string before = chosenText();
    model.setKept(InsightModel::Days{monday - std::chrono::days{1}, monday + std::chrono::days{1}});
    EXPECT_EQ(takeAsked(), Texts{"load 2026-11-23"});
    EXPECT_FALSE(model.isLoading());
    enter(early + 8h, "paused", "cameraInUse"); // which comes before it in the list
    model.show(monday, timeline());
    EXPECT_EQ(model.viewport().visible(), visible);
    EXPECT_EQ(chosenText(), before);
}

TEST_F(InsightModelTest, ListsDetailsWhenAskedTo) {
    open();
    const auto few = model.listed().size();
    model.listDetails(true);
    EXPECT_EQ(model.listed().size(), few + 2); // the key, and that it is weak
    model.choose(model.listed()[1]);
    EXPECT_EQ(chosenText(), "09:00 Telefoon is dichtbij");
    model.listDetails(false);
    EXPECT_EQ(model.listed().size(), few);
    EXPECT_FALSE(model.chosen());
}

TEST_F(InsightModelTest, WalksFromEventToEventAndStopsAtTheEnds) {
    open();
    Texts walked;
    for (std::size_t i = 0; i < 6; ++i) {
        model.walk(1);
        walked.push_back(chosenText());
    }
    EXPECT_EQ(walked, (Texts{"00:00 Niets bekend tot 09:00", "09:00 Je bent in de buurt",
                             "09:02 Waarschuwing: Je bent buiten bereik",
                             "09:03 Gelockt: Je bent buiten bereik", "09:04 Hierna is niets bekend",
                             "09:04 Hierna is niets bekend"}));
    model.walk(-1);
    EXPECT_EQ(chosenText(), walked[3]);
    model.chooseFirst();
    EXPECT_EQ(chosenText(), walked[0]);
    model.walk(-1);
    EXPECT_EQ(chosenText(), walked[0]);
    model.chooseLast();
    EXPECT_EQ(chosenText(), walked[4]);
}

TEST_F(InsightModelTest, TheWalkBeginsInWhatIsSeen) {
    open();
    model.zoom(0.01, early + 9h + 2min);
    model.walk(1);
    EXPECT_EQ(chosenText(), "09:00 Je bent in de buurt");
}

TEST_F(InsightModelTest, WhatIsChosenIsSeenAndZoomedAbout) {
    open();
    model.zoom(0.01, early);
    model.choose(lock);
    EXPECT_TRUE(model.viewport().visible().contains(early + 9h + 3min));
    const Nanoseconds before = early + 9h + 3min - model.viewport().visible().from;
    model.zoom(0.5);
    EXPECT_EQ(early + 9h + 3min - model.viewport().visible().from, before / 2);
    model.showAll();
    EXPECT_TRUE(model.viewport().showsAll());
    model.move(1h);
    EXPECT_TRUE(model.viewport().showsAll());
}

TEST_F(InsightModelTest, AnAnswerIsShownWithWhatItIsAbout) {
    open();
    model.why(lock);
    EXPECT_EQ(takeAsked(), Texts{"why 5"});
    EXPECT_EQ(model.chosen(), lock);
    EXPECT_EQ(model.answer(), "");
    model.showAnswer(lock, "Te ver weg.");
    EXPECT_EQ(model.answer(), "Te ver weg.");
    model.choose(lock - 1);
    EXPECT_EQ(model.answer(), "");
    model.showAnswer(lock, "Te ver weg.");
    EXPECT_EQ(model.answer(), "");
}

TEST_F(InsightModelTest, NobodyCanSayWhyNothingIsKnown) {
    open();
    model.why(0);
    model.why(99);
    EXPECT_EQ(takeAsked(), Texts{});
    EXPECT_FALSE(model.chosen());
}

TEST_F(InsightModelTest, AnOpinionIsGivenAndTakenBack) {
    open();
    model.choose(lock);
    model.judge(Opinion::unjust);
    EXPECT_EQ(chosenText(), "09:03 Gelockt: Je bent buiten bereik (onterecht)");
    model.judge(Opinion::late);
    EXPECT_EQ(chosenText(), "09:03 Gelockt: Je bent buiten bereik (te laat)");
    model.judge(Opinion::late);
    EXPECT_EQ(chosenText(), "09:03 Gelockt: Je bent buiten bereik");
    EXPECT_EQ(takeAsked(), (Texts{"judge 5 0", "judge 5 1", "judge 5 2"}));
}

TEST_F(InsightModelTest, OnlyOfWhatWegslotDidOneCanThinkSomething) {
    open();
    model.judge(Opinion::unjust);
    model.choose(1);
    model.judge(Opinion::unjust);
    EXPECT_EQ(takeAsked(), Texts{});
}

TEST_F(InsightModelTest, ForgettingIsAskedAboutFirst) {
    open();
    model.forget();
    EXPECT_EQ(takeAsked(), Texts{});
    model.askForgetting(true);
    EXPECT_TRUE(model.isForgettingAsked());
    model.askForgetting(false);
    model.forget();
    EXPECT_EQ(takeAsked(), Texts{});
    model.askForgetting(true);
    model.forget();
    EXPECT_EQ(takeAsked(), Texts{"forget"});
    EXPECT_FALSE(model.isForgettingAsked());
    model.setKept({});
    EXPECT_TRUE(model.timeline().events.empty());
    model.askForgetting(true);
    EXPECT_FALSE(model.isForgettingAsked());
}

TEST_F(InsightModelTest, EveryChangeIsTold) {
    open();
    const auto expectChange = [this](auto act) {
        const int before = changes;
        act();
        EXPECT_GT(changes, before);
    };
    expectChange([this] { model.walk(1); });
    expectChange([this] { model.zoom(0.5); });
    expectChange([this] { model.move(1h); });
    expectChange([this] { model.showAll(); });
    expectChange([this] { model.listDetails(true); });
    expectChange([this] { model.showAnswer(*model.chosen(), "x"); });
    expectChange([this] { model.askForgetting(true); });
    expectChange([this] { model.go(-1); });
    expectChange([this] { model.setKept({}); });
}
