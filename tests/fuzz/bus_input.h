// What the targets that put messages together share: a bus that nobody is at, and the input taken
// apart.
#pragma once

#include "tests/fuzz/expect.h"

#include <systemd/sd-bus.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include <sys/socket.h>

namespace wegslot {

inline sd_bus* unconnectedBus() {
    std::array<int, 2> ends{};
    sd_bus* bus = nullptr;
    expect(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()) == 0);
    expect(sd_bus_new(&bus) >= 0);
    expect(sd_bus_set_fd(bus, ends[0], ends[0]) >= 0);
    expect(sd_bus_start(bus) >= 0);
    return bus;
}

/// One byte after the other; zeros follow their end.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

    [[nodiscard]] bool empty() const { return left_ == 0; }

    std::uint8_t byte() {
        if (left_ == 0) return 0;
        --left_;
        return *data_++;
    }

    unsigned below(unsigned bound) { return byte() % bound; }

private:
    const std::uint8_t* data_;
    std::size_t left_;
};

} // namespace wegslot
