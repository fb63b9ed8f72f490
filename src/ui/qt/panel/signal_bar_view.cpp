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
    setFixedHeight(static_cast<int>(SignalBar::markerHeight) + beyond.top() + beyond.bottom());
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    frames_.setInterval(frameInterval);
    connect(&frames_, &QTimer::timeout, this, [this] {
        if (!isVisible() || !motion_ || !motion_->isMoving(clock_.now())) frames_.stop();
        update();
    });
}

void SignalBarView::show(const SignalBar& bar, const Color& markerOutline) {
    if (markerOutline != markerOutline_) update();
    markerOutline_ = markerOutline;
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
    const QRectF bar = QRectF(rect()).marginsRemoved(beyond);
    const QRectF track(bar.left(), bar.center().y() - thickness / 2, bar.width(), thickness);
    painting::fillRounded(painter, track, thickness / 2, SignalBar::trackColor);
    if (bar_.fill && motion_) {
        QRectF fill = track;
        fill.setWidth(fillLength(motion_->at(clock_.now()), bar.width()));
        painting::fillRounded(painter, fill, thickness / 2, bar_.fill->color);
    }
    const QRectF marker(bar.left() + markerStart(bar_.marker, bar.width()), bar.top(),
                        SignalBar::markerWidth, SignalBar::markerHeight);
    constexpr double radius = SignalBar::markerWidth / 2;
    painting::fillRounded(painter, marker.adjusted(-1, -1, 1, 1), radius + 1, markerOutline_);
    painting::fillRounded(painter, marker, radius, SignalBar::markerColor);
}

} // namespace wegslot
