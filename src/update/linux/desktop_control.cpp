#include "update/linux/desktop_control.h"

#include "base/text.h"

namespace wegslot {
namespace {

/// As a file: address (RFC 8089): what is not plain is written as its bytes.
std::string addressOf(std::string_view path) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/-._~";
    std::string address = "file://";
    for (const char sign : path) {
        const auto byte = static_cast<unsigned char>(sign);
        if (plain.find(sign) != std::string_view::npos)
            address += sign;
        else
            address += '%' + hexadecimal(byte, 2);
    }
    return address;
}

} // namespace

void DesktopControl::reveal(const std::string& path) {
    dbus::Bus* const bus = session_.bus().get();
    if (bus == nullptr) return;
    bus->send({.destination = "org.freedesktop.FileManager1",
               .path = "/org/freedesktop/FileManager1",
               .interface = "org.freedesktop.FileManager1",
               .member = "ShowItems",
               .arguments = {std::vector<std::string>{addressOf(path)}, std::string()},
               .autoStart = true}); // a file manager rarely runs before it is needed
}

} // namespace wegslot
