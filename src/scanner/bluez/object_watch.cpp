#include "scanner/bluez/object_watch.h"

namespace wegslot::bluez {
namespace {

constexpr std::string_view adapterInterface = "org.bluez.Adapter1";
constexpr std::string_view deviceInterface = "org.bluez.Device1";

std::string propertiesOf(std::string_view interface) {
    return "sender='org.bluez',interface='org.freedesktop.DBus.Properties',"
           "member='PropertiesChanged',path_namespace='/org/bluez',arg0='" +
           std::string(interface) + "'";
}

std::string objectManager(std::string_view member) {
    return "sender='org.bluez',interface='org.freedesktop.DBus.ObjectManager',member='" +
           std::string(member) + "'";
}

} // namespace

ObjectWatch::ObjectWatch(dbus::Bus& bus, WatchListener& listener) : bus_(bus), listener_(listener) {
    // Signals first: what changes while the objects are read arrives after them or is repeated.
    const auto changed = [this](const dbus::Message& message) { propertiesChanged(message); };
    signals_.push_back(bus_.onSignal(propertiesOf(deviceInterface), changed));
    signals_.push_back(bus_.onSignal(propertiesOf(adapterInterface), changed));
    signals_.push_back(
        bus_.onSignal(objectManager("InterfacesAdded"),
                      [this](const dbus::Message& message) { interfacesAdded(message); }));
    signals_.push_back(
        bus_.onSignal(objectManager("InterfacesRemoved"),
                      [this](const dbus::Message& message) { interfacesRemoved(message); }));
    owner_ = bus_.followOwner(
        "org.bluez", [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

void ObjectWatch::ownerChanged(const std::optional<std::string>& owner) {
    objects_.clear();
    reading_.reset();
    daemon_ = owner ? Daemon::loading : Daemon::absent;
    if (owner)
        reading_ = bus_.call({.destination = "org.bluez",
                              .path = "/",
                              .interface = "org.freedesktop.DBus.ObjectManager",
                              .member = "GetManagedObjects"},
                             [this](const dbus::Message& answer) { objectsRead(answer); });
    listener_.surroundingsChanged();
}

void ObjectWatch::objectsRead(const dbus::Message& answer) {
    const auto error = answer.error();
    // Any other failure is the daemon's going or hanging; its name's next change tries again.
    if (error && *error != "org.freedesktop.DBus.Error.AccessDenied") return;
    daemon_ = error ? Daemon::denied : Daemon::ready;
    answer.read().objects([this](std::string_view path, dbus::Reader& interfaces) {
        interfaces.interfaces([&](std::string_view interface, dbus::Reader& properties) {
            read(path, interface, properties);
        });
    });
    listener_.surroundingsChanged();
}

void ObjectWatch::interfacesAdded(const dbus::Message& message) {
    dbus::Reader reader = message.read();
    const auto path = reader.text();
    if (!path) return;
    reader.interfaces([&](std::string_view interface, dbus::Reader& properties) {
        if (interface == deviceInterface) {
            listener_.deviceReported(*path, objects_.readDevice(*path, properties));
        } else if (interface == adapterInterface) {
            objects_.readAdapter(*path, properties);
            listener_.surroundingsChanged();
        }
    });
}

void ObjectWatch::interfacesRemoved(const dbus::Message& message) {
    dbus::Reader reader = message.read();
    const auto path = reader.text();
    if (!path) return;
    for (const std::string& interface : reader.texts()) {
        if (interface == deviceInterface) objects_.removeDevice(*path);
        if (interface != adapterInterface) continue;
        objects_.removeAdapter(*path);
        listener_.surroundingsChanged();
    }
}

void ObjectWatch::propertiesChanged(const dbus::Message& message) {
    dbus::Reader reader = message.read();
    const auto interface = reader.text();
    if (interface == deviceInterface) {
        // Of an object that was never announced too little is known; it will be.
        if (objects_.device(message.path()) == nullptr) return;
        listener_.deviceReported(message.path(), objects_.readDevice(message.path(), reader));
    } else if (interface == adapterInterface) {
        objects_.readAdapter(message.path(), reader);
        listener_.surroundingsChanged();
    }
}

void ObjectWatch::read(std::string_view path, std::string_view interface,
                       dbus::Reader& properties) {
    if (interface == deviceInterface) static_cast<void>(objects_.readDevice(path, properties));
    if (interface == adapterInterface) objects_.readAdapter(path, properties);
}

} // namespace wegslot::bluez
