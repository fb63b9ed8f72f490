#include "hud/qt/warning_picture.h"

#include "base/translation.h"
#include "ui/qt/brand_qt.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPen>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace wegslot::picture {
namespace {

constexpr int padding = 18;
constexpr int spacing = 14;
constexpr int leastGap = 8; ///< between the texts and the button, apart from the spacing
constexpr int lineSpacing = 3;
constexpr int mostLines = 2;
constexpr QSize buttonPadding{14, 8};
constexpr qreal stroke = 5;
constexpr qreal edge = 1;
constexpr double edgeOpacity = 0.35;
constexpr double trackOpacity = 0.15;
constexpr int titleSize = 16;
constexpr int leastTitleSize = 11;
constexpr qreal numberSize = 19;

QtFont numberFont() { return qtFont(brand::heading(numberSize, FontWeight::heavy)); }
QtFont messageFont() { return qtFont(brand::body(12.5)); }
QtFont labelFont() { return qtFont(brand::heading(13, FontWeight::bold)); }

/// In a font so wide that the title does not fit beside the button, it is smaller: it is never cut.
QtFont titleFont(qreal width) {
    for (int size = titleSize; size > leastTitleSize; --size) {
        QtFont font = qtFont(brand::heading(size, FontWeight::heavy));
        if (QFontMetricsF(font.font).horizontalAdvance(title()) <= width) return font;
    }
    return qtFont(brand::heading(leastTitleSize, FontWeight::heavy));
}

/// The message in at most two lines, the second cut short where there would be a third. In the
/// measure of the font, which is painted scaled.
class MessageLines {
public:
    MessageLines(const QString& message, const QtFont& font, qreal width)
        : font_(font),
          metrics_(font.font) {
        const qreal available = width / font.scale;
        // Names may hold line breaks; what is said is one sentence.
        const QString text = message.simplified();
        QTextLayout layout(text, font.font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        for (int i = 0; i < mostLines; ++i) {
            QTextLine line = layout.createLine();
            if (!line.isValid()) break;
            line.setLineWidth(available);
            const bool isLast = i == mostLines - 1;
            lines_ << (isLast ? metrics_.elidedText(text.mid(line.textStart()), Qt::ElideRight,
                                                    available)
                              : text.mid(line.textStart(), line.textLength()).trimmed());
        }
        layout.endLayout();
    }

    [[nodiscard]] qreal height() const {
        return static_cast<qreal>(lines_.size()) * lineHeight() * font_.scale;
    }

    void paint(QPainter& painter, QPointF topLeft) const {
        painter.save();
        painter.setFont(font_.font);
        painter.setPen(qtColor(brand::cream));
        painter.translate(topLeft);
        painter.scale(font_.scale, font_.scale);
        qreal baseline = metrics_.ascent();
        for (const QString& line : lines_) {
            painter.drawText(QPointF(0, baseline), line);
            baseline += lineHeight();
        }
        painter.restore();
    }

private:
    [[nodiscard]] qreal lineHeight() const { return metrics_.ascent() + metrics_.descent(); }

    QtFont font_;
    QFontMetricsF metrics_;
    QStringList lines_;
};

void paintGround(QPainter& painter) {
    const QRectF whole(QPointF(0, 0), size);
    painter.setPen(Qt::NoPen);
    painter.setBrush(qtColor(brand::navy));
    painter.drawRoundedRect(whole, cornerRadius, cornerRadius);
    constexpr qreal inset = edge / 2;
    painter.setPen(QPen(qtColor(brand::lila.withOpacity(edgeOpacity)), edge));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(whole.adjusted(inset, inset, -inset, -inset), cornerRadius - inset,
                            cornerRadius - inset);
}

void paintTexts(QPainter& painter, const QString& message) {
    const int left = ringFrame.x() + ringFrame.width() + spacing;
    const int width = buttonFrame().x() - spacing - leastGap - spacing - left;
    const QtFont font = titleFont(width);
    const QFontMetricsF metrics(font.font);
    const MessageLines lines(message, messageFont(), width);
    const qreal titleHeight = metrics.ascent() + metrics.descent();
    const qreal top = (size.height() - titleHeight - lineSpacing - lines.height()) / 2;
    painter.setFont(font.font);
    painter.setPen(qtColor(brand::white));
    painter.drawText(QPointF(left, top + metrics.ascent()), title());
    lines.paint(painter, QPointF(left, top + titleHeight + lineSpacing));
}

/// Digits each in the middle of a cell of the widest one's width, so that the number does not
/// move while it counts. On the middle of the capitals, which is where the eye sees it.
void paintNumber(QPainter& painter, std::int64_t number) {
    const QString digits = QString::number(number);
    QFont font = numberFont().font;
    constexpr qreal room = 48 - 2 * stroke;
    const auto cellIn = [](const QFontMetricsF& metrics) {
        qreal widest = 0;
        for (char digit = '0'; digit <= '9'; ++digit)
            widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
        return widest;
    };
    const qreal wanted = cellIn(QFontMetricsF(font)) * static_cast<qreal>(digits.size());
    if (wanted > room) // hours: smaller rather than over the ring
        font.setPixelSize(std::max(1, static_cast<int>(numberSize * room / wanted)));
    const QFontMetricsF metrics(font);
    const qreal cell = cellIn(metrics);
    const QPointF centre = QRectF(ringFrame).center();
    qreal x = centre.x() - cell * static_cast<qreal>(digits.size()) / 2;
    painter.setFont(font);
    painter.setPen(qtColor(brand::white));
    for (const QChar digit : digits) {
        const qreal indent = (cell - metrics.horizontalAdvance(digit)) / 2;
        painter.drawText(QPointF(x + indent, centre.y() + metrics.capHeight() / 2), digit);
        x += cell;
    }
}

} // namespace

QString title() { return QString::fromStdString(translated("Je Mac lockt zo")); }

QString buttonLabel() { return QString::fromStdString(translated("Ik ben er nog")); }

QRect buttonFrame() {
    const QFontMetricsF metrics(labelFont().font);
    const int width = static_cast<int>(std::ceil(metrics.horizontalAdvance(buttonLabel()))) +
                      2 * buttonPadding.width();
    const int height = static_cast<int>(std::ceil(metrics.ascent() + metrics.descent())) +
                       2 * buttonPadding.height();
    return {size.width() - padding - width, (size.height() - height) / 2, width, height};
}

void paintStill(QPainter& painter, const QString& message) {
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter);
    painter.setPen(QPen(qtColor(brand::white.withOpacity(trackOpacity)), stroke));
    painter.drawEllipse(QRectF(ringFrame));
    paintTexts(painter, message);
}

