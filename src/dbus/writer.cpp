#include "dbus/writer.h"

#include <systemd/sd-bus.h>

namespace wegslot::dbus {

void Writer::text(const std::string& value) { basic('s', value.c_str()); }

void Writer::path(const std::string& value) { basic('o', value.c_str()); }

void Writer::boolean(bool value) {
    const int number = value ? 1 : 0;
    basic('b', &number);
}

void Writer::byte(std::uint8_t value) { basic('y', &value); }

void Writer::int16(std::int16_t value) { basic('n', &value); }

void Writer::uint16(std::uint16_t value) { basic('q', &value); }

void Writer::int32(std::int32_t value) { basic('i', &value); }

void Writer::uint32(std::uint32_t value) { basic('u', &value); }

void Writer::int64(std::int64_t value) { basic('x', &value); }

void Writer::real(double value) { basic('d', &value); }

void Writer::descriptor(int value) { basic('h', &value); }

void Writer::bytes(std::span<const std::uint8_t> value) {
    check(sd_bus_message_append_array(message_, 'y', value.data(), value.size()));
}

void Writer::array(const char* contents, const Fill& fill) { container('a', contents, fill); }

void Writer::structure(const char* contents, const Fill& fill) { container('r', contents, fill); }

void Writer::entry(const char* contents, const Fill& fill) { container('e', contents, fill); }

void Writer::variant(const char* contents, const Fill& fill) { container('v', contents, fill); }

void Writer::basic(char type, const void* value) {
    check(sd_bus_message_append_basic(message_, type, value));
}

void Writer::container(char type, const char* contents, const Fill& fill) {
    check(sd_bus_message_open_container(message_, type, contents));
    if (!whole_) return;
    fill(*this);
    check(sd_bus_message_close_container(message_));
}

} // namespace wegslot::dbus
