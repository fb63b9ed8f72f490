// The script that is the last step of an update, run by the system's shell on real folders, and
// killed at every one of its own steps.

#include "update/linux/swap_script.h"

#include "tests/support/application_folder.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

std::vector<std::string> scriptLines() {
    std::vector<std::string> lines;
    std::istringstream text(swapScript);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

/// An installed application, a newer one and the script, in a folder of their own.
struct Place {
    Place() {
        makeApplication(target, "1.3", 1);
        makeApplication(fresh, "1.4", 2);
        old = contentsOf(target);
        neu = contentsOf(fresh);
    }

    /// More to copy.
    void addIcons() {
        for (int i = 0; i < 50; ++i) {
            writeText(fresh / "icons" / std::to_string(i), std::string(2000, 'n'));
            writeText(target / "icons" / std::to_string(i), std::string(2000, 'o'));
        }
        old = contentsOf(target);
        neu = contentsOf(fresh);
    }

    void write(const std::string& script) const { writeText(file, script); }

    /// Runs the script as an update does, and waits for it.
    void run(const std::string& process = "999999999") const {
        ASSERT_GE(std::system(command(process).c_str()), 0);
    }

    [[nodiscard]] std::string command(const std::string& process) const {
        return "/bin/sh " + quoted(file) + " " + process + " " + quoted(fresh) + " " +
               quoted(target) + " 2>/dev/null";
    }

    static std::string quoted(const fs::path& path) {
        std::string text = "'";
        for (const char sign : path.string())
            text += sign == '\'' ? std::string("'\\''") : std::string(1, sign);
        return text + "'";
    }

    [[nodiscard]] bool isOld(const fs::path& folder) const { return contentsOf(folder) == old; }
    [[nodiscard]] bool isNew(const fs::path& folder) const { return contentsOf(folder) == neu; }
    [[nodiscard]] bool isWhole(const fs::path& folder) const {
        return isOld(folder) || isNew(folder);
    }

    /// The build that the script started, once it has. Where it was killed and run again, two
    /// programs tell theirs, and each empties the file first.
    [[nodiscard]] std::string started() const {
        const auto deadline = std::chrono::steady_clock::now() + onlyAHang;
        std::string build;
        while (!(std::ifstream(apps / "started") >> build))
            if (std::chrono::steady_clock::now() > deadline) return "nothing";
        return build;
    }

    void expectFinished() const {
        EXPECT_TRUE(isNew(target));
        EXPECT_FALSE(fs::exists(beside(".oud")));
        EXPECT_FALSE(fs::exists(beside(".nieuw")));
        EXPECT_EQ(started(), "2");
        EXPECT_FALSE(fs::exists(temporary));
    }

    [[nodiscard]] fs::path beside(const std::string& ending) const {
        return target.string() + ending;
    }

    TemporaryFolder home;
    // What a shell could trip over.
    fs::path apps = home.path() / "Mijn 'eigen' \"Apps\" $HOME *";
    fs::path target = apps / "Wegslot.app";
    fs::path temporary = home.path() / "Wegslot-update-$(x) 1";
    fs::path fresh = temporary / "Wegslot.app";
    fs::path file = temporary / "installer.sh";
    std::map<std::string, std::string> old;
    std::map<std::string, std::string> neu;
};

struct SwapTest : testing::Test, Place {};

} // namespace

TEST_F(SwapTest, PutsTheNewApplicationInPlaceStartsItAndCleansUp) {
    write(swapScript);
    run();
    expectFinished();
}

TEST_F(SwapTest, NothingIsMovedIntoAFolderThatSomebodyLaidThere) {
    write(swapScript);
    // One that cannot be removed, as in a folder where everybody may write.
    const fs::path trap = beside(".nieuw");
    const std::string script = swapScript;
    const std::string removing = "rm -rf \"$fresh\" && ";
    const auto at = script.find(removing);
    ASSERT_NE(at, std::string::npos);
    fs::create_directories(trap);
    write(std::string(script).replace(at, removing.size(), ""));
    run();
    EXPECT_TRUE(isOld(target));
    EXPECT_EQ(started(), "1");
    // And one that comes to stand at the target in the last moment.
    Place other;
    const std::string last = "mv -T \"$fresh\" \"$target\"";
    const auto end = script.find(last);
    ASSERT_NE(end, std::string::npos);
    other.write(std::string(script).insert(end, "mkdir -p \"$target/wegslot.d\"\n    "));
    other.run();
    EXPECT_FALSE(fs::exists(other.target / "Wegslot.app.nieuw"));
}

