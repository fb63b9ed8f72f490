#include "app/demo.h"

#include "hud/hidden_hud.h"
#include "tests/support/glossary.h"
#include "tests/support/world.h"

#include <algorithm>

using namespace wegslot;
using namespace std::chrono_literals;

TEST(Demo, PlaysOneDepartureAndReturnWithinFortySeconds) {
    VirtualTime time{World::start};
    std::vector<std::string> lines;
    bool done = false;
    {
        const Demo demo(
            time, time, [&](std::string_view line) { lines.emplace_back(line); },
            [&] { done = true; }, std::make_unique<HiddenHud>());
        time.advance(40s);
    }
    EXPECT_TRUE(done);
    std::vector<std::string> phases;
    for (const auto& line : lines)
        if (const auto start = line.find("Fase: "); start != std::string::npos)
            phases.push_back(line.substr(start + 6));
    EXPECT_EQ(phases, (std::vector<std::string>{"present", "leaving", "warning", "locked",
                                                "waitingForReturn", "present"}));
    const auto printed = [&lines](std::string_view text) {
        return std::ranges::any_of(
            lines, [text](const auto& line) { return line.find(text) != line.npos; });
    };
    EXPECT_TRUE(printed("Log:  Waarschuwing: Telefoon is buiten bereik"));
    EXPECT_TRUE(printed("Log:  Mac wordt gelockt"));
    EXPECT_FALSE(printed("Geen bevestiging"));
    EXPECT_EQ(time.pending(), 0U);
}

TEST(Demo, TellsItsStoryInTheUsersLanguageAndTheLogAsItIs) {
    const Glossary english{{"(je komt terug)", "(you come back)"},
                           {"Fase: %1", "Phase: %1"},
                           {"Telefoon", "Phone"},
                           {"%1 is buiten bereik", "%1 is out of range"}};
    VirtualTime time{World::start};
    std::string all;
    const Demo demo(
        time, time, [&all](std::string_view line) { (all += line) += '\n'; }, [] {},
        std::make_unique<HiddenHud>());
    time.advance(40s);
    for (const char* const line : {"   (you come back)\n", "  Phase: warning\n",
                                   "Log:  Waarschuwing: Phone is buiten bereik\n"})
        EXPECT_NE(all.find(line), std::string::npos) << line << all;
}
