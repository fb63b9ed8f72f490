// A packet from a raw HCI socket, of any bytes and length: what is read of it lies within it.

#include "scanner/bluez/hci_wire.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <span>
#include <string_view>

using namespace wegslot::bluez;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> packet(data, size);
    const auto read = hci::rssiRead(packet);
    const auto ended = hci::disconnection(packet);
    expect(!read || !ended);
    if (read) {
        expect(size >= 10 && read->handle <= 0x0FFF);
        expect(!read->rssi || (*read->rssi >= -128 && *read->rssi < 127));
    }
    if (ended) expect(size >= 7 && ended->handle <= 0x0FFF && ended->reason == data[6]);

    const std::string_view text(reinterpret_cast<const char*>(data), size);
    expect(!hci::addressOf(text) || size == 17);
    expect(!hci::adapterNumber(text) || text.starts_with("/org/bluez/hci"));
    return 0;
}
