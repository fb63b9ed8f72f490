// What can be folded open: a heading with an arrow, and below it what it opens.
#pragma once

#include "ui/panel_colors.h"

#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>
#include <string>

namespace wegslot {

/// The heading. To a screen reader a button that is down while its content is shown.
class DisclosureButton final : public QPushButton {
public:
    /// Heavy capitals, or the quiet text of a group within a group.
    enum class Rank { section, group };

    explicit DisclosureButton(Rank rank);

    void show(const std::string& text, bool isOpen, const PanelColors& colors);
    using QPushButton::show;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] Font shownFont() const;

    Rank rank_;
    PanelColors colors_ = panelColors(Scheme::light);
};

class Disclosure final : public QWidget {
public:
    /// Takes the content over; `spacing`: between heading and content.
    Disclosure(DisclosureButton::Rank rank, int spacing, std::unique_ptr<QWidget> content);

    void show(const std::string& text, bool isOpen, const PanelColors& colors);
    using QWidget::show;

    [[nodiscard]] DisclosureButton& button() { return button_; }

private:
    std::unique_ptr<QWidget> content_;
    DisclosureButton button_;
    QVBoxLayout layout_;
};

} // namespace wegslot
