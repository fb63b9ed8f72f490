#include "tests/contract/bluez_daemon.h"

#include "dbus/message.h"

#include <systemd/sd-bus.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

namespace wegslot {
namespace {

constexpr auto service = "org.bluez";
constexpr auto adapterPath = "/org/bluez/hci0";
constexpr auto adapterInterface = "org.bluez.Adapter1";
constexpr auto deviceInterface = "org.bluez.Device1";
constexpr std::uint64_t callMicroseconds = 240'000'000;

void waitFor(const char* what, const std::function<bool()>& condition) {
    const auto latest = std::chrono::steady_clock::now() + std::chrono::minutes{4};
    while (!condition()) {
        if (std::chrono::steady_clock::now() > latest)
            throw std::runtime_error(std::string("not in a minute: ") + what);
        std::this_thread::sleep_for(std::chrono::milliseconds{20});
    }
}

} // namespace

BluezDaemon::BluezDaemon() {
    if (sd_bus_open_system(&bus_) < 0) throw std::runtime_error("no system bus");
    sd_bus_set_method_call_timeout(bus_, callMicroseconds);
}

BluezDaemon::~BluezDaemon() { sd_bus_flush_close_unref(bus_); }

void BluezDaemon::setPowered(bool powered) {
    waitFor("the adapter's switch", [&] {
        return sd_bus_set_property(bus_, service, adapterPath, adapterInterface, "Powered", nullptr,
                                   "b", powered ? 1 : 0) >= 0 &&
               flag(adapterPath, adapterInterface, "Powered") == powered;
    });
}

void BluezDaemon::pair(const std::string& address) {
    setDiscovering(true);
    std::string path;
    waitFor("a device to pair with", [&] { return !(path = pathOf(address)).empty(); });
    setDiscovering(false);
    call(path, deviceInterface, "Pair");
    call(path, deviceInterface, "Disconnect");
    waitFor("the end of the pairing's link",
            [&] { return !flag(path, deviceInterface, "Connected"); });
}

void BluezDaemon::removeDevice(const std::string& address) {
    const std::string path = pathOf(address);
    if (path.empty()) return;
    sd_bus_call_method(bus_, service, adapterPath, adapterInterface, "RemoveDevice", nullptr,
                       nullptr, "o", path.c_str());
}

std::string BluezDaemon::pathOf(const std::string& address) {
    sd_bus_message* answer = nullptr;
    std::string found;
    if (sd_bus_call_method(bus_, service, "/", "org.freedesktop.DBus.ObjectManager",
                           "GetManagedObjects", nullptr, &answer, "") < 0)
        return found;
    dbus::Reader reader(answer);
    reader.objects([&](std::string_view path, dbus::Reader& interfaces) {
        interfaces.interfaces([&](std::string_view, dbus::Reader& properties) {
            properties.properties([&](std::string_view name, dbus::Reader& value) {
                if (name == "Address" && value.text() == address && path != adapterPath)
                    found = path;
            });
        });
    });
    sd_bus_message_unref(answer);
    return found;
}

void BluezDaemon::call(const std::string& path, const char* interface, const char* member) {
    sd_bus_error error{};
    if (sd_bus_call_method(bus_, service, path.c_str(), interface, member, &error, nullptr, "") >=
        0)
        return;
    const std::string message = std::string(member) + ": " + error.name + ": " + error.message;
    sd_bus_error_free(&error);
    throw std::runtime_error(message);
}

bool BluezDaemon::flag(const std::string& path, const char* interface, const char* property) {
    int value = 0;
    sd_bus_get_property_trivial(bus_, service, path.c_str(), interface, property, nullptr, 'b',
                                &value);
    return value != 0;
}

void BluezDaemon::setDiscovering(bool discovering) {
    const char* const member = discovering ? "StartDiscovery" : "StopDiscovery";
    waitFor(member, [&] {
        return sd_bus_call_method(bus_, service, adapterPath, adapterInterface, member, nullptr,
                                  nullptr, "") >= 0 ||
               !discovering;
    });
}

} // namespace wegslot
