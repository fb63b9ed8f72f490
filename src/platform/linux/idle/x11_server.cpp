#include "platform/linux/idle/x11_server.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <xcb/screensaver.h>
#include <xcb/xcb.h>

namespace wegslot {
namespace {

struct Free {
    void operator()(void* answer) const { std::free(answer); }
};
template <typename Answer>
using Owned = std::unique_ptr<Answer, Free>;

/// What an X server has that stands in a Wayland compositor.
constexpr std::string_view nested = "XWAYLAND";

std::optional<xcb_window_t> root(xcb_connection_t* connection, int screen) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0 && screen > 0; --screen)
        xcb_screen_next(&screens);
    if (screens.rem == 0) return std::nullopt;
    return screens.data->root;
}

} // namespace

std::unique_ptr<X11Server> X11Server::connect(const std::string& display) {
    int screen = 0;
    auto server = std::make_unique<X11Server>(xcb_connect(display.c_str(), &screen), screen);
    if (!server->isConnected() || !server->countsAllInput()) return nullptr;
    return server;
}

X11Server::X11Server(xcb_connection_t* connection, int screen)
    : connection_(connection),
      screen_(screen) {}

X11Server::~X11Server() { xcb_disconnect(connection_); }

bool X11Server::isConnected() const { return xcb_connection_has_error(connection_) == 0; }

bool X11Server::countsAllInput() const {
    const auto question =
        xcb_query_extension(connection_, static_cast<std::uint16_t>(nested.size()), nested.data());
    const Owned<xcb_query_extension_reply_t> answer(
        xcb_query_extension_reply(connection_, question, nullptr));
    if (!answer || answer->present != 0) return false;
    const auto* const counting = xcb_get_extension_data(connection_, &xcb_screensaver_id);
    return counting != nullptr && counting->present != 0;
}

std::optional<std::chrono::milliseconds> X11Server::idleTime() {
    const auto window = root(connection_, screen_);
    if (!window) return std::nullopt;
    const Owned<xcb_screensaver_query_info_reply_t> answer(xcb_screensaver_query_info_reply(
        connection_, xcb_screensaver_query_info(connection_, *window), nullptr));
    if (!answer) return std::nullopt;
    return std::chrono::milliseconds{answer->ms_since_user_input};
}

} // namespace wegslot
