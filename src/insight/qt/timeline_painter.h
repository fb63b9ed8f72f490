// Draws the part of a timeline that is looked at: what happened, the phases, and below each other
// the keys, with their strength, their threshold and what they were judged to be. Costs as much for
// a day as for a minute.
#pragma once

#include "insight/insight_model.h"
#include "ui/panel_colors.h"
#include "ui/qt/symbol_images.h"

#include <QRectF>
#include <QSize>

#include <cstddef>
#include <optional>
#include <vector>

class QPainter;

namespace wegslot::insight {

class TimelinePainter {
public:
    /// In a place of this size. Model and images must outlive it.
    TimelinePainter(const InsightModel& model, const SymbolImages& images, PanelColors colors,
                    QSize size, double ratio);

    void paint(QPainter& painter) const;

    /// Where times lie: from the left of what is seen to its right.
    [[nodiscard]] const QRectF& plot() const { return plot_; }
    [[nodiscard]] TimePoint timeAt(double x) const;
    [[nodiscard]] double placeOf(TimePoint wall) const;

    /// The listed event at `x`, within a finger's width.
    [[nodiscard]] std::optional<std::size_t> eventAt(double x) const;

    /// In which so many keys can be told apart.
    [[nodiscard]] static QSize leastSize(std::size_t lanes);

private:
    struct LanePlace {
        QRectF head;
        QRectF strengths;
        QRectF states;

        [[nodiscard]] QRectF drawn() const { return strengths.united(states); }
    };

    [[nodiscard]] LanePlace lanePlace(std::size_t lane) const;
    /// Where there is something from left to right, and no text in the way.
    [[nodiscard]] std::vector<QRectF> drawn() const;
    void paintPhases(QPainter& painter) const;
    void paintLane(QPainter& painter, const Lane& lane, const LanePlace& place) const;
    void paintHead(QPainter& painter, const Lane& lane, const QRectF& place) const;
    void paintGrid(QPainter& painter, const LanePlace& place) const;
    void paintStrengths(QPainter& painter, const Lane& lane, const QRectF& place) const;
    void paintThresholds(QPainter& painter, const Lane& lane, const QRectF& place) const;
    void paintStates(QPainter& painter, const Lane& lane, const QRectF& place) const;
    void paintAxis(QPainter& painter) const;
    void paintUnknown(QPainter& painter) const;
    void paintEvents(QPainter& painter) const;
    void paintMark(QPainter& painter, const Event& event, bool isChosen) const;

    /// Where a stretch of time is, at least a pixel wide; nothing where it is not seen.
    [[nodiscard]] std::optional<QRectF> across(const Span& span, const QRectF& place) const;

    const InsightModel& model_;
    const SymbolImages& images_;
    PanelColors colors_;
    double ratio_;
    Span visible_;
    QRectF marks_;
    QRectF phases_;
    QRectF lanes_;
    QRectF axis_;
    QRectF plot_; ///< of them all
};

} // namespace wegslot::insight
