#include "control_socket.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace controller {

namespace {

constexpr int mostWaitingCallers = 8;

} // namespace

std::optional<std::string> ControlSocket::listen(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return "the path is too long for a socket: " + path;
    std::copy(path.begin(), path.end(), address.sun_path);

    Descriptor made(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::unlink(path.c_str());
    if (!made.isOpen() ||
        ::bind(made.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0 ||
        ::listen(made.number(), mostWaitingCallers) < 0) {
        return "cannot listen on " + path + ": " + std::strerror(errno);
    }
    socket_ = std::move(made);
    return std::nullopt;
}

std::optional<LineChannel> ControlSocket::accept() {
    Descriptor caller(::accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!caller.isOpen()) return std::nullopt;
    return LineChannel(std::move(caller));
}

} // namespace controller
