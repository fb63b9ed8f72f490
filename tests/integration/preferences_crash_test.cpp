// A program that is killed at any moment while its user changes settings leaves a file that can be
// read, with the change that was under way or the one before it.

#include "base/virtual_time.h"
#include "model/linux/preferences_file.h"
#include "model/settings.h"
#include "tests/support/captured_log.h"
#include "tests/support/dice.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

using namespace wegslot;

namespace {

constexpr int changes = 200;

/// Makes the changes one by one, each announced before it is made; never returns.
[[noreturn]] void changeAll(const std::filesystem::path& file, int announcements) {
    VirtualTime time{TimePoint{}};
    PreferencesFile store(file, time);
    Settings settings(store);
    for (int change = 1; change <= changes; ++change) {
        if (::write(announcements, &change, sizeof change) != sizeof change) _exit(1);
        settings.awayDelay.set(Seconds{static_cast<double>(change)});
        time.advance(Nanoseconds{1}); // the turn of the loop that writes the file
    }
    _exit(0);
}

/// The next change that is announced; 0 when there is none any more.
int nextOf(int announcements) {
    int change = 0;
    return ::read(announcements, &change, sizeof change) == sizeof change ? change : 0;
}

} // namespace

TEST(PreferencesCrash, AKillAtAnyMomentLeavesTheLastChangeOrTheOneBefore) {
    Dice dice(20261121);
    int killedUnderWay = 0;
    for (int life = 0; life < 100; ++life) {
        const TemporaryFolder folder;
        const auto file = folder.path() / "wegslot" / "preferences.json";
        std::array<int, 2> announcements{};
        ASSERT_EQ(pipe(announcements.data()), 0);
        const pid_t child = fork();
        if (child == 0) changeAll(file, announcements[1]);
        close(announcements[1]);
        // By what it has come to and not by a time; the turns left to it put the kill anywhere in
        // that.
        const int wanted = dice.between(1, 20);
        int last = 0;
        while (last < wanted && (last = nextOf(announcements[0])) != 0) {
        }
        for (int turns = dice.between(0, 20); turns > 0; --turns)
            std::this_thread::yield();
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        while (const int change = nextOf(announcements[0]))
            last = change;
        close(announcements[0]);
        if (last > 0 && WIFSIGNALED(status)) ++killedUnderWay;

        CapturedLog log;
        VirtualTime time{TimePoint{}};
        PreferencesFile store(file, time, PreferencesFile::Access::readOnly);
        const double found = Settings(store).awayDelay.get().count();
        EXPECT_TRUE(log.messages.empty()) << log.messages.front();
        if (last < 2) continue; // the setting it began with may still stand
        EXPECT_TRUE(found == last || found == last - 1) << found << " after " << last;
    }
    EXPECT_GT(killedUnderWay, 20); // or the others prove nothing
}
