// What the warning looks like, without a screen.

#include "tests/interface/picture.h"
#include "tests/interface/picture_stage.h"
#include "tests/interface/shown_panel.h"

#include "ui/qt/brand_qt.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QtMath>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct WarningPicturesTest : testing::TestWithParam<int> {
    PictureStage stage{static_cast<double>(GetParam())};
    ShownPanel warning;

    void SetUp() override {
        ASSERT_TRUE(PictureStage::hasFont()) << "install the packages of tools/packages/test";
    }
    [[nodiscard]] static std::string named(const std::string& name) {
        return "warning-" + name + "-" + std::to_string(GetParam()) + "x";
    }
    [[nodiscard]] static QImage picture() { return PictureStage::picture(ShownPanel::panel()); }
};

INSTANTIATE_TEST_SUITE_P(AtScale, WarningPicturesTest, testing::Values(1, 2));

/// How wide `text` is painted, by its leftmost and rightmost pixel.
int paintedWidth(const QString& text, const QtFont& font) {
    QImage image(1200, 40, QImage::Format_Grayscale8);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    painter.setFont(font.font);
    painter.scale(font.scale, font.scale);
    painter.drawText(QPointF(20, 40), text);
    painter.end();
    int first = image.width();
    int last = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) > 64) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return last - first + 1;
}

} // namespace

TEST_P(WarningPicturesTest, FromTheStartToTheDeadline) {
    warning.show();
    EXPECT_TRUE(looksLike(picture(), named("start")));
    warning.time.advance(2500ms);
    EXPECT_TRUE(looksLike(picture(), named("halfway")));
    warning.time.advance(2500ms);
    EXPECT_TRUE(looksLike(picture(), named("deadline")));
    warning.time.advance(1h);
    EXPECT_TRUE(looksLike(picture(), named("deadline")));
}

TEST_P(WarningPicturesTest, ALongMessageTakesTwoLinesAndNoMore) {
    warning.show("Telefoon van Annemarie, Sleutelbos & <Fietssleutel> zijn buiten bereik\nof leeg");
    EXPECT_TRUE(looksLike(picture(), named("long")));
}

TEST_P(WarningPicturesTest, HoursStayInTheRing) {
    warning.show("Telefoon is niet gehoord", Seconds{86400});
    EXPECT_TRUE(looksLike(picture(), named("hours")));
}

TEST_P(WarningPicturesTest, AButtonThatIsHeldDownIsDarker) {
    warning.show();
    ShownPanel::button().setDown(true);
    EXPECT_TRUE(looksLike(picture(), named("pressed")));
}

TEST_P(WarningPicturesTest, AButtonUnderThePointerIsLighter) {
    warning.show();
    ShownPanel::button().setAttribute(Qt::WA_UnderMouse);
    EXPECT_TRUE(looksLike(picture(), named("pointed-at")));
}

TEST_P(WarningPicturesTest, AButtonThatHasTheKeyboardHasARing) {
    warning.show();
    ShownPanel::panel().activateWindow();
    ShownPanel::panel().setAttribute(Qt::WA_KeyboardFocusChange); // as Tab does
    ShownPanel::button().setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(looksLike(picture(), named("keyboard")));
}

TEST(WarningFonts, TwelveAndAHalfPixelsAreNeitherTwelveNorThirteen) {
    const PictureStage stage;
    ASSERT_TRUE(PictureStage::hasFont());
    const QString text = "Telefoon is buiten bereik, Sleutelbos is buiten bereik en de rest ook al";
    const int twelve = paintedWidth(text, qtFont({.size = 12}));
    const int between = paintedWidth(text, qtFont({.size = 12.5}));
    const int thirteen = paintedWidth(text, qtFont({.size = 13}));
    EXPECT_NEAR(between, (twelve + thirteen) / 2.0, 1.5) << twelve << " " << thirteen;
}

TEST(WarningSharpness, TheGroundIsPaintedInThePixelsOfTheScreen) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        const PictureStage stage(scale);
        ShownPanel warning;
        warning.show();
        const QImage picture = PictureStage::picture(ShownPanel::panel());
        EXPECT_EQ(picture.size(), QSize(qRound(400 * scale), qRound(96 * scale)));
        // A stretched picture has no sharp edge: from the button to the ground in one step or two.
        const int y = picture.height() / 2;
        const QRgb orange = qRgb(0xF5, 0x9D, 0x24);
        const QRgb navy = qRgb(0x1F, 0x20, 0x43);
        int x = picture.width() - 1;
        while (x > 0 && picture.pixel(x, y) != orange)
            --x;
        int steps = 0;
        while (x < picture.width() && picture.pixel(x, y) != navy) {
            ++x;
            ++steps;
        }
        EXPECT_LE(steps, 2) << scale;
    }
}
