#include "scanner/bluez/object_tree.h"

#include "base/text.h"
#include "scanner/bluez/assigned_numbers.h"
#include "scanner/bluez/device_id.h"

#include <algorithm>

namespace wegslot::bluez {
namespace {

constexpr std::uint16_t maker = 0x004C;

// What the air can carry (Bluetooth Core Specification 5.4): a name of 248 bytes (volume 4, part E,
// 6.23), an advertisement of 1650 (volume 6, part B, 2.3.4.9). More is somebody's mischief.
constexpr std::size_t longestName = 248;
constexpr std::size_t longestData = 1650;

std::string shortened(std::string_view name) {
    std::size_t length = std::min(name.size(), longestName);
    while (!isUtf8(name.substr(0, length)))
        --length; // at most three bytes of a character that was cut; the empty text ends it
    return std::string(name.substr(0, length));
}

// The maker's data if there is any, else the first company's: one device may send several.
std::optional<std::vector<std::uint8_t>> readManufacturerData(dbus::Reader& value) {
    std::optional<std::vector<std::uint8_t>> found;
    value.numbered([&found](std::uint16_t company, dbus::Reader& content) {
        const auto bytes = content.bytes();
        if (!bytes || bytes->size() > longestData || (found && company != maker)) return;
        found.emplace(
            {static_cast<std::uint8_t>(company & 0xFFU), static_cast<std::uint8_t>(company >> 8U)});
        found->insert(found->end(), bytes->begin(), bytes->end());
    });
    return found;
}

template <typename Target, typename Value>
void assign(Target& target, const std::optional<Value>& value) {
    if (value) target = *value;
}

bool anyClassic(const std::vector<std::string>& uuids) {
    return std::ranges::any_of(uuids, [](const std::string& uuid) {
        const auto number = assignedNumber(uuid);
        return number && isClassic(*number);
    });
}

// How the device stands to this computer; false for a property that is not about that.
bool readStanding(std::string_view name, dbus::Reader& value, Device& device) {
    if (name == "Paired") {
        assign(device.paired, value.boolean());
    } else if (name == "Bonded") {
        assign(device.bonded, value.boolean());
    } else if (name == "Connected") {
        assign(device.connected, value.boolean());
    } else if (name == "ServicesResolved") {
        assign(device.servicesResolved, value.boolean());
    } else if (name == "Class") {
        device.hasClass = value.integer().value_or(0) != 0;
    } else if (name == "UUIDs") {
        device.hasClassicProfile = anyClassic(value.texts());
    } else {
        return false;
    }
    return true;
}

} // namespace

const Device* ObjectTree::device(std::string_view path) const {
    const auto found = devices_.find(path);
    return found == devices_.end() ? nullptr : &found->second;
}

Device& ObjectTree::made(std::string_view path) {
    const auto found = devices_.find(path);
    return found == devices_.end() ? devices_[std::string(path)] : found->second;
}

void ObjectTree::readAdapter(std::string_view path, dbus::Reader& properties) {
    Adapter& adapter = adapters_[std::string(path)];
    properties.properties([&adapter](std::string_view name, dbus::Reader& value) {
        if (name == "Address") {
            assign(adapter.address, value.text());
        } else if (name == "Powered") {
            assign(adapter.powered, value.boolean());
        } else if (name == "Discoverable") {
            assign(adapter.discoverable, value.boolean());
        } else if (name == "Pairable") {
            assign(adapter.pairable, value.boolean());
        } else if (name == "Discovering") {
            assign(adapter.discovering, value.boolean());
        } else if (name == "PowerState") {
            if (const auto state = value.text()) adapter.powerState = std::string(*state);
        } else if (name == "Roles") {
            const auto roles = value.texts();
            adapter.isCentral = std::ranges::find(roles, "central") != roles.end();
            adapter.isPeripheral = std::ranges::find(roles, "peripheral") != roles.end();
        }
    });
}

DeviceNews ObjectTree::readDevice(std::string_view path, dbus::Reader& properties) {
    Device& device = made(path);
    DeviceNews news;
    bool moved = false;
    properties.properties([&](std::string_view name, dbus::Reader& value) {
        if (name == "RSSI") {
            if (const auto rssi = value.integer()) news.rssi = static_cast<int>(*rssi);
        } else if (name == "ManufacturerData") {
            news.manufacturerData = readManufacturerData(value);
        } else if (name == "Name") {
            if (const auto text = value.text()) device.name = shortened(*text);
        } else if (name == "Address") {
            assign(device.address, value.text());
            moved = true;
        } else if (name == "AddressType") {
            assign(device.addressType, value.text());
            moved = true;
        } else if (readStanding(name, value, device)) {
            news.standing = true;
        }
    });
    if (moved && !device.address.empty()) news.formerId = identify(std::string(path), device);
    return news;
}

/// Gives `device` the id of its address; the one before, if that was another.
std::optional<Uuid> ObjectTree::identify(const std::string& path, Device& device) {
    const std::optional<Uuid> before = device.id;
    const bool wasResolved = device.resolved;
    device.changing = isChangingAddress(device.address, device.addressType);
    const auto known = device.changing ? resolver_.whose(device.address) : std::nullopt;
    const Uuid id = known.value_or(deviceId(device.address, device.addressType));
    device.resolved = known.has_value();
    setId(path, device, id);
    if (!before || before == id) return std::nullopt;
    // Bonded with by now: BlueZ tells who it is.
    if (wasResolved && !device.changing) resolver_.learned(*before, id);
    return before;
}

std::vector<ObjectTree::Moved> ObjectTree::resolveAnew() {
    std::vector<Moved> moved;
    for (auto& [path, device] : devices_) {
        if (!device.changing || device.address.empty()) continue;
        const auto before = identify(path, device);
        // A device whose identity was forgotten is a stranger: none that was known by another id.
        if (before && device.resolved) moved.push_back({path, *before});
    }
    return moved;
}

DeviceNews ObjectTree::readBearer(std::string_view path, dbus::Reader& properties) {
    Device& device = made(path);
    if (!device.lowEnergyConnected) device.lowEnergyConnected = false;
    DeviceNews news;
    properties.properties([&](std::string_view name, dbus::Reader& value) {
        if (name != "Connected") return;
        news.standing = true;
        assign(device.lowEnergyConnected, value.boolean());
    });
    return news;
}

const std::string* ObjectTree::find(const Uuid& id, std::string_view adapter) const {
    const auto [first, last] = paths_.equal_range(id);
    const std::string* found = nullptr;
    for (auto entry = first; entry != last; ++entry) {
        if (!isUnder(entry->second, adapter)) continue;
        if (found == nullptr || !devices_.find(entry->second)->second.changing)
            found = &entry->second;
    }
    return found;
}

void ObjectTree::setId(const std::string& path, Device& device, const Uuid& id) {
    if (device.id == id) return;
    forgetId(path, device);
    device.id = id;
    paths_.emplace(id, path);
}

void ObjectTree::forgetId(const std::string& path, const Device& device) {
    if (!device.id) return;
    const auto [first, last] = paths_.equal_range(*device.id);
    const auto found =
        std::find_if(first, last, [&](const auto& entry) { return entry.second == path; });
    if (found != last) paths_.erase(found);
}

void ObjectTree::setMonitors(std::string_view adapterPath, bool offered) {
    if (offered || adapters_.contains(adapterPath))
        adapters_[std::string(adapterPath)].hasMonitors = offered;
}

void ObjectTree::readAdvertising(std::string_view path, dbus::Reader& properties) {
    std::optional<int>& room = adapters_[std::string(path)].advertisingRoom;
    if (!room) room = 0;
    properties.properties([&room](std::string_view name, dbus::Reader& value) {
        const auto number = name == "SupportedInstances" ? value.integer() : std::nullopt;
        if (number) room = static_cast<int>(*number);
    });
}

void ObjectTree::removeAdvertising(std::string_view path) {
    const auto found = adapters_.find(path);
    if (found != adapters_.end()) found->second.advertisingRoom.reset();
}

void ObjectTree::removeAdapter(std::string_view path) { adapters_.erase(std::string(path)); }

void ObjectTree::removeDevice(std::string_view path) {
    const auto found = devices_.find(path);
    if (found == devices_.end()) return;
    forgetId(found->first, found->second);
    devices_.erase(found);
}

void ObjectTree::removeBearer(std::string_view path) {
    const auto found = devices_.find(path);
    if (found != devices_.end()) found->second.lowEnergyConnected.reset();
}

void ObjectTree::clear() {
    adapters_.clear();
    devices_.clear();
    paths_.clear();
}

bool isUnder(std::string_view path, std::string_view adapter) {
    return path.size() > adapter.size() && path.starts_with(adapter) && path[adapter.size()] == '/';
}

} // namespace wegslot::bluez
