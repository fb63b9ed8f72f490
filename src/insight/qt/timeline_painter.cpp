#include "insight/qt/timeline_painter.h"

#include "insight/axis.h"
#include "insight/qt/look.h"
#include "ui/contrast.h"
#include "ui/phase_presentation.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/text_scale.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace wegslot::insight {
namespace {

// What radios have: weaker is not heard, stronger is next to each other.
constexpr double weakest = -100;
constexpr double strongest = -30;
constexpr std::array gridLines{-40, -60, -80};

constexpr double laneGap = 10;  ///< between lanes
constexpr double stateBand = 8; ///< below a key's strength
constexpr double markSide = 16;
constexpr double reach = 8; ///< of a pointer, to either side
constexpr double leastPlot = 48;
/// A line is drawn from one sample to the next unless it is silent for longer.
constexpr Nanoseconds silence = std::chrono::seconds{15};

double lineHeight(const QFont& font) { return std::ceil(QFontMetricsF(font).height()); }

QFont titleFont() { return fontOf(13, FontWeight::semibold); }
QFont smallFont() { return fontOf(11); }

double gutter() {
    return std::ceil(QFontMetricsF(smallFont()).horizontalAdvance(QStringLiteral("-100"))) + 8;
}

double heightOf(int dBm, const QRectF& place) {
    const double fraction =
        (std::clamp<double>(dBm, weakest, strongest) - weakest) / (strongest - weakest);
    return place.bottom() - fraction * place.height();
}

/// What a mark stands for, when there is room for a few only.
enum class Weight { lock, warning, other, none };

Weight weightOf(Kind kind) {
    switch (kind) {
    case Kind::lock:
    case Kind::lockFailed:
        return Weight::lock;
    case Kind::warning:
        return Weight::warning;
    case Kind::unknown:
        return Weight::none;
    case Kind::lockConfirmed:
    case Kind::unlock:
    case Kind::pause:
    case Kind::phase:
    case Kind::key:
    case Kind::settings:
    case Kind::radio:
        break;
    }
    return Weight::other;
}

QString text(const std::string& words) { return QString::fromStdString(words); }

} // namespace

TimelinePainter::TimelinePainter(const InsightModel& model, const SymbolImages& images,
                                 PanelColors colors, QSize size, double ratio)
    : model_(model),
      images_(images),
      colors_(colors),
      ratio_(ratio),
      visible_(model.viewport().visible()) {
    const double left = gutter();
    const double width = std::max(1.0, size.width() - left - 4);
    const double small = lineHeight(smallFont());
    marks_ = QRectF(left, 2, width, markSide * controlScale() + 8);
    phases_ = QRectF(left, marks_.bottom(), width, small + 6);
    axis_ = QRectF(left, size.height() - small - 4, width, small + 4);
    const double top = phases_.bottom() + laneGap;
    lanes_ = QRectF(left, top, width, std::max(0.0, axis_.top() - top));
    plot_ = QRectF(left, marks_.top(), width, axis_.top() - marks_.top());
}

QSize TimelinePainter::leastSize(std::size_t lanes) {
    const double small = lineHeight(smallFont());
    const double lane = lineHeight(titleFont()) + 4 + leastPlot + stateBand + laneGap;
    const double rest = markSide * controlScale() + 8 + 2 * (small + 6) + laneGap + 4;
    return {420, static_cast<int>(std::ceil(
                     rest + lane * static_cast<double>(std::max<std::size_t>(lanes, 1))))};
}

TimePoint TimelinePainter::timeAt(double x) const {
    const double fraction = std::clamp((x - plot_.left()) / plot_.width(), 0.0, 1.0);
    return visible_.from +
           Nanoseconds{std::llround(fraction * static_cast<double>(visible_.length().count()))};
}

double TimelinePainter::placeOf(TimePoint wall) const {
    const auto length = static_cast<double>(std::max<std::int64_t>(1, visible_.length().count()));
    return plot_.left() +
           plot_.width() * static_cast<double>((wall - visible_.from).count()) / length;
}

