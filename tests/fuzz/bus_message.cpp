// A message as anybody may send it: values of any types, nested as the bytes say. Whatever one asks
// of it, the readers of the seam and of BlueZ's objects take what fits and leave the rest, and all
// of it can be read again from the start.

#include "dbus/message.h"
#include "scanner/bluez/gatt_tree.h"
#include "scanner/bluez/object_tree.h"
#include "tests/fuzz/bus_input.h"

#include <array>
#include <cstdint>
#include <string>

using namespace wegslot;

namespace {

/// Words that the readers know, and others.
std::string word(Input& bytes) {
    constexpr std::array known{"org.bluez.Device1",
                               "org.bluez.Adapter1",
                               "org.bluez.Bearer.LE1",
                               "org.bluez.GattService1",
                               "org.bluez.GattCharacteristic1",
                               "RSSI",
                               "ManufacturerData",
                               "Name",
                               "Address",
                               "AddressType",
                               "UUIDs",
                               "UUID",
                               "Connected",
                               "Powered",
                               "Roles"};
    const unsigned choice = bytes.below(known.size() + 1);
    if (choice < known.size()) return known[choice];
    std::string text;
    for (unsigned length = bytes.below(40); length > 0; --length)
        text += static_cast<char>(1 + bytes.below(127)); // what D-Bus would not carry stays out
    return text;
}

std::string path(Input& bytes) {
    constexpr std::array known{"/", "/org/bluez/hci0", "/org/bluez/hci0/dev_1",
                               "/org/bluez/hci0/dev_1/service1/char1"};
    return known[bytes.below(known.size())];
}

/// The signature of one complete type.
std::string type(Input& bytes, unsigned depth) {
    constexpr std::string_view basic = "ybnqiuxtdsog";
    const unsigned kind = depth == 0 ? 0 : bytes.below(8);
    const auto basicType = [&] { return std::string(1, basic[bytes.below(basic.size())]); };
    if (kind == 1) return "v";
    if (kind == 2 || kind == 3) return "a" + type(bytes, depth - 1);
    if (kind == 4) return "(" + type(bytes, depth - 1) + type(bytes, depth - 1) + ")";
    if (kind == 5) return "a{" + basicType() + type(bytes, depth - 1) + "}";
    if (kind == 6) return "a{sv}";
    if (kind == 7) return "a{oa{sa{sv}}}";
    return basicType();
}

void append(sd_bus_message* message, const std::string& signature, Input& bytes, unsigned depth);

/// As many complete types as `signature` has.
void appendAll(sd_bus_message* message, std::string_view signature, Input& bytes, unsigned depth) {
    const auto lengthOf = [](std::string_view from) {
        std::size_t at = 0;
        while (from[at] == 'a')
            ++at;
        if (from[at] != '(' && from[at] != '{') return at + 1;
        unsigned open = 0;
        do {
            if (from[at] == '(' || from[at] == '{') ++open;
            if (from[at] == ')' || from[at] == '}') --open;
            ++at;
        } while (open > 0);
        return at;
    };
    while (!signature.empty()) {
        const std::size_t length = lengthOf(signature);
        append(message, std::string(signature.substr(0, length)), bytes, depth);
        signature.remove_prefix(length);
    }
}

void appendContainer(sd_bus_message* message, char kind, const std::string& contents, Input& bytes,
                     unsigned depth) {
    expect(sd_bus_message_open_container(message, kind, contents.c_str()) >= 0);
    appendAll(message, contents, bytes, depth);
    expect(sd_bus_message_close_container(message) >= 0);
}

std::uint64_t wide(Input& bytes) {
    std::uint64_t number = 0;
    for (unsigned count = bytes.below(9); count > 0; --count)
        number = number << 8U | bytes.byte();
    return number;
}

void appendBasic(sd_bus_message* message, char type, Input& bytes) {
    if (type == 's' || type == 'o' || type == 'g') {
        const std::string text = type == 's' ? word(bytes) : type == 'o' ? path(bytes) : "a{sv}";
        expect(sd_bus_message_append_basic(message, type, text.c_str()) >= 0);
        return;
    }
    // Wide enough for each, and zero above its lowest byte for a truth.
    const std::uint64_t number = type == 'b' ? bytes.below(2) : wide(bytes);
    expect(sd_bus_message_append_basic(message, type, &number) >= 0);
}

void append(sd_bus_message* message, const std::string& signature, Input& bytes, unsigned depth) {
    const std::string contents = signature.substr(1, signature.size() - 2);
    switch (signature.front()) {
    case 'v':
        return appendContainer(message, 'v', type(bytes, depth > 0 ? depth - 1 : 0), bytes,
                               depth > 0 ? depth - 1 : 0);
    case '(':
        return appendContainer(message, 'r', contents, bytes, depth);
    case '{':
        return appendContainer(message, 'e', contents, bytes, depth);
    case 'a': {
        const std::string element = signature.substr(1);
        expect(sd_bus_message_open_container(message, 'a', element.c_str()) >= 0);
        for (unsigned count = bytes.below(4); count > 0; --count)
            append(message, element, bytes, depth);
        expect(sd_bus_message_close_container(message) >= 0);
        return;
    }
    default:
        return appendBasic(message, signature.front(), bytes);
    }
}

void readInterface(std::string_view path, std::string_view name, dbus::Reader& properties,
                   bluez::ObjectTree& tree, bluez::GattTree& gatt) {
    if (name == bluez::deviceInterface) static_cast<void>(tree.readDevice(path, properties));
    if (name == bluez::bearerInterface) static_cast<void>(tree.readBearer(path, properties));
    if (name == "org.bluez.Adapter1") tree.readAdapter(path, properties);
    if (name == "org.bluez.GattService1") gatt.readService(path, properties);
    if (name == "org.bluez.GattCharacteristic1") gatt.readCharacteristic(path, properties);
}

/// One question of those that the program asks of messages.
void ask(unsigned question, dbus::Reader& reader, bluez::ObjectTree& tree, bluez::GattTree& gatt) {
    const auto nothing = [](auto&&...) {};
    switch (question) {
    case 0:
        return nothing(reader.text());
    case 1:
        return nothing(reader.boolean());
    case 2:
        return nothing(reader.integer());
    case 3:
        return nothing(reader.real());
    case 4:
        return nothing(reader.bytes());
    case 5:
        return nothing(reader.texts());
    case 6:
        return nothing(reader.integers());
    case 7:
        return nothing(reader.secondOfPair());
    case 8:
        return nothing(reader.descriptor());
    case 9:
        return nothing(reader.properties([&](std::string_view, dbus::Reader& value) {
            value.variant([](dbus::Reader& inner) { static_cast<void>(inner.text()); });
        }));
    case 10:
        return nothing(reader.numbered(
            [](std::uint16_t, dbus::Reader& value) { static_cast<void>(value.bytes()); }));
    case 11:
        return nothing(reader.structures("isvu", [](dbus::Reader& fields) {
            static_cast<void>(fields.integer());
            static_cast<void>(fields.text());
        }));
    case 12:
        return nothing(
            reader.variant([](dbus::Reader& value) { static_cast<void>(value.secondOfPair()); }));
    case 13:
        return nothing(reader.interfaces([&](std::string_view name, dbus::Reader& properties) {
            readInterface("/org/bluez/hci0/dev_1", name, properties, tree, gatt);
        }));
    case 14:
        return nothing(reader.structure("sas", [](dbus::Reader& fields) {
            static_cast<void>(fields.text());
            static_cast<void>(fields.texts());
        }));
    default:
        return nothing(reader.objects([&](std::string_view path, dbus::Reader& interfaces) {
            interfaces.interfaces([&](std::string_view name, dbus::Reader& properties) {
                readInterface(path, name, properties, tree, gatt);
            });
        }));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr unsigned deepest = 4;
    constexpr unsigned questions = 16;
    static sd_bus* const bus = unconnectedBus();
    Input bytes(data, size);
    sd_bus_message* message = nullptr;
    expect(sd_bus_message_new_signal(bus, &message, "/a", "a.b", "C") >= 0);
    std::array<unsigned, 4> asked{};
    for (unsigned& question : asked)
        question = bytes.below(questions);
    for (unsigned values = 0; values < 6 && !bytes.empty(); ++values)
        append(message, type(bytes, deepest), bytes, deepest);
    if (sd_bus_message_seal(message, 1, 0) < 0) { // more than a message can hold
        sd_bus_message_unref(message);
        return 0;
    }

    AddressResolver nobody;
    bluez::ObjectTree tree(nobody);
    bluez::GattTree gatt;
    dbus::Reader reader(message);
    for (const unsigned question : asked)
        ask(question, reader, tree, gatt);
    for (unsigned question = 0; question < questions; ++question) {
        expect(sd_bus_message_rewind(message, 1) >= 0);
        ask(question, reader, tree, gatt);
        // It may have stopped anywhere, but never inside a container.
        expect(sd_bus_message_exit_container(message) < 0);
    }
    for (const auto& [path, device] : tree.devices())
        expect(!device.id || tree.find(*device.id, "/org/bluez/hci0") != nullptr ||
               !bluez::isUnder(path, "/org/bluez/hci0"));
    sd_bus_message_unref(message);
    return 0;
}
