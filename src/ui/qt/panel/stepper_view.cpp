#include "ui/qt/panel/stepper_view.h"

#include "base/translation.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"

#include <QKeyEvent>
#include <QMouseEvent>
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
    setAccessibleName(QString::fromStdString(isUp ? translated("%1, meer", {text})
                                                  : translated("%1, minder", {text})));
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
    const double scale = controlScale();
    painter.setPen(QPen(qtColor(colors_.text), 1.6 * scale, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = QRectF(rect()).center();
    const double arm = 4 * scale;
    painter.drawLine(middle - QPointF(arm, 0), middle + QPointF(arm, 0));
    if (step_ == panel::Step::up)
        painter.drawLine(middle - QPointF(0, arm), middle + QPointF(0, arm));
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, rect(), radius, colors_.focus);
}

StepperView::StepperView(Asked asked)
    : asked_(std::move(asked)),
      text_(brand::body(13), Text::Fit::wrapped),
      before_(brand::body(13)),
      field_([this](NumberField::End how, const std::string& typed) { ended(how, typed); }),
      after_(brand::body(13), Text::Fit::elided),
      less_(panel::Step::down),
      more_(panel::Step::up),
      layout_(this) {
    layout_.setSpacing(4);
    typingLayout_.setContentsMargins(0, 0, 0, 0);
    typingLayout_.setSpacing(2);
    typingLayout_.addWidget(&before_);
    typingLayout_.addWidget(&field_);
    typingLayout_.addWidget(&after_, 1);
    typing_.hide();
    text_.setCursor(Qt::IBeamCursor);
    layout_.addWidget(&text_, 1);
    layout_.addWidget(&typing_, 1);
    layout_.addWidget(&less_);
    layout_.addWidget(&more_);
    connect(&less_, &QAbstractButton::clicked, this,
            [this] { asked_.step(shown_.delay, panel::Step::down); });
    connect(&more_, &QAbstractButton::clicked, this,
            [this] { asked_.step(shown_.delay, panel::Step::up); });
}

void StepperView::show(const panel::Stepper& stepper, const PanelColors& colors) {
    shown_ = stepper;
    layout_.setContentsMargins(stepper.isIndented ? indent : 0, 0, 0, 0);
    const std::string text = stepper.text();
    text_.show(text, colors.text);
    before_.show(stepper.before, colors.text);
    field_.show(text, colors); // what is being typed stays
    after_.show(stepper.after, colors.text);
    less_.show(text, stepper.canDecrease, colors);
    more_.show(text, stepper.canIncrease, colors);
    setVisible(stepper.isShown);
}

void StepperView::mousePressEvent(QMouseEvent* event) {
    const bool isOnText =
        text_.isVisible() && text_.geometry().contains(event->position().toPoint());
    if (event->button() != Qt::LeftButton || !isOnText) return event->ignore();
    begin({});
}

void StepperView::keyPressEvent(QKeyEvent* event) {
    const QString typed = event->text();
    const bool isDigit = typed.size() == 1 && typed.at(0) >= u'0' && typed.at(0) <= u'9';
    if (!isDigit || field_.isTyping()) return event->ignore();
    begin(typed);
}

void StepperView::begin(const QString& typed) {
    QWidget* const keyboard = window()->focusWidget();
    hadKeyboard_ = keyboard == &less_ || keyboard == &more_ ? keyboard : nullptr;
    text_.hide();
    typing_.show();
    field_.begin(shown_.value, typed);
}

void StepperView::ended(NumberField::End how, const std::string& typed) {
    // Before the field goes, or Qt would hand the keyboard to whatever comes next.
    if (how != NumberField::End::lost)
        (hadKeyboard_ != nullptr ? hadKeyboard_ : window())->setFocus(Qt::OtherFocusReason);
    typing_.hide();
    text_.show();
    if (how != NumberField::End::left) asked_.enter(shown_.delay, typed);
}

} // namespace wegslot
