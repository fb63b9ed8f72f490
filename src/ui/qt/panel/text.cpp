#include "ui/qt/panel/text.h"

#include "ui/qt/brand_qt.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

constexpr double unbounded = 1e6;
constexpr int wrapping = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignVCenter;

} // namespace

double textScale() {
    constexpr double largestDefault = 15;
    return std::max(1.0, QFontInfo(QGuiApplication::font()).pixelSize() / largestDefault);
}

double controlScale() { return std::min(textScale(), 1.5); }

Font scaledFont(const Font& font) {
    Font scaled = font;
    scaled.size = std::round(2 * font.size * textScale()) / 2;
    return scaled;
}

Text::Text(const Font& font, Fit fit, int least) : fit_(fit), least_(least) {
    const QtFont made = qtFont(scaledFont(font));
    font_ = made.font;
    scale_ = made.scale;
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(fit == Fit::whole ? QSizePolicy::Fixed : QSizePolicy::Preferred,
                       QSizePolicy::Fixed);
    if (fit == Fit::wrapped) policy = QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    setSizePolicy(policy);
    setWordWrap(fit == Fit::wrapped); // which says that the height depends on the width
}

void Text::show(const std::string& text, const Color& color) {
    const QString shown = QString::fromStdString(text);
    if (shown != QLabel::text()) {
        setText(shown);
        if (fit_ == Fit::elided) setToolTip(shown); // where it is cut short it can be read whole
        updateGeometry();
    }
    if (color_ == color) return;
    color_ = color;
    update();
}

QSize Text::sizeWithin(double width) const {
    const QFontMetricsF metrics(font_);
    const QRectF room(0, 0, width / scale_, unbounded);
    const QSizeF needed = fit_ == Fit::wrapped
                              ? metrics.boundingRect(room, wrapping, text()).size()
                              : QSizeF(metrics.horizontalAdvance(text()), metrics.height());
    return {static_cast<int>(std::ceil(needed.width() * scale_)),
            static_cast<int>(std::ceil(needed.height() * scale_))};
}

QSize Text::sizeHint() const { return sizeWithin(unbounded); }

QSize Text::minimumSizeHint() const {
    const QSize whole = sizeWithin(unbounded);
    return fit_ == Fit::whole ? whole : QSize(std::min(least_, whole.width()), whole.height());
}

int Text::heightForWidth(int width) const {
    return fit_ == Fit::wrapped ? sizeWithin(width).height() : -1;
}

void Text::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(qtColor(color_));
    painter.setFont(font_);
    painter.scale(scale_, scale_);
    const QRectF room(0, 0, width() / scale_, height() / scale_);
    if (fit_ == Fit::wrapped) return painter.drawText(room, wrapping, text());
    const QString shown =
        QFontMetricsF(font_).elidedText(text(), Qt::ElideRight, room.width() + 0.5);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter, shown);
}

} // namespace wegslot
