#include "insight/qt/event_list.h"

#include "insight/qt/look.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/card.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/text_scale.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace wegslot::insight {
namespace {

constexpr int rowPadding = 8;
constexpr int symbolSide = 16;
constexpr int symbolGap = 8;
constexpr int cardMargin = 6;

QFont rowFont() { return fontOf(13); }
QString linkText() { return QString::fromStdString(translated("Waarom?")); }
int linkWidth() { return QFontMetrics(rowFont()).horizontalAdvance(linkText()) + 12; }

constexpr int wrapped = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;

} // namespace

bool EventRows::refresh() {
    std::vector<QString> texts;
    for (const std::size_t event : model_.listed())
        texts.push_back(QString::fromStdString(model_.rowText(event)));
    if (listed_ == model_.listed() && texts_ == texts) return false;
    // What only reads otherwise keeps its place, and with it the keyboard.
    if (listed_ == model_.listed()) {
        texts_ = std::move(texts);
        dataChanged(index(0), index(rowCount() - 1));
        return true;
    }
    beginResetModel();
    listed_ = model_.listed();
    texts_ = std::move(texts);
    endResetModel();
    return true;
}

int EventRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(listed_.size());
}

QVariant EventRows::data(const QModelIndex& index, int role) const {
    const auto row = static_cast<std::size_t>(index.row());
    if (!index.isValid() || row >= texts_.size()) return {};
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return texts_[row];
    return {};
}

std::size_t EventRows::eventOf(const QModelIndex& index) const {
    return listed_[static_cast<std::size_t>(index.row())];
}

QModelIndex EventRows::indexOf(std::optional<std::size_t> event) const {
    if (!event) return {};
    const auto found = std::ranges::lower_bound(listed_, *event);
    if (found == listed_.end() || *found != *event) return {};
    return index(static_cast<int>(found - listed_.begin()));
}

QRect EventDelegate::textIn(const QRect& row) const {
    const int left = rowPadding + scaledControl(symbolSide) + symbolGap;
    return row.adjusted(left, rowPadding, -rowPadding - linkWidth(), -rowPadding);
}

QRect EventDelegate::linkIn(const QRect& row, const QModelIndex& index) const {
    if (!InsightModel::canBeAsked(model_.timeline().events[rows_.eventOf(index)])) return {};
    const int height = QFontMetrics(rowFont()).height();
    return {row.right() + 1 - rowPadding / 2 - linkWidth(), row.top() + rowPadding, linkWidth(),
            height};
}

QSize EventDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const QRect text = textIn(QRect(0, 0, width_, 10'000));
    const QFontMetrics metrics(rowFont());
    const int height =
        metrics.boundingRect(text, wrapped, index.data(Qt::DisplayRole).toString()).height();
    return {width_, std::max(height, scaledControl(symbolSide)) + 2 * rowPadding};
}

void EventDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    const PanelColors colors = surroundings_.colors();
    const Event& event = model_.timeline().events[rows_.eventOf(index)];
    const bool isChosen = (option.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF place = QRectF(option.rect).adjusted(2, 1, -2, -1);
    if (isChosen) painting::fillRounded(*painter, place, 8, colors.control);
    const double side = scaledControl(symbolSide);
    const double line = QFontMetricsF(rowFont()).height();
    painter->drawImage(QPointF(option.rect.left() + rowPadding,
                               option.rect.top() + rowPadding + (line - side) / 2),
                       surroundings_.images.image(symbolOf(event.kind), inkOf(event.kind, colors),
                                                  side, painter->device()->devicePixelRatioF()));
    painter->setFont(rowFont());
    painter->setPen(
        qtColor(event.isDetail || event.kind == Kind::unknown ? colors.quiet : colors.text));
    painter->drawText(textIn(option.rect), wrapped, index.data(Qt::DisplayRole).toString());
    painter->setPen(qtColor(colors.link));
    painter->drawText(linkIn(option.rect, index), Qt::AlignRight | Qt::AlignVCenter, linkText());
    const bool hasKeyboard = (option.state & QStyle::State_HasFocus) != 0;
    if (hasKeyboard && option.widget != nullptr && painting::showsFocus(*option.widget))
        painting::strokeFocus(*painter, place, 8, colors.focus);
    painter->restore();
}

EventList::EventList(InsightModel& model, const Surroundings& surroundings)
    : model_(model),
      surroundings_(surroundings),
      rows_(model),
      delegate_(model, rows_, surroundings) {
    setModel(&rows_);
    setItemDelegate(&delegate_);
    setVerticalScrollBar(&scrollBar_);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false); // there is a card behind it
    setAccessibleName(QString::fromStdString(translated("Gebeurtenissen")));
}

void EventList::refresh() {
    isRefreshing_ = true;
    if (rows_.refresh()) doItemsLayout();
    const QModelIndex wanted = rows_.indexOf(model_.chosen());
    if (wanted != currentIndex() || (wanted.isValid() && !selectionModel()->isSelected(wanted))) {
        if (wanted.isValid()) {
            setCurrentIndex(wanted);
            scrollTo(wanted);
        } else {
            selectionModel()->clear();
        }
    }
    scrollBar_.show(surroundings_.colors().line);
    viewport()->update();
    isRefreshing_ = false;
}

void EventList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (!isRefreshing_ && current.isValid()) model_.choose(rows_.eventOf(current));
}

bool EventList::isOnLink(const QPoint& at) const {
    const QModelIndex row = indexAt(at);
    return row.isValid() && delegate_.linkIn(visualRect(row), row).contains(at);
}

void EventList::keyPressEvent(QKeyEvent* event) {
    const bool asks = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                      event->key() == Qt::Key_Space;
    if (!asks) return QListView::keyPressEvent(event);
    if (currentIndex().isValid()) model_.why(rows_.eventOf(currentIndex()));
}

void EventList::mouseMoveEvent(QMouseEvent* event) {
    viewport()->setCursor(isOnLink(event->position().toPoint()) ? Qt::PointingHandCursor
                                                                : Qt::ArrowCursor);
    if (event->buttons() == Qt::NoButton) QListView::mouseMoveEvent(event);
}

void EventList::mouseReleaseEvent(QMouseEvent* event) {
    QListView::mouseReleaseEvent(event);
    const QPoint at = event->position().toPoint();
    if (event->button() == Qt::LeftButton && isOnLink(at)) model_.why(rows_.eventOf(indexAt(at)));
}

void EventList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    delegate_.setWidth(viewport()->width());
    doItemsLayout();
    if (currentIndex().isValid()) scrollTo(currentIndex());
}

EventCard::EventCard(InsightModel& model, const Surroundings& surroundings)
    : surroundings_(surroundings),
      list_(model, surroundings) {
    layout_.setContentsMargins(cardMargin, cardMargin, cardMargin / 2, cardMargin);
    layout_.addWidget(&list_);
}

void EventCard::refresh() {
    list_.refresh();
    update();
}

void EventCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painting::fillRounded(painter, rect(), Card::cornerRadius, surroundings_.colors().card);
}

} // namespace wegslot::insight
