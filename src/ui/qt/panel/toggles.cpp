#include "ui/qt/panel/toggles.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

constexpr double labelGap = 8; ///< between box and text
constexpr int wrappingFromTop = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop;

double boxSide() { return 16 * controlScale(); }

QSizeF textSize(const QString& text, double width) {
    const QtFont font = qtFont(scaledFont(brand::body(13)));
    const QRectF room(0, 0, width / font.scale, 1e6);
    return QFontMetricsF(font.font).boundingRect(room, wrappingFromTop, text).size() * font.scale;
}

void paintTick(QPainter& painter, const QRectF& box) {
    const double part = box.width() / 16;
    QPainterPath tick;
    tick.moveTo(box.left() + 4 * part, box.center().y() + 0.5 * part);
    tick.lineTo(box.left() + 7 * part, box.bottom() - 4.5 * part);
    tick.lineTo(box.right() - 3.5 * part, box.top() + 4.5 * part);
    painter.setPen(
        QPen(qtColor(brand::navy), 2 * part, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(tick);
}

} // namespace

Toggle::Toggle() {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void Toggle::show(const panel::Toggle& toggle, const PanelColors& colors) {
    colors_ = colors;
    const QString text = QString::fromStdString(toggle.text);
    const QString tooltip = QString::fromStdString(toggle.tooltip);
    if (text != QCheckBox::text()) {
        setText(text);
        updateGeometry();
    }
    setToolTip(tooltip);
    setAccessibleName(text.isEmpty() ? tooltip : text);
    setChecked(toggle.isOn);
    update();
}

void Switch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = QRectF(rect()).adjusted(2, 2, -2, -2);
    const double radius = track.height() / 2;
    painting::fillRounded(painter, track, radius, isChecked() ? brand::orange : colors().control);
    if (!isChecked()) painting::strokeRounded(painter, track, radius, colors().line, 1);
    if (underMouse()) painting::fillRounded(painter, track, radius, colors().hover);
    const double knob = track.height() - 4;
    const double left = isChecked() ? track.right() - 2 - knob : track.left() + 2;
    painting::fillRounded(painter, QRectF(left, track.top() + 2, knob, knob), knob / 2,
                          isChecked() ? brand::navy : colors().quiet);
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, rect(), height() / 2.0, colors().focus);
}

CheckBox::CheckBox() {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize CheckBox::sizeHint() const {
    const QSizeF text = textSize(QCheckBox::text(), 1e6);
    // Narrower is possible, in more lines.
    return {static_cast<int>(std::ceil(boxSide() + labelGap + std::min(text.width(), 200.0))),
            static_cast<int>(std::ceil(std::max(boxSide(), text.height()))) + 4};
}

int CheckBox::heightForWidth(int width) const {
    const QSizeF text = textSize(QCheckBox::text(), width - boxSide() - labelGap);
    return static_cast<int>(std::ceil(std::max(boxSide(), text.height()))) + 4;
}

void CheckBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double radius = 4;
    const QtFont font = qtFont(scaledFont(brand::body(13)));
    const double lineHeight = QFontMetricsF(font.font).height() * font.scale;
    const QRectF box(0.5, 2 + std::max(0.0, (lineHeight - boxSide()) / 2), boxSide(), boxSide());
    painting::fillRounded(painter, box, radius, isChecked() ? brand::orange : colors().control);
    if (!isChecked()) painting::strokeRounded(painter, box, radius, colors().line, 1);
    if (underMouse()) painting::fillRounded(painter, box, radius, colors().hover);
    if (isChecked()) paintTick(painter, box);

    painter.setPen(qtColor(colors().text));
    painter.setFont(font.font);
    painter.save();
    painter.translate(boxSide() + labelGap, 2);
    painter.scale(font.scale, font.scale);
    painter.drawText(
        QRectF(0, 0, (width() - boxSide() - labelGap) / font.scale, height() / font.scale),
        wrappingFromTop, text());
    painter.restore();
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, box.adjusted(-2, -2, 2, 2), radius + 2, colors().focus);
}

} // namespace wegslot
