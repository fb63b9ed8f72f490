#include "ui/qt/brand_qt.h"

#include "tests/support/offscreen.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

using namespace wegslot;

namespace {

struct BrandQt : testing::Test {
    Offscreen<QGuiApplication> application;
};

} // namespace

TEST_F(BrandQt, ColorsKeepTheirPartsAndOpacity) {
    EXPECT_EQ(qtColor(brand::orange), QColor(245, 157, 36));
    EXPECT_EQ(qtColor(brand::white.withOpacity(0.06)).alpha(), 15);
    EXPECT_EQ(qtColor(brand::navy.withOpacity(0)).alpha(), 0);
}

TEST_F(BrandQt, FontsAreInPixelsAndThoseOfHalfOnesDrawnAtHalfTheSize) {
    EXPECT_EQ(qtFont(brand::body(13)).font.pixelSize(), 13);
    EXPECT_EQ(qtFont(brand::body(13)).scale, 1);
    for (const double size : {10.5, 11.5, 12.5}) {
        const QtFont font = qtFont(brand::body(size));
        EXPECT_EQ(font.font.pixelSize() * font.scale, size);
    }
}

TEST_F(BrandQt, WeightsAreTheNumbersOfTheBrand) {
    EXPECT_EQ(qtFont(brand::heading(16)).font.weight(), QFont::Bold);
    EXPECT_EQ(qtFont(brand::heading(16, FontWeight::heavy)).font.weight(), QFont::ExtraBold);
    EXPECT_EQ(qtFont(brand::body(16)).font.weight(), QFont::Normal);
}

TEST_F(BrandQt, FamilyIsTheNamedOneOrTheApplications) {
    EXPECT_EQ(qtFont(brand::body(12)).font.families().front(), QStringLiteral("Mona Sans"));
    EXPECT_EQ(qtFont(brand::heading(12)).font.family(), QGuiApplication::font().family());
}
