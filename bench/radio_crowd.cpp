// The look-alike bluetoothd as a program: `radio_crowd DEVICES`. Reads commands from its input, one
// a line (rate N, gate 0|1, renewal N, sent), and answers each with one line: the reports sent so
// far.

#include "crowd_radio.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>

#include <poll.h>
#include <unistd.h>

namespace {

using wegslot::bench::CrowdRadio;

void obey(CrowdRadio& radio, const std::string& line) {
    std::istringstream words(line);
    std::string command;
    unsigned number = 0;
    words >> command;
    if (command != "sent" && !(words >> number)) throw std::runtime_error("not a command: " + line);
    if (command == "rate") {
        radio.setRate(number);
    } else if (command == "gate") {
        radio.setGate(number != 0);
    } else if (command == "renewal") {
        radio.setRenewal(number);
    } else if (command != "sent") {
        throw std::runtime_error("not a command: " + line);
    }
    std::printf("%llu\n", static_cast<unsigned long long>(radio.sent()));
    std::fflush(stdout);
}

/// Whole lines of what is there now; false at the end of the input.
bool readCommands(CrowdRadio& radio, std::string& rest) {
    std::array<char, 256> buffer{};
    const auto count = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count <= 0) return false;
    rest.append(buffer.data(), static_cast<std::size_t>(count));
    for (auto end = rest.find('\n'); end != std::string::npos; end = rest.find('\n')) {
        obey(radio, rest.substr(0, end));
        rest.erase(0, end + 1);
    }
    return true;
}

int run(std::size_t devices) {
    CrowdRadio radio(devices);
    std::puts("0"); // it is there
    std::fflush(stdout);
    std::string rest;
    for (;;) {
        radio.turn();
        std::array<pollfd, 2> watched{pollfd{STDIN_FILENO, POLLIN, 0},
                                      pollfd{radio.fd(), radio.events(), 0}};
        const auto next = radio.untilNext();
        const auto wait = next.value_or(std::chrono::seconds{1});
        const timespec most{.tv_sec = wait / std::chrono::seconds{1},
                            .tv_nsec = (wait % std::chrono::seconds{1}).count()};
        ppoll(watched.data(), watched.size(), &most, nullptr);
        if (watched[0].revents != 0 && !readCommands(radio, rest)) return EXIT_SUCCESS;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc > 1 ? std::stoul(argv[1]) : 30);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "radio_crowd: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
