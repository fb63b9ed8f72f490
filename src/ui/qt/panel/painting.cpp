#include "ui/qt/panel/painting.h"

#include "ui/qt/brand_qt.h"

#include <QPainter>
#include <QWidget>

namespace wegslot::painting {

void fillRounded(QPainter& painter, const QRectF& place, double radius, const Color& color) {
    if (color.opacity <= 0) return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(qtColor(color));
    painter.drawRoundedRect(place, radius, radius);
}

void strokeRounded(QPainter& painter, const QRectF& place, double radius, const Color& color,
                   double width) {
    if (color.opacity <= 0) return;
    painter.setPen(QPen(qtColor(color), width));
    painter.setBrush(Qt::NoBrush);
    const double inset = width / 2;
    painter.drawRoundedRect(place.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
}

void strokeFocus(QPainter& painter, const QRectF& place, double radius, const Color& color) {
    strokeRounded(painter, place, radius, color, 2);
}

double leftOfInk(const QImage& image) {
    constexpr int seen = 64; // of 255: less is the edge of a stroke
    for (int x = 0; x < image.width(); ++x)
        for (int y = 0; y < image.height(); ++y)
            if (qAlpha(image.pixel(x, y)) > seen) return x / image.devicePixelRatio();
    return 0;
}

bool showsFocus(const QWidget& control) {
    return control.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void drawLine(QPainter& painter, const QRectF& place, const QString& text, const Font& font,
              const Color& color, bool isUnderlined) {
    if (text.isEmpty()) return;
    QtFont made = qtFont(font);
    made.font.setUnderline(isUnderlined);
    painter.save();
    painter.setPen(qtColor(color));
    painter.setFont(made.font);
    painter.translate(place.topLeft());
    painter.scale(made.scale, made.scale);
    painter.drawText(QRectF(0, 0, place.width() / made.scale, place.height() / made.scale),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    painter.restore();
}

} // namespace wegslot::painting
