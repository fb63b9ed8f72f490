// A button that opens a list to choose from.
#pragma once

#include "ui/panel_colors.h"

#include <QMenu>
#include <QPushButton>

#include <functional>
#include <string>
#include <vector>

namespace wegslot {

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
    QMenu menu_;
};

} // namespace wegslot
