// The program itself among what hangs or cannot be used: terminals that were stopped, pipes that
// nobody reads, files that are somebody else's or mistyped.

#include "scanner/bluez/device_id.h"
#include "tests/support/hanging_disk.h"
#include "tests/support/look_alike.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/own_home.h"
#include "tests/support/program.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

using namespace wegslot;

namespace {

struct HangTest : testing::Test {
    struct Told {
        std::string title;
        std::string text;
        std::int32_t expires = -1;
    };

    BusLoop loop; // the system's bus and the session's at once
    OwnHome home;
    LookAlikeBluez bluez{loop};
    LookAlike desktop{loop, "org.freedesktop.Notifications"};
    std::vector<Told> told;
    long closed = 0;
    std::optional<Program> application;

    HangTest() {
        bluez.addAdapter();
        desktop.on(
            "org.freedesktop.Notifications.Notify", [this](LookAlike& self, sd_bus_message* call) {
                Told notice;
                const char* title = "";
                const char* text = "";
                sd_bus_message_skip(call, "sus");
                sd_bus_message_read(call, "ss", &title, &text);
                sd_bus_message_skip(call, "asa{sv}");
                sd_bus_message_read(call, "i", &notice.expires);
                notice.title = title;
                notice.text = text;
                told.push_back(notice);
                self.reply(call, [this](sd_bus_message* answer) {
                    sd_bus_message_append(answer, "u", static_cast<std::uint32_t>(told.size()));
                });
            });
        desktop.on("org.freedesktop.Notifications.CloseNotification",
                   [this](LookAlike& self, sd_bus_message* call) {
                       ++closed;
                       self.reply(call);
                   });
    }

    void begin(std::vector<std::string> words) {
        application.emplace(
            Program::Start{.words = std::move(words), .environment = home.variables(loop)});
        ASSERT_TRUE(loop.runUntil([this] { return logged("Wegslot gestart"); }))
            << application->output();
    }

    [[nodiscard]] bool logged(const std::string& text) const {
        return home.log().find(text) != std::string::npos;
    }

    /// What another start of the program prints.
    [[nodiscard]] std::string said(std::vector<std::string> words) {
        words.insert(words.begin(), WEGSLOT_PROGRAM);
        Program program({.words = std::move(words), .environment = home.variables(loop)});
        EXPECT_TRUE(loop.runUntil([&program] { return !program.isRunning(); }));
        return program.output();
    }
};

/// The end of preferences with one key.
std::string aKey() {
    return R"("keys": [{"id": ")" + deviceId(someAddress, "public").text() +
           R"(", "name": "Telefoon", "isApple": false, "threshold": -70}]})";
}

/// The only child of a process.
pid_t childOf(pid_t parent) {
    const std::string number = std::to_string(parent);
    pid_t child = 0;
    std::ifstream("/proc/" + number + "/task/" + number + "/children") >> child;
    return child;
}

/// A pipe by the name of `file`, into which nothing fits any more; held open by what is answered.
int fullPipe(const std::string& file) {
    if (mkfifo(file.c_str(), 0600) != 0) return -1;
    const int end = open(file.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    const std::string block(4096, 'x');
    while (write(end, block.data(), block.size()) > 0) {
    }
    return end;
}

/// Somebody who asks for a recording into `file`; they hang themselves once they let go of it.
pid_t recordInto(const std::string& file, const std::string& address) {
    const pid_t child = fork();
    if (child != 0) return child;
    const int descriptor = open(file.c_str(), O_RDWR | O_CLOEXEC);
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, address.c_str());
    sd_bus_set_bus_client(bus, 1);
    sd_bus_negotiate_fds(bus, 1);
    sd_bus_start(bus);
    sd_bus_call_method(bus, "nl.wegslot.Wegslot", "/nl/wegslot/Wegslot", "nl.wegslot.Wegslot1",
                       "Record", nullptr, nullptr, "hb", descriptor, 0);
    pause();
    _exit(0);
}

} // namespace

