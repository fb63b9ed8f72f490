#include "scanner/bluez/object_watch.h"

namespace wegslot::bluez {
namespace {

constexpr const char* service = "org.bluez";
constexpr const char* adapterInterface = "org.bluez.Adapter1";
constexpr std::string_view monitorsInterface = "org.bluez.AdvertisementMonitorManager1";
constexpr auto advertisingInterface = "org.bluez.LEAdvertisingManager1";
constexpr std::string_view serviceInterface = "org.bluez.GattService1";
constexpr std::string_view characteristicInterface = "org.bluez.GattCharacteristic1";

bool isOfAdapter(std::string_view interface) {
    return interface == adapterInterface || interface == monitorsInterface ||
           interface == advertisingInterface;
}

bool isOfGatt(std::string_view interface) {
    return interface == serviceInterface || interface == characteristicInterface;
}

dbus::SignalMatch propertiesOf(std::string_view interface) {
    return {.interface = "org.freedesktop.DBus.Properties",
            .member = "PropertiesChanged",
            .pathNamespace = "/org/bluez",
            .arg0 = std::string(interface)};
}

dbus::SignalMatch objectManager(std::string_view member) {
    return {.interface = "org.freedesktop.DBus.ObjectManager", .member = std::string(member)};
}

} // namespace

ObjectWatch::ObjectWatch(dbus::Bus& bus, Scheduler& scheduler, WatchListener& listener,
                         AddressResolver& resolver)
    : bus_(bus),
      scheduler_(scheduler),
      listener_(listener),
      objects_(resolver) {
    // Signals first: what changes while the objects are read arrives after them or is repeated.
    const auto changed = [this](const dbus::Message& message) { propertiesChanged(message); };
    for (const auto interface :
         {deviceInterface, bearerInterface, adapterInterface, advertisingInterface})
        signals_.push_back(bus_.onSignal(service, propertiesOf(interface), changed));
    signals_.push_back(bus_.onSignal(service,
                                     {.interface = "org.bluez.Device1", .member = "Disconnected"},
                                     [this](const dbus::Message& message) {
                                         const auto name = message.read().text();
                                         if (name) listener_.linkEnded(message.path(), *name);
                                     }));
    signals_.push_back(
        bus_.onSignal(service, objectManager("InterfacesAdded"),
                      [this](const dbus::Message& message) { interfacesAdded(message); }));
    signals_.push_back(
        bus_.onSignal(service, objectManager("InterfacesRemoved"),
                      [this](const dbus::Message& message) { interfacesRemoved(message); }));
    owner_ = bus_.followOwner(
        service, [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

void ObjectWatch::ownerChanged(const std::optional<std::string>& owner) {
    objects_.clear();
    gatt_.clear();
    reading_.reset();
    retry_.reset();
    daemon_ = owner ? Daemon::loading : Daemon::absent;
    if (owner) readObjects();
    listener_.surroundingsChanged();
}

void ObjectWatch::readObjects() {
    reading_ = bus_.call({.destination = service,
                          .path = "/",
                          .interface = "org.freedesktop.DBus.ObjectManager",
                          .member = "GetManagedObjects"},
                         [this](const dbus::Message& answer) { objectsRead(answer); });
}

void ObjectWatch::objectsRead(const dbus::Message& answer) {
    const auto error = answer.error();
    // Any other failure is the daemon's going or hanging, or a trouble that passes.
    if (error && *error != "org.freedesktop.DBus.Error.AccessDenied") {
        retry_ = scheduler_.after(retryInterval, [this] { readObjects(); });
        return;
    }
    daemon_ = error ? Daemon::denied : Daemon::ready;
    answer.read().objects([this](std::string_view path, dbus::Reader& interfaces) {
        interfaces.interfaces([&](std::string_view interface, dbus::Reader& properties) {
            static_cast<void>(read(path, interface, properties));
        });
    });
    listener_.surroundingsChanged();
}

void ObjectWatch::interfacesAdded(const dbus::Message& message) {
    dbus::Reader reader = message.read();
    const auto path = reader.text();
    if (!path) return;
    bool gattFound = false;
    reader.interfaces([&](std::string_view interface, dbus::Reader& properties) {
        if (const auto news = read(*path, interface, properties))
            listener_.deviceReported(*path, *news);
        if (isOfAdapter(interface)) listener_.surroundingsChanged();
        gattFound = gattFound || isOfGatt(interface);
    });
    if (gattFound) listener_.gattChanged();
}

void ObjectWatch::interfacesRemoved(const dbus::Message& message) {
    dbus::Reader reader = message.read();
    const auto path = reader.text();
    if (!path) return;
    for (const std::string& interface : reader.texts())
        removed(*path, interface);
}

void ObjectWatch::removed(std::string_view path, std::string_view interface) {
    if (isOfGatt(interface)) gatt_.remove(path);
    if (interface == bearerInterface) objects_.removeBearer(path);
    if (interface == deviceInterface) {
        const Device* const device = objects_.device(path);
        const auto id = device == nullptr ? std::nullopt : device->id;
        objects_.removeDevice(path);
        if (id) listener_.deviceRemoved(path, *id);
    }
    if (!isOfAdapter(interface)) return;
    if (interface == adapterInterface) {
        objects_.removeAdapter(path);
    } else if (interface == monitorsInterface) {
        objects_.setMonitors(path, false);
    } else {
        objects_.removeAdvertising(path);
    }
    listener_.surroundingsChanged();
}

void ObjectWatch::propertiesChanged(const dbus::Message& message) {
    dbus::Reader reader = message.read();
    const auto interface = reader.text();
    if (!interface) return;
    // Of what was never announced, or is no more, too little is known; it will be.
    const bool isOfDevice = *interface == deviceInterface || *interface == bearerInterface;
    if (isOfDevice && objects_.device(message.path()) == nullptr) return;
    if (isOfAdapter(*interface) && !objects_.adapters().contains(message.path())) return;
    if (const auto news = read(message.path(), *interface, reader))
        listener_.deviceReported(message.path(), *news);
    if (isOfAdapter(*interface)) listener_.surroundingsChanged();
}

std::optional<DeviceNews> ObjectWatch::read(std::string_view path, std::string_view interface,
                                            dbus::Reader& properties) {
    if (interface == deviceInterface) return objects_.readDevice(path, properties);
    if (interface == bearerInterface) return objects_.readBearer(path, properties);
    if (interface == adapterInterface) objects_.readAdapter(path, properties);
    if (interface == monitorsInterface) objects_.setMonitors(path, true);
    if (interface == advertisingInterface) objects_.readAdvertising(path, properties);
    if (interface == serviceInterface) gatt_.readService(path, properties);
    if (interface == characteristicInterface) gatt_.readCharacteristic(path, properties);
    return std::nullopt;
}

} // namespace wegslot::bluez