std::optional<std::size_t> TimelinePainter::eventAt(double x) const {
    std::optional<std::size_t> nearest;
    double least = reach;
    for (const std::size_t event : model_.listed()) {
        const double distance = std::abs(placeOf(model_.timeline().events[event].wall) - x);
        if (distance > least) continue;
        least = distance;
        nearest = event;
    }
    return nearest;
}

std::optional<QRectF> TimelinePainter::across(const Span& span, const QRectF& place) const {
    if (span.to <= visible_.from || span.from >= visible_.to) return std::nullopt;
    const double left = std::max(place.left(), placeOf(span.from));
    const double right = std::min(place.right(), placeOf(span.to));
    return QRectF(left, place.top(), std::max(1 / ratio_, right - left), place.height());
}

TimelinePainter::LanePlace TimelinePainter::lanePlace(std::size_t lane) const {
    const double count = static_cast<double>(model_.timeline().lanes.size());
    const double height = lanes_.height() / count;
    const double top = lanes_.top() + static_cast<double>(lane) * height;
    const QRectF head(lanes_.left(), top, lanes_.width(), lineHeight(titleFont()));
    const double below = head.bottom() + 4;
    const QRectF strengths(lanes_.left(), below, lanes_.width(),
                           std::max(8.0, top + height - laneGap - stateBand - below));
    return {.head = head,
            .strengths = strengths,
            .states = QRectF(lanes_.left(), strengths.bottom(), lanes_.width(), stateBand)};
}

std::vector<QRectF> TimelinePainter::drawn() const {
    std::vector<QRectF> places{phases_};
    const std::size_t count = model_.timeline().lanes.size();
    for (std::size_t i = 0; i < count; ++i)
        places.push_back(lanePlace(i).drawn());
    if (count == 0) places.push_back(lanes_);
    return places;
}

void TimelinePainter::paint(QPainter& painter) const {
    paintAxis(painter);
    paintPhases(painter);
    const auto& lanes = model_.timeline().lanes;
    for (std::size_t i = 0; i < lanes.size(); ++i)
        paintLane(painter, lanes[i], lanePlace(i));
    paintUnknown(painter);
    paintEvents(painter);
}

void TimelinePainter::paintAxis(QPainter& painter) const {
    const QFont font = smallFont();
    painter.setFont(font);
    const double room =
        QFontMetricsF(font).horizontalAdvance(text(model_.zone().exactTime(visible_.from))) + 28;
    const int most = static_cast<int>(plot_.width() / room);
    for (const Tick& tick : ticks(visible_, model_.timeline().day.from, most, model_.zone())) {
        const double x = placeOf(tick.wall);
        for (const QRectF& place : drawn())
            painter.fillRect(QRectF(x, place.top(), 1, place.height()), qtColor(colors_.divider));
        painter.setPen(qtColor(colors_.quiet));
        const double width = QFontMetricsF(font).horizontalAdvance(text(tick.label));
        const double left = std::clamp(x - width / 2, 0.0, axis_.right() - width);
        painter.drawText(QPointF(left, axis_.bottom() - 3), text(tick.label));
    }
}

void TimelinePainter::paintPhases(QPainter& painter) const {
    painter.fillRect(phases_, qtColor(colors_.control));
    const QFont font = smallFont();
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    double painted = phases_.left() - 1;
    for (const auto& [span, phase] : model_.timeline().phases) {
        const auto place = across(span, phases_);
        if (!place || place->right() <= painted) continue; // in a pixel that has one already
        painted = place->right();
        const Color color = wegslot::color(phase);
        painter.fillRect(*place, qtColor(over(color.withOpacity(0.3), colors_.card)));
        const Color outline = colors_.outlineOf(color, colors_.card);
        painter.fillRect(QRectF(place->left(), place->bottom() - 3, place->width(), 3),
                         qtColor(outline.opacity > 0 && color == brand::navy ? outline : color));
        const QString word = text(shortWord(phase));
        if (metrics.horizontalAdvance(word) + 8 > place->width()) continue;
        painter.setPen(qtColor(colors_.text));
        painter.drawText(place->adjusted(4, 0, -4, -3), Qt::AlignLeft | Qt::AlignVCenter, word);
    }
}

