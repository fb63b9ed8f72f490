#include "dbus/bus_address.h"

#include <cstdlib>
#include <string_view>

namespace wegslot::dbus {
namespace {

/// Empty for none, and for a program with more rights than who started it.
std::string variable(const char* name) {
    const char* const value = secure_getenv(name);
    return value == nullptr ? "" : value;
}

bool isPlain(char sign) {
    constexpr std::string_view others = "-_/.\\*";
    return (sign >= '0' && sign <= '9') || (sign >= 'A' && sign <= 'Z') ||
           (sign >= 'a' && sign <= 'z') || others.find(sign) != std::string_view::npos;
}

} // namespace

std::string systemBusAddress() {
    const std::string said = variable("DBUS_SYSTEM_BUS_ADDRESS");
    return said.empty() ? "unix:path=/run/dbus/system_bus_socket" : said;
}

std::optional<std::string> sessionBusAddress() {
    if (std::string said = variable("DBUS_SESSION_BUS_ADDRESS"); !said.empty()) return said;
    const std::string folder = variable("XDG_RUNTIME_DIR");
    if (folder.empty()) return std::nullopt;
    return "unix:path=" + escapedPath(folder) + "/bus";
}

std::string escapedPath(const std::string& path) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string escaped;
    for (const char sign : path) {
        if (isPlain(sign)) {
            escaped += sign;
            continue;
        }
        const auto byte = static_cast<unsigned char>(sign);
        escaped += {'%', digits[byte >> 4U], digits[byte & 0xFU]};
    }
    return escaped;
}

} // namespace wegslot::dbus
