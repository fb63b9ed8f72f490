// Who may send may lie: what another user, on a bus with the system's own policy, or a program in
// a sandbox says under the name of a service is not taken for the service's word.

#include "control/linux/activation.h"
#include "platform/linux/screen_lock_watcher.h"
#include "platform/locker_lock.h"
#include "scanner/bluez/object_watch.h"
#include "tests/support/captured_log.h"
#include "tests/support/fake_processes.h"
#include "tests/support/forger.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/look_alike_logind.h"
#include "tests/support/program.h"

#include <gtest/gtest.h>

#include <systemd/sd-bus.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <pwd.h>
#include <unistd.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto propertiesOfObjects = "org.freedesktop.DBus.Properties";
constexpr auto claimed = "nl.example.Service";

/// Counts what is said of devices.
struct Reports final : bluez::WatchListener {
    void surroundingsChanged() override {}
    void deviceReported(std::string_view, const bluez::DeviceNews& news) override {
        if (news.rssi) strengths.push_back(*news.rssi);
    }
    void deviceRemoved(std::string_view, const Uuid&) override {}
    void linkEnded(std::string_view, std::string_view) override {}
    void gattChanged() override {}

    std::vector<int> strengths;
};

struct ForgedSignalsTest : testing::Test {
    CapturedLog log;
    BusLoop loop{PrivateBus::Policy::system};
    std::unique_ptr<dbus::Bus> bus = loop.connect();
    Handle driving = loop.attach(*bus);

    void SetUp() override { ASSERT_TRUE(becomesNamed()); }

    bool becomesNamed() {
        return loop.runUntil([this] { return !bus->uniqueName().empty(); });
    }

    /// Has another user say this to our connection alone.
    std::unique_ptr<Forger> forge(const std::string& path, const std::string& interface,
                                  const std::string& member,
                                  const std::function<void(sd_bus_message*)>& append,
                                  int times = 1) {
        const std::string name = bus->uniqueName(); // the other process has no part in this bus
        auto forger = std::make_unique<Forger>(loop.daemon.address(), [&](sd_bus* own) {
            for (int i = 0; i < times; ++i)
                sendSignalTo(own, name, path, interface, member, append);
        });
        loop.settle();
        return forger;
    }

    /// What the log says of a forgery by `forger`, but for its unique name.
    static std::string refusal(const std::string& member, const std::string& source,
                               const Forger& forger) {
        const auto user = geteuid() == 0 ? getpwnam("nobody")->pw_uid : getuid();
        return "Vals signaal geweigerd: " + member + " is niet van " + source +
               " maar van : (uid " + std::to_string(user) + ", pid " +
               std::to_string(forger.process()) + ")";
    }
    std::vector<std::string> logged() {
        auto lines = log.take();
        for (std::string& line : lines)
            if (const auto at = line.find("van :1."); at != std::string::npos)
                line.erase(at + 5, line.find(' ', at + 5) - at - 5);
        return lines;
    }
};

struct ForgedBluezTest : ForgedSignalsTest {
    LookAlikeBluez bluez{loop};
    Reports reports;
    AddressResolver nobody;
    std::optional<bluez::ObjectWatch> watch;

    void SetUp() override {
        ForgedSignalsTest::SetUp();
        bluez.addAdapter();
        bluez.addDevice(someAddress);
        watch.emplace(*bus, loop.time, reports, nobody);
        ASSERT_TRUE(loop.runUntil([this] { return watch->daemon() == bluez::Daemon::ready; }));
    }
};

} // namespace

TEST_F(ForgedBluezTest, AFalseStrengthOfAKeyIsNotHeard) {
    const auto forger = forge(LookAlikeBluez::pathOf(someAddress), propertiesOfObjects,
                              "PropertiesChanged", [](sd_bus_message* message) {
                                  sd_bus_message_append(message, "sa{sv}as", "org.bluez.Device1", 1,
                                                        "RSSI", "n", -40, 0);
                              });
    bluez.report(someAddress, -80);
    loop.settle();
    EXPECT_EQ(reports.strengths, std::vector{-80});
    EXPECT_EQ(logged(), std::vector{refusal("PropertiesChanged", "org.bluez", *forger)});
}

