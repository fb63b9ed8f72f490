// A number of seconds that goes up and down a step at a time, and for as long as its button is
// held; or is typed where it stands, after a press on its text or by a digit on one of the buttons.
#pragma once

#include "ui/panel_colors.h"
#include "ui/panel_parts.h"
#include "ui/qt/panel/number_field.h"
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

    [[nodiscard]] QSize sizeHint() const override { return QSize(26, 22) * controlScale(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    panel::Step step_;
    PanelColors colors_ = panelColors(Scheme::light);
};

class StepperView final : public QWidget {
public:
    struct Asked {
        std::function<void(panel::Delay, panel::Step)> step;
        std::function<void(panel::Delay, const std::string&)> enter;
    };

    explicit StepperView(Asked asked);

    void show(const panel::Stepper& stepper, const PanelColors& colors);
    using QWidget::show;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void begin(const QString& typed);
    void ended(NumberField::End how, const std::string& typed);

    Asked asked_;
    panel::Stepper shown_;
    Text text_;
    QWidget typing_; ///< in the place of the text, with the next three
    Text before_;
    NumberField field_;
    Text after_;
    QHBoxLayout typingLayout_{&typing_};
    QWidget* hadKeyboard_ = nullptr; ///< one of the buttons, if typing began there
    StepButton less_;
    StepButton more_;
    QHBoxLayout layout_;
};

} // namespace wegslot
