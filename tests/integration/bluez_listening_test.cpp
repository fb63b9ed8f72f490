// When BluezCentral listens: after sleep, on a radio that went deaf, and without the controller's
// filter where BlueZ can lift it.

#include "tests/integration/bluez_world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct BluezListeningTest : BluezWorld {};

} // namespace

TEST_F(BluezListeningTest, AfterSleepDiscoveryIsAskedForAtOnce) {
    LookAlike logind(loop, "org.freedesktop.login1");
    const auto prepare = [&](bool sleeping) {
        logind.signal("/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                      "PrepareForSleep", [sleeping](sd_bus_message* message) {
                          sd_bus_message_append(message, "b", sleeping ? 1 : 0);
                      });
        loop.settle();
    };
    start();
    live(2500ms); // into the gap after the first burst
    EXPECT_EQ(calls("StopDiscovery"), 1);
    prepare(true);
    EXPECT_EQ(calls("StartDiscovery"), 1);
    prepare(false);
    EXPECT_TRUE(isCalled("StartDiscovery", 2));
    prepare(false); // and a session that is claimed to run is not believed
    EXPECT_TRUE(isCalled("StartDiscovery", 3));
    EXPECT_EQ(calls("StopDiscovery"), 2);
}

TEST_F(BluezListeningTest, ADeafRadioIsTreatedStepByStepAndNothingIsJudgedByIt) {
    start();
    for (int device = 1; device <= 3; ++device) {
        bluez.addDevice("C0:00:00:00:00:0" + std::to_string(device), -70);
        loop.settle();
    }
    live(90s);
    EXPECT_EQ(log.messages,
              (Events{"Radio hoort niets meer: scan opnieuw gestart",
                      "Radio hoort niets meer: zoeken gestopt en opnieuw gestart",
                      "Radio hoort niets meer: nieuwe verbinding met de systeembus"}));
    EXPECT_EQ(central->state(), CentralState::poweredOn);
    EXPECT_EQ(take(), Events{});
    hear();
    ASSERT_TRUE(loop.runUntil([&] { return log.messages.size() == 4; }));
    EXPECT_EQ(log.messages.back(), "Radio hoort weer apparaten");
}

TEST_F(BluezListeningTest, WhereMonitorsAreOfferedOneIsRegisteredWhileThereIsAnythingToHear) {
    std::string sender;
    bluez.service.on("org.bluez.AdvertisementMonitorManager1.RegisterMonitor",
                     [&sender](LookAlike& service, sd_bus_message* call) {
                         sender = sd_bus_message_get_sender(call);
                         service.reply(call);
                     });
    start();
    EXPECT_EQ(calls("RegisterMonitor"), 0);
    bluez.service.signal(
        "/", "org.freedesktop.DBus.ObjectManager", "InterfacesAdded", [](sd_bus_message* message) {
            sd_bus_message_append(message, "oa{sa{sv}}", LookAlikeBluez::adapterPath, 1,
                                  "org.bluez.AdvertisementMonitorManager1", 0);
        });
    EXPECT_TRUE(isCalled("RegisterMonitor", 1));

    // As bluetoothd does: what is there, and then, it is active.
    const auto daemon = loop.connect();
    const auto driving = loop.attach(*daemon);
    std::string monitor;
    const auto listing =
        daemon->call({.destination = sender,
                      .path = "/nl/wegslot/monitors",
                      .interface = "org.freedesktop.DBus.ObjectManager",
                      .member = "GetManagedObjects"},
                     [&monitor](const dbus::Message& answer) {
                         answer.read().objects([&](std::string_view path, dbus::Reader& reader) {
                             reader.interfaces([&](std::string_view name, dbus::Reader&) {
                                 if (name == "org.bluez.AdvertisementMonitor1") monitor = path;
                             });
                         });
                     });
    ASSERT_TRUE(loop.runUntil([&] { return !monitor.empty(); }));
    daemon->send({.destination = sender,
                  .path = monitor,
                  .interface = "org.bluez.AdvertisementMonitor1",
                  .member = "Activate"});
    loop.settle();
    central->want({.list = true, .connect = {id}, .hear = {}});
    loop.settle();
    const auto filters = calls("SetDiscoveryFilter");
    live(30s); // nothing is filtered: no scan has to be started anew
    EXPECT_EQ(calls("SetDiscoveryFilter"), filters);

    central->want({});
    loop.settle();
    EXPECT_EQ(calls("UnregisterMonitor"), 1);
}
