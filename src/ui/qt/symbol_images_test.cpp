#include "ui/qt/symbol_images.h"

#include "scanner/device_names.h"
#include "tests/support/offscreen.h"
#include "ui/phase_presentation.h"
#include "ui/qt/tray_painter.h"
#include "ui/symbols.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using namespace wegslot;

namespace {

/// How much of the symbol's ink lies in the image, as full pixels.
double ink(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    return sum;
}

bool touchesTheEdge(const QImage& image) {
    const int last = image.width() - 1;
    for (int i = 0; i <= last; ++i)
        for (const QPoint edge : {QPoint(i, 0), QPoint(i, last), QPoint(0, i), QPoint(last, i)})
            if (qAlpha(image.pixel(edge)) > 0) return true;
    return false;
}

double difference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qAlpha(a.pixel(x, y)) - qAlpha(b.pixel(x, y))) / 255.0;
    return sum;
}

std::vector<std::string> everySymbolOfTheInterface() {
    std::vector<std::string> names(symbols::all.begin(), symbols::all.end());
    std::ranges::sort(names);
    return names;
}

struct SymbolImagesTest : testing::Test {
    Offscreen<QGuiApplication> application;
    SymbolImages images;
};

} // namespace

TEST_F(SymbolImagesTest, EveryNameHasAFileAndEveryFileAName) {
    EXPECT_EQ(SymbolImages::names(), everySymbolOfTheInterface());
}

TEST_F(SymbolImagesTest, PhasesAndDevicesUseNamesThatHaveAFile) {
    const std::vector<Phase> phases{phase::BluetoothUnavailable{},
                                    phase::Paused{},
                                    phase::Snoozed{},
                                    phase::Warning{},
                                    phase::Disabled{},
                                    phase::NoKeys{},
                                    phase::WaitingForReturn{},
                                    phase::Present{},
                                    phase::Leaving{},
                                    phase::Locked{}};
    ASSERT_EQ(phases.size(), std::variant_size_v<Phase>);
    for (const Phase& phase : phases)
        EXPECT_FALSE(images.image(symbol(phase), brand::navy, 16).isNull()) << name(phase);
    for (const char* const device : {"watch", "iphone", "ipad", "mac", "speaker"})
        EXPECT_FALSE(
            images.image(DeviceNames::symbol(device, std::nullopt), brand::navy, 16).isNull())
            << device;
}

TEST_F(SymbolImagesTest, EachIsDrawnWholeAndWithinItsSquare) {
    for (const std::string& name : everySymbolOfTheInterface())
        for (const int side : {16, 24, 48}) {
            const QImage image = images.image(name, brand::navy, side);
            ASSERT_EQ(image.size(), QSize(side, side)) << name;
            EXPECT_GT(ink(image), 0.08 * side * side) << name << side;
            EXPECT_LT(ink(image), 0.70 * side * side) << name << side;
            EXPECT_FALSE(touchesTheEdge(images.image(name, brand::navy, 96))) << name;
        }
}

TEST_F(SymbolImagesTest, EachFillsItsSquareInOneDirectionAtLeast) {
    for (const std::string& name : everySymbolOfTheInterface()) {
        const QImage image = images.image(name, brand::navy, 96);
        QRect used;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qAlpha(image.pixel(x, y)) > 127) used |= QRect(x, y, 1, 1);
        EXPECT_GE(std::max(used.width(), used.height()), 72) << name; // 18 of 24
        EXPECT_NEAR(used.center().x(), 47.5, 8) << name;
        EXPECT_NEAR(used.center().y(), 47.5, 8) << name;
    }
}

TEST_F(SymbolImagesTest, NoTwoAreTakenForEachOtherAtTheSmallestSize) {
    const auto names = everySymbolOfTheInterface();
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t j = i + 1; j < names.size(); ++j)
            EXPECT_GT(difference(images.image(names[i], brand::navy, 16),
                                 images.image(names[j], brand::navy, 16)),
                      9.0)
                << names[i] << " and " << names[j];
}

TEST_F(SymbolImagesTest, TheColorIsTheOneAskedFor) {
    const QImage image = images.image(symbols::lock, brand::orange, 24);
    EXPECT_EQ(image.pixelColor(12, 15), QColor(245, 157, 36));
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    const QImage faint = images.image(symbols::lock, brand::orange.withOpacity(0.5), 24);
    EXPECT_NEAR(qAlpha(faint.pixel(12, 15)), 128, 1);
}

TEST_F(SymbolImagesTest, DenseScreensGetMorePixelsForTheSameSize) {
    const QImage image = images.image(symbols::lock, brand::navy, 17, 2);
    EXPECT_EQ(image.size(), QSize(34, 34));
    EXPECT_EQ(image.deviceIndependentSize(), QSizeF(17, 17));
    EXPECT_EQ(images.image(symbols::lock, brand::navy, 16, 1.25).width(), 20);
}

TEST_F(SymbolImagesTest, UnknownNamesAndSizesGiveNothing) {
    for (const char* const name : {"", "lock", "lock.fill.svg", "\xFF"})
        EXPECT_TRUE(images.image(name, brand::navy, 16).isNull()) << name;
    EXPECT_TRUE(images.image(symbols::lock, brand::navy, 0).isNull());
    EXPECT_TRUE(images.image(symbols::lock, brand::navy, -16).isNull());
}

TEST_F(SymbolImagesTest, TheTrayGetsItsBytesInTheOrderOfTheNetwork) {
    const auto paint = trayPainter(images);
    const TrayPicture picture = paint("lock.fill", brand::orange, 24);
    EXPECT_EQ(picture.side, 24);
    ASSERT_EQ(picture.argb.size(), 24U * 24U * 4U);
    const std::size_t inTheBody = (15 * 24 + 12) * 4;
    EXPECT_EQ(std::vector(picture.argb.begin() + inTheBody, picture.argb.begin() + inTheBody + 4),
              (std::vector<std::uint8_t>{255, 245, 157, 36}));
    EXPECT_TRUE(paint("geen", brand::orange, 24).argb.empty());
}

TEST_F(SymbolImagesTest, TheTraysColorIsNotMultipliedByItsOpacity) {
    const TrayPicture picture = trayPainter(images)("pause.circle", brand::white, 22);
    bool softEdge = false;
    for (std::size_t i = 0; i < picture.argb.size(); i += 4) {
        if (picture.argb[i] < 60 || picture.argb[i] > 200) continue;
        softEdge = true; // of the outline, which is navy
        EXPECT_NEAR(picture.argb[i + 3], brand::navy.blue, 8);
    }
    EXPECT_TRUE(softEdge);
}
