#include "scanner/bluez/gatt_tree.h"

#include "scanner/bluez/assigned_numbers.h"
#include "scanner/bluez/object_tree.h"

namespace wegslot::bluez {
namespace {

/// The entries below `path`, which stand together because paths sort by their beginnings.
template <typename Numbers, typename Visit>
void below(const Numbers& numbers, std::string_view path, const Visit& visit) {
    const std::string first = std::string(path) + '/';
    for (auto entry = numbers.lower_bound(first);
         entry != numbers.end() && entry->first.starts_with(first); ++entry)
        visit(entry->first, entry->second);
}

} // namespace

void GattTree::readService(std::string_view path, dbus::Reader& properties) {
    read(services_, path, properties);
}

void GattTree::readCharacteristic(std::string_view path, dbus::Reader& properties) {
    read(characteristics_, path, properties);
}

void GattTree::read(Numbers& numbers, std::string_view path, dbus::Reader& properties) {
    properties.properties([&](std::string_view name, dbus::Reader& value) {
        if (name != "UUID") return;
        const auto number = assignedNumber(value.text().value_or(""));
        if (number) numbers.insert_or_assign(std::string(path), *number);
    });
}

void GattTree::remove(std::string_view path) {
    for (Numbers* const numbers : {&services_, &characteristics_})
        if (const auto found = numbers->find(path); found != numbers->end()) numbers->erase(found);
}

void GattTree::clear() {
    services_.clear();
    characteristics_.clear();
}

std::vector<GattUuid> GattTree::services(std::string_view device) const {
    std::vector<GattUuid> found;
    below(services_, device, [&](std::string_view, GattUuid number) { found.push_back(number); });
    return found;
}

std::vector<GattUuid> GattTree::characteristics(std::string_view device, GattUuid service) const {
    std::vector<GattUuid> found;
    below(services_, device, [&](std::string_view path, GattUuid number) {
        if (number != service) return;
        below(characteristics_, path,
              [&](std::string_view, GattUuid characteristic) { found.push_back(characteristic); });
    });
    return found;
}

std::string GattTree::characteristic(std::string_view device, GattUuid number) const {
    std::string found;
    below(characteristics_, device, [&](std::string_view path, GattUuid characteristic) {
        if (found.empty() && characteristic == number) found = path;
    });
    return found;
}

} // namespace wegslot::bluez
