// A mirror of BlueZ's objects: its adapters and devices, as its properties tell. Fed with
// messages of any quality; what is missing or wrongly typed counts as not said.
#pragma once

#include "base/uuid.h"
#include "dbus/message.h"
#include "scanner/address_resolver.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace wegslot::bluez {

/// A device, and the low-energy one of its two bearers.
inline constexpr const char* deviceInterface = "org.bluez.Device1";
inline constexpr const char* bearerInterface = "org.bluez.Bearer.LE1";

/// What is followed of an org.bluez.Adapter1, and of the managers beside it.
struct Adapter {
    std::string address = {};
    bool powered = false;
    /// Absent before BlueZ 5.73, where it is experimental.
    std::optional<std::string> powerState = {};
    /// Whether it can scan for and connect to low-energy devices. BlueZ before 5.52 does not say.
    bool isCentral = true;
    /// Whether others can connect to it; likewise.
    bool isPeripheral = true;
    /// Whether it has an org.bluez.AdvertisementMonitorManager1.
    bool hasMonitors = false;
    /// How many advertisements it has room for beside those that are on the air; nothing where it
    /// has no org.bluez.LEAdvertisingManager1.
    std::optional<int> advertisingRoom = {};
    bool discoverable = false; ///< seen by all as a classic device
    bool pairable = false;     ///< others may bond with it
    bool discovering = false;  ///< for whatever program
    friend bool operator==(const Adapter&, const Adapter&) = default;
};

/// What is followed of an org.bluez.Device1.
struct Device {
    std::string address;
    std::string addressType = "public";
    std::optional<std::string> name;
    std::optional<Uuid> id;     ///< from address and type, once the address is known
    bool changing = false;      ///< the address is a private one that BlueZ does not resolve
    bool resolved = false;      ///< but we do: the id is that of an identity that we know
    bool paired = false;        ///< over either bearer
    std::optional<bool> bonded; ///< paired for good; BlueZ before 5.65 does not say
    bool connected = false;     ///< over either bearer
    bool servicesResolved = false;
    bool hasClass = false;          ///< BlueZ knows a class of device, which only BR/EDR has
    bool hasClassicProfile = false; ///< among its services
    /// The link of org.bluez.Bearer.LE1; absent where BlueZ does not tell bearers apart.
    std::optional<bool> lowEnergyConnected;

    [[nodiscard]] bool isBonded() const { return bonded.value_or(paired); }

    /// Whether a connection to it can only be a low-energy one. A random address has no other.
    [[nodiscard]] bool isLowEnergyOnly() const {
        return addressType == "random" || (!hasClass && !hasClassicProfile);
    }
};

/// What one message said of a device, besides what the mirror keeps.
struct DeviceNews {
    bool standing = false; ///< how the device stands to this computer: bonded, connected, known
    std::optional<int> rssi;
    /// With the company's two bytes put back in front.
    std::optional<std::vector<std::uint8_t>> manufacturerData;
    /// The identifier before, when the message changed it.
    std::optional<Uuid> formerId;
};

class ObjectTree {
public:
    /// Finds a path without a copy of it.
    struct PathHash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    using Devices = std::unordered_map<std::string, Device, PathHash, std::equal_to<>>;

    /// Asks `resolver` for the private addresses that BlueZ does not resolve; it must outlive the
    /// tree.
    explicit ObjectTree(AddressResolver& resolver) : resolver_(resolver) {}

    [[nodiscard]] const std::map<std::string, Adapter, std::less<>>& adapters() const {
        return adapters_;
    }
    [[nodiscard]] const Device* device(std::string_view path) const;
    [[nodiscard]] const Devices& devices() const { return devices_; }

    /// The path of the device with `id` on `adapter`; null when there is none. Of several, for a
    /// device may have two addresses at a time, one that BlueZ knows by its fixed address.
    [[nodiscard]] const std::string* find(const Uuid& id, std::string_view adapter) const;

    /// Reads an interface's properties (a{sv}) into the adapter at `path`.
    void readAdapter(std::string_view path, dbus::Reader& properties);

    /// Likewise into the device at `path`.
    DeviceNews readDevice(std::string_view path, dbus::Reader& properties);

    /// Likewise of the low-energy bearer of the device at `path`.
    DeviceNews readBearer(std::string_view path, dbus::Reader& properties);

    /// A device that has another id than before.
    struct Moved {
        std::string path;
        Uuid formerId;
    };

    /// Asks the resolver for all private addresses anew; those devices that it knows by now.
    [[nodiscard]] std::vector<Moved> resolveAnew();

    void setMonitors(std::string_view adapterPath, bool offered);

    /// Reads what the adapter at `path` says of advertising.
    void readAdvertising(std::string_view path, dbus::Reader& properties);
    void removeAdvertising(std::string_view path);

    void removeAdapter(std::string_view path);
    void removeDevice(std::string_view path);
    void removeBearer(std::string_view path);
    void clear();

private:
    [[nodiscard]] Device& made(std::string_view path);
    std::optional<Uuid> identify(const std::string& path, Device& device);
    void setId(const std::string& path, Device& device, const Uuid& id);
    void forgetId(const std::string& path, const Device& device);

    AddressResolver& resolver_;
    std::map<std::string, Adapter, std::less<>> adapters_;
    Devices devices_;
    std::unordered_multimap<Uuid, std::string> paths_; ///< of the devices, by id
};

/// Whether the object at `path` belongs to `adapter`.
[[nodiscard]] bool isUnder(std::string_view path, std::string_view adapter);

} // namespace wegslot::bluez
