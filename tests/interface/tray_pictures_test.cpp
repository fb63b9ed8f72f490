// How the status icon looks on a light and on a dark bar, in every size that bars ask for.

#include "monitor/phase.h"
#include "tests/interface/picture.h"
#include "tests/support/offscreen.h"
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

INSTANTIATE_TEST_SUITE_P(Bar, TrayPictures, testing::Values(Scheme::light, Scheme::dark),
                         [](const auto& scheme) {
                             return scheme.param == Scheme::light ? "Light" : "Dark";
                         });
