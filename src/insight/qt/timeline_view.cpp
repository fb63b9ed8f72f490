#include "insight/qt/timeline_view.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>
#include <string>

namespace wegslot::insight {
namespace {

constexpr double closerByNotch = 0.8; ///< for a notch of the wheel
constexpr double notch = 120;         ///< as Qt counts its turns
constexpr double closerByKey = 0.5;
constexpr double pageLength = 0.8; ///< of what is seen
constexpr double leastDrag = 4;    ///< pixels; less is a press with an unsteady hand

} // namespace

TimelineView::TimelineView(InsightModel& model, const Surroundings& surroundings)
    : model_(model),
      surroundings_(surroundings) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setCursor(Qt::OpenHandCursor);
    setAccessibleName(QString::fromStdString(translated("Tijdlijn")));
}

QSize TimelineView::minimumSizeHint() const {
    return TimelinePainter::leastSize(model_.timeline().lanes.size()) +
           QSize(2 * padding, 2 * padding);
}

TimelinePainter TimelineView::painter() const {
    return {model_, surroundings_.images, surroundings_.colors(), contents(), devicePixelRatioF()};
}

/// From when until when, each key in numbers, and what is chosen.
QString TimelineView::told() const {
    const Span& visible = model_.viewport().visible();
    std::string text = translated("Van %1 tot %2", {model_.zone().clockTime(visible.from),
                                                    model_.zone().clockTime(visible.to)});
    for (const Lane& lane : model_.timeline().lanes) {
        text += ". " + lane.name + ":";
        for (const Message& part : summary(lane, visible))
            text += " " + part.translated();
    }
    if (model_.chosen()) text += ". " + model_.rowText(*model_.chosen());
    return QString::fromStdString(text);
}

void TimelineView::refresh() {
    updateGeometry();
    update();
    const QString now = told();
    if (now == accessibleDescription()) return;
    setAccessibleDescription(now);
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

void TimelineView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const PanelColors colors = surroundings_.colors();
    painting::fillRounded(painter, rect(), 14, colors.card);
    if (model_.timeline().day.length() > Nanoseconds{0}) {
        painter.translate(padding, padding);
        this->painter().paint(painter);
        painter.resetTransform();
    }
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, rect(), 14, colors.focus);
}

void TimelineView::wheelEvent(QWheelEvent* event) {
    event->accept();
    const QPoint turned = event->angleDelta();
    const Span& visible = model_.viewport().visible();
    // Sideways, or with Shift where a wheel cannot: along the day.
    const double along = turned.x() != 0                          ? turned.x()
                         : event->modifiers() & Qt::ShiftModifier ? turned.y()
                                                                  : 0;
    if (along != 0)
        return model_.move(Nanoseconds{
            std::llround(-along / notch / 10 * static_cast<double>(visible.length().count()))});
    model_.zoom(std::pow(closerByNotch, turned.y() / notch),
                painter().timeAt(inContents(event->position().x())));
}

void TimelineView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
    drag_ = Drag{.pressedAt = event->position().x(), .movedTo = event->position().x()};
}

void TimelineView::mouseMoveEvent(QMouseEvent* event) {
    if (!drag_) return;
    const double x = event->position().x();
    if (!drag_->isDrag && std::abs(x - drag_->pressedAt) < leastDrag) return;
    drag_->isDrag = true;
    setCursor(Qt::ClosedHandCursor);
    const TimelinePainter drawn = painter();
    const double each =
        static_cast<double>(model_.viewport().visible().length().count()) / drawn.plot().width();
    model_.move(Nanoseconds{std::llround((drag_->movedTo - x) * each)});
    drag_->movedTo = x;
}

void TimelineView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !drag_) return QWidget::mouseReleaseEvent(event);
    const bool wasDrag = drag_->isDrag;
    drag_.reset();
    setCursor(Qt::OpenHandCursor);
    if (wasDrag) return;
    if (const auto chosen = painter().eventAt(inContents(event->position().x())))
        model_.choose(*chosen);
}

void TimelineView::turnPage(double pages) {
    const auto length = static_cast<double>(model_.viewport().visible().length().count());
    model_.move(Nanoseconds{std::llround(pages * length)});
}

void TimelineView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
        return model_.walk(-1);
    case Qt::Key_Right:
        return model_.walk(1);
    case Qt::Key_Home:
        return model_.chooseFirst();
    case Qt::Key_End:
        return model_.chooseLast();
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the same key without Shift
        return model_.zoom(closerByKey);
    case Qt::Key_Minus:
        return model_.zoom(1 / closerByKey);
    case Qt::Key_0:
        return model_.showAll();
    case Qt::Key_PageUp:
        return turnPage(-pageLength);
    case Qt::Key_PageDown:
        return turnPage(pageLength);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (model_.chosen()) model_.why(*model_.chosen());
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace wegslot::insight
