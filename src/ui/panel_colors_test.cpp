#include "ui/panel_colors.h"

#include "ui/contrast.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(PanelColors, EveryTextCanBeReadOnEveryGroundItStandsOn) {
    for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
        const PanelColors colors = panelColors(scheme);
        for (const Color& ground : {colors.ground, colors.card, over(colors.hover, colors.ground)})
            for (const Color& text : {colors.text, colors.quiet, colors.link})
                EXPECT_GE(contrast(text, ground), 4.5);
        for (const Color& ground : {colors.ground, colors.card}) {
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

TEST(PanelColors, WhatIsLostInItsGroundIsOutlinedAndNothingElse) {
    const Color none = Color{}.withOpacity(0);
    for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
        const PanelColors colors = panelColors(scheme);
        const bool isLight = scheme == Scheme::light;
        for (const Color& ground : {colors.ground, colors.card}) {
            EXPECT_EQ(colors.outlineOf(brand::navy, ground) == none, isLight);
            EXPECT_EQ(colors.outlineOf(brand::orange, ground) == none, !isLight);
            for (const Color& color : {brand::navy, brand::orange, brand::lila, brand::success}) {
                const Color outline = colors.outlineOf(color, ground);
                const Color& seen = outline == none ? color : outline;
                EXPECT_GE(contrast(seen, ground), leastContrast);
            }
        }
    }
}
