// Real locks on real displays: GNOME's own, and lockers started by Wegslot, by swayidle, and
// before either.

#include "platform/linux/display_environment.h"
#include "platform/linux/linux_processes.h"
#include "platform/linux/logind_lock.h"
#include "platform/linux/screen_lock_watcher.h"
#include "platform/lock_sequence.h"
#include "platform/locker_lock.h"
#include "tests/support/captured_log.h"
#include "tests/support/environment.h"
#include "tests/support/gnome_desktop.h"
#include "tests/support/headless_sway.h"
#include "tests/support/mocked_logind.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// What Wegslot has of locking, on this process's environment.
struct Locking {
    explicit Locking(BusLoop& loop, const LockCommand& own = {})
        : systemBus(loop.opener(), loop.attacher(), loop.time),
          sessionBus(loop.opener(), loop.attacher(), loop.time),
          session(systemBus),
          savers(sessionBus, loop.time),
          processes(loop),
          lockers(processes, loop.time, lockerPatterns(own)),
          watcher(session, savers, lockers),
          logind(session),
          saver(savers),
          locker(processes, lockers, own, displayKind(displayEnvironment())),
          sequence({&logind, &saver, &locker}, loop.time, watcher),
          listening(watcher.observe([this](SessionEvent event) {
              events += event == SessionEvent::locked ? 'L' : 'U';
          })) {}

    dbus::Connection systemBus;
    dbus::Connection sessionBus;
    LoginSession session;
    ScreenSavers savers;
    LinuxProcesses processes;
    LockerWatch lockers;
    ScreenLockWatcher watcher;
    LogindLock logind;
    ScreenSaverLock saver;
    LockerLock locker;
    LockSequence sequence;
    std::string events; ///< L and U, one an event
    Subscription listening;

    /// The processes with this name.
    [[nodiscard]] std::vector<ProcessId> running(const std::string& name) {
        return processes.running({{.name = name}});
    }
};

struct LockersTest : testing::Test {
    CapturedLog log;
    BusLoop loop;
    std::optional<Locking> locking;

    void start(const LockCommand& own = {}) {
        locking.emplace(loop, own);
        loop.settle();
        loop.settle();
    }

    /// Waits in real time for a locker to be seen, and lets it settle in virtual time.
    [[nodiscard]] bool seesALocker() {
        if (!becomesTrue([this] { return locking->lockers.look(); })) return false;
        loop.pass(LockerWatch::settling);
        return true;
    }

    /// Asks for a lock of which neither logind nor a screen saver will make anything.
    void lockByALocker() {
        locking->sequence.lock();
        loop.pass(LockSequence::patience);
    }

    /// A locker is, once it has locked: the other one asks for the password, or keeps the window
    /// on top.
    [[nodiscard]] bool isTwoProcesses(const std::string& name) {
        return becomesTrue([this, &name] { return locking->running(name).size() == 2; });
    }

    [[nodiscard]] bool unlockBy(int signal, const std::string& name) {
        for (const ProcessId process : locking->running(name))
            kill(process.value, signal);
        return loop.runUntil([this] { return locking->events.ends_with('U'); });
    }

    void TearDown() override {
        if (!locking) return;
        for (const char* const name : {"swaylock", "i3lock"})
            for (const ProcessId process : locking->running(name))
                kill(process.value, SIGKILL);
    }
};

struct LockersOnSwayTest : LockersTest {
    RuntimeFolder folder;
    HeadlessSway sway{folder};
    Environment environment{
        {{"WAYLAND_DISPLAY", folder.path() + "/" + HeadlessSway::socketName}, {"DISPLAY", ""}}};

    void SetUp() override {
        for (const char* const program : {"sway", "swaylock", "swayidle"})
            if (!isInstalled(program)) GTEST_SKIP() << program << " is not installed";
        ASSERT_TRUE(sway.isListening) << sway.program().output();
    }
};

} // namespace

