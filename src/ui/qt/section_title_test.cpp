#include "ui/qt/section_title.h"

#include "tests/support/offscreen.h"

#include <gtest/gtest.h>

#include <QApplication>

using namespace wegslot;

namespace {

struct SectionTitleTest : testing::Test {
    Offscreen<QApplication> application;
};

} // namespace

TEST_F(SectionTitleTest, IsInCapitals) {
    EXPECT_EQ(SectionTitle("Jouw sleutels").text(), QStringLiteral("JOUW SLEUTELS"));
    EXPECT_EQ(SectionTitle("Één ijsje, straße").text(), QStringLiteral("ÉÉN IJSJE, STRASSE"));
    EXPECT_EQ(SectionTitle("").text(), QString());
}

TEST_F(SectionTitleTest, KeepsMarkupAsItIs) {
    EXPECT_EQ(SectionTitle("<b>x</b>").textFormat(), Qt::PlainText);
}

TEST_F(SectionTitleTest, HasTheFontOfTheStyle) {
    const SectionTitle title("Instellingen");
    EXPECT_EQ(title.font().pixelSize(), 11);
    EXPECT_EQ(title.font().weight(), QFont::ExtraBold);
    EXPECT_EQ(title.font().letterSpacingType(), QFont::AbsoluteSpacing);
    EXPECT_NEAR(title.font().letterSpacing(), 0.6, 1.0 / 64); // which Qt counts in
    EXPECT_EQ(title.palette().color(QPalette::WindowText), QColor(143, 150, 203));
}

TEST_F(SectionTitleTest, IsReadAloudInOrdinaryLetters) {
    EXPECT_EQ(SectionTitle("Jouw sleutels").accessibleName(), QStringLiteral("Jouw sleutels"));
}
