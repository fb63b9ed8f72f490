// Painting that several of the panel's controls share.
#pragma once

#include "ui/brand.h"

#include <QImage>
#include <QRectF>
#include <QString>

class QPainter;
class QWidget;

namespace wegslot::painting {

void fillRounded(QPainter& painter, const QRectF& place, double radius, const Color& color);

/// Inside `place`, so that nothing around it has to be painted again.
void strokeRounded(QPainter& painter, const QRectF& place, double radius, const Color& color,
                   double width);

/// Around what has the keyboard.
void strokeFocus(QPainter& painter, const QRectF& place, double radius, const Color& color);

/// How far from its left edge something is seen in `image`, in its own measure.
[[nodiscard]] double leftOfInk(const QImage& image);

/// Whether to show that `control` has the keyboard: not where the pointer gave it.
[[nodiscard]] bool showsFocus(const QWidget& control);

/// One line of text from the left, in the middle of the height.
void drawLine(QPainter& painter, const QRectF& place, const QString& text, const Font& font,
              const Color& color, bool isUnderlined = false);

} // namespace wegslot::painting
