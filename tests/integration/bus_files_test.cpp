// Open files that strangers send along with messages: closing one may take for ever, so where
// nobody needs them the bus itself turns them away.

#include "dbus/bus_address.h"
#include "dbus/object.h"
#include "tests/support/bus_loop.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

using namespace wegslot;
using dbus::Bus;

namespace {

struct BusFilesTest : testing::Test {
    BusLoop loop;
    Environment environment{{{"DBUS_SYSTEM_BUS_ADDRESS", loop.daemon.address()},
                             {"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()}}};
    dbus::Forgeries forgeries{loop.time};
    std::unique_ptr<Bus> stranger = loop.connect();
    Handle driving = loop.attach(*stranger);

    /// What comes of a file that is sent to `opened`: the name of the error, or "taken".
    std::string send(Result<std::unique_ptr<Bus>> opened) {
        if (!opened) return opened.failure().message.builtIn();
        Bus& bus = **opened;
        const Handle driven = loop.attach(bus);
        const auto shown = dbus::exportObject(
            bus, "/a", {.name = "a.b", .methods = {{"Take", "h", "", [](const auto&, auto&) {}}}});
        std::string told;
        EXPECT_TRUE(loop.runUntil([&bus] { return !bus.uniqueName().empty(); }));
        const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
        const auto asking = stranger->call(
            {.destination = bus.uniqueName(),
             .path = "/a",
             .interface = "a.b",
             .member = "Take",
             .arguments = {dbus::FileDescriptor{file}}},
            [&told](const dbus::Message& answer) { told = answer.error().value_or("taken"); });
        close(file);
        EXPECT_TRUE(loop.runUntil([&told] { return !told.empty(); }));
        return told;
    }
};

constexpr auto turnedAway = "org.freedesktop.DBus.Error.NotSupported";

} // namespace

TEST_F(BusFilesTest, NoneComesOverTheSystemBusAndOverTheSessionsOnlyWhereTheyAreAllowed) {
    EXPECT_EQ(send(Bus::openSystem(forgeries)), turnedAway);
    EXPECT_EQ(send(Bus::openSession(forgeries)), turnedAway);
    EXPECT_EQ(send(Bus::openSession(forgeries, Bus::Files::allowed)), "taken");
}

TEST(BusAddress, IsWhatTheEnvironmentSaysAndElseWhereTheBusAlwaysIs) {
    const Environment nothing{{{"DBUS_SYSTEM_BUS_ADDRESS", ""},
                               {"DBUS_SESSION_BUS_ADDRESS", ""},
                               {"XDG_RUNTIME_DIR", ""}}};
    EXPECT_EQ(dbus::systemBusAddress(), "unix:path=/run/dbus/system_bus_socket");
    EXPECT_EQ(dbus::sessionBusAddress(), std::nullopt);
    const Environment folder{{{"XDG_RUNTIME_DIR", "/run/user/1000, my:own"}}};
    EXPECT_EQ(dbus::sessionBusAddress(), "unix:path=/run/user/1000%2c%20my%3aown/bus");
    const Environment said{{{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/s"},
                            {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/u"}}};
    EXPECT_EQ(dbus::systemBusAddress(), "unix:path=/s");
    EXPECT_EQ(dbus::sessionBusAddress(), "unix:path=/u");
}
