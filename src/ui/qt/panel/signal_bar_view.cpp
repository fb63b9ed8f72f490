#include "ui/qt/panel/signal_bar_view.h"

#include "ui/qt/panel/painting.h"

#include <QPainter>

#include <chrono>

namespace wegslot {
namespace {

constexpr std::chrono::milliseconds frameInterval{33};
constexpr double thickness = 6;

} // namespace

SignalBarView::SignalBarView(const Clock& clock) : clock_(clock) {
    setFixedHeight(static_cast<int>(SignalBar::markerHeight));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    frames_.setInterval(frameInterval);
    connect(&frames_, &QTimer::timeout, this, [this] {
        if (!isVisible() || !motion_ || !motion_->isMoving(clock_.now())) frames_.stop();
        update();
    });
}

void SignalBarView::show(const SignalBar& bar) {
    if (bar == bar_) return;
    bar_ = bar;
    if (!bar.fill)
        motion_.reset();
    else if (motion_)
        motion_->moveTo(bar.fill->fraction, clock_.now());
    else
        motion_.emplace(bar.fill->fraction);
    if (motion_ && motion_->isMoving(clock_.now())) frames_.start();
    update();
}

void SignalBarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double top = (height() - thickness) / 2;
    painting::fillRounded(painter, QRectF(0, top, width(), thickness), thickness / 2,
                          SignalBar::trackColor);
    if (bar_.fill && motion_) {
        const double length = fillLength(motion_->at(clock_.now()), width());
        painting::fillRounded(painter, QRectF(0, top, length, thickness), thickness / 2,
                              bar_.fill->color);
    }
    painting::fillRounded(painter,
                          QRectF(markerStart(bar_.marker, width()), 0, SignalBar::markerWidth,
                                 SignalBar::markerHeight),
                          SignalBar::markerWidth / 2, SignalBar::markerColor);
}

} // namespace wegslot
