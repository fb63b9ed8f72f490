// The sound of the warning on a real sound server, on one that hangs, and on none.

#include "hud/linux/warning_sound.h"

#include "tests/integration/media_servers.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto soundBound = 1s; ///< what would wait for a server that hangs waits for ever

struct WarningSoundTest : testing::Test {
    MediaSession session;
    PulseAudioServer server;
    WarningSound sound;

    void SetUp() override {
        if (const auto missing = firstMissing(server.needs()))
            GTEST_SKIP() << *missing << " is not installed";
        if (!std::filesystem::exists("/usr/share/sounds/freedesktop/stereo/window-attention.oga"))
            GTEST_SKIP() << "sound-theme-freedesktop is not installed";
    }

    /// How long the caller is held up.
    [[nodiscard]] std::chrono::nanoseconds show() {
        const auto before = std::chrono::steady_clock::now();
        sound.show({}, Seconds{5}, "Telefoon is buiten bereik", [] {});
        return std::chrono::steady_clock::now() - before;
    }
    [[nodiscard]] static long times(const Program& program, const std::string& words) {
        const std::string said = program.output();
        long count = 0;
        for (auto at = said.find(words); at != std::string::npos; at = said.find(words, at + 1))
            ++count;
        return count;
    }
};

} // namespace

TEST_F(WarningSoundTest, IsPlayedOnceForEachWarningAndEndsByItself) {
    ASSERT_TRUE(server.start());
    const Program events({.words = {"stdbuf", "-oL", "pactl", "subscribe"}});
    ASSERT_TRUE(becomesTrue([&] { // others that come are told of as soon as it listens
        static_cast<void>(MediaSession::run({"pactl", "info"}));
        return times(events, "on client") > 0;
    })) << events.output();
    EXPECT_LT(show(), soundBound);
    ASSERT_TRUE(becomesTrue([&] { return times(events, "'new' on sink-input") == 1; }))
        << events.output();
    sound.hide();
    ASSERT_TRUE(becomesTrue([&] { return times(events, "'remove' on sink-input") == 1; }));
    // The one before may take a moment to leave.
    ASSERT_TRUE(becomesTrue([&] {
        static_cast<void>(show());
        return times(events, "'new' on sink-input") == 2;
    }));
}

TEST_F(WarningSoundTest, AServerThatHangsHoldsUpNobody) {
    ASSERT_TRUE(server.start());
    server.signal(SIGSTOP);
    EXPECT_LT(show(), soundBound);
    EXPECT_LT(show(), soundBound);
    server.signal(SIGCONT);
}

TEST_F(WarningSoundTest, WithoutAServerThereIsSilence) {
    EXPECT_LT(show(), soundBound);
    EXPECT_LT(show(), soundBound);
}
