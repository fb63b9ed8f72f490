#include "tests/contract/control_line.h"

#include <cstring>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace wegslot {

ControlLine::ControlLine(const char* path) : socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path == nullptr || std::strlen(path) >= sizeof address.sun_path)
        throw std::runtime_error("WEGSLOT_RADIO names no control socket");
    std::strcpy(static_cast<char*>(address.sun_path), path);
    if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error(std::string("nobody listens at ") + path);
}

ControlLine::~ControlLine() { close(socket_); }

std::string ControlLine::tell(const std::string& instruction) {
    const std::string line = instruction + "\n";
    if (write(socket_, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw std::runtime_error("the virtual controller has gone");
    std::string answer;
    char byte = 0;
    while (read(socket_, &byte, 1) == 1 && byte != '\n')
        answer += byte;
    if (answer == "ok") return "";
    if (!answer.starts_with("ok ")) throw std::runtime_error(instruction + ": " + answer);
    return answer.substr(3);
}

std::string ControlLine::valueOf(const std::string& device, const std::string& name) {
    const std::string status = " " + tell("device-status " + device) + " ";
    const std::string before = " " + name + "=";
    const auto start = status.find(before);
    if (start == std::string::npos) throw std::runtime_error("no " + name + " of " + device);
    const auto value = start + before.size();
    return status.substr(value, status.find(' ', value) - value);
}

} // namespace wegslot
