// The buttons of the panel, in one style: a symbol, a text or both, bare or on a ground.
#pragma once

#include "ui/panel_parts.h"

#include <QPushButton>

#include <string>

namespace wegslot {

class SymbolImages;

struct ButtonLook {
    enum class Shape { bare, capsule, rounded, link };

    Shape shape = Shape::bare;
    Font font;
    int paddingAcross = 0; ///< pixels, left and right
    int paddingDown = 0;
    double symbolSide = 0; ///< pixels
};

class PanelButton final : public QPushButton {
public:
    struct Colors {
        Color ink;
        Color ground = Color{}.withOpacity(0);
        Color outline = Color{}.withOpacity(0);
        Color focus = brand::orange;
    };

    /// `images` must outlive the button.
    PanelButton(const SymbolImages& images, const ButtonLook& look);

    void show(const panel::Button& button, const Colors& colors);
    using QPushButton::show;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] double textWidth() const;
    [[nodiscard]] double symbolWidth() const;

    const SymbolImages& images_;
    ButtonLook look_;
    std::string symbol_;
    Colors colors_;
};

} // namespace wegslot
