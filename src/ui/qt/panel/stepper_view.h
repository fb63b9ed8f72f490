// A number of seconds that goes up and down a step at a time: its text, and two small buttons.
#pragma once

#include "ui/panel_colors.h"
#include "ui/panel_parts.h"
#include "ui/qt/panel/text.h"
#include "ui/settings_group.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <functional>

namespace wegslot {

/// Half of the pair.
class StepButton final : public QPushButton {
public:
    explicit StepButton(panel::Step step);

    void show(const std::string& text, bool isEnabled, const PanelColors& colors);
    using QPushButton::show;

    [[nodiscard]] QSize sizeHint() const override { return {26, 22}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    panel::Step step_;
    PanelColors colors_ = panelColors(Scheme::light);
};

class StepperView final : public QWidget {
public:
    /// `stepped` is called for each step that is asked for.
    explicit StepperView(std::function<void(panel::Delay, panel::Step)> stepped);

    void show(const panel::Stepper& stepper, const PanelColors& colors);
    using QWidget::show;

private:
    panel::Stepper shown_;
    Text text_;
    StepButton less_;
    StepButton more_;
    QHBoxLayout layout_;
};

} // namespace wegslot
