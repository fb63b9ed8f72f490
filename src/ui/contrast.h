// How well one colour stands out from another, as WCAG 2.1 reckons it.
#pragma once

#include "ui/brand.h"

namespace wegslot {

/// What is seen where `color` lies on `ground`, which is opaque.
[[nodiscard]] Color over(const Color& color, const Color& ground);

/// From 1, the same, to 21, black on white. `ground` is opaque.
[[nodiscard]] double contrast(const Color& color, const Color& ground);

/// Of what is no text: symbols, marks, the edges of controls.
inline constexpr double leastContrast = 3;

} // namespace wegslot
