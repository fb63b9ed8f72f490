#include "app/qt/display.h"
#include "app/qt/warning.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(Display, X11ComesFirstWhereverThereIsADisplay) {
    const DisplayEnvironment x11{.x11Display = ":0"};
    const DisplayEnvironment wayland{.waylandDisplay = "wayland-0"};
    const DisplayEnvironment both{.waylandDisplay = "wayland-0", .x11Display = ":0"};
    for (const DisplayEnvironment& environment : {x11, wayland, both}) {
        EXPECT_TRUE(hasDisplay(environment));
        EXPECT_EQ(qtPlatforms(environment), "xcb;wayland;offscreen");
    }
}

TEST(Display, WithoutADisplayNothingIsShown) {
    // A session that says of itself what it is may still have none.
    const DisplayEnvironment none{.runtimeFolder = "/run/user/1000", .sessionType = "wayland"};
    EXPECT_FALSE(hasDisplay(none));
    EXPECT_EQ(qtPlatforms(none), "offscreen");
}

TEST(WarningParts, ThereIsANotificationWhereThePanelMayBeCovered) {
    EXPECT_EQ(warningParts(true, true), (WarningParts{.panel = true, .sound = true}));
    EXPECT_EQ(warningParts(true, false),
              (WarningParts{.panel = true, .sound = true, .notification = true}));
    EXPECT_EQ(warningParts(false, true), WarningParts{});
    EXPECT_EQ(warningParts(false, false), WarningParts{});
}
