// The events of a day as a list: everything that the timeline draws, in words, each with "Waarom?".
// What is chosen here is chosen in the timeline, and the other way round.
#pragma once

#include "insight/insight_model.h"
#include "insight/qt/surroundings.h"
#include "ui/qt/panel/small_parts.h"

#include <QAbstractListModel>
#include <QListView>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <optional>
#include <string>
#include <vector>

namespace wegslot::insight {

/// The rows, as a screen reader tells them.
class EventRows final : public QAbstractListModel {
public:
    explicit EventRows(const InsightModel& model) : model_(model) {}

    /// Says whether there are others than before, or more.
    bool refresh();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] std::size_t eventOf(const QModelIndex& index) const;
    [[nodiscard]] QModelIndex indexOf(std::optional<std::size_t> event) const;

private:
    const InsightModel& model_;
    std::vector<std::size_t> listed_;
    std::vector<QString> texts_;
};

/// How a row looks.
class EventDelegate final : public QStyledItemDelegate {
public:
    EventDelegate(const InsightModel& model, const EventRows& rows,
                  const Surroundings& surroundings)
        : model_(model),
          rows_(rows),
          surroundings_(surroundings) {}

    void setWidth(int width) { width_ = width; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;

    /// Where "Waarom?" stands in a row that lies there.
    [[nodiscard]] QRect linkIn(const QRect& row, const QModelIndex& index) const;

private:
    [[nodiscard]] QRect textIn(const QRect& row) const;

    const InsightModel& model_;
    const EventRows& rows_;
    Surroundings surroundings_;
    int width_ = 300;
};

class EventList final : public QListView {
public:
    EventList(InsightModel& model, const Surroundings& surroundings);

    /// The model says something else by now.
    void refresh();

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] bool isOnLink(const QPoint& at) const;

    InsightModel& model_;
    Surroundings surroundings_;
    EventRows rows_;
    EventDelegate delegate_;
    ThinScrollBar scrollBar_;
    bool isRefreshing_ = false;
};

/// The list on a card.
class EventCard final : public QWidget {
public:
    EventCard(InsightModel& model, const Surroundings& surroundings);

    void refresh();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Surroundings surroundings_;
    QVBoxLayout layout_{this};
    EventList list_;
};

} // namespace wegslot::insight
