// The sound of the warning on a real sound server, on one that hangs, and on none.

#include "hud/linux/warning_sound.h"

#include "tests/integration/media_servers.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <iterator>

using namespace wegslot;

namespace {

struct WarningSoundTest : testing::Test {
    MediaSession session;
    PulseAudioServer server;
    WarningSound sound;
    std::optional<Program> events;

    /// Of this process, before any sound.
    std::ptrdiff_t threads = threadCount();

    static std::ptrdiff_t threadCount() {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::distance(begin(tasks), end(tasks));
    }

    void SetUp() override {
        if (const auto missing = firstMissing(server.needs()))
            GTEST_SKIP() << *missing << " is not installed";
        if (!std::filesystem::exists("/usr/share/sounds/freedesktop/stereo/window-attention.oga"))
            GTEST_SKIP() << "sound-theme-freedesktop is not installed";
    }

    void show() {
        sound.show({}, Seconds{5}, "Telefoon is buiten bereik", [] {});
    }
    /// From now on `events` has what the server tells.
    void listen() {
        events.emplace(Program::Start{.words = {"stdbuf", "-oL", "pactl", "subscribe"}});
        ASSERT_TRUE(becomesTrue([this] { // others that come are told of as soon as it listens
            static_cast<void>(MediaSession::run({"pactl", "info"}));
            return times(*events, "on client") > 0;
        })) << events->output();
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
    listen();
    show();
    ASSERT_TRUE(becomesTrue([&] { return times(*events, "'new' on sink-input") == 1; }))
        << events->output();
    sound.hide();
    ASSERT_TRUE(becomesTrue([&] { return times(*events, "'remove' on sink-input") == 1; }));
    // The one before may take a moment to leave.
    ASSERT_TRUE(becomesTrue([&] {
        show();
        return times(*events, "'new' on sink-input") == 2;
    }));
}

TEST_F(WarningSoundTest, AServerThatHangsHoldsUpNobody) {
    ASSERT_TRUE(server.start());
    listen();
    server.signal(SIGSTOP);
    show();
    show();
    // Whoever waits for it gives up before it goes on, and nothing is played any more.
    server.signal(SIGCONT);
    EXPECT_TRUE(becomesTrue([this] { return times(*events, "'new' on sink-input") == 1; }))
        << events->output();
}

TEST_F(WarningSoundTest, WithoutAServerThereIsSilence) {
    show();
    show();
}

TEST_F(WarningSoundTest, WhoeverAskedForItGoesAndTheSoundWithThem) {
    ASSERT_TRUE(server.start());
    listen();
    {
        WarningSound brief;
        brief.show({}, Seconds{5}, "Telefoon is buiten bereik", [] {});
        ASSERT_TRUE(becomesTrue([this] { return times(*events, "'new' on sink-input") == 1; }))
            << events->output();
    }
    EXPECT_TRUE(becomesTrue([this] { return threadCount() == threads; }));
}

TEST_F(WarningSoundTest, AServerThatHangsDoesNotHoldUpTheEnd) {
    ASSERT_TRUE(server.start());
    server.signal(SIGSTOP);
    {
        WarningSound brief;
        brief.show({}, Seconds{5}, "Telefoon is buiten bereik", [] {});
    }
    server.signal(SIGCONT);
}
