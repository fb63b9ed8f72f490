#include "ui/qt/soft_shadow.h"

#include "tests/support/offscreen.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

using namespace wegslot;

namespace {

struct SoftShadowTest : testing::Test {
    Offscreen<QGuiApplication> application;
    SoftShadow shadow{.color = brand::orange, .cornerRadius = 14, .blurRadius = 8, .offsetDown = 3};
    QRectF rectangle{40, 40, 120, 60};

    [[nodiscard]] QImage painted(double ratio = 1) const {
        QImage image(QSize(200, 140) * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        shadow.paint(painter, rectangle);
        return image;
    }
};

} // namespace

TEST_F(SoftShadowTest, IsFullInsideHalfAtTheEdgeAndNothingBeyondItsReach) {
    const QImage image = painted();
    EXPECT_EQ(image.pixelColor(100, 73), QColor(245, 157, 36));
    // The lower edge lies at 103, and one side of it is as far from half as the other.
    const int inside = qAlpha(image.pixel(100, 102));
    const int outside = qAlpha(image.pixel(100, 103));
    EXPECT_NEAR(inside + outside, 255, 2);
    EXPECT_GT(inside, outside);
    EXPECT_GT(qAlpha(image.pixel(100, 108)), 0);
    EXPECT_EQ(qAlpha(image.pixel(100, 111)), 0);
    EXPECT_EQ(shadow.reach(rectangle), QRectF(32, 35, 136, 76));
}

TEST_F(SoftShadowTest, FallsDownwardsOnly) {
    const QImage image = painted();
    EXPECT_EQ(qAlpha(image.pixel(100, 34)), 0);
    EXPECT_GT(qAlpha(image.pixel(100, 105)), qAlpha(image.pixel(100, 34)));
    for (int x = 0; x < 100; ++x) // as much to the left as to the right
        EXPECT_NEAR(qAlpha(image.pixel(x, 73)), qAlpha(image.pixel(199 - x, 73)), 1) << x;
}

TEST_F(SoftShadowTest, GrowsFainterWithoutSteps) {
    const QImage image = painted();
    for (int y = 96; y < 112; ++y)
        EXPECT_GE(qAlpha(image.pixel(100, y)), qAlpha(image.pixel(100, y + 1))) << y;
}

TEST_F(SoftShadowTest, DenseScreensGetTheSameShape) {
    const QImage once = painted();
    const QImage twice = painted(2);
    for (int x = 30; x < 50; ++x)
        EXPECT_NEAR(qAlpha(once.pixel(x, 73)), qAlpha(twice.pixel(2 * x + 1, 147)), 20) << x;
}

TEST_F(SoftShadowTest, WithoutOpacityNothingIsPainted) {
    shadow.color = brand::orange.withOpacity(0);
    QImage empty(painted());
    empty.fill(Qt::transparent);
    EXPECT_EQ(painted(), empty);
}

TEST_F(SoftShadowTest, SmallRectanglesAreNotTornApart) {
    rectangle = QRectF(90, 60, 6, 4);
    const QImage image = painted();
    EXPECT_GT(qAlpha(image.pixel(93, 65)), 0);
    EXPECT_EQ(qAlpha(image.pixel(70, 65)), 0);
}