TEST_F(HangTest, AFileOnADiskThatDoesNotAnswerHoldsUpNobodyButItsThread) {
    HangingDisk disk;
    if (!disk.isThere()) GTEST_SKIP() << "no disk of our own without root and /dev/fuse";
    begin({WEGSLOT_PROGRAM});
    // It is asked once only, and has its name on the bus a moment after it has begun.
    ASSERT_TRUE(loop.runUntil(
        [this] { return said({"status"}).find("draait niet") == std::string::npos; }));
    const pid_t asking = recordInto(disk.file(), loop.daemon.address());
    ASSERT_TRUE(loop.runUntil([this] { return logged("Opname gevraagd door "); }));
    EXPECT_TRUE(loop.runUntil([&disk] { return disk.says("hangs setattr"); }));
    EXPECT_EQ(said({"pause", "60"}), "");
    EXPECT_TRUE(loop.runUntil([this] { return logged("Handmatig gepauzeerd"); }));
    application->signal(SIGTERM);
    EXPECT_TRUE(loop.runUntil(
        [this] { return said({"status"}).find("draait niet") != std::string::npos; }));
    disk.end(); // the kernel lets nobody go who waits for a disk
    EXPECT_TRUE(loop.runUntil([this] { return !application->isRunning(); }));
    EXPECT_EQ(application->ended(), 0);
    kill(asking, SIGKILL);
    waitpid(asking, nullptr, 0);
}

TEST_F(HangTest, ATerminalThatWasStoppedHoldsUpNothing) {
    home.setPreferences(R"({"showOtherDevices": true, )" + aKey());
    begin({"script", "-qfc", WEGSLOT_PROGRAM, "/dev/null"});
    const pid_t wegslot = childOf(application->process());
    ASSERT_GT(wegslot, 0);
    ASSERT_TRUE(loop.runUntil([this] { return bluez.service.calls("StartDiscovery") > 0; }));
    application->signal(SIGSTOP); // who reads the terminal
    for (int i = 0; i < 500; ++i) {
        const std::string address =
            "00:00:5E:00:" + std::to_string(10 + i / 50) + ":" + std::to_string(10 + i % 50);
        bluez.addDevice(address, -50,
                        {{"AddressType", std::string("public")},
                         {"Name", std::string(200, 'x') + std::to_string(i)}});
    }
    EXPECT_TRUE(loop.runUntil([this] { return logged("Gezien: "); }));
    EXPECT_EQ(said({"pause", "60"}), "");
    EXPECT_TRUE(loop.runUntil([this] { return logged("Handmatig gepauzeerd"); }));
    ASSERT_EQ(kill(wegslot, SIGTERM), 0);
    EXPECT_TRUE(loop.runUntil([wegslot] { // nobody waits for it while its parent is stopped
        std::ifstream status("/proc/" + std::to_string(wegslot) + "/stat");
        const std::string all{std::istreambuf_iterator<char>(status), {}};
        return all.empty() || all.find(") Z ") != std::string::npos;
    }));
    application->signal(SIGCONT);
}

TEST_F(HangTest, APipeThatIsFullHoldsUpNoneOfThoseThatAskAndNotTheEnd) {
    begin({WEGSLOT_PROGRAM});
    const std::string file = (home.path() / "pipe").string();
    const int end = fullPipe(file);
    ASSERT_GE(end, 0);
    Program recorder(
        {.words = {WEGSLOT_PROGRAM, "--record", file}, .environment = home.variables(loop)});
    ASSERT_TRUE(loop.runUntil([&] { return !recorder.output().empty(); }));
    EXPECT_EQ(recorder.output(), "Opname loopt; stop met Ctrl-C\n");
    EXPECT_EQ(said({"pause", "60"}), "");
    EXPECT_TRUE(loop.runUntil([this] { return logged("Handmatig gepauzeerd"); }));
    application->signal(SIGTERM);
    EXPECT_TRUE(loop.runUntil([this] { return !application->isRunning(); }));
    EXPECT_EQ(application->ended(), 0);
    close(end);
}

TEST_F(HangTest, WhereTheLogIsAPipeThatNobodyReadsItEndsAllTheSame) {
    std::filesystem::create_directories(home.path() / "Library" / "Logs");
    const std::string log = (home.path() / "Library" / "Logs" / "Wegslot.log").string();
    ASSERT_EQ(mkfifo(log.c_str(), 0600), 0);
    home.setPreferences("{" + aKey());
    application.emplace(
        Program::Start{.words = {WEGSLOT_PROGRAM}, .environment = home.variables(loop)});
    ASSERT_TRUE(loop.runUntil([this] { return bluez.service.calls("StartDiscovery") > 0; }));
    application->signal(SIGTERM);
    EXPECT_TRUE(loop.runUntil([this] { return !application->isRunning(); }));
    EXPECT_EQ(application->ended(), 0);
}

