// Wegslot's colours and fonts as Qt draws them.
#pragma once

#include "ui/brand.h"

#include <QColor>
#include <QFont>

namespace wegslot {

[[nodiscard]] QColor qtColor(const Color& color);

/// A font that is to be painted scaled by `scale`. Qt rounds the size of a font to whole pixels,
/// whichever way it is set; one of half a pixel is therefore set twice as large and painted at
/// half the size. Everything measured of `font` is to be multiplied by `scale`.
struct QtFont {
    QFont font;
    qreal scale = 1;
};

[[nodiscard]] QtFont qtFont(const Font& font);

} // namespace wegslot
