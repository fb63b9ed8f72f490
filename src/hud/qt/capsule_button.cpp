#include "hud/qt/capsule_button.h"

#include "hud/qt/warning_picture.h"

#include <QKeyEvent>
#include <QPainter>

namespace wegslot {

CapsuleButton::CapsuleButton(QWidget& parent) : QAbstractButton(&parent) {
    setText(picture::buttonLabel());
    setGeometry(picture::buttonFrame());
    setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
}

void CapsuleButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    // Not where the window system gave it to the only control of a new window.
    const bool byKeyboard = window()->testAttribute(Qt::WA_KeyboardFocusChange);
    picture::paintButton(
        painter, size(),
        {.isDown = isDown(), .isPointedAt = underMouse(), .hasKeyboard = hasFocus() && byKeyboard});
}

void CapsuleButton::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) return QAbstractButton::keyPressEvent(event);
    if (!event->isAutoRepeat()) click();
}

} // namespace wegslot
