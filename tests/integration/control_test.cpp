// A running Wegslot asked and told from outside: by `busctl`, as any program on the session's bus,
// and by its own command line.

#include "tests/integration/control_stage.h"
#include "tests/support/look_alike.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <ctime>

#include <systemd/sd-bus.h>

using namespace wegslot;

namespace {

struct ControlTest : ControlStage {};

} // namespace

TEST_F(ControlTest, BusRadioAndTrayThatComeAfterItAreWaitedFor) {
    const std::string prefix = "unix:path=";
    const std::string& real = loop.daemon.address();
    ASSERT_TRUE(real.starts_with(prefix));
    const std::string socket = real.substr(prefix.size(), real.find(',') - prefix.size());
    const auto late = home.path() / "bus";
    variables["DBUS_SYSTEM_BUS_ADDRESS"] = prefix + late.string();
    variables["DBUS_SESSION_BUS_ADDRESS"] = prefix + late.string();
    bluez.vanish();
    const auto near = std::exchange(strength, std::int16_t{0});
    application.emplace(Program::Start{.words = {WEGSLOT_PROGRAM}, .environment = variables});
    ASSERT_TRUE(happens([this] { return logs("Geen verbinding met de systeembus"); }));

    std::filesystem::create_symlink(socket, late); // now there is one
    const auto bus = loop.connect();
    const auto attached = loop.attach(*bus);
    bool isThere = false;
    const auto owner = bus->followOwner("nl.wegslot.Wegslot",
                                        [&isThere](const auto& now) { isThere = now.has_value(); });
    ASSERT_TRUE(happens([&isThere] { return isThere; })) << home.log();
    EXPECT_TRUE(wegslot({"status"}).said.starts_with("Bluetooth wordt gestart\n"));

    bluez.appear();
    strength = near;
    plugIn();
    EXPECT_TRUE(happens([this] { return logs("Sleutel in de buurt, bewaking actief"); }))
        << home.log();

    LookAlike watcher(loop, "org.kde.StatusNotifierWatcher");
    watcher.on("org.kde.StatusNotifierWatcher.RegisterStatusNotifierItem",
               [](LookAlike& self, sd_bus_message* call) { self.reply(call); });
    EXPECT_TRUE(happens([&] { return watcher.calls("RegisterStatusNotifierItem") > 0; }));
}

