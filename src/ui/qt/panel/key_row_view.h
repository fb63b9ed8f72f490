// One key of the panel: what it is, its signal against its threshold, and what sets that.
#pragma once

#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/signal_bar_view.h"
#include "ui/qt/panel/small_parts.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/panel/threshold_slider.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace wegslot {

/// A text on a capsule of its own colour.
class BadgeView final : public QWidget {
public:
    BadgeView();

    void show(const panel::Badge& badge);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Text text_;
    QHBoxLayout layout_{this};
    Color ground_;
};

class KeyRowView final : public QWidget {
public:
    explicit KeyRowView(const PanelContext& context);

    void show(const panel::KeyRow& row);
    using QWidget::show;

    /// What removes the key.
    [[nodiscard]] QWidget& remove() { return remove_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void connectControls();
    void placeNote();

    PanelContext context_;
    Uuid id_;
    SymbolView symbol_;
    Text name_;
    Text note_;
    BadgeView badge_;
    PanelButton remove_;
    Text trouble_;
    Text signal_;
    Text link_;
    Text limit_;
    SignalBarView bar_;
    Text far_;
    ThresholdSlider threshold_;
    Text near_;
    PanelButton fromHere_;
    Text justSet_;
    QVBoxLayout layout_{this};
    QHBoxLayout titleLine_;
    QHBoxLayout signalLine_;
    QHBoxLayout thresholdLine_;
    QHBoxLayout fromHereLine_;
};

} // namespace wegslot
