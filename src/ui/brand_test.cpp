#include "ui/brand.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(Brand, ColorsAreReadFromTheLowestThreeBytes) {
    EXPECT_EQ(Color::hex(0x1F2043), (Color{31, 32, 67, 1}));
    for (const std::uint32_t top : {0x00000000U, 0x01000000U, 0x80000000U, 0xFF000000U})
        EXPECT_EQ(Color::hex(top | 0xF59D24U), brand::orange);
}

TEST(Brand, ThePaletteHasItsValues) {
    EXPECT_EQ(brand::orange, (Color{245, 157, 36, 1}));
    EXPECT_EQ(brand::lila, (Color{143, 150, 203, 1}));
    EXPECT_EQ(brand::cream, (Color{250, 241, 222, 1}));
    EXPECT_EQ(brand::offWhite, (Color{247, 248, 251, 1}));
    EXPECT_EQ(brand::success, (Color{43, 182, 115, 1}));
    EXPECT_EQ(brand::danger, (Color{229, 72, 77, 1}));
    EXPECT_EQ(brand::navy.withOpacity(0.35), (Color{31, 32, 67, 0.35}));
}

TEST(Brand, FontsHaveTheirDefaultWeights) {
    EXPECT_EQ(brand::heading(16), (Font{"", 16, FontWeight::bold}));
    EXPECT_EQ(brand::body(12.5), (Font{"Mona Sans", 12.5, FontWeight::regular}));
}
