#include "ui/qt/panel/small_parts.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/symbol_images.h"

#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace wegslot {

SymbolView::SymbolView(const SymbolImages& images, QSize frame, double symbolSide,
                       double cornerRadius)
    : images_(images),
      side_(symbolSide),
      radius_(cornerRadius) {
    setFixedSize(frame * controlScale());
}

void SymbolView::show(const std::string& symbol, const Colors& colors) {
    if (symbol == symbol_ && colors == colors_) return;
    symbol_ = symbol;
    colors_ = colors;
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double side = side_ * controlScale();
    const double top = (height() - side) / 2;
    if (colors_.ground.opacity <= 0) return paintOutlined(painter, QPointF(0, top), side);
    painting::fillRounded(painter, rect(), radius_, colors_.ground);
    painting::strokeRounded(painter, rect(), radius_, colors_.outline, 1);
    const QImage image = images_.image(symbol_, colors_.ink, side, devicePixelRatioF());
    painter.drawImage(QPointF((width() - side) / 2, top), image);
}

void SymbolView::paintOutlined(QPainter& painter, QPointF place, double side) const {
    constexpr double outline = 1;
    const bool isOutlined = colors_.outline.opacity > 0;
    const QImage image = images_.image(symbol_, colors_.ink, side, devicePixelRatioF());
    place.rx() -= painting::leftOfInk(image) - (isOutlined ? outline : 0);
    if (isOutlined) {
        const QImage around = images_.image(symbol_, colors_.outline, side, devicePixelRatioF());
        for (int degrees = 0; degrees < 360; degrees += 30)
            painter.drawImage(place + outline * QPointF(std::cos(qDegreesToRadians(degrees)),
                                                        std::sin(qDegreesToRadians(degrees))),
                              around);
    }
    painter.drawImage(place, image);
}

Dot::Dot() { setFixedSize(QSize(9, 9) * controlScale()); }

void Dot::show(const Color& color, const Color& outline) {
    if (color == color_ && outline == outline_) return;
    color_ = color;
    outline_ = outline;
    update();
}

void Dot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double edge = width() / 9.0;
    painting::fillRounded(painter, QRectF(rect()), width() / 2.0, outline_);
    painting::fillRounded(painter, QRectF(rect()).adjusted(edge, edge, -edge, -edge),
                          width() / 2.0 - edge, color_);
}

void Divider::show(const Color& color) {
    if (color == color_) return;
    color_ = color;
    update();
}

void Divider::paintEvent(QPaintEvent*) { QPainter(this).fillRect(rect(), qtColor(color_)); }

void ThinScrollBar::show(const Color& color) {
    if (color == color_) return;
    color_ = color;
    update();
}

void ThinScrollBar::paintEvent(QPaintEvent*) {
    if (maximum() <= minimum()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double all = maximum() - minimum() + pageStep();
    const double length = std::max(24.0, height() * pageStep() / all);
    const double top = (height() - length) * (value() - minimum()) / (maximum() - minimum());
    painting::fillRounded(painter, QRectF(2, top, thickness - 4, length), 2, color_);
}

} // namespace wegslot
