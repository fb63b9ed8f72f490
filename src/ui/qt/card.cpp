#include "ui/qt/card.h"

#include "ui/qt/brand_qt.h"

#include <QEvent>
#include <QMoveEvent>
#include <QPainter>
#include <QResizeEvent>

#include <utility>

namespace wegslot {

Card::Card(std::unique_ptr<QWidget> content, const Observable<Scheme>& scheme)
    : scheme_(scheme),
      content_(std::move(content)),
      layout_(this) {
    layout_.setContentsMargins(padding, padding, padding, padding);
    layout_.addWidget(content_.get());
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    changes_ = scheme_.onChange([this](const Scheme&) {
        update(); // later, when the value is in its place
        glowChanged(geometry());
    });
}

Card::~Card() {
    if (ground_) ground_->removeEventFilter(this);
}

Color Card::fill(Scheme scheme) {
    return scheme == Scheme::light ? brand::white : brand::white.withOpacity(0.06);
}

SoftShadow Card::shadow(Scheme scheme) {
    return {.color = brand::orange.withOpacity(scheme == Scheme::light ? 0.1 : 0),
            .cornerRadius = cornerRadius,
            .blurRadius = 8,
            .offsetDown = 3};
}

bool Card::event(QEvent* event) {
    switch (static_cast<int>(event->type())) { // an open set of numbers
    case QEvent::ParentChange:
        followParent();
        break;
    case QEvent::Move:
        glowChanged(QRect(static_cast<QMoveEvent*>(event)->oldPos(), size()));
        glowChanged(geometry());
        break;
    case QEvent::Resize:
        glowChanged(QRect(pos(), static_cast<QResizeEvent*>(event)->oldSize()));
        glowChanged(geometry());
        break;
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
        glowChanged(geometry());
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void Card::followParent() {
    if (ground_) ground_->removeEventFilter(this);
    ground_ = parentWidget();
    if (ground_) ground_->installEventFilter(this);
}

void Card::glowChanged(const QRect& place) {
    if (ground_) ground_->update(shadow(Scheme::light).reach(place).toAlignedRect());
}

bool Card::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ground_ && event->type() == QEvent::Paint && !isHidden()) {
        QPainter painter(ground_);
        shadow(scheme_.get()).paint(painter, geometry());
    }
    return false;
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(qtColor(fill(scheme_.get())));
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}

} // namespace wegslot
