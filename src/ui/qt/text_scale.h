// How large text is to be where the user wants it larger than designed, and what belongs to it.
#pragma once

#include "ui/brand.h"

namespace wegslot {

/// How much larger than designed text is drawn, from 1 on. The desktops set their interface text to
/// 10 or 11 pt (at most 15 pixels); what goes beyond that is the user's wish.
[[nodiscard]] double textScale();

/// How much larger than designed symbols and controls are: as text is, but no more than the panel
/// has room for.
[[nodiscard]] double controlScale();

/// `font` as large as the user wants it.
[[nodiscard]] Font scaledFont(const Font& font);

/// `pixels` of a control, as large as controls are.
[[nodiscard]] int scaledControl(int pixels);

} // namespace wegslot
