// How the parts of a timeline look: the symbol and the colour of an event, the colour of a key's
// state, the short word of a phase.
#pragma once

#include "insight/timeline.h"
#include "ui/brand.h"
#include "ui/panel_colors.h"

#include <QFont>

#include <string>
#include <string_view>

namespace wegslot::insight {

[[nodiscard]] std::string_view symbolOf(Kind kind);

/// Stands out from a card, light and dark.
[[nodiscard]] Color inkOf(Kind kind, const PanelColors& colors);

[[nodiscard]] Color colorOf(KeyState state);

/// For the little room that a phase has.
[[nodiscard]] std::string shortWord(const Phase& phase);

/// The one nearest to it that Qt can draw without scaling.
[[nodiscard]] QFont fontOf(double size, FontWeight weight = FontWeight::regular);

} // namespace wegslot::insight