TEST_F(LockersOnSwayTest, WithNobodyElseToAskSwaylockIsStartedAndItsProcessIsTheProof) {
    start();
    lockByALocker();
    ASSERT_TRUE(seesALocker());
    EXPECT_EQ(locking->events, "L");
    EXPECT_EQ(locking->watcher.witness(), LockWitness::locker);
    lockByALocker(); // another one would be refused by the compositor, and is not tried
    EXPECT_TRUE(unlockBy(SIGUSR1, "swaylock"));
    EXPECT_EQ(locking->events, "LU");
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LockersOnSwayTest, SwaylockThatSwayidleStartsOnLogindsSignalIsTheProofToo) {
    MockedLogind logind(loop);
    Program swayidle({.words = {"swayidle", "-d", "-w", "lock", "swaylock"},
                      .environment = {{"DBUS_SYSTEM_BUS_ADDRESS", loop.daemon.address()}}});
    ASSERT_TRUE(becomesTrue([&] {
        return swayidle.output().find("Enable idle") != std::string::npos;
    })) << swayidle.output();
    start();
    ASSERT_TRUE(loop.runUntil([this] { return locking->session.path().get().has_value(); }));
    loop.settle();
    locking->sequence.lock();
    loop.settle();
    ASSERT_TRUE(seesALocker()) << swayidle.output();
    EXPECT_EQ(locking->events, "L");
    ASSERT_TRUE(isTwoProcesses("swaylock"));
    const auto running = locking->running("swaylock");
    loop.pass(10s);
    EXPECT_EQ(locking->running("swaylock"), running); // no second one was started
    EXPECT_TRUE(unlockBy(SIGUSR1, "swaylock"));
    EXPECT_EQ(locking->events, "LU");
}

TEST_F(LockersOnSwayTest, AScreenThatIsLockedBeforeWegslotStartsIsKnownToBe) {
    Program swaylock({.words = {"swaylock"}});
    start();
    ASSERT_TRUE(isTwoProcesses("swaylock"));
    start(); // it looks once
    loop.pass(LockerWatch::settling);
    EXPECT_EQ(locking->events, "L");
    EXPECT_TRUE(unlockBy(SIGUSR1, "swaylock"));
}

TEST_F(LockersOnSwayTest, TheUsersOwnCommandIsRunAsItIsAndFollowed) {
    start({"sh", "-c", "swaylock --color 102030; exit 0"});
    lockByALocker();
    ASSERT_TRUE(becomesTrue([this] { return !locking->running("swaylock").empty(); }));
    loop.pass(1s);
    EXPECT_EQ(locking->events, "L");
    EXPECT_TRUE(unlockBy(SIGUSR1, "swaylock"));
    EXPECT_EQ(locking->events, "LU");
}

TEST_F(LockersOnSwayTest, ALockerThatGoesToTheBackgroundIsFollowedThere) {
    start({"swaylock", "--daemonize"});
    lockByALocker();
    // The one that was started ends as soon as the screen is locked.
    ASSERT_TRUE(loop.runUntil([this] {
        locking->lockers.look();
        const auto running = locking->running("swaylock");
        return running.size() == 2;
    }));
    loop.pass(1s);
    loop.settle();
    EXPECT_EQ(locking->events, "L");
    EXPECT_TRUE(unlockBy(SIGUSR1, "swaylock"));
    EXPECT_EQ(locking->events, "LU");
}

TEST_F(LockersOnSwayTest, ALockerThatCannotLockIsNoProof) {
    start({"swaylock", "--no-such-option"});
    locking->sequence.lock();
    loop.settle();
    ASSERT_TRUE(loop.runUntil([this] { return locking->running("swaylock").empty(); }));
    loop.pass(10s);
    EXPECT_EQ(locking->events, "");
}

