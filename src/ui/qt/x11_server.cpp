#include "ui/qt/x11_server.h"

#include <QGuiApplication>

#include <cstdint>

namespace wegslot::x11 {

xcb_connection_t* server() {
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t atom(xcb_connection_t* server, std::string_view name) {
    const Answer<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return answer ? answer->atom : XCB_NONE;
}

} // namespace wegslot::x11
