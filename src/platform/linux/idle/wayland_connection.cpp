#include "platform/linux/idle/wayland_connection.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-client.h>

namespace wegslot {
namespace {

using SteadyClock = std::chrono::steady_clock;

/// Does not wait for a compositor that is too busy to take the connection, which the library's own
/// way of connecting would. -1 when there is no connection.
int connectedSocket(const std::string& path) {
    sockaddr_un address{.sun_family = AF_UNIX};
    if (path.size() >= sizeof address.sun_path) return -1;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (handle < 0) return -1;
    if (connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return handle;
    close(handle);
    return -1;
}

bool becomesReadable(int descriptor, SteadyClock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
    if (left.count() <= 0) return false;
    pollfd watched{.fd = descriptor, .events = POLLIN};
    const int ready = poll(&watched, 1, static_cast<int>(left.count()));
    return ready > 0 || (ready < 0 && errno == EINTR);
}

} // namespace

const wl_callback_listener WaylandConnection::listener{
    .done = [](void* self, wl_callback*, std::uint32_t) {
        static_cast<WaylandConnection*>(self)->forgetQuestion();
    }};

std::unique_ptr<WaylandConnection> WaylandConnection::open(const std::string& socket) {
    const int handle = connectedSocket(socket);
    if (handle < 0) return nullptr;
    wl_display* const display = wl_display_connect_to_fd(handle); // closes it if it fails
    return display == nullptr ? nullptr : std::make_unique<WaylandConnection>(display);
}

WaylandConnection::~WaylandConnection() {
    forgetQuestion();
    wl_display_disconnect(display_);
}

int WaylandConnection::descriptor() const { return wl_display_get_fd(display_); }

void WaylandConnection::handle() {
    while (wl_display_prepare_read(display_) != 0)
        if (wl_display_dispatch_pending(display_) < 0) return;
    if (wl_display_read_events(display_) < 0) return; // reading nothing is no failure
    if (wl_display_dispatch_pending(display_) < 0) return;
    wl_display_flush(display_); // what does not fit now goes with the next
}

bool WaylandConnection::isLost() const { return wl_display_get_error(display_) != 0; }

bool WaylandConnection::answers(std::chrono::milliseconds patience) {
    handle();
    if (isLost() || unanswered_ != nullptr) return false;
    unanswered_ = wl_display_sync(display_);
    if (unanswered_ == nullptr) return false;
    wl_callback_add_listener(unanswered_, &listener, this);
    const auto deadline = SteadyClock::now() + patience;
    do
        handle();
    while (!isLost() && unanswered_ != nullptr && becomesReadable(descriptor(), deadline));
    return unanswered_ == nullptr;
}

void WaylandConnection::forgetQuestion() {
    if (unanswered_ != nullptr) wl_callback_destroy(unanswered_);
    unanswered_ = nullptr;
}

} // namespace wegslot
