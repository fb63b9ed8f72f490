#include "ui/qt/compositor.h"

#include "ui/qt/x11_server.h"

namespace wegslot {

bool blendsWindows() {
    xcb_connection_t* const display = x11::server();
    if (display == nullptr) return true;
    // Whoever blends owns this selection; each screen has its own, and Qt shows the first.
    const x11::Answer<xcb_get_selection_owner_reply_t> answer(xcb_get_selection_owner_reply(
        display, xcb_get_selection_owner(display, x11::atom(display, "_NET_WM_CM_S0")), nullptr));
    return answer && answer->owner != XCB_NONE;
}

} // namespace wegslot