void TimelinePainter::paintLane(QPainter& painter, const Lane& lane, const LanePlace& place) const {
    paintHead(painter, lane, place.head);
    paintGrid(painter, place);
    paintStrengths(painter, lane, place.strengths);
    paintThresholds(painter, lane, place.strengths);
    paintStates(painter, lane, place.states);
}

/// Whose it is on the left, and in numbers what is seen of it on the right.
void TimelinePainter::paintHead(QPainter& painter, const Lane& lane, const QRectF& place) const {
    std::string told;
    for (const Message& part : summary(lane, visible_))
        told += (told.empty() ? "" : ", ") + part.translated();
    const QFontMetricsF small(smallFont());
    const QFontMetricsF title(titleFont());
    const QString name = text(lane.name);
    const double nameWidth = std::min(title.horizontalAdvance(name) + 12, place.width() / 2);
    painter.setFont(titleFont());
    painter.setPen(qtColor(colors_.text));
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                     title.elidedText(name, Qt::ElideRight, nameWidth));
    painter.setFont(smallFont());
    painter.setPen(qtColor(colors_.quiet));
    painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter,
                     small.elidedText(text(told), Qt::ElideRight, place.width() - nameWidth));
}

void TimelinePainter::paintGrid(QPainter& painter, const LanePlace& place) const {
    const QRectF& strengths = place.strengths;
    const double height = QFontMetricsF(smallFont()).height();
    painter.setFont(smallFont());
    painter.setPen(qtColor(colors_.quiet));
    double below = strengths.top() - height;
    for (const int dBm : gridLines) {
        const double y = heightOf(dBm, strengths);
        painter.fillRect(QRectF(strengths.left(), y, strengths.width(), 1),
                         qtColor(colors_.divider));
        if (y - height / 2 < below - 2) continue; // there is no room for its number
        below = y + height / 2;
        painter.drawText(QRectF(0, y - height / 2, strengths.left() - 6, height),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(dBm));
    }
}

void TimelinePainter::paintStrengths(QPainter& painter, const Lane& lane,
                                     const QRectF& place) const {
    const int count = static_cast<int>(std::lround(place.width() * ratio_));
    const auto columns = lane.signal.columns(visible_, count);
    const double width = place.width() / std::max(1, count);
    const double thickness = std::max(1.0, 1.5 / ratio_);
    const QColor range = qtColor(brand::lila.withOpacity(0.55));
    for (int i = 0; i < count; ++i) {
        const auto& column = columns[static_cast<std::size_t>(i)];
        if (!column || column->lowest == column->highest) continue;
        const double top = heightOf(column->highest, place);
        painter.fillRect(
            QRectF(place.left() + i * width, top, width, heightOf(column->lowest, place) - top),
            range);
    }
    const Nanoseconds each = visible_.length() / std::max(1, count);
    const int longest = static_cast<int>(
        std::min<std::int64_t>(count, 1 + silence / std::max(each, Nanoseconds{1})));
    QPolygonF line;
    int last = -count;
    painter.setPen(QPen(qtColor(colors_.text), thickness));
    const auto finish = [&] {
        if (line.size() == 1)
            painter.drawRect(QRectF(line.front(), QSizeF(thickness, thickness) / 2));
        else if (!line.isEmpty())
            painter.drawPolyline(line);
        line.clear();
    };
    for (int i = 0; i < count; ++i) {
        const auto& column = columns[static_cast<std::size_t>(i)];
        if (!column) continue;
        if (i - last > longest) finish();
        last = i;
        line << QPointF(place.left() + (i + 0.5) * width, heightOf(column->median, place));
    }
    finish();
}

