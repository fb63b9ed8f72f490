// The panel's colours that the brand does not name: text, controls and lines, light and dark. Every
// text reaches a contrast of 4.5 on its ground.
#pragma once

#include "ui/brand.h"
#include "ui/scheme.h"

namespace wegslot {

struct PanelColors {
    Color ground; ///< of the whole panel
    Color text;
    Color quiet;   ///< text of second rank
    Color line;    ///< around a control
    Color divider; ///< between parts
    Color control; ///< the ground of a control that is off
    Color hover;   ///< laid over what the pointer is on
    Color focus;   ///< around what has the keyboard
    Color link;    ///< text that can be pressed
};

[[nodiscard]] constexpr PanelColors panelColors(Scheme scheme) {
    const bool isLight = scheme == Scheme::light;
    const Color ink = isLight ? brand::navy : brand::cream;
    return {.ground = isLight ? brand::cream : brand::navy,
            .text = ink,
            .quiet = ink.withOpacity(isLight ? 0.7 : 0.72),
            .line = ink.withOpacity(0.5),
            .divider = ink.withOpacity(0.14),
            .control = ink.withOpacity(isLight ? 0.1 : 0.16),
            .hover = ink.withOpacity(0.08),
            .focus = isLight ? Color::hex(0xB86E0A) : brand::orange,
            .link = isLight ? Color::hex(0x8A5200) : brand::orange};
}

} // namespace wegslot
