// The programs of this user as Linux shows them: a made-up process table, and real processes.

#include "platform/linux/linux_processes.h"
#include "platform/locker_watch.h"
#include "tests/support/bus_loop.h"
#include "tests/support/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>

using namespace wegslot;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr uid_t user = 1000;

/// A process table in a folder.
class MadeUpTable {
public:
    void put(int process, const std::string& name, const std::string& status,
             const std::string& words = {}) const {
        const std::string number = std::to_string(process);
        fs::create_directory(folder.path() / number);
        folder.write(number + "/comm", name + "\n");
        folder.write(number + "/status", "Name:\t" + name + "\n" + status);
        folder.write(number + "/cmdline", words);
    }
    /// Which file it runs; without this it cannot be read.
    void runs(int process, const std::string& file) const {
        fs::create_symlink(file, folder.path() / std::to_string(process) / "exe");
    }
    void isIn(int process, const std::string& kind, const std::string& space) const {
        const auto spaces = folder.path() / std::to_string(process) / "ns";
        fs::create_directory(spaces);
        fs::create_symlink(space, spaces / kind);
    }
    /// A process that sleeps, of the user.
    void put(int process, const std::string& name) const {
        put(process, name, "State:\tS (sleeping)\nUid:\t1000\t1000\t1000\t1000\n");
        runs(process, "/usr/bin/" + name);
    }

    TemporaryFolder folder;
};

struct ProcessTableTest : testing::Test {
    MadeUpTable table;
    BusLoop loop;
    LinuxProcesses processes{loop, table.folder.path(), user};

    [[nodiscard]] std::vector<int> running(const ProcessPattern& pattern) {
        std::vector<int> numbers;
        for (const ProcessId process : processes.running({{.name = "nothing"}, pattern}))
            numbers.push_back(process.value);
        std::ranges::sort(numbers);
        return numbers;
    }
};

using Numbers = std::vector<int>;

/// A program of a name of its own, that runs until it is ended.
class NamedProgram {
public:
    explicit NamedProgram(const std::string& name) : file_(folder_.path() / name) {
        fs::copy_file("/usr/bin/sleep", file_);
    }
    [[nodiscard]] Program::Start start() const { return {.words = {file_.string(), "1000"}}; }
    [[nodiscard]] std::string file() const { return file_.string(); }

private:
    TemporaryFolder folder_;
    fs::path file_;
};

struct ProcessesTest : testing::Test {
    BusLoop loop;
    LinuxProcesses processes{loop};
};

} // namespace

TEST_F(ProcessTableTest, ProcessesAreFoundByTheirName) {
    table.put(1, "systemd");
    table.put(20, "swaylock");
    table.put(21, "swaylockx");
    table.put(300, "swaylock");
    EXPECT_EQ(running({.name = "swaylock"}), (Numbers{20, 300}));
    EXPECT_EQ(running({.name = "sway"}), Numbers{});
}

TEST_F(ProcessTableTest, LongNamesAreCutAsTheKernelCutsThem) {
    table.put(5, "xscreensaver-gf", "State:\tS (sleeping)\nUid:\t1000\t0\t0\t0\n");
    EXPECT_EQ(running({.name = "xscreensaver-gfx"}), Numbers{5});
}

TEST_F(ProcessTableTest, WhatAProcessRunsCountsAndNotWhatItCallsItself) {
    const std::string ours = "State:\tS (sleeping)\nUid:\t1000\t1000\t1000\t1000\n";
    table.put(5, "swaylock", ours); // it called itself so
    table.runs(5, "/usr/bin/python3.11");
    table.put(6, "swaylock:main", ours);
    table.runs(6, "/usr/bin/swaylock");
    table.put(7, "swaylock", ours);
    table.runs(7, "/usr/bin/swaylock (deleted)"); // a newer one was installed since
    table.put(8, "swaylock", ours); // hides its file, as any process of the user's can
    EXPECT_EQ(running({.name = "swaylock"}), (Numbers{6, 7}));
}

TEST_F(ProcessTableTest, WhatIsInAWorldOfItsOwnLocksNoScreenOfOurs) {
    const auto space = [](const char* kind) {
        return fs::read_symlink(fs::path("/proc/self/ns") / kind).string();
    };
    for (const int process : {5, 6, 7, 8})
        table.put(process, "swaylock");
    table.isIn(5, "pid", space("pid"));
    table.isIn(5, "mnt", space("mnt"));
    table.isIn(6, "pid", "pid:[1]");
    table.isIn(7, "mnt", "mnt:[1]");
    EXPECT_EQ(running({.name = "swaylock"}), (Numbers{5, 8}));
}

