#include "ui/qt/x11_bar_watch.h"

#include "ui/qt/x11_server.h"

#include <QCoreApplication>

#include <utility>

namespace wegslot {
namespace {

/// Such messages go to who follows the root window, of which Qt follows less.
void followRoot(xcb_connection_t* server) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
    const x11::Answer<xcb_get_window_attributes_reply_t> now(
        xcb_get_window_attributes_reply(server, xcb_get_window_attributes(server, root), nullptr));
    if (!now) return;
    const std::uint32_t events = now->your_event_mask | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(server, root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(server);
}

} // namespace

X11BarWatch::X11BarWatch(std::function<void()> came) : came_(std::move(came)) {
    xcb_connection_t* const server = x11::server();
    if (server == nullptr) return;
    manager_ = x11::atom(server, "MANAGER");
    tray_ = x11::atom(server, "_NET_SYSTEM_TRAY_S0"); // Qt shows the first screen
    followRoot(server);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11BarWatch::~X11BarWatch() = default; // Qt forgets a filter that is gone

bool X11BarWatch::nativeEventFilter(const QByteArray& /*kind*/, void* message,
                                    qintptr* /*result*/) {
    const auto* const event = static_cast<const xcb_generic_event_t*>(message);
    constexpr unsigned sentByAProgram = 0x80;
    if ((event->response_type & ~sentByAProgram) != XCB_CLIENT_MESSAGE) return false;
    const auto* const told = static_cast<const xcb_client_message_event_t*>(message);
    if (told->type == manager_ && told->data.data32[1] == tray_) came_();
    return false;
}

} // namespace wegslot
