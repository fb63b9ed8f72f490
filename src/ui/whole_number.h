// How the interface writes numbers: whole, cut off towards zero, as no locale changes them.
#pragma once

#include <string>

namespace wegslot {

/// Any double may come; NaN is written as 0, and what is beyond a thousand million as that.
[[nodiscard]] std::string wholeNumber(double value);

} // namespace wegslot
