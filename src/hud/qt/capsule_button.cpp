#include "hud/qt/capsule_button.h"

#include "hud/qt/warning_picture.h"

#include <QPainter>

namespace wegslot {

CapsuleButton::CapsuleButton(QWidget& parent) : QAbstractButton(&parent) {
    setText(picture::buttonLabel());
    setGeometry(picture::buttonFrame());
    setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
}

void CapsuleButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    picture::paintButton(painter, size(), isDown());
}

} // namespace wegslot
