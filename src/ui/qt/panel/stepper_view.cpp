#include "ui/qt/panel/stepper_view.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"

#include <QPainter>

#include <utility>

namespace wegslot {
namespace {

constexpr int indent = 18;

} // namespace

StepButton::StepButton(panel::Step step) : step_(step) {
    setAutoRepeat(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StepButton::show(const std::string& text, bool isEnabled, const PanelColors& colors) {
    colors_ = colors;
    const bool isUp = step_ == panel::Step::up;
    setAccessibleName(QString::fromStdString(text) + (isUp ? ", meer" : ", minder"));
    setEnabled(isEnabled);
    update();
}

void StepButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double radius = 6;
    if (!isEnabled()) painter.setOpacity(0.4);
    painting::fillRounded(painter, rect(), radius, colors_.control);
    if (isEnabled() && (underMouse() || isDown()))
        painting::fillRounded(painter, rect(), radius, colors_.hover);
    painter.setPen(QPen(qtColor(colors_.text), 1.6, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = QRectF(rect()).center();
    constexpr double arm = 4;
    painter.drawLine(middle - QPointF(arm, 0), middle + QPointF(arm, 0));
    if (step_ == panel::Step::up)
        painter.drawLine(middle - QPointF(0, arm), middle + QPointF(0, arm));
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, rect(), radius, colors_.focus);
}

StepperView::StepperView(std::function<void(panel::Delay, panel::Step)> stepped)
    : text_(brand::body(13), Text::Fit::wrapped),
      less_(panel::Step::down),
      more_(panel::Step::up),
      layout_(this) {
    layout_.setSpacing(4);
    layout_.addWidget(&text_, 1);
    layout_.addWidget(&less_);
    layout_.addWidget(&more_);
    connect(&less_, &QAbstractButton::clicked, this,
            [this, stepped] { stepped(shown_.delay, panel::Step::down); });
    connect(&more_, &QAbstractButton::clicked, this,
            [this, stepped = std::move(stepped)] { stepped(shown_.delay, panel::Step::up); });
}

void StepperView::show(const panel::Stepper& stepper, const PanelColors& colors) {
    shown_ = stepper;
    layout_.setContentsMargins(stepper.isIndented ? indent : 0, 0, 0, 0);
    text_.show(stepper.text, colors.text);
    less_.show(stepper.text, stepper.canDecrease, colors);
    more_.show(stepper.text, stepper.canIncrease, colors);
    setVisible(stepper.isShown);
}

} // namespace wegslot
