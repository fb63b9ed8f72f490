#include "insight/qt/legend_view.h"

#include "base/translation.h"
#include "insight/qt/look.h"
#include "ui/qt/brand_qt.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <functional>
#include <vector>

namespace wegslot::insight {
namespace {

constexpr int swatch = 18;
constexpr int swatchGap = 6;
constexpr int entryGap = 16;

/// What is drawn in front of a word.
enum class Sign { strength, threshold, near, leaving, away, unknown };

struct Entry {
    Sign sign;
    QString word;
};

std::vector<Entry> entries() {
    return {{Sign::strength, QString::fromStdString(translated("Signaal"))},
            {Sign::threshold, QString::fromStdString(translated("Drempel"))},
            {Sign::near, QString::fromStdString(translated("Dichtbij"))},
            {Sign::leaving, QString::fromStdString(translated("Zwak"))},
            {Sign::away, QString::fromStdString(translated("Weg"))},
            {Sign::unknown, QString::fromStdString(translated("Niets bekend"))}};
}

QFont wordFont() { return fontOf(12); }

/// Calls `place` with each entry and where it is, in lines of `width`; gives the size of them all.
QSize layOut(int width, const std::function<void(const Entry&, const QRect&)>& place) {
    const QFontMetrics metrics(wordFont());
    const int height = metrics.height() + 4;
    int x = 0;
    int y = 0;
    int widest = 0;
    for (const Entry& entry : entries()) {
        const int needed = swatch + swatchGap + metrics.horizontalAdvance(entry.word);
        if (x > 0 && x + needed > width) {
            x = 0;
            y += height;
        }
        place(entry, QRect(x, y, needed, height));
        x += needed + entryGap;
        widest = std::max(widest, x - entryGap);
    }
    return {widest, y + height};
}

void paintSign(QPainter& painter, Sign sign, const QRectF& place, const PanelColors& colors) {
    const double middle = place.center().y();
    const auto bar = [&](KeyState state, double height) {
        painter.fillRect(QRectF(place.left(), middle + 4 - height, place.width(), height),
                         qtColor(colorOf(state)));
    };
    switch (sign) {
    case Sign::strength:
        painter.fillRect(QRectF(place.left(), middle - 4, place.width(), 8),
                         qtColor(brand::lila.withOpacity(0.55)));
        painter.fillRect(QRectF(place.left(), middle - 1, place.width(), 2), qtColor(colors.text));
        return;
    case Sign::threshold:
        painter.setPen(QPen(qtColor(colors.focus), 2, Qt::DashLine));
        painter.drawLine(QPointF(place.left() + 1, middle), QPointF(place.right(), middle));
        return;
    case Sign::near:
        return bar(KeyState::near, 7);
    case Sign::leaving:
        return bar(KeyState::leaving, 4);
    case Sign::away:
        return bar(KeyState::away, 2);
    case Sign::unknown:
        painter.fillRect(QRectF(place.left(), middle - 5, place.width(), 10),
                         QBrush(qtColor(colors.line), Qt::BDiagPattern));
    }
}

} // namespace

LegendView::LegendView(const Surroundings& surroundings) : surroundings_(surroundings) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize LegendView::sizeWithin(int width) const {
    return layOut(width, [](const Entry&, const QRect&) {});
}

void LegendView::paintEvent(QPaintEvent*) {
    const PanelColors colors = surroundings_.colors();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(wordFont());
    layOut(width(), [&](const Entry& entry, const QRect& place) {
        paintSign(painter, entry.sign, QRectF(place.left(), place.top(), swatch, place.height()),
                  colors);
        painter.setPen(qtColor(colors.quiet));
        painter.drawText(place.adjusted(swatch + swatchGap, 0, 2, 0),
                         Qt::AlignLeft | Qt::AlignVCenter, entry.word);
    });
}

} // namespace wegslot::insight
