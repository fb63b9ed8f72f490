#include "app/coupling_terminal.h"

#include "tests/support/fake_coupling_radio.h"
#include "tests/support/world.h"

using namespace wegslot;
using namespace wegslot::coupling;
using namespace std::chrono_literals;

namespace {

struct CouplingTerminalTest : testing::Test {
    CouplingTerminalTest() {
        world.run();
        coupling.emplace(Coupling::World{.radio = radio,
                                         .scanner = world.scanner(),
                                         .settings = world.settings(),
                                         .clock = world.time,
                                         .scheduler = world.time,
                                         .suffix = [] { return 0x4F2A; }});
        terminal.emplace(
            *coupling, world.time, [this](std::string_view line) { lines.emplace_back(line); },
            [this](bool isKey) { ended = isKey; });
    }

    [[nodiscard]] bool says(std::string_view line) {
        return std::ranges::find(lines, line) != lines.end();
    }

    World world;
    FakeCouplingRadio radio;
    std::optional<Coupling> coupling;
    std::optional<CouplingTerminal> terminal;
    std::vector<std::string> lines;
    std::optional<bool> ended;
};

} // namespace

TEST_F(CouplingTerminalTest, IsWalkedThroughByNumbersFromTheFirstQuestionToAKey) {
    EXPECT_TRUE(says("  3 Android-telefoon"));
    terminal->typed("3");
    radio.listener->appears();
    EXPECT_TRUE(says("Tik op Wegslot 4F2A"));
    EXPECT_TRUE(says("  Nog 120 seconden"));
    radio.listener->visitorCame({});
    radio.listener->codeCame(123'456);
    EXPECT_TRUE(says("  123 456"));
    terminal->typed("2");
    radio.listener->bonded({.name = "Telefoon", .identity = numbered(7)});
    EXPECT_TRUE(says("Is Telefoon van jou?"));
    terminal->typed(""); // no answer
    terminal->typed("2");
    radio.listener->isGone();
    world.keepHearing(7, -50, 20);
    terminal->typed("");
    world.keepHearing(7, -60, 120);
    EXPECT_TRUE(says("Telefoon is een sleutel"));
    EXPECT_EQ(ended, std::nullopt);
    terminal->typed("");
    EXPECT_EQ(ended, true);
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(CouplingTerminalTest, WhatIsNoChoiceShowsThemAgain) {
    lines.clear();
    terminal->typed("iphone");
    EXPECT_TRUE(says("Wat wil je koppelen?"));
    EXPECT_TRUE(radio.calls.empty());
}

TEST_F(CouplingTerminalTest, EndsWithoutAKeyWhenItIsClosed) {
    terminal->typed("1");
    EXPECT_EQ(ended, false);
}
