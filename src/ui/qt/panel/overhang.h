// A place in a layout beyond which its widget stands out: what is drawn in it lies on the lines of
// the others, and what is around that (a hover ground, the end of a mark) has the room it takes.
// Nothing is seen of what stands out beyond the parent too.
#pragma once

#include <QLayoutItem>
#include <QMargins>
#include <QWidget>

#include <memory>

namespace wegslot {

class Overhang final : public QWidgetItem {
public:
    Overhang(QWidget& widget, const QMargins& beyond) : QWidgetItem(&widget), beyond_(beyond) {}

    [[nodiscard]] QSize sizeHint() const override {
        return QWidgetItem::sizeHint().shrunkBy(beyond_);
    }
    [[nodiscard]] QSize minimumSize() const override {
        return QWidgetItem::minimumSize().shrunkBy(beyond_);
    }
    [[nodiscard]] QSize maximumSize() const override {
        return QWidgetItem::maximumSize().shrunkBy(beyond_);
    }
    void setGeometry(const QRect& place) override {
        QWidgetItem::setGeometry(place.marginsAdded(beyond_));
    }

private:
    QMargins beyond_;
};

/// The layout is, or will be, one of the parent's.
inline void addOverhanging(QLayout& layout, QWidget& parent, QWidget& widget,
                           const QMargins& beyond) {
    widget.setParent(&parent);
    layout.addItem(std::make_unique<Overhang>(widget, beyond).release()); // owned by the layout
}

} // namespace wegslot
