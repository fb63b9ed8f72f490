// `wegslot --check` as people and scripts run it, in worlds of real parts: it says what is really
// there, and its exit status whether Wegslot could lock.

#include "scanner/bluez/device_id.h"
#include "tests/integration/media_servers.h"
#include "tests/support/gnome_desktop.h"
#include "tests/support/headless_sway.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/mocked_logind.h"
#include "tests/support/own_home.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

using namespace wegslot;
namespace fs = std::filesystem;
using Json = nlohmann::json;
using Names = std::vector<std::string>;

namespace {

struct CheckTest : testing::Test {
    BusLoop loop; // the system's bus and the session's at once
    OwnHome home;
    std::map<std::string, std::string> environment = home.variables(loop);
    int status = -1;
    std::string output;

    void run(const Names& options) {
        Names words{WEGSLOT_PROGRAM, "--check"};
        words.insert(words.end(), options.begin(), options.end());
        Program program({.words = words, .environment = environment});
        ASSERT_TRUE(loop.runUntil([&program] { return !program.isRunning(); }));
        status = program.ended().value_or(-1);
        output = program.output();
    }

    /// What scripts get.
    [[nodiscard]] Json report(const Names& options = {}) {
        Names all{"--json"};
        all.insert(all.end(), options.begin(), options.end());
        run(all);
        // What it complains of comes before.
        const auto start = output.find('{');
        return start == std::string::npos ? Json() : Json::parse(output.substr(start));
    }

    /// One key, of `someAddress`.
    [[nodiscard]] static std::string withKey(const std::string& further = "") {
        return R"({"keys": [{"id": ")" + deviceId(someAddress, "public").text() +
               R"(", "name": "Telefoon", "threshold": -70}])" + further + "}";
    }

    [[nodiscard]] static Json named(const Json& report, const std::string& name) {
        for (const Json& check : report.at("checks"))
            if (check.at("name") == name) return check;
        return {};
    }
    /// Asked again while a busy machine is too slow for an answer: then it says so.
    [[nodiscard]] bool saysOfTheMicrophone(const std::string& text) {
        return becomesTrue([&] { return named(report(), "microphone").at("text") == text; });
    }
    [[nodiscard]] static Names found(const Json& report, const std::string& name) {
        return named(report, name).at("found").get<Names>();
    }
    [[nodiscard]] static bool works(const Json& report, const std::string& name) {
        return named(report, name).at("ok").get<bool>();
    }
};

/// With a radio that is on and a key.
struct CheckWithRadioTest : CheckTest {
    LookAlikeBluez bluez{loop};

    void SetUp() override {
        bluez.addAdapter();
        bluez.addDevice(someAddress, {}, {{"AddressType", std::string("public")}});
        home.setPreferences(withKey());
    }
};

struct CheckOnSwayTest : CheckWithRadioTest {
    RuntimeFolder folder;
    std::optional<HeadlessSway> sway;

    void SetUp() override {
        CheckWithRadioTest::SetUp();
        for (const char* const program : {"sway", "swaylock"})
            if (!isInstalled(program)) GTEST_SKIP() << program << " is not installed";
        sway.emplace(folder);
        ASSERT_TRUE(sway->isListening) << sway->program().output();
        environment["WAYLAND_DISPLAY"] = folder.path() + "/" + HeadlessSway::socketName;
    }
};

} // namespace

TEST_F(CheckTest, WithoutAnythingItSaysThatNothingIsThere) {
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=/nowhere";
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nowhere";
    environment["PATH"] = "/nowhere";
    const Json all = report();
    EXPECT_EQ(status, 1);
    EXPECT_EQ(all.at("ok"), false);
    EXPECT_EQ(all.at("checks").size(), 13U);
    for (const Json& check : all.at("checks")) {
        // There is /proc, and none mistyped what nobody typed.
        const bool always = check.at("name") == "camera" || check.at("name") == "preferences";
        EXPECT_EQ(check.at("ok"), always) << check;
    }
}