TEST_F(ControlTest, WithoutAnInstanceEveryRequestSaysSoInOneLine) {
    for (const Words& words : {Words{"status"},
                               {"keys", "--json"},
                               {"lock"},
                               {"pause", "15m"},
                               {"resume"},
                               {"status", "--follow"}}) {
        const Ending ending = wegslot(words);
        EXPECT_EQ(ending.status, 3) << words.front();
        EXPECT_EQ(ending.said, "wegslot: Wegslot draait niet\n") << words.front();
    }
    variables["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nowhere";
    const Ending withoutBus = wegslot({"status"});
    EXPECT_EQ(withoutBus.status, 3);
    EXPECT_TRUE(withoutBus.said.starts_with("wegslot: Wegslot draait niet (sessiebus"))
        << withoutBus.said;
    EXPECT_EQ(std::count(withoutBus.said.begin(), withoutBus.said.end(), '\n'), 1);
}

TEST_F(ControlTest, StatusAndKeysAreWhatThePanelShows) {
    start();
    const Json now = status();
    EXPECT_EQ(now.at("phase"), "present");
    EXPECT_EQ(now.at("text"), "Je bent in de buurt");
    EXPECT_TRUE(now.at("pausedUntil").is_null());
    const Json& key = now.at("keys").at(0);
    EXPECT_EQ(key.at("id"), id);
    EXPECT_EQ(key.at("name"), "Telefoon");
    EXPECT_EQ(key.at("state"), "near");
    EXPECT_NEAR(key.at("rssi").get<double>(), -50.5, 1);
    EXPECT_EQ(key.at("threshold"), -70);
    // Asked again the median of its strength may be another.
    Json told = now.at("keys");
    Json again = Json::parse(wegslot({"keys", "--json"}).said);
    for (Json* const keys : {&told, &again})
        keys->at(0).erase("rssi");
    EXPECT_EQ(again, told);
    EXPECT_TRUE(wegslot({"status"}).said.starts_with("Je bent in de buurt\n  Telefoon"));
    EXPECT_TRUE(wegslot({"keys"}).said.starts_with(id + "  Telefoon"));
}

TEST_F(ControlTest, DevicesAreToldByTheOneThatRunsInsteadOfASecondScan) {
    const std::string other = "AA:BB:CC:DD:EE:02";
    std::string preferences = home.preferences();
    home.setPreferences(preferences.insert(1, R"("showOtherDevices": true, )"));
    bluez.addDevice(
        other, -60,
        {{"AddressType", std::string("public")}, {"Name", std::string("Plaatje\x1B[2J")}});
    start();
    bluez.report(other, -61, {});
    auto withoutRadio = variables;
    withoutRadio["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=/nowhere";
    Program own({.words = {WEGSLOT_PROGRAM, "--devices"}, .environment = withoutRadio});
    Program all({.words = {WEGSLOT_PROGRAM, "--others", "--devices"}, .environment = withoutRadio});
    const auto lines = [](const Program& listing, const std::string& start) {
        std::istringstream text(listing.output());
        Words found;
        for (std::string line; std::getline(text, line);)
            if (line.starts_with(start)) found.push_back(line);
        return found;
    };
    const std::string otherId = deviceId(other, "public").text();
    ASSERT_TRUE(happens([&] {
        return lines(own, id).size() >= 3 && lines(all, otherId).size() >= 3;
    })) << own.output()
        << all.output() << home.log();
    EXPECT_NE(lines(own, id).front().find("Telefoon"), std::string::npos) << own.output();
    EXPECT_TRUE(lines(own, id).front().ends_with(" dBm")) << own.output();
    EXPECT_EQ(lines(own, otherId), Words{});
    EXPECT_NE(lines(all, otherId).front().find("Plaatje\uFFFD[2J"), std::string::npos);
    for (const Program* const listing : {&own, &all})
        EXPECT_EQ(lines(*listing, "wegslot: "),
                  Words{"wegslot: Wegslot draait al: dit is wat het hoort"});
    EXPECT_FALSE(logs("gevraagd door")); // it only tells
    application->signal(SIGTERM);
    ASSERT_TRUE(happens([&own] { return !own.isRunning(); }));
    EXPECT_EQ(own.ended(), 3);
}

TEST_F(ControlTest, APauseHasItsEndIsLoggedWithWhoAskedAndCanBeEnded) {
    start();
    const auto asked = std::time(nullptr);
    const Ending pause = busctl("call", {"Pause", "u", "900"});
    const auto answered = std::time(nullptr);
    EXPECT_EQ(pause.status, 0) << pause.said;
    EXPECT_TRUE(logs("Pauze van 900 s gevraagd door busctl")) << home.log();
    EXPECT_TRUE(logs("Handmatig gepauzeerd tot "));
    EXPECT_EQ(status().at("phase"), "snoozed");
    const auto until = status().at("pausedUntil").get<std::time_t>();
    EXPECT_GE(until, asked + 900);
    EXPECT_LE(until, answered + 901); // it may be rounded
    EXPECT_EQ(wegslot({"resume"}).status, 0);
    EXPECT_TRUE(logs("Hervatten gevraagd door wegslot"));
    EXPECT_EQ(status().at("phase"), "present");
    EXPECT_EQ(wegslot({"pause", "15m"}).said, "");
    EXPECT_EQ(status().at("phase"), "snoozed");
}

TEST_F(ControlTest, AnyOtherPauseIsRefusedAndChangesNothing) {
    start();
    for (const char* const seconds : {"0", "14401", "4294967295"}) {
        const Ending ending = busctl("call", {"Pause", "u", seconds});
        EXPECT_NE(ending.status, 0) << seconds;
        EXPECT_NE(ending.said.find("een pauze duurt 1 tot 14400 seconden"), std::string::npos)
            << ending.said;
    }
    EXPECT_NE(busctl("call", {"Pause", "s", "15m"}).status, 0);
    EXPECT_EQ(status().at("phase"), "present");
    EXPECT_FALSE(logs("gevraagd door"));
    EXPECT_EQ(busctl("call", {"Pause", "u", "14400"}).status, 0);
}

TEST_F(ControlTest, LockAsksTheSessionAndIsLogged) {
    start();
    EXPECT_EQ(wegslot({"lock"}).status, 0);
    EXPECT_TRUE(happens([this] { return logs("Lock gevraagd door wegslot"); }));
    EXPECT_TRUE(happens([this] { return logs("Mac wordt gelockt"); }));
    EXPECT_TRUE(happens([this] {
        return logind.program().output().find("Lock") != std::string::npos;
    })) << logind.program().output();
}

TEST_F(ControlTest, ALockCommandThatIsTypedWhileItRunsCountsAtTheNextLock) {
    start();
    const auto locked = home.path() / "locked";
    std::string typed = home.preferences();
    typed.replace(typed.find("Telefoon"), 8, "Mobieltje"); // by which we see that it was read
    typed.insert(typed.rfind('}'), R"(, "lockCommand": ["touch", ")" + locked.string() + "\"]");
    home.setPreferences(typed);
    ASSERT_TRUE(happens([this] { return wegslot({"keys"}).said.find("Mobieltje") < 80; }));
    EXPECT_EQ(wegslot({"lock"}).status, 0);
    EXPECT_TRUE(happens([&locked] { return std::filesystem::exists(locked); })) << home.log();
}

TEST_F(ControlTest, ALockOfWhichNothingComesIsToldInANotification) {
    LookAlike desktop(loop, "org.freedesktop.Notifications");
    desktop.on("org.freedesktop.Notifications.Notify", [](LookAlike& self, sd_bus_message* call) {
        self.reply(call, [](sd_bus_message* answer) { sd_bus_message_append(answer, "u", 1U); });
    });
    start();
    EXPECT_EQ(wegslot({"lock"}).status, 0);
    EXPECT_TRUE(happens([&desktop] { return desktop.calls("Notify") == 1; })) << home.log();
    EXPECT_TRUE(happens([this] { return logs("Geen bevestiging van lock ontvangen"); }));
}

TEST_F(ControlTest, WithoutBluetoothdItSaysThatAndNotThatTheRadioIsNoGood) {
    bluez.vanish();
    strength = 0;
    application.emplace(Program::Start{.words = {WEGSLOT_PROGRAM}, .environment = variables});
    constexpr auto said = "Bluetooth-status: Bluetooth draait niet op deze computer (2)";
    EXPECT_TRUE(happens([this] { return logs(said); })) << home.log();
}

TEST_F(ControlTest, NothingElseCanBeAskedFor) {
    start();
    const std::string before = home.preferences();
    for (const char* const member : {"Unlock", "RemoveKey", "SetThreshold", "AddKey", "Quit"})
        EXPECT_NE(busctl("call", {member}).status, 0) << member;
    EXPECT_NE(busctl("set-property", {"Phase", "s", "present"}).status, 0);
    EXPECT_EQ(home.preferences(), before);
}

TEST_F(ControlTest, FollowingTellsEachPhaseOfADepartureWithItsReason) {
    start();
    Program follower(
        {.words = {WEGSLOT_PROGRAM, "status", "--follow", "--json"}, .environment = variables});
    ASSERT_TRUE(happens([&] { return !follower.output().empty(); }));
    strength = 0; // it walks away
    const auto phases = [&follower] {
        Words names;
        std::istringstream lines(follower.output());
        for (std::string line; std::getline(lines, line);)
            if (line.ends_with('}')) names.push_back(Json::parse(line).at("phase"));
        return names;
    };
    ASSERT_TRUE(happens([&] { return phases().size() >= 4; })) << follower.output() << home.log();
    EXPECT_EQ(phases().at(1), "warning");
    EXPECT_EQ(phases().at(2), "locked");
    std::istringstream lines(follower.output());
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(Json::parse(line).at("keys").size(), 1U);
    std::getline(lines, line);
    EXPECT_EQ(Json::parse(line).at("reason"), "Telefoon is buiten bereik");
    application->signal(SIGTERM);
    ASSERT_TRUE(happens([&] { return !follower.isRunning(); }));
    EXPECT_EQ(follower.ended(), 3);
    EXPECT_NE(follower.output().find("wegslot: Wegslot is gestopt\n"), std::string::npos);
}

TEST_F(ControlTest, WhatChangesWhileTheStatusIsAskedForIsInItAndNoLineOfItsOwn) {
    LookAlike service(loop, "nl.wegslot.Wegslot");
    const auto change = [&service](const char* phase) {
        service.signal("/nl/wegslot/Wegslot", "nl.wegslot.Wegslot1", "PhaseChanged",
                       [phase](sd_bus_message* signal) {
                           sd_bus_message_append(signal, "sss", phase, phase, phase);
                       });
    };
    service.on("org.freedesktop.DBus.Properties.GetAll",
               [&](LookAlike& self, sd_bus_message* call) {
                   change("warning");
                   self.reply(call, [](sd_bus_message* answer) {
                       sd_bus_message_append(answer, "a{sv}", 1, "Phase", "s", "warning");
                   });
                   change("locked");
               });
    Program follower(
        {.words = {WEGSLOT_PROGRAM, "status", "--follow", "--json"}, .environment = variables});
    const auto lines = [&follower] {
        const std::string said = follower.output();
        return std::ranges::count(said, '\n');
    };
    ASSERT_TRUE(happens([&] { return lines() >= 2; })) << follower.output();
    service.vanish(); // after which nothing more comes
    ASSERT_TRUE(happens([&] { return !follower.isRunning(); }));
    EXPECT_EQ(lines(), 3) << follower.output(); // the last says that it is gone
    std::istringstream said(follower.output());
    for (const char* const phase : {"warning", "locked"}) {
        std::string line;
        std::getline(said, line);
        EXPECT_EQ(Json::parse(line).at("phase"), phase) << line;
    }
}

TEST_F(ControlTest, UpdateNowIsHandedToTheOneThatRuns) {
    start();
    const Ending ending = wegslot({"--update-now"});
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.said, "Wegslot draait al en zoekt nu naar een nieuwere versie\n");
    EXPECT_TRUE(logs("Bijwerken gevraagd door wegslot"));
    EXPECT_TRUE(application->isRunning());
}

