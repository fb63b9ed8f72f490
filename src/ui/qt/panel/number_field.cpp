#include "ui/qt/panel/number_field.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"

#include <QKeyEvent>
#include <QPainter>

#include <cmath>
#include <utility>

namespace wegslot {
namespace {

constexpr int digits = 4;

} // namespace

NumberField::NumberField(std::function<void(End, const std::string&)> ended)
    : ended_(std::move(ended)) {
    QFont font = qtFont(brand::body(13)).font;
    font.setPixelSize(static_cast<int>(std::lround(scaledFont(brand::body(13)).size)));
    setFont(font);
    setFrame(false);
    setMaxLength(digits + 2);
    setAlignment(Qt::AlignHCenter);
    setContextMenuPolicy(Qt::NoContextMenu); // a window that would close the panel
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void NumberField::begin(const std::string& value, const QString& typed) {
    isTyping_ = true;
    setText(typed.isEmpty() ? QString::fromStdString(value) : typed);
    if (typed.isEmpty()) selectAll();
    setFocus(Qt::OtherFocusReason);
}

void NumberField::show(const std::string& name, const PanelColors& colors) {
    colors_ = colors;
    setAccessibleName(QString::fromStdString(name));
    QPalette inks = palette();
    inks.setColor(QPalette::Base, Qt::transparent);
    inks.setColor(QPalette::Text, qtColor(colors.text));
    if (inks != palette()) setPalette(inks);
    update();
}

QSize NumberField::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(QString(digits, u'0')) + 12, metrics.height() + 4};
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        return end(End::left);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return end(End::entered);
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void NumberField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    end(End::lost);
}

void NumberField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr double radius = 5;
        painting::fillRounded(painter, rect(), radius, colors_.control);
        painting::strokeFocus(painter, rect(), radius, colors_.focus);
    }
    QLineEdit::paintEvent(event);
}

void NumberField::end(End how) {
    // Hiding it takes the keyboard, too.
    if (std::exchange(isTyping_, false)) ended_(how, text().toStdString());
}

} // namespace wegslot