void TimelinePainter::paintThresholds(QPainter& painter, const Lane& lane,
                                      const QRectF& place) const {
    painter.setPen(QPen(qtColor(colors_.focus), 2, Qt::DashLine));
    for (const auto& [span, threshold] : lane.thresholds) {
        const auto part = across(span, place);
        if (!part) continue;
        const double y = heightOf(static_cast<int>(std::lround(threshold.value)), place);
        painter.drawLine(QPointF(part->left(), y), QPointF(part->right(), y));
    }
}

/// Lower as it is further away, so that it can be told without colours.
void TimelinePainter::paintStates(QPainter& painter, const Lane& lane, const QRectF& place) const {
    double painted = place.left() - 1;
    for (const auto& [span, state] : lane.states) {
        const auto part = across(span, place);
        if (!part || part->right() <= painted) continue;
        painted = part->right();
        const double height = state == KeyState::near      ? place.height() - 1
                              : state == KeyState::leaving ? place.height() / 2
                                                           : 2;
        painter.fillRect(QRectF(part->left(), part->bottom() - height, part->width(), height),
                         qtColor(colorOf(state)));
    }
}

void TimelinePainter::paintUnknown(QPainter& painter) const {
    const QBrush hatching(qtColor(colors_.line.withOpacity(0.3)), Qt::BDiagPattern);
    for (const QRectF& all : drawn())
        for (const Span& span : model_.timeline().unknown)
            if (const auto place = across(span, all)) painter.fillRect(*place, hatching);
}

void TimelinePainter::paintMark(QPainter& painter, const Event& event, bool isChosen) const {
    const double side = markSide * controlScale();
    const double x = placeOf(event.wall);
    const QRectF tile(x - side / 2 - 3, marks_.top(), side + 6, side + 6);
    const Color ink = inkOf(event.kind, colors_);
    const double width = isChosen ? 2 : 1;
    for (const QRectF& place : drawn())
        painter.fillRect(QRectF(x - width / 2, place.top(), width, place.height()),
                         qtColor(isChosen ? colors_.focus : ink.withOpacity(0.7)));
    painter.setPen(isChosen ? QPen(qtColor(colors_.focus), 2) : QPen(Qt::NoPen));
    painter.setBrush(qtColor(colors_.card));
    painter.drawRoundedRect(tile.adjusted(1, 1, -1, -1), 5, 5);
    painter.setBrush(Qt::NoBrush);
    painter.drawImage(QPointF(x - side / 2, tile.top() + 3),
                      images_.image(symbolOf(event.kind), ink, side, ratio_));
}

/// What counts most is drawn first, and what has no room beside it is left to the list.
void TimelinePainter::paintEvents(QPainter& painter) const {
    painter.save();
    painter.setClipRect(QRectF(plot_.left() - 16, 0, plot_.width() + 32, axis_.bottom()));
    const double room = markSide * controlScale() + 8;
    std::vector<double> taken;
    const auto isFree = [&](double x) {
        return std::ranges::none_of(taken,
                                    [&](double other) { return std::abs(other - x) < room; });
    };
    const auto& events = model_.timeline().events;
    if (const Event* const chosen = model_.chosenEvent()) taken.push_back(placeOf(chosen->wall));
    for (const Weight weight : {Weight::lock, Weight::warning, Weight::other})
        for (const std::size_t index : model_.listed()) {
            const Event& event = events[index];
            const double x = placeOf(event.wall);
            if (weightOf(event.kind) != weight || x < plot_.left() || x > plot_.right() ||
                !isFree(x))
                continue;
            taken.push_back(x);
            paintMark(painter, event, false);
        }
    if (const Event* const chosen = model_.chosenEvent();
        chosen != nullptr && visible_.from <= chosen->wall && chosen->wall <= visible_.to)
        paintMark(painter, *chosen, true);
    painter.restore();
}

} // namespace wegslot::insight