TEST_F(LockersTest, I3lockOnX11IsStartedAndItsEndIsTheUnlock) {
    for (const char* const program : {"Xvfb", "i3lock"})
        if (!isInstalled(program)) GTEST_SKIP() << program << " is not installed";
    Program server({.words = {"Xvfb", "-displayfd", "1", "-noreset"}});
    ASSERT_TRUE(becomesTrue([&] { return !displayOf(server).empty(); })) << server.output();
    const Environment environment(
        {{"DISPLAY", displayOf(server)}, {"WAYLAND_DISPLAY", ""}, {"XDG_SESSION_TYPE", ""}});
    start();
    ASSERT_EQ(locking->locker.command(), (LockCommand{"i3lock", "--nofork"}));
    lockByALocker();
    ASSERT_TRUE(seesALocker());
    EXPECT_EQ(locking->events, "L");
    ASSERT_TRUE(isTwoProcesses("i3lock"));
    EXPECT_TRUE(unlockBy(SIGTERM, "i3lock"));
    EXPECT_EQ(locking->events, "LU");
}

TEST_F(LockersTest, WhatDbusmocksLogindAndScreenSaverSayIsToldOnceEach) {
    std::optional<MockedLogind> logind(std::in_place, loop);
    Program saver({.words = {"/usr/bin/python3", "-m", "dbusmock", "--session", "--template",
                             "gnome_screensaver"},
                   .environment = {{"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()}}});
    start();
    ASSERT_TRUE(loop.runUntil([this] { return locking->session.path().get().has_value(); }));
    ASSERT_TRUE(loop.runUntil([this] { return !locking->savers.running().empty(); }));
    const auto saysSo = [this](const std::string& expected) {
        return loop.runUntil([&] { return locking->events == expected; });
    };
    // Nobody sets the hint: nothing comes of logind's signal, and the screen saver is asked.
    locking->sequence.lock();
    loop.settle();
    EXPECT_EQ(locking->events, "");
    loop.pass(LockSequence::patience);
    ASSERT_TRUE(saysSo("L"));
    EXPECT_EQ(locking->watcher.witness(), LockWitness::saver);
    logind->setHint(true); // says it too, twice
    logind->setHint(true);
    logind->setHint(false);
    ASSERT_TRUE(saysSo("LU")); // and is right from now on
    logind->setHint(true);
    ASSERT_TRUE(saysSo("LUL"));
    saver.stop();
    loop.pass(std::chrono::seconds{10});
    EXPECT_EQ(locking->events, "LUL");
    logind.reset();
    loop.settle();
    EXPECT_EQ(locking->events, "LUL"); // no word is no unlock
    logind.emplace(loop);              // a new one, where nothing is locked
    ASSERT_TRUE(saysSo("LULU"));
}

TEST_F(LockersTest, GnomeLocksOnLogindsSignalAndItsHintIsTheProof) {
    if (const std::string obstacle = GnomeDesktop::obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    GnomeDesktop gnome(loop);
    ASSERT_TRUE(gnome.start()) << gnome.shell().output() << gnome.logind.program().output();
    const Environment environment(gnome.variables());
    start();
    ASSERT_TRUE(loop.runUntil([this] { return locking->session.path().get().has_value(); }));
    ASSERT_TRUE(loop.runUntil([this] { return locking->savers.desktopSetsHint().get(); }));
    locking->sequence.lock();
    ASSERT_TRUE(loop.runUntil([this] { return locking->events == "L"; }));
    EXPECT_EQ(locking->watcher.witness(), LockWitness::hint);
    gnome.logind.ask("Unlock");
    ASSERT_TRUE(loop.runUntil([this] { return locking->events.size() == 2; }));
    EXPECT_EQ(locking->events, "LU");
    // The shell's own way, which is the second: nobody passes on what logind is told.
    locking->saver.request([] { FAIL() << "refused"; });
    ASSERT_TRUE(loop.runUntil([this] { return locking->events.size() == 3; }));
    EXPECT_EQ(locking->events, "LUL");
    gnome.logind.program().stop();
    loop.settle();
    EXPECT_EQ(locking->events, "LUL"); // no word of logind is no unlock
}