TEST_F(ControlTest, CouplingIsRefusedByTheOneThatRunsWhereThereIsNoScreen) {
    start();
    const Ending ending = wegslot({"couple"});
    EXPECT_EQ(ending.status, 1);
    EXPECT_NE(ending.said.find("er is geen scherm voor een venster"), std::string::npos)
        << ending.said;
}

TEST_F(ControlTest, WhoAsksForCouplingOpensAWindowAndNoMore) {
    variables["DISPLAY"] = ":nowhere"; // a window that nobody sees
    variables["QT_QPA_PLATFORM"] = "offscreen";
    start();
    const Ending ending = wegslot({"couple", "iphone"});
    EXPECT_EQ(ending.status, 0);
    EXPECT_EQ(ending.said, "Wegslot draait al; koppel in het venster dat opengaat\n");
    EXPECT_TRUE(logs("Venster om te koppelen gevraagd door wegslot"));
    // With the first question answered the radio would be lent, and nobody judged.
    EXPECT_NE(busctl("call", {"Couple", "s", "iphone"}).status, 0);
    EXPECT_FALSE(logs("Koppelen begonnen"));
    EXPECT_EQ(status()["phase"], "present");
}

TEST_F(ControlTest, WithoutAnInstanceCouplingIsDoneInTheTerminal) {
    const auto typed = [this](const std::string& lines) {
        return run({"sh", "-c", "printf '" + lines + "' | " WEGSLOT_PROGRAM " couple"});
    };
    const Ending closed = typed("what\\n1\\n");
    EXPECT_EQ(closed.status, 1); // there is no key
    EXPECT_EQ(closed.said, "\nWat wil je koppelen?\n"
                           "  Wegslot koppelt het één keer met deze computer, kijkt of het in je "
                           "zak te horen is, en maakt er dan een sleutel van.\n"
                           "  1 Sluit\n  2 Horloge\n  3 Android-telefoon\n  4 iPhone\n" +
                               closed.said.substr(closed.said.size() / 2));
    EXPECT_EQ(closed.said.substr(0, closed.said.size() / 2),
              closed.said.substr(closed.said.size() / 2)); // what is no choice shows them again
    EXPECT_EQ(typed("").status, 1);                        // nobody will type any more
}

