// The icon of the whole application in an X11 panel that knows no items, only windows: tint2.

#include "tests/interface/screens.h"
#include "tests/support/private_bus.h"

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

} // namespace

TEST(TrayWindow, IsInAPanelThatTakesNothingElseWheneverThatStarts) {
    for (const char* const tool : {"Xvfb", "openbox", "tint2", "xprop"})
        if (!isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
    X11Screen screen("openbox");
    ASSERT_TRUE(screen.isManaged);
    const PrivateBus bus;
    TemporaryFolder home;
    home.write("tint2rc", "panel_items = S\npanel_size = 100% 40\npanel_position = top center\n"
                          "systray_icon_size = 32\nrounded = 0\n"
                          "background_color = #ffffff 100\npanel_background_id = 1\n");
    const std::map<std::string, std::string> variables{
        {"DISPLAY", screen.display},
        {"WAYLAND_DISPLAY", ""},
        {"XDG_SESSION_TYPE", "x11"},
        {"QT_QPA_PLATFORM", "xcb"},
        {"HOME", home.path().string()},
        {"XDG_CONFIG_HOME", (home.path() / "config").string()},
        {"XDG_RUNTIME_DIR", home.path().string()},
        {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
        {"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}};
    const OnScreen on(variables);
    Program wegslot({.words = {WEGSLOT_PROGRAM}, .environment = variables});
    Program panel(
        {.words = {"tint2", "-c", (home.path() / "tint2rc").string()}, .environment = variables});
    EXPECT_TRUE(happens([] {
        const int dark = darkPixels(); // none of a panel that is not there: that is all black
        return dark > 30 && dark < 600;
    })) << darkPixels()
        << wegslot.output() << panel.output();
    wegslot.stop();
    EXPECT_EQ(wegslot.ended(), 0) << wegslot.output();
    EXPECT_TRUE(happens([] { return darkPixels() == 0; }));
}
