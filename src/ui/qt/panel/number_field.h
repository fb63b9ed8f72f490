// Where a number is typed: Enter and the loss of the keyboard take what stands there, Escape leaves
// it, and neither goes further.
#pragma once

#include "ui/panel_colors.h"

#include <QLineEdit>

#include <functional>
#include <string>

namespace wegslot {

class NumberField final : public QLineEdit {
public:
    enum class End { entered, lost, left };

    /// Told once how it ended, and with what, after each `begin`.
    explicit NumberField(std::function<void(End, const std::string&)> ended);

    /// Takes the keyboard. `typed` comes in the place of `value`; where it is empty, `value` is
    /// selected.
    void begin(const std::string& value, const QString& typed);

    [[nodiscard]] bool isTyping() const { return isTyping_; }

    /// `name`: what it is a number of, for a screen reader.
    void show(const std::string& name, const PanelColors& colors);
    using QLineEdit::show;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void end(End how);

    std::function<void(End, const std::string&)> ended_;
    PanelColors colors_ = panelColors(Scheme::light);
    bool isTyping_ = false;
};

} // namespace wegslot
