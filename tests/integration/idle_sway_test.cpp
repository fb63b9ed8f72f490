// The idle time of a real compositor: the older of the two Wayland protocols, with a keyboard.

#include "platform/linux/idle/wayland_idle.h"
#include "tests/support/bus_loop.h"
#include "tests/support/headless_sway.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct IdleSwayTest : testing::Test {
    void SetUp() override {
        for (const char* const tool : {"sway", "wtype"})
            if (!isInstalled(tool)) GTEST_SKIP() << "no " << tool;
        sway.emplace(folder);
        ASSERT_TRUE(sway->isListening) << sway->program().output();
        idle.emplace(environment, loop.time, loop.time, loop);
        ASSERT_TRUE(loop.runUntil([this] { return idle->isThere(); }));
    }

    void typeKey() const {
        Program wtype({.words = {"wtype", "a"},
                       .environment = {{"XDG_RUNTIME_DIR", folder.path()},
                                       {"WAYLAND_DISPLAY", HeadlessSway::socketName}}});
        ASSERT_EQ(wtype.ended(), 0) << wtype.output();
    }

    /// Has sway take every window for a film, or none.
    void inhibits(const std::string& when) const {
        Program message(
            {.words = {"swaymsg", "-s", ipcSocket(), "[app_id=.*]", "inhibit_idle", when}});
        ASSERT_EQ(message.ended(), 0) << message.output();
    }

    [[nodiscard]] std::string ipcSocket() const {
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().filename().string().starts_with("sway-ipc.")) return entry.path();
        return {};
    }

    [[nodiscard]] bool answers(std::optional<Seconds> expected) {
        return loop.runUntil([&] { return idle->idleTime() == expected; });
    }

    RuntimeFolder folder;
    DisplayEnvironment environment{.waylandDisplay = HeadlessSway::socketName,
                                   .runtimeFolder = folder.path()};
    BusLoop loop;
    std::optional<HeadlessSway> sway;
    std::optional<WaylandIdle> idle;
};

TEST_F(IdleSwayTest, GrowsUntilAKeyIsTyped) {
    EXPECT_TRUE(idle->name().starts_with("Wayland ("));
    ASSERT_TRUE(answers(1s)); // nobody types
    loop.pass(9s);
    EXPECT_TRUE(answers(10s));
    typeKey();
    ASSERT_TRUE(answers(0s));
    EXPECT_TRUE(answers(1s));
}

TEST_F(IdleSwayTest, AFilmHoldsItUpForTwoMinutesAndHidesHandsThen) {
    Program film({.words = {WEGSLOT_FULL_SCREEN_WINDOW},
                  .environment = {{"XDG_RUNTIME_DIR", folder.path()},
                                  {"WAYLAND_DISPLAY", HeadlessSway::socketName},
                                  {"QT_QPA_PLATFORM", "wayland"}}});
    ASSERT_TRUE(becomesTrue([&] { return film.output().find("focus") != std::string::npos; }))
        << film.output();
    // It has to begin while the seat counts as touched, which is a second after a key: on a busy
    // machine that takes more than one attempt.
    bool isHeldUp = false;
    for (int attempt = 0; attempt < 20 && !isHeldUp; ++attempt) {
        inhibits("none");
        typeKey();
        ASSERT_TRUE(answers(0s));
        inhibits("open");
        const auto later = std::chrono::steady_clock::now() + 3 * SeatIdle::timeout;
        ASSERT_TRUE(loop.runUntil([&] { return std::chrono::steady_clock::now() > later; }));
        isHeldUp = idle->idleTime() == 0s;
    }
    ASSERT_TRUE(isHeldUp);
    loop.pass(SeatIdle::longestHands);
    EXPECT_TRUE(answers(std::nullopt));
    EXPECT_TRUE(idle->isThere());
    inhibits("none");
    EXPECT_TRUE(answers(1s));
}

TEST_F(IdleSwayTest, HungCompositorAnswersNothing) {
    ASSERT_TRUE(answers(1s));
    sway->program().signal(SIGSTOP);
    EXPECT_EQ(idle->idleTime(), std::nullopt);
    EXPECT_TRUE(idle->isThere());
    sway->program().signal(SIGCONT);
    EXPECT_TRUE(answers(1s));
}

TEST_F(IdleSwayTest, CompositorThatCrashedIsFoundAgain) {
    sway->program().signal(SIGKILL);
    ASSERT_TRUE(loop.runUntil([this] { return !idle->isThere(); }));
    sway.reset();
    sway.emplace(folder);
    ASSERT_TRUE(sway->isListening) << sway->program().output();
    loop.pass(WaylandIdle::retryInterval);
    EXPECT_TRUE(answers(1s));
}

} // namespace