TEST_F(ForgedBluezTest, AFalseEndOfTheDaemonSwitchesNothingOff) {
    const auto forger = forge("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                              [](sd_bus_message* message) {
                                  sd_bus_message_append(message, "sss", "org.bluez", ":1.1", "");
                              });
    EXPECT_EQ(watch->daemon(), bluez::Daemon::ready);
    bluez.report(someAddress, -80);
    loop.settle();
    EXPECT_EQ(reports.strengths, std::vector{-80});
    const auto lines = logged();
    EXPECT_EQ(
        std::ranges::count(lines, refusal("NameOwnerChanged", "org.freedesktop.DBus", *forger)),
        std::ssize(lines));
    EXPECT_FALSE(lines.empty());
}

TEST_F(ForgedBluezTest, AFloodOfMadeUpDevicesMakesNoneAndTenLinesAnHour) {
    constexpr int times = 5000;
    const std::string madeUp = LookAlikeBluez::pathOf("AA:BB:CC:DD:EE:99");
    const auto announce = [&madeUp](sd_bus_message* message) {
        sd_bus_message_append(message, "oa{sa{sv}}", madeUp.c_str(), 1, "org.bluez.Device1", 3,
                              "Address", "s", "AA:BB:CC:DD:EE:99", "AddressType", "s", "public",
                              "RSSI", "n", -40);
    };
    const auto flood = [&](int count) {
        return forge("/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded", announce, count);
    };
    const auto forger = flood(times);
    EXPECT_EQ(watch->objects().device(madeUp), nullptr);
    EXPECT_EQ(reports.strengths, std::vector<int>{});
    EXPECT_EQ(logged(), std::vector(10, refusal("InterfacesAdded", "org.bluez", *forger)));

    loop.pass(1h - 1ns);
    static_cast<void>(flood(1));
    EXPECT_EQ(logged(), std::vector<std::string>{});
    loop.pass(1ns);
    const auto later = flood(1);
    EXPECT_EQ(logged(), std::vector{refusal("InterfacesAdded", "org.bluez", *later) +
                                    "; 4991 eerdere niet gemeld"});
}

TEST_F(ForgedSignalsTest, AFalseHintLocksNothing) {
    LookAlikeLogind logind(loop);
    dbus::Connection connection(loop.opener(), loop.attacher(), loop.time);
    LoginSession session(connection);
    ScreenSavers savers(connection, loop.time);
    FakeProcesses processes;
    LockerWatch lockers(processes, loop.time, lockerPatterns({}));
    const ScreenLockWatcher watcher(session, savers, lockers);
    ASSERT_TRUE(loop.runUntil([&] { return logind.service.calls("Get") > 0; }));
    loop.settle();
    const std::string name = connection.bus().get()->uniqueName();
    const Forger forger(loop.daemon.address(), [&](sd_bus* other) {
        sendSignalTo(other, name, LookAlikeLogind::session, propertiesOfObjects,
                     "PropertiesChanged", [](sd_bus_message* message) {
                         sd_bus_message_append(message, "sa{sv}as",
                                               "org.freedesktop.login1.Session", 1, "LockedHint",
                                               "b", 1, 0);
                     });
    });
    loop.settle();
    EXPECT_FALSE(watcher.isLocked());
    EXPECT_EQ(logged(),
              std::vector{refusal("PropertiesChanged", "org.freedesktop.login1", forger)});
    logind.setHint(true);
    EXPECT_TRUE(loop.runUntil([&] { return watcher.isLocked(); }));
}

// Answers belong to calls by their number alone, which is easily guessed; the bus sees to it that
// only who was asked answers.
TEST_F(ForgedSignalsTest, WhoWasNotAskedCannotAnswer) {
    LookAlike asked(loop, claimed);
    sd_bus_message* waiting = nullptr;
    asked.on("nl.example.Service.Ask",
             [&](LookAlike&, sd_bus_message* call) { waiting = sd_bus_message_ref(call); });
    std::string answered;
    const auto asking = bus->call(
        {.destination = claimed, .path = "/", .interface = claimed, .member = "Ask"},
        [&](const dbus::Message& answer) { answered = answer.read().text().value_or("none"); });
    ASSERT_TRUE(loop.runUntil([&] { return waiting != nullptr; }));
    const std::string name = bus->uniqueName();
    const Forger forger(loop.daemon.address(), [&](sd_bus* other) {
        for (std::uint64_t serial = 1; serial <= 20; ++serial)
            sendAnswerTo(other, name, serial, "false");
    });
    loop.settle();
    EXPECT_EQ(answered, "");
    asked.reply(waiting,
                [](sd_bus_message* answer) { sd_bus_message_append(answer, "s", "true"); });
    sd_bus_message_unref(waiting);
    EXPECT_TRUE(loop.runUntil([&] { return answered == "true"; })) << answered;
}

