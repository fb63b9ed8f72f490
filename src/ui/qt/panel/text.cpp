#include "ui/qt/panel/text.h"

#include "ui/qt/brand_qt.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

constexpr double unbounded = 1e6;

/// Formats that give every digit the room of the widest, so that a number does not move what
/// follows it while it counts. Half of what a digit lacks goes before it, as what follows the
/// letter there. Kerning would push a pair of ones together.
QList<QTextLayout::FormatRange> equalDigits(const QString& text, const QFont& font) {
    const QFontMetricsF metrics(font);
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    const auto isDigit = [&text](qsizetype i) {
        return i < text.size() && text[i] >= u'0' && text[i] <= u'9';
    };
    const auto lacking = [&](qsizetype i) {
        return isDigit(i) ? widest - metrics.horizontalAdvance(text[i]) : 0;
    };
    QList<QTextLayout::FormatRange> formats;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const double after = (lacking(i) + lacking(i + 1)) / 2;
        if (after <= 0 && !isDigit(i)) continue;
        QTextCharFormat format;
        format.setFontKerning(false);
        format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        format.setFontLetterSpacing(after);
        formats.append({static_cast<int>(i), 1, format});
    }
    return formats;
}

} // namespace

Text::Text(const Font& font, Fit fit, int least) : fit_(fit), least_(least) {
    const QtFont made = qtFont(scaledFont(font));
    font_ = made.font;
    scale_ = made.scale;
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(fit == Fit::whole ? QSizePolicy::Fixed : QSizePolicy::Preferred,
                       QSizePolicy::Fixed);
    if (fit == Fit::wrapped) policy = QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    setSizePolicy(policy);
    setWordWrap(fit == Fit::wrapped); // which says that the height depends on the width
}

void Text::show(const std::string& text, const Color& color) {
    const QString shown = QString::fromStdString(text);
    if (shown != QLabel::text()) {
        setText(shown);
        if (fit_ == Fit::elided) setToolTip(shown); // where it is cut short it can be read whole
        updateGeometry();
    }
    if (color_ == color) return;
    color_ = color;
    update();
}

/// In the measure of the font, which is painted scaled.
QSizeF Text::layOut(QTextLayout& layout, double width) const {
    QTextOption option(alignment() & Qt::AlignHorizontal_Mask);
    option.setWrapMode(fit_ == Fit::wrapped ? QTextOption::WordWrap : QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.setFont(font_);
    layout.setFormats(equalDigits(layout.text(), font_));
    layout.beginLayout();
    QSizeF size;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width / scale_);
        line.setPosition(QPointF(0, size.height()));
        size = {std::max(size.width(), line.naturalTextWidth()), size.height() + line.height()};
    }
    layout.endLayout();
    return size;
}

QSize Text::sizeWithin(double width) const {
    QString lines = text();
    QTextLayout layout(lines.replace(u'\n', QChar::LineSeparator));
    const QSizeF needed = layOut(layout, width) * scale_;
    return {static_cast<int>(std::ceil(needed.width())),
            static_cast<int>(std::ceil(needed.height()))};
}

QSize Text::sizeHint() const { return sizeWithin(unbounded); }

QSize Text::minimumSizeHint() const {
    const QSize whole = sizeWithin(unbounded);
    return fit_ == Fit::whole ? whole : QSize(std::min(least_, whole.width()), whole.height());
}

int Text::heightForWidth(int width) const {
    return fit_ == Fit::wrapped ? sizeWithin(width).height() : -1;
}

void Text::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(qtColor(color_));
    painter.scale(scale_, scale_);
    QString shown = text();
    shown.replace(u'\n', QChar::LineSeparator);
    if (fit_ != Fit::wrapped) {
        const double lacking = sizeWithin(unbounded).width() - width();
        const QFontMetricsF metrics(font_);
        if (lacking > 0)
            shown = metrics.elidedText(shown, Qt::ElideRight,
                                       metrics.horizontalAdvance(shown) - lacking / scale_);
    }
    QTextLayout layout(shown);
    const double needed = layOut(layout, width()).height();
    layout.draw(&painter, QPointF(0, (height() / scale_ - needed) / 2));
}

} // namespace wegslot