TEST_F(CheckTest, WhatWasMistypedInThePreferencesIsNamed) {
    home.setPreferences(R"({"awayDelay": "5", "awaydelay": 5, "enabled": true})");
    const Json all = report();
    EXPECT_FALSE(works(all, "preferences"));
    EXPECT_EQ(found(all, "preferences"), (Names{"awayDelay", "awaydelay"}));
    EXPECT_EQ(named(all, "preferences").at("text"),
              "awayDelay is geen getal; awaydelay is onbekend");
}

TEST_F(CheckTest, ItLeavesNothingBehind) {
    run({});
    EXPECT_EQ(status, 1);
    EXPECT_NE(output.find("Zo kan Wegslot niet locken.\n"), std::string::npos);
    EXPECT_FALSE(fs::exists(home.path() / "config"));
    EXPECT_FALSE(fs::exists(home.path() / "Library"));
}

TEST_F(CheckWithRadioTest, WhetherAPhoneCanBeCoupledHereIsSaidWithTheObstacle) {
    EXPECT_EQ(named(report(), "coupling").at("text"),
              "De Bluetooth van deze computer kan niet als randapparaat verschijnen, en dus geen "
              "telefoon koppelen. Een andere adapter kan dat misschien wel.");
    bluez.addObject(LookAlikeBluez::adapterPath, "org.bluez.LEAdvertisingManager1",
                    {{"SupportedInstances", std::int16_t{1}}});
    EXPECT_TRUE(works(report(), "coupling"));
    bluez.changeAdapter({{"Discoverable", true}});
    const Json all = report();
    EXPECT_FALSE(works(all, "coupling"));
    EXPECT_EQ(named(all, "coupling").at("needed"), false);
}

TEST_F(CheckWithRadioTest, DaemonAdapterAndKeyAreSeen) {
    const Json all = report();
    EXPECT_EQ(status, 1); // there is no way to lock
    EXPECT_TRUE(works(all, "bluetooth-daemon"));
    EXPECT_TRUE(works(all, "bluetooth-adapter"));
    EXPECT_EQ(found(all, "bluetooth-adapter"), Names{"hci0"});
    EXPECT_EQ(named(all, "keys").at("text"), "Telefoon: vast adres");
    EXPECT_EQ(bluez.service.calls("StartDiscovery"), 0);
    EXPECT_EQ(bluez.service.calls("Connect"), 0);
    EXPECT_EQ(bluez.service.calls("SetDiscoveryFilter"), 0);
}

TEST_F(CheckWithRadioTest, ADaemonThatDoesNotAnswerIsNotSaidToBeGone) {
    bluez.service.on("org.freedesktop.DBus.ObjectManager.GetManagedObjects",
                     [](LookAlike&, sd_bus_message*) {}); // never
    EXPECT_EQ(named(report(), "bluetooth-daemon").at("text"), "bluetoothd antwoordt niet");
}

TEST_F(CheckWithRadioTest, AnAdapterThatIsOffIsNamed) {
    bluez.setPowered(false);
    const Json all = report();
    EXPECT_TRUE(works(all, "bluetooth-daemon"));
    EXPECT_FALSE(works(all, "bluetooth-adapter"));
    EXPECT_EQ(named(all, "bluetooth-adapter").at("text"), "hci0 staat uit");
}

TEST_F(CheckTest, WithoutARadioNothingIsSaidOfAKeysAddress) {
    home.setPreferences(withKey());
    EXPECT_EQ(named(report(), "keys").at("text"), "Telefoon: niet te zien, adres onbekend");
}

TEST_F(CheckWithRadioTest, AKeyThatWillSoonBeAStrangerIsNamed) {
    bluez.addDevice("41:BB:CC:DD:EE:02", {}, {{"AddressType", std::string("random")}});
    home.setPreferences(R"({"keys": [{"id": ")" + deviceId("41:BB:CC:DD:EE:02", "random").text() +
                        R"(", "name": "Horloge", "threshold": -70}]})");
    const Json all = report();
    EXPECT_FALSE(works(all, "keys"));
    EXPECT_NE(named(all, "keys").at("text").get<std::string>().find("wisselt van adres"),
              std::string::npos);
}

