#include "coupling/bluez/heart_rate_service.h"

#include <array>
#include <cstdint>
#include <utility>

namespace wegslot::coupling {
namespace {

constexpr auto measurement = "00002a37-0000-1000-8000-00805f9b34fb";
constexpr auto sensorLocation = "00002a38-0000-1000-8000-00805f9b34fb";

/// "Other" (GATT Specification Supplement, Body Sensor Location).
constexpr std::array<std::uint8_t, 1> elsewhere{0};

std::string servicePath() { return std::string(HeartRateService::path) + "/service"; }

dbus::Property textProperty(std::string name, std::string value) {
    return {.name = std::move(name),
            .signature = "s",
            .write = [value = std::move(value)](dbus::Writer& writer) { writer.text(value); }};
}

dbus::Interface characteristic(std::string number, std::string flag,
                               std::vector<dbus::Method> methods) {
    return {
        .name = "org.bluez.GattCharacteristic1",
        .properties = {textProperty("UUID", std::move(number)),
                       {"Service", "o", [](dbus::Writer& writer) { writer.path(servicePath()); }},
                       {"Flags", "as",
                        [flag = std::move(flag)](dbus::Writer& writer) {
                            writer.array("s", [&flag](dbus::Writer& flags) { flags.text(flag); });
                        }}},
        .methods = std::move(methods)};
}

} // namespace

HeartRateService::HeartRateService(dbus::Bus& bus, const IsDaemon& isDaemon) {
    shown_.push_back(dbus::exportObjectManager(bus, path));
    shown_.push_back(dbus::exportObject(
        bus, servicePath(),
        {.name = "org.bluez.GattService1",
         .properties = {textProperty("UUID", uuid),
                        {"Primary", "b", [](dbus::Writer& writer) { writer.boolean(true); }}}}));
    shown_.push_back(
        dbus::exportObject(bus, servicePath() + "/measurement",
                           characteristic(measurement, "notify",
                                          {servedWithNothing(isDaemon, "StartNotify"),
                                           servedWithNothing(isDaemon, "StopNotify")})));
    shown_.push_back(
        dbus::exportObject(bus, servicePath() + "/location",
                           characteristic(sensorLocation, "encrypt-read",
                                          {served(isDaemon, "ReadValue", "a{sv}", "ay",
                                                  [](const dbus::Message&, dbus::Answer answer) {
                                                      answer.give([](dbus::Writer& writer) {
                                                          writer.bytes(elsewhere);
                                                      });
                                                  })})));
}

} // namespace wegslot::coupling
