#include "ui/qt/panel/panel_button.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/symbol_images.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

constexpr double gap = 5; ///< between symbol and text

} // namespace

PanelButton::PanelButton(const SymbolImages& images, const ButtonLook& look)
    : images_(images),
      look_(look) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PanelButton::show(const panel::Button& button, const Colors& colors) {
    symbol_ = button.symbol;
    colors_ = colors;
    const QString text = QString::fromStdString(button.text);
    if (text != QPushButton::text()) setText(text);
    const QString tooltip = QString::fromStdString(button.tooltip);
    setToolTip(tooltip);
    // Without a text the tooltip says what it does.
    setAccessibleName(text.isEmpty() ? tooltip : text);
    setEnabled(button.isEnabled);
    updateGeometry();
    update();
}

double PanelButton::textWidth() const {
    if (text().isEmpty()) return 0;
    const QtFont font = qtFont(scaledFont(look_.font));
    return QFontMetricsF(font.font).horizontalAdvance(text()) * font.scale;
}

double PanelButton::symbolWidth() const {
    return symbol_.empty() ? 0 : look_.symbolSide * textScale();
}

QSize PanelButton::sizeHint() const {
    const QtFont font = qtFont(scaledFont(look_.font));
    const double height = std::max(
        text().isEmpty() ? 0 : QFontMetricsF(font.font).height() * font.scale, symbolWidth());
    const double between = symbol_.empty() || text().isEmpty() ? 0 : gap;
    return {static_cast<int>(std::ceil(symbolWidth() + between + textWidth())) +
                2 * look_.paddingAcross,
            static_cast<int>(std::ceil(height)) + 2 * look_.paddingDown};
}

void PanelButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    const bool isCapsule = look_.shape == ButtonLook::Shape::capsule;
    const double radius = isCapsule ? height() / 2.0 : 6;
    const QRectF whole = rect();
    painting::fillRounded(painter, whole, radius, colors_.ground);
    painting::strokeRounded(painter, whole, radius, colors_.outline, 1);
    const bool isPointedAt = isEnabled() && (underMouse() || isDown());
    if (isPointedAt && look_.shape != ButtonLook::Shape::link)
        painting::fillRounded(painter, whole, radius,
                              colors_.ink.withOpacity(isDown() ? 0.2 : 0.1));

    double left = look_.paddingAcross;
    if (!symbol_.empty()) {
        const QImage symbol =
            images_.image(symbol_, colors_.ink, symbolWidth(), devicePixelRatioF());
        painter.drawImage(QPointF(left, (height() - symbolWidth()) / 2), symbol);
        left += symbolWidth() + gap;
    }
    const bool isUnderlined = look_.shape == ButtonLook::Shape::link && isPointedAt;
    painting::drawLine(painter, QRectF(left, 0, width() - left, height()), text(),
                       scaledFont(look_.font), colors_.ink, isUnderlined);
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, whole, radius, colors_.focus);
}

} // namespace wegslot