TEST_F(ForgedSignalsTest, WhoTakesANameOverIsHeardAndWhoLeftItIsNot) {
    std::vector<std::string> heard;
    const auto listening = bus->onSignal(
        claimed, {.interface = claimed, .member = "Said"}, [&](const dbus::Message& signal) {
            heard.emplace_back(signal.read().text().value_or("nothing"));
        });
    const auto say = [](LookAlike& who, const char* what) {
        who.signal("/", claimed, "Said",
                   [what](sd_bus_message* message) { sd_bus_message_append(message, "s", what); });
    };
    const auto former = loop.connect();
    const Handle drivingFormer = loop.attach(*former);
    const auto sayAsFormer = [&](const char* what) {
        sendSignalTo(
            former->native(), bus->uniqueName(), "/", claimed, "Said",
            [what](sd_bus_message* message) { sd_bus_message_append(message, "s", what); });
        loop.settle();
    };
    sd_bus_request_name(former->native(), claimed, 0);
    sayAsFormer("former"); // right behind the news that it is there
    sd_bus_release_name(former->native(), claimed);
    sayAsFormer("nobody");
    LookAlike next(loop, claimed);
    sayAsFormer("former again");
    say(next, "next");
    loop.settle();
    EXPECT_EQ(heard, (std::vector<std::string>{"former", "next"}));
    EXPECT_EQ(logged().size(), 2U);
}

namespace {

/// Says to be the screen saver, and that it is active; and stays.
constexpr auto sandboxed = R"python(
import sys
from gi.repository import Gio, GLib
kind = Gio.DBusConnectionFlags
bus = Gio.DBusConnection.new_for_address_sync(
    sys.argv[1], kind.AUTHENTICATION_CLIENT | kind.MESSAGE_BUS_CONNECTION, None, None)
def say(path, interface, member, what):
    bus.emit_signal("nl.wegslot.Wegslot", path, interface, member, what)
say("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
    GLib.Variant("(sss)", ("org.freedesktop.ScreenSaver", "", bus.get_unique_name())))
say("/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", "ActiveChanged",
    GLib.Variant("(b)", (True,)))
bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames",
              None, None, Gio.DBusCallFlags.NONE, -1, None)
print("sent", flush=True)
GLib.MainLoop().run()
)python";

} // namespace

// The session's bus, as a sandbox shows it to a program that may talk to Wegslot and nothing else.
TEST(ForgedSaverTest, AProgramInASandboxIsNoScreenSaver) {
    if (!isInstalled("xdg-dbus-proxy")) GTEST_SKIP() << "no xdg-dbus-proxy";
    constexpr auto saver = "org.freedesktop.ScreenSaver";
    CapturedLog log;
    BusLoop loop;
    LookAlike service(loop, saver);
    service.on(std::string(saver) + ".GetActive", [](LookAlike& self, sd_bus_message* call) {
        self.reply(call, [](sd_bus_message* answer) { sd_bus_message_append(answer, "b", 0); });
    });
    dbus::Connection connection(loop.opener(), loop.attacher(), loop.time);
    const Activation name(connection, [](const std::string&) {});
    const ScreenSavers savers(connection, loop.time);
    ASSERT_TRUE(loop.runUntil([&] { return savers.active().get() == false; }));

    const TemporaryFolder folder;
    const std::string socket = (folder.path() / "bus").string();
    const Program proxy({.words = {"xdg-dbus-proxy", loop.daemon.address(), socket, "--filter",
                                   std::string("--talk=") + Activation::name}});
    ASSERT_TRUE(becomesTrue([&] { return std::filesystem::exists(socket); }));
    // Not the system's own library, whose way to begin the proxy does not understand.
    const Program forger({.words = {"/usr/bin/python3", "-c", sandboxed, "unix:path=" + socket}});
    ASSERT_TRUE(becomesTrue([&] { return forger.output() == "sent\n"; })) << forger.output();
    loop.settle();
    EXPECT_EQ(savers.active().get(), false);
    ASSERT_FALSE(log.messages.empty());
    // To the bus the proxy is the program.
    EXPECT_NE(log.messages[0].find("pid " + std::to_string(proxy.process()) + ")"),
              std::string::npos)
        << log.messages[0];
}
