#include "ui/qt/window_frame.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/soft_shadow.h"

#include <QPainter>

namespace wegslot {
namespace {

constexpr int hairline = 1;
constexpr int blur = 16;
constexpr int down = 4;

} // namespace

QMargins WindowFrame::margins() const {
    const QMargins line(hairline, hairline, hairline, hairline);
    return isBlended_ ? line + QMargins(blur, blur - down, blur, blur + down) : line;
}

void WindowFrame::paint(QPainter& painter, const QSize& window, const Color& ground,
                        const Color& line) const {
    const QRectF inside = QRectF(QPointF(), window).marginsRemoved(margins());
    const double radius = cornerRadius();
    const SoftShadow shadow{.color = brand::navy.withOpacity(isBlended_ ? 0.35 : 0),
                            .cornerRadius = radius,
                            .blurRadius = blur,
                            .offsetDown = down};
    shadow.paint(painter, inside);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(qtColor(line));
    const double outer = radius > 0 ? radius + hairline : 0;
    painter.drawRoundedRect(inside.marginsAdded({hairline, hairline, hairline, hairline}), outer,
                            outer);
    painter.setBrush(qtColor(ground));
    painter.drawRoundedRect(inside, radius, radius);
}

} // namespace wegslot
