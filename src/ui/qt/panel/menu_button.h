// A button that opens a list to choose from.
#pragma once

#include "ui/panel_colors.h"
#include "ui/qt/window_frame.h"

#include <QMenu>
#include <QPushButton>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// The list, in a frame like the panel's.
class FramedMenu final : public QMenu {
public:
    explicit FramedMenu(const QWidget& button);

    void setColors(const PanelColors& colors);

    /// To be called before each time that it opens.
    void frame();

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    const QWidget& button_;
    PanelColors colors_ = panelColors(Scheme::light);
    std::optional<WindowFrame> frame_;
};

class MenuButton final : public QPushButton {
public:
    enum class Frame { none, drawn };

    /// `chosen` gets the number of an entry.
    MenuButton(Frame frame, std::function<void(int)> chosen);

    /// `name`: for a screen reader, which does not see what stands before it. `selected`: the
    /// number of the entry that is ticked; negative for none.
    void show(const std::string& text, const std::string& name,
              const std::vector<std::string>& entries, int selected, const PanelColors& colors);
    using QPushButton::show;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Frame frame_;
    int paddingAcross_;
    std::function<void(int)> chosen_;
    PanelColors colors_ = panelColors(Scheme::light);
    FramedMenu menu_;
};

} // namespace wegslot
