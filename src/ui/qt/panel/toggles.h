// The switch and the checkbox of the panel. To a screen reader both are checkboxes.
#pragma once

#include "ui/panel_colors.h"
#include "ui/panel_parts.h"
#include "ui/qt/text_scale.h"

#include <QCheckBox>

namespace wegslot {

/// Shows a choice; a press reports what is wanted, and what is shown next says what came of it.
class Toggle : public QCheckBox {
public:
    Toggle();

    void show(const panel::Toggle& toggle, const PanelColors& colors);
    using QCheckBox::show;

    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] const PanelColors& colors() const { return colors_; }
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    PanelColors colors_ = panelColors(Scheme::light);
};

/// Without a text of its own; the tooltip is its name.
class Switch final : public Toggle {
public:
    [[nodiscard]] QSize sizeHint() const override { return QSize(40, 24) * controlScale(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};

class CheckBox final : public Toggle {
public:
    CheckBox();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace wegslot