TEST_F(ProcessTableTest, WhoStartedItCountsAndNotWhatRightsItHas) {
    table.put(5, "slock", "State:\tS (sleeping)\nUid:\t1000\t0\t0\t0\n");
    table.put(6, "slock", "State:\tS (sleeping)\nUid:\t1001\t1001\t1001\t1001\n");
    table.put(7, "slock", "State:\tS (sleeping)\nUid:\t10001\t1000\t1000\t1000\n");
    table.runs(7, "/usr/bin/slock");
    EXPECT_EQ(running({.name = "slock"}), Numbers{5});
}

TEST_F(ProcessTableTest, OneThatHasEndedAndOneThatIsEndingAreNone) {
    table.put(5, "swaylock", "State:\tZ (zombie)\nUid:\t1000\t1000\t1000\t1000\n");
    fs::create_directory(table.folder.path() / "6"); // gone between two looks at it
    table.put(7, "swaylock", "");
    EXPECT_EQ(running({.name = "swaylock"}), Numbers{});
}

TEST_F(ProcessTableTest, WhatIsNoProcessIsPassedOver) {
    table.put(5, "swaylock");
    fs::create_directory(table.folder.path() / "5x");
    table.folder.write("5x/comm", "swaylock\n");
    table.folder.write("version", "swaylock\n");
    EXPECT_EQ(running({.name = "swaylock"}), Numbers{5});
}

TEST_F(ProcessTableTest, ArgumentsAreComparedAtTheEndForScriptsHaveAnInterpreterInFront) {
    const std::string alive = "State:\tS (sleeping)\nUid:\t1000\t1000\t1000\t1000\n";
    using std::string_literals::operator""s;
    table.put(5, "mylock", alive, "/bin/sh\0/home/me/mylock\0-x\0"s);
    table.runs(5, "/usr/bin/dash");
    table.put(6, "mylock", alive, "/home/me/mylock\0-y\0"s);
    table.runs(6, "/home/me/mylock");
    table.put(7, "mylock", alive, "-x\0"s); // it was renamed: these are all of its words
    table.runs(7, "/home/me/mylock");
    table.put(8, "mylock", alive, "/bin/sh\0/home/me/other\0-x\0"s); // calls itself so
    table.runs(8, "/usr/bin/dash");
    EXPECT_EQ(running({.name = "mylock", .arguments = {{"-x"}}}), Numbers{5});
    const std::vector<std::string> none;
    EXPECT_EQ(running({.name = "mylock", .arguments = none}), (Numbers{5, 6, 7}));
    EXPECT_EQ(running({.name = "mylock"}), (Numbers{6, 7}));
}

TEST_F(ProcessTableTest, WithoutATableNobodyRuns) {
    LinuxProcesses blind{loop, "/nowhere", user};
    EXPECT_TRUE(blind.running({{.name = "swaylock"}}).empty());
}

TEST_F(ProcessesTest, ARealProcessIsFoundAndItsEndTold) {
    const NamedProgram named("swaylock-proef");
    Program program(named.start());
    const std::vector<ProcessPattern> patterns{{.name = "swaylock-proef"}};
    ASSERT_TRUE(becomesTrue([&] { return !processes.running(patterns).empty(); }));
    EXPECT_EQ(processes.running(patterns), std::vector{ProcessId{program.process()}});
    int ends = 0;
    const auto following = processes.onEnd({program.process()}, [&] { ++ends; });
    ASSERT_TRUE(following);
    loop.settle();
    EXPECT_EQ(ends, 0);
    program.signal(SIGKILL);
    ASSERT_TRUE(loop.runUntil([&] { return ends > 0; }));
    loop.settle();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(program.ended(), 128 + SIGKILL); // another's child is not laid to rest
    EXPECT_TRUE(processes.running(patterns).empty());
}

