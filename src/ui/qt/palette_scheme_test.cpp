#include "ui/qt/palette_scheme.h"

#include "tests/support/offscreen.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPalette>

#include <vector>

using namespace wegslot;

namespace {

struct PaletteSchemeTest : testing::Test {
    Offscreen<QGuiApplication> application;

    static void paint(const QColor& text, const QColor& ground) {
        QPalette colors;
        colors.setColor(QPalette::WindowText, text);
        colors.setColor(QPalette::Window, ground);
        QGuiApplication::setPalette(colors);
        QGuiApplication::processEvents();
    }
};

} // namespace

TEST_F(PaletteSchemeTest, IsDarkWhereTheTextIsLighterThanTheGround) {
    paint(Qt::black, Qt::white);
    EXPECT_EQ(PaletteScheme().scheme().get(), Scheme::light);
    paint(Qt::white, Qt::black);
    EXPECT_EQ(PaletteScheme().scheme().get(), Scheme::dark);
}

TEST_F(PaletteSchemeTest, TellsOfEachChangeOnce) {
    paint(Qt::black, Qt::white);
    const PaletteScheme palette;
    std::vector<Scheme> told;
    const auto listening =
        palette.scheme().onChange([&told](const Scheme& scheme) { told.push_back(scheme); });
    paint(Qt::white, Qt::black);
    paint(Qt::lightGray, Qt::black);
    paint(Qt::black, Qt::white);
    EXPECT_EQ(told, (std::vector{Scheme::dark, Scheme::light}));
}
