// Paints the status icon from the symbols of the interface.
#pragma once

#include "ui/tray_picture.h"

namespace wegslot {

class SymbolImages;

/// `images` must outlive the painter.
[[nodiscard]] TrayPainter trayPainter(const SymbolImages& images);

} // namespace wegslot