TEST_F(CheckWithRadioTest, DamagedPreferencesAreSaidToBeAndLeftAlone) {
    home.setPreferences("{\"keys\": [{");
    run({});
    EXPECT_EQ(status, 1);
    EXPECT_NE(output.find("wegslot: Voorkeuren onleesbaar: "), std::string::npos) << output;
    EXPECT_EQ(home.preferences(), "{\"keys\": [{");
    EXPECT_EQ(std::distance(fs::directory_iterator(home.path() / "config" / "wegslot"), {}), 1);
}

TEST_F(CheckWithRadioTest, ItRunsBesideARunningWegslot) {
    Program running({.words = {WEGSLOT_PROGRAM}, .environment = environment});
    ASSERT_TRUE(loop.runUntil([this] { return bluez.service.calls("StartDiscovery") > 0; }))
        << running.output();
    const std::string before = home.preferences();
    const Json all = report();
    EXPECT_TRUE(works(all, "keys"));
    EXPECT_EQ(home.preferences(), before);
    EXPECT_TRUE(running.isRunning());
}

TEST_F(CheckWithRadioTest, LogindThatNobodyListensToIsNoWayToLock) {
    MockedLogind logind(loop);
    environment["PATH"] = "/nowhere";
    const Json all = report();
    EXPECT_EQ(status, 1);
    EXPECT_FALSE(works(all, "lock"));
    EXPECT_EQ(found(all, "lock"), Names{"logind"});
}

TEST_F(CheckWithRadioTest, ATrayAndAnAutostartEntryAreSeen) {
    const LookAlike watcher(loop, "org.kde.StatusNotifierWatcher");
    fs::create_directories(home.path() / "config" / "autostart");
    const std::string entry = "[Desktop Entry]\nType=Application\nExec=sh\n";
    home.write("config/autostart/nl.wegslot.Wegslot.desktop", entry);
    const Json all = report();
    EXPECT_TRUE(works(all, "tray"));
    EXPECT_TRUE(works(all, "autostart"));
    home.write("config/autostart/nl.wegslot.Wegslot.desktop", entry + "Hidden=true\n");
    EXPECT_FALSE(works(report(), "autostart"));
}

TEST_F(CheckOnSwayTest, EverythingThatLockingTakesIsThere) {
    const Json all = report();
    EXPECT_EQ(status, 0) << output;
    EXPECT_EQ(found(all, "lock"), Names{"swaylock"});
    EXPECT_EQ(found(all, "lock-confirmation"), Names{"process"});
    const auto idle = found(all, "idle");
    const bool isOld = idle == Names{"Wayland (org_kde_kwin_idle)"}; // all that sway 1.7 has
    EXPECT_TRUE(isOld || idle == Names{"Wayland (ext-idle-notify-v1)"}) << output;
}

TEST_F(CheckOnSwayTest, ALockThatIsAskedForIsProvenByTheLockersProcess) {
    const Json all = report({"--lock"});
    EXPECT_EQ(status, 0) << output;
    EXPECT_EQ(all.at("lock").at("by"), "process");
    EXPECT_TRUE(all.at("lock").contains("seconds"));
    // It really is locked, and stays so when the check has ended.
    Program second({.words = {"swaylock"}, .environment = environment});
    EXPECT_NE(second.ended(), 0);
    Program unlock({.words = {"pkill", "-USR1", "swaylock"}});
    EXPECT_EQ(unlock.ended(), 0);
}

TEST_F(CheckOnSwayTest, AWrongLockCommandIsNamedAndLocksNothing) {
    home.setPreferences(withKey(R"(, "lockCommand": ["swaylokc", "--color", "000000"])"));
    const Json all = report({"--lock"});
    EXPECT_EQ(status, 1);
    EXPECT_FALSE(works(all, "lock"));
    EXPECT_EQ(named(all, "lock").at("text"),
              "swaylokc --color 000000 (niet te vinden of niet uitvoerbaar)");
    EXPECT_EQ(all.at("lock").at("confirmed"), false);
    EXPECT_NE(output.find("Schermvergrendeling niet gestart: swaylokc"), std::string::npos);
}

TEST_F(CheckOnSwayTest, ALockCommandThatIsNoListIsNamedAndAnInstalledLockerUsed) {
    home.setPreferences(withKey(R"(, "lockCommand": "swaylock -f")"));
    const Json all = report();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(named(all, "lock").at("text"),
              "swaylock; lockCommand in de voorkeuren is geen lijst van woorden");
    EXPECT_EQ(found(all, "preferences"), Names{"lockCommand"});
}

