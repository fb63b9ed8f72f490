#include "ui/panel_colors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace wegslot;

namespace {

Color over(const Color& color, const Color& ground) {
    const auto mixed = [&color](std::uint8_t above, std::uint8_t below) {
        return static_cast<std::uint8_t>(
            std::lround(above * color.opacity + below * (1 - color.opacity)));
    };
    return {mixed(color.red, ground.red), mixed(color.green, ground.green),
            mixed(color.blue, ground.blue)};
}

/// Of WCAG 2.1.
double luminance(const Color& color) {
    const auto linear = [](std::uint8_t part) {
        const double value = part / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const Color& color, const Color& ground) {
    const double one = luminance(over(color, ground));
    const double other = luminance(ground);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

} // namespace

TEST(PanelColors, EveryTextCanBeReadOnEveryGroundItStandsOn) {
    for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
        const PanelColors colors = panelColors(scheme);
        const Color card = scheme == Scheme::light
                               ? brand::white
                               : over(brand::white.withOpacity(0.06), colors.ground);
        for (const Color& ground : {colors.ground, card, over(colors.hover, colors.ground)})
            for (const Color& text : {colors.text, colors.quiet, colors.link})
                EXPECT_GE(contrast(text, ground), 4.5);
        for (const Color& ground : {colors.ground, card}) {
            EXPECT_GE(contrast(colors.text, over(colors.control, ground)), 4.5);
            // What is not text: WCAG asks for 3.
            EXPECT_GE(contrast(colors.focus, ground), 3);
            EXPECT_GE(contrast(colors.line, ground), 3);
        }
    }
}

TEST(PanelColors, TheContrastOfTheStandardsExamplesIsRight) {
    EXPECT_NEAR(contrast(Color::hex(0x000000), Color::hex(0xFFFFFF)), 21, 0.001);
    EXPECT_NEAR(contrast(Color::hex(0x767676), Color::hex(0xFFFFFF)), 4.54, 0.01);
}
