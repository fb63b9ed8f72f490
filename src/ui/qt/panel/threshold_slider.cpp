#include "ui/qt/panel/threshold_slider.h"

#include "ui/qt/panel/painting.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

double knobSide() { return 16 * controlScale(); }
constexpr int stepsToDbm = 10;

int steps(Dbm strength) { return static_cast<int>(std::lround(strength.value * stepsToDbm)); }

} // namespace

ThresholdSlider::ThresholdSlider() : QSlider(Qt::Horizontal) {
    setRange(steps(panel::ThresholdSlider::lowest), steps(panel::ThresholdSlider::highest));
    setSingleStep(stepsToDbm);
    setPageStep(5 * stepsToDbm);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ThresholdSlider::show(const panel::ThresholdSlider& slider, const std::string& name,
                           const PanelColors& colors) {
    colors_ = colors;
    setAccessibleName(QString::fromStdString(name));
    // Under a finger it is where the finger is.
    if (!isSliderDown()) {
        const bool wasBlocked = blockSignals(true);
        setValue(steps(slider.value));
        blockSignals(wasBlocked);
    }
    update();
}

Dbm ThresholdSlider::threshold() const { return Dbm{value() / double{stepsToDbm}}; }

double ThresholdSlider::knobLeft() const {
    const double fraction = double(value() - minimum()) / (maximum() - minimum());
    return fraction * (width() - knobSide());
}

void ThresholdSlider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double knob = knobSide();
    const double thickness = 4 * controlScale();
    const double middle = height() / 2.0;
    const QRectF track(knob / 2, middle - thickness / 2, width() - knob, thickness);
    painting::fillRounded(painter, track, thickness / 2, colors_.control);
    QRectF passed = track;
    passed.setRight(knobLeft() + knob / 2);
    painting::fillRounded(painter, passed, thickness / 2, brand::orange);
    const QRectF handle(knobLeft(), middle - knob / 2, knob, knob);
    painting::fillRounded(painter, handle, knob / 2, brand::white);
    painting::strokeRounded(painter, handle, knob / 2, underMouse() ? brand::orange : colors_.line,
                            underMouse() ? 2 : 1);
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, handle.adjusted(-3, -3, 3, 3), knob / 2 + 3, colors_.focus);
}

void ThresholdSlider::moveTo(double x) {
    const double knob = knobSide();
    const double fraction = std::clamp((x - knob / 2) / (width() - knob), 0.0, 1.0);
    setSliderPosition(minimum() +
                      static_cast<int>(std::lround(fraction * (maximum() - minimum()))));
}

void ThresholdSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    setSliderDown(true);
    moveTo(event->position().x());
    event->accept();
}

void ThresholdSlider::mouseMoveEvent(QMouseEvent* event) {
    if (isSliderDown()) moveTo(event->position().x());
}

void ThresholdSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) setSliderDown(false);
}

void ThresholdSlider::wheelEvent(QWheelEvent* event) { event->ignore(); } // it scrolls the panel

} // namespace wegslot
