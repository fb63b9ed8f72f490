// How strict the comparison of pictures is.

#include "tests/interface/picture.h"

#include "tests/interface/picture_stage.h"
#include "tests/interface/shown_panel.h"

using namespace wegslot;

namespace {

struct PictureTest : testing::Test {
    PictureStage stage;
    ShownPanel warning;

    QImage pictureOf(const std::string& message) {
        warning.show(message);
        ShownPanel::settle();
        return PictureStage::picture(ShownPanel::panel());
    }
};

/// Two thousand pixels, so that ten are the part that may differ.
QImage plain() {
    QImage image(50, 40, QImage::Format_RGB32);
    image.fill(QColor(100, 100, 100));
    return image;
}

/// The pixels are this far from each other.
QImage changed(int pixels, int apart, int by) {
    QImage image = plain();
    for (int i = 0; i < pixels; ++i)
        image.setPixelColor(i * apart % 50, i * apart / 50, QColor(100, 100 + by, 100));
    return image;
}

} // namespace

TEST_F(PictureTest, OneChangedLetterIsSeen) {
    ASSERT_TRUE(PictureStage::hasFont());
    const QImage one = pictureOf("Telefoon is buiten bereik");
    EXPECT_TRUE(difference(one, pictureOf("Telefoon is buiten bereik")).isNone());
    for (const char* const other : {"Telefoon is buiten bereiM", "Telefoon is buiten bereit",
                                    "Tolefoon is buiten bereik", "Telefoon is builen bereik"})
        EXPECT_FALSE(difference(one, pictureOf(other)).isNone())
            << other << ": " << difference(one, pictureOf(other)).together;
}

TEST(Picture, AShadeThatNobodySeesIsNoDifference) {
    EXPECT_TRUE(difference(plain(), changed(2000, 1, 15)).isNone());
    EXPECT_TRUE(difference(plain(), changed(2000, 1, 16)).isNone());
    EXPECT_FALSE(difference(plain(), changed(2000, 1, 17)).isNone());
}

TEST(Picture, OnePixelInTwoHundredMayDiffer) {
    EXPECT_TRUE(difference(plain(), changed(9, 150, 100)).isNone());
    EXPECT_TRUE(difference(plain(), changed(10, 150, 100)).isNone());
    EXPECT_FALSE(difference(plain(), changed(11, 150, 100)).isNone());
}

TEST(Picture, NoMoreThanFivePixelsTogetherMayDiffer) {
    EXPECT_TRUE(difference(plain(), changed(4, 1, 100)).isNone());
    EXPECT_TRUE(difference(plain(), changed(5, 1, 100)).isNone());
    EXPECT_FALSE(difference(plain(), changed(6, 1, 100)).isNone());
}

TEST(Picture, AnotherSizeIsADifference) {
    EXPECT_FALSE(difference(plain(), plain().copy(0, 0, 49, 40)).isNone());
    EXPECT_FALSE(difference(QImage(), QImage()).isNone());
}
