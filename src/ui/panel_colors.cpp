#include "ui/panel_colors.h"

#include "ui/contrast.h"

namespace wegslot {

PanelColors panelColors(Scheme scheme) {
    const bool isLight = scheme == Scheme::light;
    const Color ink = isLight ? brand::navy : brand::cream;
    const Color ground = isLight ? brand::cream : brand::navy;
    return {.ground = ground,
            .card = over(cardFill(scheme), ground),
            .text = ink,
            .quiet = ink.withOpacity(isLight ? 0.7 : 0.72),
            .line = ink.withOpacity(0.5),
            .divider = ink.withOpacity(0.14),
            .control = ink.withOpacity(isLight ? 0.1 : 0.16),
            .hover = ink.withOpacity(0.08),
            .focus = isLight ? Color::hex(0xB86E0A) : brand::orange,
            .link = isLight ? Color::hex(0x8A5200) : brand::orange};
}

Color PanelColors::outlineOf(const Color& color, const Color& behind) const {
    if (contrast(color, behind) >= leastContrast) return Color{}.withOpacity(0);
    return over(quiet, behind);
}

} // namespace wegslot