TEST_F(SwapTest, WaitsForTheOldProgramToEnd) {
    write(swapScript);
    // A program of the old application, by its executable file.
    fs::remove(target / programFile);
    fs::copy_file("/bin/sleep", target / programFile);
    old = contentsOf(target);
    const pid_t running = fork();
    if (running == 0) {
        const std::string program = (target / programFile).string();
        execl(program.c_str(), program.c_str(), "1000", nullptr);
        _exit(127);
    }
    const pid_t script = fork();
    if (script == 0) {
        execl("/bin/sh", "sh", file.c_str(), std::to_string(running).c_str(), fresh.c_str(),
              target.c_str(), nullptr);
        _exit(127);
    }
    // It looks five times a second; two seconds of looking change nothing.
    int status = 0;
    for (int i = 0; i < 20; ++i) {
        usleep(100'000);
        EXPECT_EQ(waitpid(script, &status, WNOHANG), 0);
    }
    EXPECT_TRUE(isOld(target));
    EXPECT_FALSE(fs::exists(beside(".nieuw")));
    // Ended, though nobody has asked for its status yet.
    kill(running, SIGKILL);
    EXPECT_EQ(waitpid(script, &status, 0), script);
    expectFinished();
    waitpid(running, &status, 0);
}

TEST_F(SwapTest, AnotherProgramOfTheSameNumberIsNotWaitedFor) {
    write(swapScript);
    run(std::to_string(getpid()));
    expectFinished();
}

TEST_F(SwapTest, KilledBeforeAnyOfItsLinesLeavesAWholeApplicationAndFinishesTheNextTime) {
    const auto lines = scriptLines();
    std::size_t killed = 0;
    bool isBeside = false; // of what runs beside the script itself
    for (std::size_t at = 1; at < lines.size(); ++at) {
        isBeside = isBeside ? lines[at - 1] != ") &" : lines[at - 1] == "(";
        if (isBeside) continue;
        std::string script;
        for (std::size_t i = 0; i < lines.size(); ++i)
            script += (i == at ? "kill -9 $$\n" : "") + lines[i] + "\n";
        const Place place; // what was started before may still be at work in its own
        place.write(script);
        place.run();
        ASSERT_TRUE(place.isWhole(place.target) || place.isOld(place.beside(".oud"))) << lines[at];
        if (!fs::exists(place.file)) continue; // it had come to its end
        ++killed;
        place.write(swapScript);
        place.run();
        SCOPED_TRACE(lines[at]);
        place.expectFinished();
    }
    EXPECT_GT(killed, lines.size() / 2);
}

// The same at moments of no line's choosing, with enough to copy that some fall into it.
TEST_F(SwapTest, KilledAtAnyMomentLeavesAWholeApplicationAndFinishesTheNextTime) {
    int unfinished = 0;
    for (int delay = 0; delay < 40; ++delay) {
        Place place;
        place.addIcons();
        place.write(swapScript);
        const pid_t script = fork();
        if (script == 0) {
            setpgid(0, 0);
            execl("/bin/sh", "sh", place.file.c_str(), "999999999", place.fresh.c_str(),
                  place.target.c_str(), nullptr);
            _exit(127);
        }
        setpgid(script, script);
        usleep(static_cast<useconds_t>(delay) * 2000);
        kill(-script, SIGKILL);
        int status = 0;
        waitpid(script, &status, 0);
        ASSERT_TRUE(place.isWhole(place.target) || place.isOld(place.beside(".oud"))) << delay;
        if (!fs::exists(place.file) || !fs::exists(place.fresh)) continue;
        ++unfinished;
        place.run();
        SCOPED_TRACE(delay);
        place.expectFinished();
    }
    EXPECT_GT(unfinished, 0);
}

TEST_F(SwapTest, ACopyThatFailsBringsTheOldApplicationBack) {
    fs::remove_all(fresh);
    write(swapScript);
    run();
    EXPECT_TRUE(isOld(target));
    EXPECT_EQ(started(), "1");
    EXPECT_FALSE(fs::exists(beside(".nieuw")));
    EXPECT_FALSE(fs::exists(temporary));
}

TEST_F(SwapTest, ANewOneThatCannotBeMovedIntoPlaceBringsTheOldOneBack) {
    std::string script = swapScript;
    const std::string step = "    mv -T \"$fresh\" \"$target\"\n";
    ASSERT_NE(script.find(step), std::string::npos);
    script.replace(script.find(step), step.size(), "    false\n");
    write(script);
    run();
    EXPECT_TRUE(isOld(target));
    EXPECT_EQ(started(), "1");
    EXPECT_FALSE(fs::exists(beside(".oud")));
}

TEST_F(SwapTest, WhatAnEarlierTimeLeftBesideIsNoHindrance) {
    makeApplication(beside(".oud"), "1.2", 0);
    makeApplication(beside(".nieuw"), "1.4", 2);
    writeText(beside(".nieuw") / "half", "");
    write(swapScript);
    run();
    expectFinished();
}

TEST_F(SwapTest, TheEndOfTheSessionDoesNotComeInBetween) {
    std::string script = swapScript;
    const std::string step = "put_in_place() {\n";
    script.replace(script.find(step), step.size(), step + "    kill -TERM $$; kill -HUP $$\n");
    write(script);
    run();
    expectFinished();
}