TEST_F(CheckWithRadioTest, OnX11TheServerTellsWhoTypesAndI3lockLocks) {
    for (const char* const program : {"Xvfb", "i3lock"})
        if (!isInstalled(program)) GTEST_SKIP() << program << " is not installed";
    Program server({.words = {"Xvfb", "-displayfd", "1", "-noreset"}});
    ASSERT_TRUE(becomesTrue([&] { return !displayOf(server).empty(); })) << server.output();
    environment["DISPLAY"] = displayOf(server);
    const Json all = report({"--lock"});
    EXPECT_EQ(status, 0) << output;
    EXPECT_EQ(found(all, "idle"), Names{"X11"});
    EXPECT_EQ(found(all, "lock"), Names{"i3lock"});
    EXPECT_EQ(all.at("lock").at("by"), "process");
    Program unlock({.words = {"pkill", "i3lock"}});
    EXPECT_EQ(unlock.ended(), 0);
}

TEST_F(CheckWithRadioTest, WhoRecordsIsNamedOnPulseAudioAndOnPipeWire) {
    std::vector<std::unique_ptr<SoundServer>> servers;
    servers.push_back(std::make_unique<PulseAudioServer>());
    servers.push_back(std::make_unique<PipeWireSoundServer>());
    for (const auto& server : servers) {
        if (const auto missing = firstMissing(server->needs()))
            GTEST_SKIP() << *missing << " is not installed";
        const MediaSession session;
        environment["XDG_RUNTIME_DIR"] = std::getenv("XDG_RUNTIME_DIR");
        EXPECT_FALSE(works(report(), "microphone"));
        ASSERT_TRUE(server->start());
        EXPECT_TRUE(saysOfTheMicrophone("PulseAudio; niet in gebruik")) << output;
        Program recorder({.words = {"parecord", "--device=mic", "/dev/null"}});
        ASSERT_TRUE(becomesTrue([] {
            return !MediaSession::run({"pactl", "list", "short", "source-outputs"})
                        .value_or("")
                        .empty();
        }));
        EXPECT_TRUE(saysOfTheMicrophone("PulseAudio; in gebruik door pacat")) << output;
    }
}

TEST_F(CheckWithRadioTest, CamerasAreSeenThroughPipeWireWhereItRuns) {
    if (const auto missing = firstMissing({"pipewire", "pw-cli"}))
        GTEST_SKIP() << *missing << " is not installed";
    const MediaSession session;
    environment["XDG_RUNTIME_DIR"] = std::getenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(found(report(), "camera"), Names{"V4L2"});
    const auto daemon = startPipeWire();
    ASSERT_TRUE(daemon);
    EXPECT_EQ(found(report(), "camera"), (Names{"PipeWire", "V4L2"}));
}

TEST_F(CheckWithRadioTest, OnGnomeTheShellLocksAndLogindsHintProvesIt) {
    if (const std::string obstacle = GnomeDesktop::obstacle(); !obstacle.empty())
        GTEST_SKIP() << obstacle;
    GnomeDesktop gnome(loop);
    ASSERT_TRUE(gnome.start()) << gnome.shell().output();
    for (const char* const name : {"XDG_SESSION_ID", "XDG_SESSION_TYPE", "XDG_RUNTIME_DIR"})
        environment[name] = gnome.variables()[name];
    const Json all = report({"--lock"});
    EXPECT_EQ(status, 0) << output;
    EXPECT_EQ(found(all, "lock"), (Names{"logind", "org.gnome.Shell.ScreenShield"}));
    EXPECT_EQ(found(all, "lock-confirmation"), (Names{"LockedHint", "ActiveChanged"}));
    EXPECT_EQ(found(all, "idle"), Names{"Mutter"});
    EXPECT_EQ(all.at("lock").at("by"), "LockedHint");
    run({"--lock"}); // it is locked already
    EXPECT_EQ(status, 1);
    EXPECT_NE(output.find("Het scherm is al gelockt"), std::string::npos) << output;
}
