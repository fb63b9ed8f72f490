#include "scanner/bluez/object_tree.h"

#include "scanner/bluez/device_id.h"

#include <algorithm>

namespace wegslot::bluez {
namespace {

constexpr std::uint16_t maker = 0x004C;

// The maker's data if there is any, else the first company's: one device may send several.
std::optional<std::vector<std::uint8_t>> manufacturerData(dbus::Reader& value) {
    std::optional<std::vector<std::uint8_t>> found;
    value.numbered([&found](std::uint16_t company, dbus::Reader& content) {
        const auto bytes = content.bytes();
        if (!bytes || (found && company != maker)) return;
        found.emplace(
            {static_cast<std::uint8_t>(company & 0xFFU), static_cast<std::uint8_t>(company >> 8U)});
        found->insert(found->end(), bytes->begin(), bytes->end());
    });
    return found;
}

void assign(std::string& target, const std::optional<std::string_view>& value) {
    if (value) target = *value;
}

} // namespace

const Device* ObjectTree::device(std::string_view path) const {
    const auto found = devices_.find(std::string(path));
    return found == devices_.end() ? nullptr : &found->second;
}

void ObjectTree::readAdapter(std::string_view path, dbus::Reader& properties) {
    Adapter& adapter = adapters_[std::string(path)];
    properties.properties([&adapter](std::string_view name, dbus::Reader& value) {
        if (name == "Powered") {
            if (const auto powered = value.boolean()) adapter.powered = *powered;
        } else if (name == "PowerState") {
            if (const auto state = value.text()) adapter.powerState = std::string(*state);
        } else if (name == "Roles") {
            const auto roles = value.texts();
            adapter.isCentral = std::ranges::find(roles, "central") != roles.end();
        }
    });
}

DeviceNews ObjectTree::readDevice(std::string_view path, dbus::Reader& properties) {
    Device& device = devices_[std::string(path)];
    DeviceNews news;
    bool moved = false;
    properties.properties([&](std::string_view name, dbus::Reader& value) {
        if (name == "RSSI") {
            if (const auto rssi = value.integer()) news.rssi = static_cast<int>(*rssi);
        } else if (name == "ManufacturerData") {
            news.manufacturerData = manufacturerData(value);
        } else if (name == "Name") {
            if (const auto text = value.text()) device.name = std::string(*text);
        } else if (name == "Address") {
            assign(device.address, value.text());
            moved = true;
        } else if (name == "AddressType") {
            assign(device.addressType, value.text());
            moved = true;
        }
    });
    if (!moved || device.address.empty()) return news;
    const Uuid id = deviceId(device.address, device.addressType);
    if (device.id && device.id != id) news.formerId = device.id;
    device.id = id;
    device.changing = isChangingAddress(device.address, device.addressType);
    return news;
}

void ObjectTree::removeAdapter(std::string_view path) { adapters_.erase(std::string(path)); }

void ObjectTree::removeDevice(std::string_view path) { devices_.erase(std::string(path)); }

void ObjectTree::clear() {
    adapters_.clear();
    devices_.clear();
}

} // namespace wegslot::bluez
