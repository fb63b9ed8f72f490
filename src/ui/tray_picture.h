// A picture of the status icon in the form that desktops take over the bus, and the port to
// whatever can paint one.
#pragma once

#include "ui/brand.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace wegslot {

/// A square; four bytes a pixel in the order alpha, red, green, blue, not premultiplied.
struct TrayPicture {
    int side = 0;
    std::vector<std::uint8_t> argb;

    friend bool operator==(const TrayPicture&, const TrayPicture&) = default;
};

/// Paints `symbol`; a picture without pixels if it does not know it.
using TrayPainter =
    std::function<TrayPicture(const std::string& symbol, const Color& color, int side)>;

} // namespace wegslot