TEST_F(HangTest, WhereItsLockCannotBeOpenedItStartsAndSaysSo) {
    // Not even root opens a folder for writing.
    std::filesystem::create_directories(home.path() / "config" / "wegslot" / "lock");
    begin({WEGSLOT_PROGRAM});
    EXPECT_TRUE(logged("Slot op de voorkeuren niet te openen: "));
    ASSERT_TRUE(loop.runUntil([this] { return !told.empty(); }));
    EXPECT_EQ(told[0].title, "Wegslot kan niet alles bewaren");
    EXPECT_NE(told[0].text.find("config/wegslot/lock: "), std::string::npos) << told[0].text;
    EXPECT_EQ(told[0].expires, 0);
    EXPECT_EQ(said({}), ""); // a second start shows the first one
    EXPECT_EQ(said({"--remove-key", deviceId(someAddress, "public").text()}),
              "wegslot: Wegslot draait al; stop het eerst\n");
    // And where there is no other folder either.
    application->stop();
    std::filesystem::remove(home.path() / "wegslot" / "lock");
    std::filesystem::create_directories(home.path() / "wegslot" / "lock");
    begin({WEGSLOT_PROGRAM});
    ASSERT_TRUE(loop.runUntil([this] { return told.size() == 2; }));
    EXPECT_EQ(said({}), "");
}

TEST_F(HangTest, SwitchedOffForMoreThanADayItSaysSoWhenItStartsUntilItIsSwitchedOn) {
    const auto dayAndHour = std::to_string(time(nullptr) - 25 * 3600);
    home.setPreferences(R"({"enabled": false, "offSince": )" + dayAndHour + "}");
    begin({WEGSLOT_PROGRAM});
    ASSERT_TRUE(loop.runUntil([this] { return !told.empty(); }));
    EXPECT_EQ(told[0].title, "Wegslot staat uit");
    EXPECT_EQ(told[0].expires, 0);
    EXPECT_NE(said({"status"}), ""); // by then it knows which notification is its own
    home.write("config/wegslot/on", R"({"enabled": true, "offSince": )" + dayAndHour + "}");
    std::filesystem::rename(home.path() / "config" / "wegslot" / "on",
                            home.path() / "config" / "wegslot" / "preferences.json");
    EXPECT_TRUE(loop.runUntil([this] { return closed == 1; }));
    EXPECT_TRUE(loop.runUntil([this] {
        return home.preferences().find(R"("offSince": 0)") != std::string::npos;
    })) << home.preferences();
}

TEST_F(HangTest, AMistypedFileIsToldOfUntilItIsMendedAndNobodyIsGreetedAsNew) {
    const std::string mistyped = "{\n  \"awayDelay\": 9,\n}\n";
    home.setPreferences(mistyped);
    begin({WEGSLOT_PROGRAM});
    ASSERT_TRUE(loop.runUntil([this] { return !told.empty(); }));
    EXPECT_NE(told[0].text.find("regel 3, kolom 1"), std::string::npos) << told[0].text;
    EXPECT_TRUE(logged("regel 3, kolom 1"));
    EXPECT_NE(said({"--check"}).find("regel 3, kolom 1"), std::string::npos);
    EXPECT_EQ(home.preferences(), mistyped);
    home.write("config/wegslot/mended", R"({"awayDelay": 9})");
    std::filesystem::rename(home.path() / "config" / "wegslot" / "mended",
                            home.path() / "config" / "wegslot" / "preferences.json");
    EXPECT_TRUE(loop.runUntil([this] { return logged("Voorkeuren weer leesbaar"); }));
    EXPECT_TRUE(loop.runUntil([this] { return closed == 1; }));
}

TEST_F(HangTest, WhatIsTypedIntoThePreferencesCountsAtOnce) {
    home.setPreferences("{}");
    begin({WEGSLOT_PROGRAM});
    home.setPreferences("{" + aKey());
    std::string keys;
    EXPECT_TRUE(loop.runUntil([&] {
        keys = said({"keys"});
        return keys.find("Telefoon") != std::string::npos;
    })) << keys;
}
