// Paints the status icon from the symbols of the interface.
#pragma once

#include "ui/tray_picture.h"

#include <QImage>

namespace wegslot {

class SymbolImages;

/// The icon in `color`, with an outline that tells it from bars of any colour: what stands behind
/// it cannot be asked, and never is the screen looked at. Null for a symbol that there is none of.
[[nodiscard]] QImage trayImage(const SymbolImages& images, std::string_view symbol,
                               const Color& color, int side);

/// `images` must outlive the painter.
[[nodiscard]] TrayPainter trayPainter(const SymbolImages& images);

} // namespace wegslot
