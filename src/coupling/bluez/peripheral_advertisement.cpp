#include "coupling/bluez/peripheral_advertisement.h"

#include "coupling/bluez/heart_rate_service.h"

#include <cstdint>
#include <utility>

namespace wegslot::coupling {
namespace {

/// Generic Heart Rate Sensor (Assigned Numbers, section 2.6).
constexpr std::uint16_t heartRateSensor = 0x0340;

} // namespace

PeripheralAdvertisement::PeripheralAdvertisement(dbus::Bus& bus, const IsDaemon& isDaemon,
                                                 const std::string& name,
                                                 std::function<void()> released) {
    const auto release = [released = std::move(released)](const dbus::Message&,
                                                          dbus::Answer answer) {
        answer.give();
        released();
    };
    // No DiscoverableTimeout: before BlueZ 5.73 one of 0 takes the flags out of the advertisement.
    shown_ = dbus::exportObject(
        bus, path,
        {.name = "org.bluez.LEAdvertisement1",
         .properties =
             {{"Type", "s", [](dbus::Writer& writer) { writer.text("peripheral"); }},
              {"ServiceUUIDs", "as",
               [](dbus::Writer& writer) {
                   writer.array("s", [](dbus::Writer& list) { list.text(HeartRateService::uuid); });
               }},
              {"Discoverable", "b", [](dbus::Writer& writer) { writer.boolean(true); }},
              {"LocalName", "s", [name](dbus::Writer& writer) { writer.text(name); }},
              {"Appearance", "q", [](dbus::Writer& writer) { writer.uint16(heartRateSensor); }},
              {"Timeout", "q",
               [](dbus::Writer& writer) { writer.uint16(std::uint16_t{longest.count()}); }}},
         .methods = {served(isDaemon, "Release", {}, {}, release)}});
}

} // namespace wegslot::coupling
