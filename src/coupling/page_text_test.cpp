#include "coupling/page_text.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

namespace {

const TimePoint midday{1000h};

const Page question{.title = "Is het van jou?",
                    .text = "Het is gekoppeld.",
                    .detail = {},
                    .code = "012 345",
                    .until = midday + 59'200ms,
                    .choices = {{Action::no, "Nee"}, {Action::yes, "Ja", true}}};

} // namespace

TEST(CouplingPageText, HasAllOfThePage) {
    EXPECT_EQ(linesOf(question, midday),
              (std::vector<std::string>{"", "Is het van jou?", "  Het is gekoppeld.", "  012 345",
                                        "  Nog 60 seconden", "  1 Nee", "  2 Ja (of Enter)"}));
}

TEST(CouplingPageText, NeverCountsBelowZero) {
    const auto lines = linesOf(question, midday + 2min);
    EXPECT_NE(std::find(lines.begin(), lines.end(), "  Nog 0 seconden"), lines.end());
}

TEST(CouplingPageText, IsAnsweredByNumberAndByEnter) {
    EXPECT_EQ(chosenBy(question, "1"), Action::no);
    EXPECT_EQ(chosenBy(question, " 2 "), Action::yes);
    EXPECT_EQ(chosenBy(question, ""), Action::yes);
    for (const char* const wrong : {"0", "3", "ja", "12", "-1", "1 2"})
        EXPECT_EQ(chosenBy(question, wrong), std::nullopt) << wrong;
}

TEST(CouplingPageText, EnterAloneDoesNothingWhereThereIsNoMainChoice) {
    Page page = question;
    page.choices = {{Action::back, "Terug"}};
    EXPECT_EQ(chosenBy(page, ""), std::nullopt);
}
