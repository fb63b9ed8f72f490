#include "ui/qt/panel/small_parts.h"

#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/symbol_images.h"

#include <QPainter>

#include <algorithm>

namespace wegslot {

SymbolView::SymbolView(const SymbolImages& images, QSize frame, double symbolSide,
                       double cornerRadius)
    : images_(images),
      side_(symbolSide),
      radius_(cornerRadius) {
    setFixedSize(frame * std::min(textScale(), 1.5));
}

void SymbolView::show(const std::string& symbol, const Color& color, const Color& ground) {
    if (symbol == symbol_ && color == color_ && ground == ground_) return;
    symbol_ = symbol;
    color_ = color;
    ground_ = ground;
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painting::fillRounded(painter, rect(), radius_, ground_);
    const double side = side_ * std::min(textScale(), 1.5);
    const QImage image = images_.image(symbol_, color_, side, devicePixelRatioF());
    painter.drawImage(QPointF((width() - side) / 2, (height() - side) / 2), image);
}

Patch::Patch(int width, int height, double radius) : radius_(radius) {
    setFixedHeight(height);
    if (width > 0) setFixedWidth(width);
}

void Patch::show(const Color& color) {
    if (color == color_) return;
    color_ = color;
    update();
}

void Patch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, radius_ > 0);
    painting::fillRounded(painter, rect(), radius_, color_);
}

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
