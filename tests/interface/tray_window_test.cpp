// The icon of the whole application in an X11 panel that knows no items, only windows: tint2.

#include "tests/interface/screens.h"
#include "tests/support/private_bus.h"
#include "ui/qt/x11_bar_watch.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

/// Pixels in the panel, which is white, that are not.
int darkPixels() {
    const QImage panel = OnScreen::seen({0, 0, 1280, 40});
    int dark = 0;
    for (int y = 0; y < panel.height(); ++y)
        for (int x = 0; x < panel.width(); ++x)
            dark += qGray(panel.pixel(x, y)) < 100 ? 1 : 0;
    return dark;
}

class TrayWindow : public testing::Test {
protected:
    void SetUp() override {
        for (const char* const tool : {"Xvfb", "openbox", "tint2", "xprop", "xdotool"})
            if (!isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
        screen.emplace("openbox");
        ASSERT_TRUE(screen->isManaged);
        home.write("tint2rc", "panel_items = S\npanel_size = 100% 40\npanel_position = top center\n"
                              "systray_icon_size = 32\nrounded = 0\n"
                              "background_color = #ffffff 100\npanel_background_id = 1\n");
        variables = {{"DISPLAY", screen->display},
                     {"WAYLAND_DISPLAY", ""},
                     {"XDG_SESSION_TYPE", "x11"},
                     {"QT_QPA_PLATFORM", "xcb"},
                     {"HOME", home.path().string()},
                     {"XDG_CONFIG_HOME", (home.path() / "config").string()},
                     {"XDG_RUNTIME_DIR", home.path().string()},
                     {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
                     {"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}};
        on.emplace(variables);
    }

    [[nodiscard]] Program::Start bar() const {
        return {.words = {"tint2", "-c", (home.path() / "tint2rc").string()},
                .environment = variables};
    }
    [[nodiscard]] Program::Start wegslot(std::vector<std::string> options = {}) const {
        options.insert(options.begin(), WEGSLOT_PROGRAM);
        return {.words = std::move(options), .environment = variables};
    }
    /// Whether the panel of Wegslot, no icon and no warning, is on the screen.
    [[nodiscard]] bool panelIsOpen() const {
        Program search({.words = {"xdotool", "search", "--onlyvisible", "--name", "^Wegslot$"},
                        .environment = variables});
        return search.ended() == 0;
    }

    std::optional<X11Screen> screen;
    const PrivateBus bus;
    TemporaryFolder home;
    std::map<std::string, std::string> variables;
    std::optional<OnScreen> on;
};

} // namespace

TEST_F(TrayWindow, IsInAPanelThatTakesNothingElseWheneverThatStarts) {
    Program program(wegslot());
    Program panel(bar());
    EXPECT_TRUE(happens([] {
        const int dark = darkPixels(); // none of a panel that is not there: that is all black
        return dark > 30 && dark < 600;
    })) << darkPixels()
        << program.output() << panel.output();
    program.stop();
    EXPECT_EQ(program.ended(), 0) << program.output();
    EXPECT_TRUE(happens([] { return darkPixels() == 0; }));
}

TEST_F(TrayWindow, IsToldOfABarAsItComes) {
    int came = 0;
    const X11BarWatch watch([&came] { ++came; });
    Program first(bar());
    EXPECT_TRUE(happens([&came] { return came == 1; })) << first.output();
    first.stop();
    EXPECT_EQ(first.ended(), 0);
    Program second(bar());
    EXPECT_TRUE(happens([&came] { return came == 2; })) << second.output();
}

// A popup goes with any press elsewhere, and with the icon's being taken in.
TEST_F(TrayWindow, LeavesTheDemosPanelOpenAndSoDoesTheWarning) {
    Program panel(bar());
    Program demo(wegslot({"--demo"}));
    ASSERT_TRUE(happens([&demo] {
        return demo.output().find("Fase: warning") != std::string::npos;
    })) << demo.output();
    EXPECT_TRUE(panelIsOpen());
}
