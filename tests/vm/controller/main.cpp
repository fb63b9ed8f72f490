// virtual-controller: a Bluetooth Low Energy controller on /dev/vhci with devices around it, for
// tests. Instructions (instruction.h) come by standard input, or through a socket with --control.
#include <csignal>
#include <cstdio>
#include <string>

#include "event_loop.h"

namespace {

using namespace controller;

constexpr const char* usage =
    "usage: virtual-controller [--control SOCKET] [--address AA:BB:CC:DD:EE:FF]";
constexpr const char* defaultAddress = "00:00:5E:00:53:01";

struct Arguments {
    std::string control;
    std::string address = defaultAddress;
};

int fail(const std::string& why) {
    std::fprintf(stderr, "virtual-controller: %s\n", why.c_str());
    return 1;
}

std::optional<Arguments> readArguments(int count, char** values) {
    Arguments arguments;
    for (int at = 1; at + 1 < count; at += 2) {
        const std::string option = values[at];
        if (option != "--control" && option != "--address") return std::nullopt;
        (option == "--control" ? arguments.control : arguments.address) = values[at + 1];
    }
    return count % 2 == 1 ? std::optional(arguments) : std::nullopt;
}

} // namespace

int main(int count, char** values) {
    // A script that has gone is seen when its answer is written.
    std::signal(SIGPIPE, SIG_IGN);

    const std::optional<Arguments> arguments = readArguments(count, values);
    if (!arguments) return fail(usage);
    const std::optional<Address> address = parseAddress(arguments->address, AddressType::Public);
    if (!address) return fail("no address: " + arguments->address);

    VirtualPort port;
    Controller virtualController(*address, [&port](ByteView packet) { port.write(packet); });
    Air air;
    Director director(air, virtualController, port);
    EventLoop loop(port, virtualController, air, director);

    if (arguments->control.empty()) {
        loop.serve(LineChannel(Descriptor(STDIN_FILENO), Descriptor(STDOUT_FILENO)));
    } else {
        ControlSocket socket;
        if (const auto failure = socket.listen(arguments->control)) return fail(*failure);
        loop.listenTo(std::move(socket));
    }
    if (const auto failure = port.plug()) return fail(*failure);
    loop.run();
    return 0;
}
