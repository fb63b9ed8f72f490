#include "ui/qt/card.h"

#include "ui/panel_colors.h"
#include "ui/qt/brand_qt.h"

#include <QChildEvent>
#include <QPaintEvent>
#include <QPainter>

#include <utility>

namespace wegslot {

bool CardGround::event(QEvent* event) {
    if (event->type() == QEvent::ChildAdded)
        static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
    return QWidget::event(event);
}

/// What lies on it moves with its cards and leaves their glow behind.
bool CardGround::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::Move || type == QEvent::Resize) update();
    return QWidget::eventFilter(watched, event);
}

void CardGround::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    for (const QWidget* const widget : findChildren<QWidget*>()) {
        const auto* const card = dynamic_cast<const Card*>(widget);
        if (card == nullptr || !card->isVisibleTo(this)) continue;
        const QRect place(card->mapTo(this, QPoint()), card->size());
        const SoftShadow shadow = card->shadow();
        if (shadow.reach(place).intersects(event->rect())) shadow.paint(painter, place);
    }
}

Card::Card(std::unique_ptr<QWidget> content, const Observable<Scheme>& scheme)
    : scheme_(scheme),
      content_(std::move(content)),
      layout_(this) {
    // Margins of the content's own are part of it: there its parts may stand out.
    layout_.setContentsMargins(QMargins(padding, padding, padding, padding) -
                               content_->contentsMargins());
    layout_.addWidget(content_.get());
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    changes_ = scheme_.onChange([this](const Scheme&) {
        update(); // later, when the value is in its place
        glowChanged();
    });
}

Card::~Card() { glowChanged(); }

SoftShadow Card::shadow(Scheme scheme) {
    return {.color = brand::orange.withOpacity(scheme == Scheme::light ? 0.1 : 0),
            .cornerRadius = cornerRadius,
            .blurRadius = 8,
            .offsetDown = 3};
}

bool Card::event(QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::Move || type == QEvent::Resize || type == QEvent::ShowToParent ||
        type == QEvent::HideToParent)
        glowChanged();
    return QWidget::event(event);
}

void Card::glowChanged() const {
    QWidget* ground = parentWidget();
    while (ground != nullptr && dynamic_cast<CardGround*>(ground) == nullptr)
        ground = ground->parentWidget();
    if (ground != nullptr) ground->update();
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(qtColor(cardFill(scheme_.get())));
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}

} // namespace wegslot