TEST_F(ControlTest, ARecordingBeginsInTheRunningOneAndEndsWithWhoAskedForIt) {
    start();
    const std::string file = (home.path() / "opname.jsonl").string();
    home.write("opname.jsonl", "before\n");
    Program recorder({.words = {WEGSLOT_PROGRAM, "--record", file, "--anonymous", "--force"},
                      .environment = variables});
    ASSERT_TRUE(happens([&] { return !recorder.output().empty(); }));
    EXPECT_EQ(recorder.output(), "Opname loopt; stop met Ctrl-C\n");
    EXPECT_TRUE(logs("Opname gevraagd door wegslot"));
    const auto text = [&] {
        std::ifstream stream(file);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    EXPECT_TRUE(happens([&] { return text().find("advertisement") != std::string::npos; }));

    const Ending second = wegslot({"--record", (home.path() / "tweede").string()});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.said, "wegslot: Wegslot antwoordt met een fout: er loopt al een opname\n");

    recorder.signal(SIGINT);
    ASSERT_TRUE(happens([&] { return !recorder.isRunning(); }));
    EXPECT_EQ(recorder.ended(), 0);
    EXPECT_TRUE(happens([&] { return text().ends_with("\"end\":true}\n"); })) << text();
    std::istringstream lines(text());
    std::string line;
    Words events;
    while (std::getline(lines, line)) {
        Json event = Json::parse(line);
        event.erase("t");
        events.push_back(event.begin().key());
    }
    ASSERT_GE(events.size(), 4U);
    EXPECT_EQ(events.at(0), "start");
    EXPECT_EQ(events.at(1), "settings");
    EXPECT_EQ(events.at(2), "bluetooth");
    EXPECT_EQ(text().find("Telefoon"), std::string::npos);
    EXPECT_EQ(text().find(id), std::string::npos);
    EXPECT_EQ(run({REPLAY_PROGRAM, file}).status, 0);
    // The next one is welcome.
    Program third(
        {.words = {WEGSLOT_PROGRAM, "--record", file, "--force"}, .environment = variables});
    EXPECT_TRUE(happens([&] { return text().find("Telefoon") != std::string::npos; }));
}

