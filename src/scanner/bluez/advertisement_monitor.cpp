#include "scanner/bluez/advertisement_monitor.h"

#include "dbus/object.h"

#include <array>
#include <utility>

namespace wegslot::bluez {
namespace {

constexpr auto root = "/nl/wegslot/monitors";
constexpr auto monitor = "/nl/wegslot/monitors/nobody";

// Manufacturer data (Assigned Numbers, section 2.3) of the company that stands for none, with
// bytes behind it that a test device would hardly choose.
constexpr std::uint8_t manufacturerData = 0xFF;
constexpr std::array<std::uint8_t, 8> nobody{0xFF, 0xFF, 0x57, 0x65, 0x67, 0x73, 0x6C, 0x6F};

void writePatterns(dbus::Writer& writer) {
    writer.array("(yyay)", [](dbus::Writer& patterns) {
        patterns.structure("yyay", [](dbus::Writer& pattern) {
            pattern.byte(0); // from the first byte of the data
            pattern.byte(manufacturerData);
            pattern.bytes(nobody);
        });
    });
}

dbus::Method ignored(std::string name, std::string arguments) {
    return {.name = std::move(name),
            .arguments = std::move(arguments),
            .results = {},
            .answer = [](const dbus::Message&, dbus::Writer&) {}};
}

} // namespace

AdvertisementMonitor::AdvertisementMonitor(dbus::Bus& bus, std::string adapter,
                                           std::function<void(bool)> changed)
    : bus_(bus),
      adapter_(std::move(adapter)) {
    const auto telling = [changed = std::move(changed)](std::string name, bool active) {
        dbus::Method method = ignored(std::move(name), "");
        method.answer = [changed, active](const dbus::Message&, dbus::Writer&) { changed(active); };
        return method;
    };
    manager_ = dbus::exportObjectManager(bus_, root);
    monitor_ = dbus::exportObject(
        bus_, monitor,
        {.name = "org.bluez.AdvertisementMonitor1",
         .properties = {{"Type", "s", [](dbus::Writer& writer) { writer.text("or_patterns"); }},
                        {"Patterns", "a(yyay)", writePatterns}},
         .methods = {telling("Activate", true), telling("Release", false),
                     ignored("DeviceFound", "o"), ignored("DeviceLost", "o")}});
    // Refused, there is none, and everything works as without.
    registration_ = bus_.call(callOf("RegisterMonitor"), [](const dbus::Message&) {});
}

AdvertisementMonitor::~AdvertisementMonitor() { bus_.send(callOf("UnregisterMonitor")); }

dbus::Call AdvertisementMonitor::callOf(const std::string& member) const {
    return {.destination = "org.bluez",
            .path = adapter_,
            .interface = "org.bluez.AdvertisementMonitorManager1",
            .member = member,
            .arguments = {dbus::ObjectPath{root}}};
}

} // namespace wegslot::bluez
