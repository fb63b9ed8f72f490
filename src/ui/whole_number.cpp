#include "ui/whole_number.h"

#include "base/text.h"

#include <algorithm>
#include <cmath>

namespace wegslot {

std::string wholeNumber(double value) {
    constexpr double largest = 1e9; // still reads as a number, and fits a line
    if (std::isnan(value)) return "0";
    return decimal(std::trunc(std::clamp(value, -largest, largest)));
}

} // namespace wegslot
