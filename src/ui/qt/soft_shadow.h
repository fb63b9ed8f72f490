// The soft shadow of a rounded rectangle, painted without a graphics effect: those render a
// widget and all its content into an image first, at every change of anything in it.
#pragma once

#include "ui/brand.h"

#include <QRectF>

class QPainter;

namespace wegslot {

struct SoftShadow {
    Color color;
    double cornerRadius = 0;
    double blurRadius = 0; ///< how far it reaches beyond the rectangle; twice its deviation
    double offsetDown = 0;

    /// What is painted on for `rectangle`.
    [[nodiscard]] QRectF reach(const QRectF& rectangle) const;

    /// Paints it, under the rectangle too.
    void paint(QPainter& painter, const QRectF& rectangle) const;
};

} // namespace wegslot