TEST_F(ProcessesTest, AProcessThatTakesALockersNameIsNone) {
    Program program(
        {.words = {"/usr/bin/python3", "-c",
                   "import signal; open('/proc/self/comm', 'w').write('swaylock-proef')\n"
                   "signal.pause()"}});
    const auto comm = fs::path("/proc") / std::to_string(program.process()) / "comm";
    ASSERT_TRUE(becomesTrue([&comm] {
        std::string name;
        std::ifstream(comm) >> name;
        return name == "swaylock-proef";
    }));
    EXPECT_TRUE(processes.running({{.name = "swaylock-proef"}}).empty());
}

TEST_F(ProcessesTest, AProcessThatIsNoMoreCannotBeFollowed) {
    ProcessId gone;
    {
        Program program({.words = {"true"}});
        gone = {program.process()};
    }
    EXPECT_FALSE(processes.onEnd(gone, [] { FAIL(); }));
}

TEST_F(ProcessesTest, AnEndThatNobodyWaitsForAnyMoreIsNotTold) {
    const NamedProgram named("swaylock-proef");
    Program program(named.start());
    auto following = processes.onEnd({program.process()}, [] { FAIL(); });
    following.reset();
    program.stop();
    loop.settle();
}

TEST_F(ProcessesTest, AProgramIsStartedApartFromThisOne) {
    TemporaryFolder folder;
    folder.write("proef", "#!/bin/sh\n"
                          "trap '' TERM 2>/dev/null\n"
                          "{ echo \"$@\"; ls -l /proc/self/fd | grep -c -- '->';\n"
                          "  ps -o sid= -p $$; echo $$; grep Sig[BI] /proc/self/status; } > " +
                              (folder.path() / "said.new").string() + "\nmv " +
                              (folder.path() / "said.new").string() + " " +
                              (folder.path() / "said").string() + "\n");
    fs::permissions(folder.path() / "proef", fs::perms::owner_all);
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    sigprocmask(SIG_BLOCK, &blocked, &before);
    const auto process = processes.start({(folder.path() / "proef").string(), "a b", "$HOME"});
    sigprocmask(SIG_SETMASK, &before, nullptr);
    ASSERT_TRUE(process);
    int ends = 0;
    const auto following = processes.onEnd(*process, [&] { ++ends; });
    ASSERT_TRUE(loop.runUntil([&] { return ends == 1; }));
    const auto said = folder.lines("said");
    ASSERT_EQ(said.size(), 6U);
    EXPECT_EQ(said[0], "a b $HOME"); // no shell read it
    EXPECT_EQ(said[1], "4");         // the three of every program, and the folder that ls reads
    EXPECT_EQ(std::stoi(said[2]), process->value); // a session of its own
    EXPECT_EQ(std::stoi(said[3]), process->value);
    EXPECT_EQ(said[4], "SigBlk:\t0000000000000000");
    // It has been laid to rest: no zombie of ours is left.
    EXPECT_EQ(kill(process->value, 0), -1);
}

TEST_F(ProcessesTest, WhatCannotBeStartedIsAFailureThatNamesIt) {
    const auto process = processes.start({"/nowhere/lock"});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.failure().message, "/nowhere/lock: No such file or directory");
}

TEST_F(ProcessesTest, InstalledIsWhatCouldBeStarted) {
    const NamedProgram named("wegslot-proef");
    EXPECT_TRUE(processes.isInstalled("sh"));
    EXPECT_TRUE(processes.isInstalled(named.file()));
    EXPECT_FALSE(processes.isInstalled("wegslot-proef")); // not in PATH
    EXPECT_FALSE(processes.isInstalled(""));
    EXPECT_FALSE(processes.isInstalled("/usr/bin"));
    EXPECT_FALSE(processes.isInstalled("/etc/passwd"));
    fs::permissions(named.file(), fs::perms::owner_read);
    EXPECT_FALSE(processes.isInstalled(named.file()));
}

TEST_F(ProcessesTest, ALookerFollowsWhatSomebodyElseStarted) {
    const NamedProgram named("swaylock-proef");
    LockerWatch watch{processes, loop.time, {{.name = "swaylock-proef"}}};
    loop.pass(1s);
    Program program(named.start());
    watch.expect();
    ASSERT_TRUE(becomesTrue([&] { return watch.look(); }));
    loop.pass(LockerWatch::settling);
    EXPECT_TRUE(watch.locked().get());
    program.signal(SIGTERM);
    ASSERT_TRUE(loop.runUntil([&] { return !watch.locked().get(); }));
}