namespace {

/// Clicks on the last entry of the menu of whoever has Wegslot's name.
constexpr auto clicking = R"python(
import sys
from gi.repository import Gio, GLib
kind = Gio.DBusConnectionFlags
bus = Gio.DBusConnection.new_for_address_sync(
    sys.argv[1], kind.AUTHENTICATION_CLIENT | kind.MESSAGE_BUS_CONNECTION, None, None)
try:
    bus.call_sync("nl.wegslot.Wegslot", "/MenuBar", "com.canonical.dbusmenu", "Event",
                  GLib.Variant("(isvu)", (3, "clicked", GLib.Variant("i", 0), 0)),
                  None, Gio.DBusCallFlags.NONE, -1, None)
except GLib.Error as error:
    print(Gio.DBusError.get_remote_error(error))
)python";

} // namespace

TEST_F(ControlTest, WhoMayTalkToItsNameReachesNoMenu) {
    ASSERT_TRUE(isInstalled("xdg-dbus-proxy"));
    start();
    const auto socket = home.path() / "sandbox";
    const Program proxy({.words = {"xdg-dbus-proxy", loop.daemon.address(), socket.string(),
                                   "--filter", "--talk=nl.wegslot.Wegslot"}});
    ASSERT_TRUE(happens([&] { return std::filesystem::exists(socket); }));
    const Ending ending = run({"/usr/bin/python3", "-c", clicking, "unix:path=" + socket.string()});
    EXPECT_EQ(ending.said, "org.freedesktop.DBus.Error.UnknownObject\n");
    EXPECT_EQ(status().at("phase"), "present");
    EXPECT_TRUE(application->isRunning());
}
