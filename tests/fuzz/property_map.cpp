// A map of properties as BlueZ sends it, with any names and any types: the bytes say what is put
// in. Reading it must leave the message readable to its end.

#include "scanner/bluez/gatt_tree.h"
#include "scanner/bluez/object_tree.h"
#include "tests/fuzz/bus_input.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

using namespace wegslot;

namespace {

std::int16_t number(Input& input) {
    return static_cast<std::int16_t>(input.byte() << 8U | input.byte());
}

std::string text(Input& input) {
    std::string text;
    for (unsigned length = input.below(32); length > 0; --length)
        text += static_cast<char>(1 + input.below(127)); // what D-Bus would not carry stays out
    return text;
}

void appendValue(sd_bus_message* message, Input& input) {
    switch (input.byte() % 8) {
    case 0:
        sd_bus_message_append(message, "v", "n", number(input));
        return;
    case 1:
        sd_bus_message_append(message, "v", "b", input.byte() % 2);
        return;
    case 2:
        sd_bus_message_append(message, "v", "s", text(input).c_str());
        return;
    case 3:
        sd_bus_message_append(message, "v", "d", 1.0 * number(input));
        return;
    case 4:
        sd_bus_message_append(message, "v", "as", 2, text(input).c_str(), "central");
        return;
    case 5:
        sd_bus_message_append(message, "v", "(so)", text(input).c_str(), "/a/b");
        return;
    case 6:
        sd_bus_message_append(message, "v", "v", "v", "n", number(input));
        return;
    default:
        break;
    }
    sd_bus_message_open_container(message, 'v', "a{qv}");
    sd_bus_message_open_container(message, 'a', "{qv}");
    for (unsigned entries = input.byte() % 4; entries > 0; --entries) {
        const bool maker = input.byte() % 2 == 0;
        const auto company = static_cast<std::uint16_t>(maker ? 0x004C : number(input));
        if (input.byte() % 3 == 0) {
            sd_bus_message_append(message, "{qv}", company, "s", text(input).c_str());
        } else {
            sd_bus_message_append(message, "{qv}", company, "ay", 2, input.byte(), input.byte());
        }
    }
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static sd_bus* const bus = unconnectedBus();
    constexpr std::array names{"RSSI",      "ManufacturerData", "Name",  "Address", "AddressType",
                               "Powered",   "PowerState",       "Roles", "Paired",  "Bonded",
                               "Connected", "ServicesResolved", "UUIDs", "Class",   "UUID"};
    Input input(data, size);
    sd_bus_message* message = nullptr;
    expect(sd_bus_message_new_signal(bus, &message, "/a", "a.b", "C") >= 0);
    sd_bus_message_open_container(message, 'a', "{sv}");
    while (!input.empty()) {
        sd_bus_message_open_container(message, 'e', "sv");
        const std::size_t choice = input.byte() % (names.size() + 1);
        const std::string other = choice == names.size() ? text(input) : "";
        sd_bus_message_append(message, "s", choice == names.size() ? other.c_str() : names[choice]);
        appendValue(message, input);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
    sd_bus_message_append(message, "s", "the end");
    expect(sd_bus_message_seal(message, 1, 0) >= 0);

    AddressResolver nobody;
    bluez::ObjectTree tree(nobody);
    bluez::GattTree gatt;
    const std::string device = "/org/bluez/hci0/dev_1";
    const std::array<std::function<void(dbus::Reader&)>, 5> readings{
        [&](dbus::Reader& reader) { static_cast<void>(tree.readDevice(device, reader)); },
        [&](dbus::Reader& reader) { static_cast<void>(tree.readBearer(device, reader)); },
        [&](dbus::Reader& reader) { tree.readAdapter("/org/bluez/hci0", reader); },
        [&](dbus::Reader& reader) { gatt.readService(device + "/service1", reader); },
        [&](dbus::Reader& reader) { gatt.readCharacteristic(device + "/service1/char1", reader); },
    };
    for (const auto& read : readings) {
        expect(sd_bus_message_rewind(message, 1) >= 0);
        dbus::Reader reader(message);
        read(reader);
        expect(reader.text() == "the end");
    }
    if (const auto id = tree.device(device)->id)
        expect(*tree.find(*id, "/org/bluez/hci0") == device);
    expect(gatt.services(device).size() <= 1);
    for (const GattUuid service : gatt.services(device))
        expect(gatt.characteristics(device, service).size() <= 1);
    sd_bus_message_unref(message);
    return 0;
}
