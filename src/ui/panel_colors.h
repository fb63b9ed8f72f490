// The panel's colours that the brand does not name: text, controls and lines, light and dark. Every
// text reaches a contrast of 4.5 on its ground.
#pragma once

#include "ui/brand.h"
#include "ui/scheme.h"

namespace wegslot {

struct PanelColors {
    Color ground; ///< of the whole panel
    Color card;   ///< a card on it
    Color text;
    Color quiet;   ///< text of second rank
    Color line;    ///< around a control
    Color divider; ///< between parts
    Color control; ///< the ground of a control that is off
    Color hover;   ///< laid over what the pointer is on
    Color focus;   ///< around what has the keyboard
    Color link;    ///< text that can be pressed

    /// What is drawn around a colour that the brand fixes, where it would be lost in what is behind
    /// it; wholly transparent where it stands out by itself. Both opaque.
    [[nodiscard]] Color outlineOf(const Color& color, const Color& behind) const;
};

/// What makes a card of the ground.
[[nodiscard]] constexpr Color cardFill(Scheme scheme) {
    return scheme == Scheme::light ? brand::white : brand::white.withOpacity(0.06);
}

[[nodiscard]] PanelColors panelColors(Scheme scheme);

} // namespace wegslot
