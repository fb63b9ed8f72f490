// The warning on real X servers, with a program in full screen and a person who does something.

#include "tests/interface/picture.h"
#include "tests/interface/screens.h"
#include "tests/interface/shown_panel.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

const QRect placeOnX11(440, 12, 400, 96); ///< on a screen that is 1280 wide
const QPoint onTheTitle(530, 50);

struct WarningWindowsTest : testing::TestWithParam<std::string> {
    std::optional<X11Screen> screen;
    std::optional<OnScreen> on;
    ShownPanel warning;

    void SetUp() override {
        for (const std::string& tool :
             {std::string("Xvfb"), std::string("xdotool"), std::string("xprop"), GetParam()})
            if (!tool.empty() && !isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
        screen.emplace(GetParam());
        ASSERT_FALSE(screen->display.empty());
        ASSERT_TRUE(GetParam().empty() || screen->isManaged);
        on.emplace(std::map<std::string, std::string>{
            {"DISPLAY", screen->display}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", "xcb"}});
    }
    void TearDown() override {
        warning.hud.hide();
        ShownPanel::settle();
    }

    /// All of it but the corners, which the server may cut off.
    [[nodiscard]] static bool isSeen() {
        const QRect middle(22, 0, 356, 96);
        const QImage expected = ShownPanel::panel().grab(middle).toImage();
        return difference(OnScreen::seen(middle.translated(placeOnX11.topLeft())), expected)
            .isNone();
    }
    [[nodiscard]] static std::string windows() {
        Program search(
            {.words = {"xdotool", "search", "--onlyvisible", "--name", "^Je Mac lockt zo$"}});
        static_cast<void>(search.ended());
        return search.output();
    }
    [[nodiscard]] static long count() {
        const std::string found = windows();
        return std::ranges::count(found, '\n');
    }
};

INSTANTIATE_TEST_SUITE_P(On, WarningWindowsTest, testing::Values("", "openbox", "xfwm4"),
                         [](const auto& test) {
                             return test.param.empty() ? std::string("aBareServer") : test.param;
                         });

} // namespace

TEST_P(WarningWindowsTest, IsWhollySeenAboveAFullScreenWindowWhichKeepsTheKeyboard) {
    const FullScreenProgram film;
    ASSERT_TRUE(GetParam().empty() || film.isShown); // a window manager gives it the keyboard
    warning.show();
    EXPECT_TRUE(happens(isSeen));
    EXPECT_EQ(ShownPanel::panel().frameGeometry(), placeOnX11);
    if (GetParam().empty()) return;
    EXPECT_TRUE(OnScreen::types("Escape"));
    EXPECT_TRUE(happens([&] { return film.got(Qt::Key_Escape); }));
    EXPECT_FALSE(film.everLostKeyboard());
    EXPECT_EQ(warning.cancelled, 0);
}

TEST_P(WarningWindowsTest, ComesBackInFrontOfAWindowThatIsShownLater) {
    warning.hud.show(later(warning.time.now(), 1h), Seconds{3600}, ShownPanel::message, [] {});
    ASSERT_TRUE(happens(isSeen));
    const FullScreenProgram film;
    EXPECT_TRUE(happens([] {
        return OnScreen::seen({10, 10, 1, 1}).pixelColor(0, 0) == QColor(Qt::darkGreen);
    }));
    warning.time.advance(1s);
    EXPECT_TRUE(happens([this, looks = 0]() mutable {
        if (isSeen()) return true;
        // A window manager that is busy may still put the film in front once more.
        if (++looks % 50 == 0) warning.time.advance(1s);
        return false;
    }));
}

TEST_P(WarningWindowsTest, AClickOnTheButtonCancelsOnceAndLeavesTheKeyboardAlone) {
    const FullScreenProgram film;
    warning.show();
    ASSERT_TRUE(happens(isSeen));
    ASSERT_TRUE(OnScreen::clicks(placeOnX11.topLeft() + ShownPanel::button().geometry().center()));
    EXPECT_TRUE(happens([this] { return warning.cancelled > 0; }));
    ASSERT_TRUE(OnScreen::types("a"));
    EXPECT_EQ(warning.cancelled, 1);
    EXPECT_FALSE(film.everLostKeyboard());
    EXPECT_TRUE(GetParam().empty() || happens([&] { return film.got(Qt::Key_A); }));
}

TEST_P(WarningWindowsTest, EscapeCancelsAfterAClickOnThePanelAndTheKeyboardGoesBack) {
    const FullScreenProgram film;
    warning.hud.show(later(warning.time.now(), 5s), Seconds{5}, ShownPanel::message, [this] {
        ++warning.cancelled;
        warning.hud.hide();
    });
    ASSERT_TRUE(happens(isSeen));
    ASSERT_TRUE(OnScreen::clicks(onTheTitle));
    ASSERT_TRUE(happens([] { return ShownPanel::panel().isActiveWindow(); }));
    EXPECT_EQ(warning.cancelled, 0);
    ASSERT_TRUE(OnScreen::types("Escape"));
    EXPECT_TRUE(happens([this] { return warning.cancelled > 0; }));
    EXPECT_EQ(warning.cancelled, 1);
    if (GetParam().empty()) return;
    EXPECT_TRUE(happens([&] { return film.hasKeyboard(); }));
    ASSERT_TRUE(OnScreen::types("b"));
    EXPECT_TRUE(happens([&] { return film.got(Qt::Key_B); }));
    EXPECT_FALSE(film.got(Qt::Key_Escape));
}

TEST_P(WarningWindowsTest, TabAndSpaceCancelAfterAClickOnThePanelAndTheRingIsSeen) {
    const FullScreenProgram film;
    warning.show();
    ASSERT_TRUE(happens(isSeen));
    ASSERT_TRUE(OnScreen::clicks(onTheTitle));
    ASSERT_TRUE(happens([] { return ShownPanel::panel().isActiveWindow(); }));
    const QPoint edge = placeOnX11.topLeft() + QPoint(ShownPanel::button().geometry().left() + 1,
                                                      ShownPanel::button().geometry().center().y());
    ASSERT_TRUE(OnScreen::types("Tab"));
    EXPECT_TRUE(happens([&edge] {
        return OnScreen::seen({edge, QSize(1, 1)}).pixelColor(0, 0) == QColor(Qt::white);
    }));
    EXPECT_EQ(warning.cancelled, 0);
    ASSERT_TRUE(OnScreen::types("space"));
    EXPECT_TRUE(happens([this] { return warning.cancelled == 1; }));
}

TEST_P(WarningWindowsTest, ThereIsOneHoweverOftenItIsShownAndNoneOnceItIsHidden) {
    warning.hud.hide();
    EXPECT_EQ(count(), 0);
    warning.show();
    warning.show("Sleutelbos is niet gehoord");
    ShownPanel::settle();
    EXPECT_TRUE(happens([] { return count() == 1; }));
    EXPECT_TRUE(happens([] { return ShownPanel::panels().size() == 1 && isSeen(); }));
    warning.hud.hide();
    EXPECT_TRUE(happens([] { return count() == 0; }));
    ShownPanel::settle();
    EXPECT_TRUE(ShownPanel::panels().isEmpty());
    warning.hud.hide();
    EXPECT_EQ(warning.time.pending(), 0U);
}
