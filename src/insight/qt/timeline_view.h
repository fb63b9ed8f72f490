// The timeline under hands: the wheel zooms about the pointer, dragging moves, a press chooses the
// event there. With the keyboard: arrows from event to event, Home and End, plus and minus, 0 for
// the whole day, pages to move, Enter for why. To a screen reader it tells in words what it draws.
#pragma once

#include "insight/qt/surroundings.h"
#include "insight/qt/timeline_painter.h"

#include <QWidget>

#include <optional>

namespace wegslot::insight {

class TimelineView final : public QWidget {
public:
    TimelineView(InsightModel& model, const Surroundings& surroundings);

    /// The model says something else by now.
    void refresh();

    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override { return minimumSizeHint() * 1.5; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Drag {
        double pressedAt = 0;
        double movedTo = 0;
        bool isDrag = false; ///< and no press any more
    };

    static constexpr int padding = 10;

    [[nodiscard]] QString told() const;
    void turnPage(double pages);
    [[nodiscard]] TimelinePainter painter() const;
    [[nodiscard]] QSize contents() const { return size() - QSize(2 * padding, 2 * padding); }
    [[nodiscard]] static double inContents(double x) { return x - padding; }

    InsightModel& model_;
    Surroundings surroundings_;
    std::optional<Drag> drag_;
};

} // namespace wegslot::insight
