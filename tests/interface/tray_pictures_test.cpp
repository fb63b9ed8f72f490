// How the status icon looks on a light and on a dark bar, in every size that bars ask for.

#include "monitor/phase.h"
#include "tests/interface/picture.h"
#include "tests/support/offscreen.h"
#include "ui/contrast.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/symbol_images.h"
#include "ui/qt/tray_painter.h"
#include "ui/tray_content.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <array>
#include <string>
#include <vector>

using namespace wegslot;

namespace {

constexpr std::array sides{16, 22, 24, 32};
constexpr int cell = 40;

QImage asHostsSeeIt(const TrayPicture& picture) {
    QImage image(picture.side, picture.side, QImage::Format_ARGB32);
    for (int i = 0; i < picture.side * picture.side; ++i) {
        const auto* const part = &picture.argb[static_cast<std::size_t>(i) * 4];
        image.setPixel(i % picture.side, i / picture.side,
                       qRgba(part[1], part[2], part[3], part[0]));
    }
    return image;
}

template <class Predicate>
int pixelsThat(const QImage& image, Predicate predicate) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (predicate(image.pixel(x, y))) ++count;
    return count;
}

struct TrayPictures : testing::TestWithParam<Scheme> {
    Offscreen<QGuiApplication> application;
    SymbolImages images;
    TrayPainter painter = trayPainter(images);

    [[nodiscard]] static std::string name() {
        return GetParam() == Scheme::light ? "tray-light" : "tray-dark";
    }
    /// Every phase in a column of its own, every size in a row.
    [[nodiscard]] QImage bar(const std::vector<Phase>& shown) const {
        QImage image(cell * static_cast<int>(shown.size()), cell * static_cast<int>(sides.size()),
                     QImage::Format_RGB32);
        image.fill(GetParam() == Scheme::light ? QColor(240, 240, 240) : QColor(40, 40, 40));
        QPainter onto(&image);
        for (std::size_t column = 0; column < shown.size(); ++column)
            for (std::size_t row = 0; row < sides.size(); ++row) {
                const int side = sides[row];
                const TrayContent content =
                    trayContent(shown[column], GetParam(), [](TimePoint) { return ""; });
                onto.drawImage(static_cast<int>(column) * cell + (cell - side) / 2,
                               static_cast<int>(row) * cell + (cell - side) / 2,
                               asHostsSeeIt(painter(content.symbol, content.color, side)));
            }
        return image;
    }
    const std::vector<Phase> phases{phase::Locked{},          phase::Present{}, phase::Disabled{},
                                    phase::NoKeys{},          phase::Snoozed{}, phase::Warning{},
                                    phase::WaitingForReturn{}};
};

} // namespace

TEST_P(TrayPictures, LooksAsItDid) { EXPECT_TRUE(looksLike(bar(phases), name())); }

TEST_P(TrayPictures, OneWrongIconWouldBeNoticed) {
    auto changed = phases;
    changed[0] = phase::Present{};
    EXPECT_FALSE(difference(bar(changed), bar(phases)).isNone());
}

// Bars are painted by their owners; what an icon stands on is not known to it.
TEST_P(TrayPictures, CanBeToldFromBarsOfAnyColor) {
    struct Ground {
        const char* name;
        Color color;
    };
    constexpr std::array grounds{
        Ground{"black", Color::hex(0x000000)}, Ground{"white", Color::hex(0xFFFFFF)},
        Ground{"grey", Color::hex(0x808080)}, Ground{"blue", Color::hex(0x3465A4)}};
    for (const Phase& phase : phases)
        for (const int side : {16, 22, 24, 32, 48}) {
            const auto content = trayContent(phase, GetParam(), [](TimePoint) { return ""; });
            const QImage icon = asHostsSeeIt(painter(content.symbol, content.color, side));
            const int shape = pixelsThat(images.image(content.symbol, content.color, side),
                                         [](QRgb pixel) { return qAlpha(pixel) >= 128; });
            ASSERT_GT(shape, 0);
            for (const Ground& ground : grounds) {
                const int told = pixelsThat(icon, [&ground](QRgb pixel) {
                    const Color painted{static_cast<std::uint8_t>(qRed(pixel)),
                                        static_cast<std::uint8_t>(qGreen(pixel)),
                                        static_cast<std::uint8_t>(qBlue(pixel)),
                                        qAlpha(pixel) / 255.0};
                    return contrast(painted, ground.color) >= 3;
                });
                // A filled symbol may be told by its outline alone.
                EXPECT_GE(told, shape / 3)
                    << content.symbol << " of " << side << " on " << ground.name;
            }
        }
}

INSTANTIATE_TEST_SUITE_P(Bar, TrayPictures, testing::Values(Scheme::light, Scheme::dark),
                         [](const auto& scheme) {
                             return scheme.param == Scheme::light ? "Light" : "Dark";
                         });
