// What the icon and the panel share: the desktop's colour scheme, and the symbols.
#pragma once

#include "dbus/connection.h"
#include "ui/linux/color_scheme.h"
#include "ui/qt/palette_scheme.h"
#include "ui/qt/symbol_images.h"

namespace wegslot {

struct Appearance {
    /// There must be a QGuiApplication.
    explicit Appearance(dbus::Connection& sessionBus) : colors(sessionBus, palette.scheme()) {}

    PaletteScheme palette;
    ColorScheme colors;
    SymbolImages images;
};

} // namespace wegslot
