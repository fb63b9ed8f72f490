#include "virtual_port.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

namespace controller {

namespace {

constexpr const char* path = "/dev/vhci";
constexpr std::size_t largestPacket = 4096;

/// A packet of the port itself: the rest describes the controller to be made, an ordinary one.
constexpr std::uint8_t createRequest[] = {0xFF, 0x00};

ssize_t writeWhole(int descriptor, ByteView bytes) {
    ssize_t written = 0;
    do {
        written = ::write(descriptor, bytes.data(), bytes.size());
    } while (written < 0 && errno == EINTR);
    return written;
}

} // namespace

std::optional<std::string> VirtualPort::plug() {
    Descriptor device(::open(path, O_RDWR | O_CLOEXEC | O_NONBLOCK));
    if (!device.isOpen()) return std::string("cannot open ") + path + ": " + std::strerror(errno);
    if (writeWhole(device.number(), createRequest) < 0) {
        return std::string("cannot make a controller on ") + path + ": " + std::strerror(errno);
    }
    device_ = std::move(device);
    return std::nullopt;
}

Bytes VirtualPort::read() {
    Bytes packet(largestPacket);
    const ssize_t length = ::read(device_.number(), packet.data(), packet.size());
    packet.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return packet;
}

void VirtualPort::write(ByteView packet) {
    if (!isPlugged() || writeWhole(device_.number(), packet) >= 0) return;
    // ENXIO: the adapter is off just now, as between closing and opening it after a hardware error.
    if (errno != ENXIO) unplug();
}

} // namespace controller
