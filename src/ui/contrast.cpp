#include "ui/contrast.h"

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

double luminance(const Color& color) {
    const auto linear = [](std::uint8_t part) {
        const double value = part / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

} // namespace

Color over(const Color& color, const Color& ground) {
    const auto mixed = [&color](std::uint8_t above, std::uint8_t below) {
        return static_cast<std::uint8_t>(
            std::lround(above * color.opacity + below * (1 - color.opacity)));
    };
    return {mixed(color.red, ground.red), mixed(color.green, ground.green),
            mixed(color.blue, ground.blue)};
}

double contrast(const Color& color, const Color& ground) {
    const double one = luminance(over(color, ground));
    const double other = luminance(ground);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

} // namespace wegslot
