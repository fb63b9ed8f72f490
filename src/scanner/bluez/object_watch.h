// Follows bluetoothd on one bus: who it is, which objects it has, and what it reports of them.
// Keeps the mirror up to date and tells one listener of what changed.
#pragma once

#include "base/handle.h"
#include "base/scheduler.h"
#include "dbus/bus.h"
#include "scanner/bluez/gatt_tree.h"
#include "scanner/bluez/object_tree.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot::bluez {

/// What bluetoothd is known to be doing.
enum class Daemon {
    unknown, ///< not asked yet
    absent,  ///< nobody owns its name
    loading, ///< there, its objects not read yet
    ready,   ///< there, and the mirror is complete
    denied,  ///< there, but this user may not talk to it
};

class WatchListener {
public:
    WatchListener() = default;
    WatchListener(const WatchListener&) = delete;
    WatchListener& operator=(const WatchListener&) = delete;
    virtual ~WatchListener() = default;

    /// The daemon, or one of its adapters, is not what it was.
    virtual void surroundingsChanged() = 0;

    /// A message spoke of the device at `path`. `news.rssi` is there only when it was heard
    /// right now; a value read at start-up is of unknown age and not passed on.
    virtual void deviceReported(std::string_view path, const DeviceNews& news) = 0;

    /// The device with `id` was at `path` and is no more.
    virtual void deviceRemoved(std::string_view path, const Uuid& id) = 0;

    /// The link to the device at `path` ended, for the reason that `name` stands for
    /// ("org.bluez.Reason.Timeout"). Its `Connected` follows. BlueZ before 5.83 does not tell.
    virtual void linkEnded(std::string_view path, std::string_view name) = 0;

    /// Services or characteristics were found.
    virtual void gattChanged() = 0;
};

class ObjectWatch {
public:
    /// A daemon that is starting, or in trouble, may refuse; it is asked again for as long as it
    /// lives.
    static constexpr Nanoseconds retryInterval = std::chrono::seconds{2};

    /// All must outlive the watch. Calls come from the bus's processing only.
    ObjectWatch(dbus::Bus& bus, Scheduler& scheduler, WatchListener& listener,
                AddressResolver& resolver);

    ObjectWatch(const ObjectWatch&) = delete;
    ObjectWatch& operator=(const ObjectWatch&) = delete;

    [[nodiscard]] Daemon daemon() const { return daemon_; }
    [[nodiscard]] const ObjectTree& objects() const { return objects_; }
    [[nodiscard]] const GattTree& gatt() const { return gatt_; }

    /// After the resolver has learned of an identity, or forgotten one. The listener is not told.
    [[nodiscard]] std::vector<ObjectTree::Moved> resolveAnew() { return objects_.resolveAnew(); }

private:
    void ownerChanged(const std::optional<std::string>& owner);
    void readObjects();
    void objectsRead(const dbus::Message& answer);
    void interfacesAdded(const dbus::Message& message);
    void interfacesRemoved(const dbus::Message& message);
    void propertiesChanged(const dbus::Message& message);
    /// Reads what stands in the object tree or the GATT tree; what was said of a device.
    std::optional<DeviceNews> read(std::string_view path, std::string_view interface,
                                   dbus::Reader& properties);
    void removed(std::string_view path, std::string_view interface);

    dbus::Bus& bus_;
    Scheduler& scheduler_;
    WatchListener& listener_;
    Daemon daemon_ = Daemon::unknown;
    ObjectTree objects_;
    GattTree gatt_;
    std::vector<Subscription> signals_;
    Subscription owner_;
    Subscription reading_;
    Timer retry_;
};

} // namespace wegslot::bluez
