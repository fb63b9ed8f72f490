#include "ui/qt/panel/spinner.h"

#include "ui/qt/brand_qt.h"

#include <QPainter>

#include <chrono>

namespace wegslot {

Spinner::Spinner(const Color& color) : color_(color) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    frames_.setInterval(std::chrono::milliseconds{80});
    connect(&frames_, &QTimer::timeout, this, [this] {
        turned_ = (turned_ + 30) % 360;
        update();
    });
}

void Spinner::showEvent(QShowEvent*) { frames_.start(); }

void Spinner::hideEvent(QHideEvent*) { frames_.stop(); }

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr int sixteenths = 16; // of a degree, as Qt measures arcs
    painter.setPen(QPen(qtColor(color_), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), -turned_ * sixteenths,
                    270 * sixteenths);
}

} // namespace wegslot
