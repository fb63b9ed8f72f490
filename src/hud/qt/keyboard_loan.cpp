#include "hud/qt/keyboard_loan.h"

#include <QGuiApplication>
#include <QWidget>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include <xcb/xcb.h>

namespace wegslot {
namespace {

struct Free {
    void operator()(void* answer) const { std::free(answer); } // NOLINT: malloc of the X library
};

template <typename T>
using Answer = std::unique_ptr<T, Free>;

/// Null where the display is no X server.
xcb_connection_t* server() {
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_window_t focused(xcb_connection_t* server) {
    const Answer<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    return answer ? answer->focus : XCB_NONE;
}

} // namespace

void KeyboardLoan::take(QWidget& window) {
    if (xcb_connection_t* const display = server(); display != nullptr) {
        const xcb_window_t before = focused(display);
        // Root and "whatever is under the pointer" are nobody.
        constexpr xcb_window_t nobody = XCB_INPUT_FOCUS_POINTER_ROOT;
        if (before > nobody && before != window.winId()) before_ = before;
    }
    window.activateWindow();
}

void KeyboardLoan::giveBack(const QWidget& window) {
    const auto before = std::exchange(before_, std::nullopt);
    xcb_connection_t* const display = server();
    if (!before || display == nullptr || focused(display) != window.winId()) return;
    xcb_set_input_focus(display, XCB_INPUT_FOCUS_PARENT, *before, XCB_CURRENT_TIME);
    xcb_flush(display);
}

bool blendsWindows() {
    xcb_connection_t* const display = server();
    if (display == nullptr) return true;
    // Whoever blends owns this selection; each screen has its own, and Qt shows the first.
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const Answer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, name.size(), name.data()), nullptr));
    if (!atom) return false;
    const Answer<xcb_get_selection_owner_reply_t> answer(xcb_get_selection_owner_reply(
        display, xcb_get_selection_owner(display, atom->atom), nullptr));
    return answer && answer->owner != XCB_NONE;
}

} // namespace wegslot
