#include "bluez_signals.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace counter {

namespace {

constexpr const char* bluez = "org.bluez";
constexpr std::string_view deviceInterface = "org.bluez.Device1";

struct UnrefMessage {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

using Message = std::unique_ptr<sd_bus_message, UnrefMessage>;

struct DeviceProperties {
    std::optional<std::string> address;
    std::optional<int> rssi;
};

using EntryReader = std::function<int(const char* key)>;

/// Reads a dictionary with text or path keys of this entry type ("{sv}", ...); the reader takes the
/// value of each entry.
int readEntries(sd_bus_message* message, const char* entry, const EntryReader& readValue) {
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, entry);
    if (result < 0) return result;
    const std::string inside(entry + 1, std::string_view(entry).size() - 2);
    while ((result = sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY,
                                                    inside.c_str())) > 0) {
        const char* key = nullptr;
        result = sd_bus_message_read_basic(message, inside.front(), &key);
        if (result >= 0) result = readValue(key);
        if (result >= 0) result = sd_bus_message_exit_container(message);
        if (result < 0) return result;
    }
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

int readProperty(sd_bus_message* message, std::string_view name, DeviceProperties& into) {
    if (name == "RSSI") {
        std::int16_t rssi = 0;
        const int result = sd_bus_message_read(message, "v", "n", &rssi);
        if (result >= 0) into.rssi = rssi;
        return result;
    }
    if (name == "Address") {
        const char* address = nullptr;
        const int result = sd_bus_message_read(message, "v", "s", &address);
        if (result >= 0) into.address = address;
        return result;
    }
    return sd_bus_message_skip(message, "v");
}

int readProperties(sd_bus_message* message, DeviceProperties& into) {
    return readEntries(message, "{sv}",
                       [&](const char* name) { return readProperty(message, name, into); });
}

/// The interfaces of one object; only the device's are looked into.
int readInterfaces(sd_bus_message* message, DeviceProperties& into) {
    return readEntries(message, "{sa{sv}}", [&](const char* interface) {
        if (interface != deviceInterface) return sd_bus_message_skip(message, "a{sv}");
        return readProperties(message, into);
    });
}

void take(SignalCount& count, const std::string& path, const DeviceProperties& properties) {
    if (properties.address) count.learnAddress(path, *properties.address);
    if (properties.rssi) count.count(path, *properties.rssi);
}

} // namespace

int BluezSignals::connect() {
    sd_bus* opened = nullptr;
    int result = sd_bus_open_system(&opened);
    if (result < 0) return result;
    bus_.reset(opened);
    result =
        sd_bus_add_match(bus(), nullptr,
                         "type='signal',sender='org.bluez',path_namespace='/org/bluez',"
                         "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
                         "arg0='org.bluez.Device1'",
                         onPropertiesChanged, this);
    if (result < 0) return result;
    result = sd_bus_match_signal(bus(), nullptr, bluez, "/", "org.freedesktop.DBus.ObjectManager",
                                 "InterfacesAdded", onInterfacesAdded, this);
    return result < 0 ? result : learnPresentDevices();
}

int BluezSignals::processArrived() {
    int result = 0;
    do {
        result = sd_bus_process(bus(), nullptr);
    } while (result > 0);
    return result;
}

int BluezSignals::drain() {
    // Answers come in order: when BlueZ has answered, all that it said before has arrived. If it
    // is not there it has nothing more to say.
    sd_bus_call_method(bus(), bluez, "/org/bluez", "org.freedesktop.DBus.Introspectable",
                       "Introspect", nullptr, nullptr, nullptr);
    return processArrived();
}

int BluezSignals::learnPresentDevices() {
    sd_bus_message* received = nullptr;
    const int answered = sd_bus_call_method(bus(), bluez, "/", "org.freedesktop.DBus.ObjectManager",
                                            "GetManagedObjects", nullptr, &received, nullptr);
    // BlueZ need not be there yet.
    if (answered < 0) return 0;
    const Message reply(received);
    return readEntries(reply.get(), "{oa{sa{sv}}}", [&](const char* path) {
        DeviceProperties properties;
        const int result = readInterfaces(reply.get(), properties);
        // A strength that stands there is of unknown age: nothing was told just now.
        if (properties.address) count_.learnAddress(path, *properties.address);
        return result;
    });
}

int BluezSignals::onPropertiesChanged(sd_bus_message* message, void* self, sd_bus_error*) {
    DeviceProperties properties;
    int result = sd_bus_message_skip(message, "s");
    if (result >= 0) result = readProperties(message, properties);
    if (result < 0) return result;
    take(static_cast<BluezSignals*>(self)->count_, sd_bus_message_get_path(message), properties);
    return 0;
}

int BluezSignals::onInterfacesAdded(sd_bus_message* message, void* self, sd_bus_error*) {
    const char* path = nullptr;
    DeviceProperties properties;
    int result = sd_bus_message_read(message, "o", &path);
    if (result >= 0) result = readInterfaces(message, properties);
    if (result < 0) return result;
    take(static_cast<BluezSignals*>(self)->count_, path, properties);
    return 0;
}

} // namespace counter
