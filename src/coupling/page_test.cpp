#include "coupling/page.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

namespace {

const TimePoint noon{1000h};
const Visitor named{.name = "Telefoon", .identity = std::nullopt};

PageFacts facts(Kind kind = Kind::iphone, Seconds lostTimeout = Seconds{15}) {
    return {.kind = kind, .name = "Wegslot 4F2A", .lostTimeout = lostTimeout};
}

std::vector<Step> everyStep() {
    std::vector<Step> steps{step::Choosing{},
                            step::Pasting{},
                            step::Pasting{Failure{"dit is geen identiteit"}},
                            step::Pasted{"Telefoon"},
                            step::Preparing{},
                            step::Visible{.name = "Wegslot 4F2A", .until = noon},
                            step::Acquainted{.visitor = named, .until = noon},
                            step::Bonding{noon},
                            step::Comparing{.code = 42, .until = noon},
                            step::Identifying{noon},
                            step::Owning{.visitor = named, .until = noon},
                            step::PuttingBack{},
                            step::ListeningLit{noon},
                            step::Pocketing{},
                            step::ListeningAway{noon},
                            step::Hindered{{.obstacle = Obstacle::off, .why = "?"}}};
    for (int ending = 0; ending <= static_cast<int>(Ending::tookTooLong); ++ending)
        steps.emplace_back(step::Failed{static_cast<Ending>(ending), "AuthenticationFailed"});
    for (const Audibility& heard :
         {Audibility{audibility::Good{}}, Audibility{audibility::Moderate{Seconds{20}}}})
        steps.emplace_back(
            step::Judged{.audibility = heard, .name = "Telefoon", .threshold = Dbm{-80}});
    steps.emplace_back(step::Judged{.audibility = audibility::Silent{}, .name = "Telefoon"});
    return steps;
}

bool has(const Page& page, Action action) {
    return std::ranges::find(page.choices, action, &Choice::action) != page.choices.end();
}

step::Judged judged(Audibility audibility) {
    return {.audibility = audibility, .name = "Telefoon", .threshold = Dbm{-80}};
}

} // namespace

TEST(CouplingPage, EachStepSaysWhatToDoAndHasAWayOut) {
    for (const Kind kind : {Kind::iphone, Kind::android, Kind::watch})
        for (const Step& step : everyStep()) {
            const Page page = pageOf(step, facts(kind));
            EXPECT_FALSE(page.title.isEmpty()) << step.index();
            EXPECT_FALSE(page.text.isEmpty()) << page.title;
            EXPECT_TRUE(has(page, Action::back) || has(page, Action::close) ||
                        has(page, Action::no))
                << page.title;
            EXPECT_LE(std::ranges::count(page.choices, true, &Choice::isMain), 1) << page.title;
            EXPECT_EQ(page.text.builtIn().find('%'), std::string::npos) << page.text;
            EXPECT_EQ(page.detail.builtIn().find('%'), std::string::npos) << page.detail;
        }
}

TEST(CouplingPage, WhatMustBeLookedAtIsNotAnsweredByEnter) {
    for (const Step& step :
         {Step{step::Choosing{}}, Step{step::Comparing{.code = 1, .until = noon}},
          Step{step::Owning{.visitor = named, .until = noon}}}) {
        const Page page = pageOf(step, facts());
        EXPECT_GT(page.choices.size(), 1U);
        EXPECT_EQ(std::ranges::count(page.choices, true, &Choice::isMain), 0) << page.title;
    }
}

TEST(CouplingPage, AnIdentityIsPastedWhereThatCanBeDone) {
    EXPECT_FALSE(has(pageOf(step::Choosing{}, facts()), Action::paste));
    PageFacts here = facts();
    here.canPaste = true;
    EXPECT_TRUE(has(pageOf(step::Choosing{}, here), Action::paste));
    const Page page = pageOf(step::Pasting{Failure{"dit is geen identiteit"}}, here);
    EXPECT_TRUE(page.asksForIdentity);
    EXPECT_EQ(page.detail, Message("dit is geen identiteit"));
}

TEST(CouplingPage, ACodeHasSixDigitsInTwoGroups) {
    EXPECT_EQ(pageOf(step::Comparing{.code = 42, .until = noon}, facts()).code, "000 042");
    EXPECT_EQ(pageOf(step::Comparing{.code = 123'456, .until = noon}, facts()).code, "123 456");
}

TEST(CouplingPage, TheDeviceIsNamedWhereItHasAName) {
    EXPECT_EQ(pageOf(step::Owning{.visitor = named, .until = noon}, facts()).title,
              Message("Is Telefoon van jou?"));
    EXPECT_EQ(pageOf(step::Owning{.visitor = {}, .until = noon}, facts()).title,
              Message("Is dit apparaat van jou?"));
}

TEST(CouplingPage, AnAndroidMustKeepItsEntryAndAnIphoneNeedNot) {
    const auto detail = [](Kind kind) {
        return pageOf(judged(audibility::Good{}), facts(kind)).detail.builtIn();
    };
    EXPECT_NE(detail(Kind::android).find("Laat Wegslot 4F2A op je telefoon staan"),
              std::string::npos);
    EXPECT_NE(detail(Kind::iphone).find("mag je op je apparaat nu vergeten"), std::string::npos);
}

TEST(CouplingPage, GapsAreOfferedWithTheirPriceAndOnlyWhereTheyAreNotAllowedYet) {
    const auto page = [](Seconds lostTimeout) {
        return pageOf(judged(audibility::Moderate{Seconds{20}}), facts(Kind::iphone, lostTimeout));
    };
    EXPECT_TRUE(has(page(Seconds{15}), Action::takeLostTimeout));
    EXPECT_EQ(page(Seconds{15}).choices.front().label, Message("Wacht 30 s"));
    EXPECT_FALSE(has(page(Seconds{30}), Action::takeLostTimeout));
    EXPECT_NE(page(Seconds{30}).text.builtIn().find("Wegslot wacht 30 s"), std::string::npos);
}

TEST(CouplingPage, ASilentOneIsNeverCalledAKey) {
    const Page page =
        pageOf(step::Judged{.audibility = audibility::Silent{}, .name = "Telefoon"}, facts());
    EXPECT_EQ(page.title, Message("Telefoon is niet te horen"));
    EXPECT_FALSE(has(page, Action::setFromHere));
}
