#include "app/history_commands.h"

#include "tests/support/lived_history.h"
#include "tests/support/time_zone.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;

/// A departure at twelve that locks at 12:00:23, in the user's own time zone.
struct HistoryCommandsTest : testing::Test {
    TimeZone zone{"Europe/Amsterdam"}; // an hour ahead in November
    LivedHistory life{1};
    history::Reader reader = readerOf({{101, "Telefoon"}});

    void SetUp() override {
        life.begin(1);
        life.world.keepHearing(1, -55, 10);
        life.world.keepHearing(1, -90, 20);
    }

    [[nodiscard]] Lines why(const command::Why& asked, std::optional<TimePoint> at = {}) {
        const auto lines = whyLines(life.kept(), asked, at, reader);
        return lines ? *lines : Lines{lines.failure().message.builtIn()};
    }

    [[nodiscard]] Lines printed(const command::History& asked) {
        Lines lines;
        printHistory(life.kept(), asked, reader,
                     [&lines](std::string_view line) { lines.emplace_back(line); });
        return lines;
    }
};

} // namespace

TEST_F(HistoryCommandsTest, TheLastDecisionIsExplainedUnlessMoreAreAskedFor) {
    EXPECT_EQ(why({}).front(), "15-11 13:00:28 De lock kwam niet: niets bevestigde hem");
    const Lines two = why({.last = 2});
    EXPECT_EQ(two.front(), "15-11 13:00:23 Gelockt");
    EXPECT_EQ(two[1],
              "  Telefoon was zwak: -90 dBm, 10 s onder de drempel van -75 dBm; weg na 5 s");
    EXPECT_EQ(why({.last = 100}).front(), "15-11 13:00:18 Gewaarschuwd");
}

TEST_F(HistoryCommandsTest, TheOneNearestToATimeIsExplained) {
    EXPECT_EQ(why({}, World::start + 22s).front(), "15-11 13:00:23 Gelockt");
    EXPECT_EQ(why({}, World::start - 9min).front(), "15-11 13:00:18 Gewaarschuwd");
    EXPECT_EQ(why({}, World::start - 10min),
              Lines{"Rond die tijd is niets bewaard waar een waarom bij hoort"});
}

TEST_F(HistoryCommandsTest, WhereNothingIsKeptThatIsSaid) {
    const auto none = whyLines({}, {}, {}, reader);
    ASSERT_FALSE(none);
    EXPECT_EQ(none.failure().message.builtIn(),
              "Er is nog niets bewaard waar een waarom bij hoort");
}

TEST_F(HistoryCommandsTest, ProgramsGetAnExplanationAsOneObject) {
    const Lines lines = why({.last = 2, .json = true});
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0],
              R"({"time":"2026-11-15 12:00:23 +0000","kind":"locked","reason":"keysAway","keys":[)"
              R"({"name":"Telefoon","state":"away","silent":false,"threshold":-75.0,)"
              R"("notNearSeconds":10.0,"silentSeconds":0.993,"median":-90.0}],)"
              R"("remedy":{"setting":"keys","before":-75.0,"value":-90.0,"steps":15,)"
              R"("locksLess":0,"locksMore":0,"latestSeconds":0.0,"key":"Telefoon"}})");
}

TEST_F(HistoryCommandsTest, InWordsThePhasesAreListed) {
    const Lines lines = printed({});
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_TRUE(lines[0].starts_with("15-11 13:00:01  ")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with("  Sleutel in de buurt")) << lines[0];
    EXPECT_TRUE(lines[3].starts_with("15-11 13:00:23  Gelockt")) << lines[3];
}

TEST_F(HistoryCommandsTest, ProgramsGetAllThatIsKept) {
    const Lines csv = printed({.csv = true});
    ASSERT_GT(csv.size(), 40U);
    EXPECT_EQ(csv[0], "time,kind,key,value");
    const auto count = [&csv](const std::string& kind) {
        return std::ranges::count_if(csv, [&kind](const std::string& line) {
            return line.find("," + kind + ",") != std::string::npos;
        });
    };
    EXPECT_EQ(count("heard"), 30);
    EXPECT_EQ(count("state"), 4); // near, leaving, away, and leaving as the guard begins anew
    EXPECT_EQ(count("phase"), 5);
    EXPECT_NE(std::ranges::find(csv, R"(2026-11-15T12:00:00.007Z,heard,"Telefoon","-55")"),
              csv.end());
    const Lines json = printed({.json = true});
    EXPECT_EQ(json.size(), csv.size() - 1);
    EXPECT_NE(std::ranges::find(
                  json, R"({"time":"2026-11-15T12:00:00.007Z","key":"Telefoon","heard":-55})"),
              json.end());
    for (const std::string& line : json)
        EXPECT_EQ(line.find("00000000-"), std::string::npos) << line;
}
