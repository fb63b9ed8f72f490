#include "ui/qt/panel/disclosure.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <utility>

namespace wegslot {
namespace {

constexpr double arrowRoom = 14;
constexpr double tracking = 0.6; ///< of capitals, pixels

} // namespace

DisclosureButton::DisclosureButton(Rank rank) : rank_(rank) {
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void DisclosureButton::show(const std::string& text, bool isOpen, const PanelColors& colors) {
    colors_ = colors;
    const QString shown = QString::fromStdString(text);
    if (shown != QPushButton::text()) {
        setText(shown);
        setAccessibleName(shown);
    }
    setChecked(isOpen);
    update();
}

QString DisclosureButton::shownText() const {
    return rank_ == Rank::section ? QLocale(QLocale::Dutch).toUpper(text()) : text();
}

Font DisclosureButton::shownFont() const {
    return scaledFont(rank_ == Rank::section ? brand::heading(11, FontWeight::heavy)
                                             : brand::body(11.5));
}

QSize DisclosureButton::sizeHint() const {
    const QtFont font = qtFont(shownFont());
    const QFontMetricsF metrics(font.font);
    return {static_cast<int>(
                std::ceil(arrowRoom + metrics.horizontalAdvance(shownText()) * font.scale)),
            static_cast<int>(std::ceil(metrics.height() * font.scale)) + 6};
}

void DisclosureButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse()) painting::fillRounded(painter, rect(), 6, colors_.hover);
    const Color ink = rank_ == Rank::section ? brand::lila : colors_.quiet;

    QPainterPath arrow;
    arrow.moveTo(-2, -3.5);
    arrow.lineTo(1.8, 0);
    arrow.lineTo(-2, 3.5);
    painter.save();
    painter.translate(5, height() / 2.0);
    painter.rotate(isChecked() ? 90 : 0);
    painter.setPen(QPen(qtColor(ink), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(arrow);
    painter.restore();

    QtFont font = qtFont(shownFont());
    if (rank_ == Rank::section) font.font.setLetterSpacing(QFont::AbsoluteSpacing, tracking);
    painter.save();
    painter.setPen(qtColor(ink));
    painter.setFont(font.font);
    painter.translate(arrowRoom, 0);
    painter.scale(font.scale, font.scale);
    painter.drawText(QRectF(0, 0, (width() - arrowRoom) / font.scale, height() / font.scale),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shownText());
    painter.restore();
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, rect(), 6, colors_.focus);
}

Disclosure::Disclosure(DisclosureButton::Rank rank, int spacing, std::unique_ptr<QWidget> content)
    : content_(std::move(content)),
      button_(rank),
      layout_(this) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(spacing);
    layout_.addWidget(&button_);
    layout_.addWidget(content_.get());
}

void Disclosure::show(const std::string& text, bool isOpen, const PanelColors& colors) {
    button_.show(text, isOpen, colors);
    content_->setVisible(isOpen);
}

} // namespace wegslot
