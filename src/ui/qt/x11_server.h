// The X server that Qt draws on, for what Qt does not ask it. There is none on Wayland.
#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace wegslot::x11 {

struct Free {
    void operator()(void* answer) const { std::free(answer); } // NOLINT: malloc of the X library
};

template <typename T>
using Answer = std::unique_ptr<T, Free>;

/// Null where the display is no X server.
[[nodiscard]] xcb_connection_t* server();

/// The number that stands for `name` there; XCB_NONE if it cannot be had.
[[nodiscard]] xcb_atom_t atom(xcb_connection_t* server, std::string_view name);

} // namespace wegslot::x11
