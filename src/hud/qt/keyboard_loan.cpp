#include "hud/qt/keyboard_loan.h"

#include "ui/qt/x11_server.h"

#include <QWidget>

#include <utility>

namespace wegslot {
namespace {

xcb_window_t focused(xcb_connection_t* server) {
    const x11::Answer<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    return answer ? answer->focus : XCB_NONE;
}

} // namespace

void KeyboardLoan::take(QWidget& window) {
    if (xcb_connection_t* const display = x11::server(); display != nullptr) {
        const xcb_window_t before = focused(display);
        // Root and "whatever is under the pointer" are nobody.
        constexpr xcb_window_t nobody = XCB_INPUT_FOCUS_POINTER_ROOT;
        if (before > nobody && before != window.winId()) before_ = before;
    }
    window.activateWindow();
}

void KeyboardLoan::giveBack(const QWidget& window) {
    const auto before = std::exchange(before_, std::nullopt);
    xcb_connection_t* const display = x11::server();
    if (!before || display == nullptr || focused(display) != window.winId()) return;
    xcb_set_input_focus(display, XCB_INPUT_FOCUS_PARENT, *before, XCB_CURRENT_TIME);
    xcb_flush(display);
}

} // namespace wegslot