void paintCountdown(QPainter& painter, const Countdown& countdown) {
    painter.setRenderHint(QPainter::Antialiasing);
    if (countdown.fraction > 0) {
        constexpr qreal top = 90; // degrees, as Qt counts them: against the clock
        constexpr qreal round = -360;
        const QRectF frame(ringFrame);
        QPainterPath arc;
        arc.arcMoveTo(frame, top);
        arc.arcTo(frame, top, round * countdown.fraction);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(qtColor(brand::orange), stroke, Qt::SolidLine, Qt::RoundCap));
        painter.drawPath(arc);
    }
    paintNumber(painter, countdown.number);
}

void paintButton(QPainter& painter, const QSize& frame, const ButtonState& state) {
    constexpr int darker = 115;  // percent, while it is held down
    constexpr int lighter = 112; // under the pointer
    const QColor orange = qtColor(brand::orange);
    QRectF capsule(QPointF(0, 0), frame);
    painter.setRenderHint(QPainter::Antialiasing);
    if (state.hasKeyboard) {
        // A ring with a gap to the capsule, which is a little smaller meanwhile.
        constexpr qreal ring = 2;
        constexpr qreal half = ring / 2;
        const qreal radius = frame.height() / 2.0 - half;
        painter.setPen(QPen(qtColor(brand::white), ring));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(capsule.adjusted(half, half, -half, -half), radius, radius);
        capsule.adjust(2 * ring, 2 * ring, -2 * ring, -2 * ring);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(state.isDown        ? orange.darker(darker)
                     : state.isPointedAt ? orange.lighter(lighter)
                                         : orange);
    painter.drawRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
    const QFont font = labelFont().font;
    const QFontMetricsF metrics(font);
    const qreal x = (frame.width() - metrics.horizontalAdvance(buttonLabel())) / 2;
    const qreal y = (frame.height() + metrics.ascent() - metrics.descent()) / 2;
    painter.setFont(font);
    painter.setPen(qtColor(brand::navy));
    painter.drawText(QPointF(x, y), buttonLabel());
}

} // namespace wegslot::picture
