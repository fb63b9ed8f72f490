#include "platform/linux/display_environment.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

TEST(DisplayEnvironment, CompositorIsLookedForInTheRuntimeFolder) {
    EXPECT_EQ(compositorSocket({.waylandDisplay = "wayland-1", .runtimeFolder = "/run/user/7"}),
              "/run/user/7/wayland-1");
}

TEST(DisplayEnvironment, CompositorNamedByItsWholePathNeedsNoRuntimeFolder) {
    EXPECT_EQ(compositorSocket({.waylandDisplay = "/tmp/compositor"}), "/tmp/compositor");
}

TEST(DisplayEnvironment, UnnamedCompositorIsTheFirst) {
    EXPECT_EQ(compositorSocket({.runtimeFolder = "/run/user/7", .sessionType = "wayland"}),
              "/run/user/7/wayland-0");
    EXPECT_EQ(compositorSocket({.runtimeFolder = "/run/user/7"}), "/run/user/7/wayland-0");
}

TEST(DisplayEnvironment, UnnamedCompositorIsNotThatOfAnX11Session) {
    EXPECT_EQ(compositorSocket({.runtimeFolder = "/run/user/7", .sessionType = "x11"}),
              std::nullopt);
}

TEST(DisplayEnvironment, NoCompositorWithoutARuntimeFolderFromTheRoot) {
    EXPECT_EQ(compositorSocket({.waylandDisplay = "wayland-1"}), std::nullopt);
    EXPECT_EQ(compositorSocket({.waylandDisplay = "wayland-1", .runtimeFolder = "run"}),
              std::nullopt);
}

TEST(DisplayEnvironment, X11IsPlainUnlessTheSessionIsWayland) {
    EXPECT_EQ(plainX11Display({.x11Display = ":7"}), ":7");
    EXPECT_EQ(plainX11Display({.sessionType = "x11", .x11Display = ":7"}), ":7");
    EXPECT_EQ(plainX11Display({.sessionType = "wayland", .x11Display = ":7"}), std::nullopt);
    EXPECT_EQ(plainX11Display({.waylandDisplay = "wayland-0", .x11Display = ":7"}), std::nullopt);
    EXPECT_EQ(plainX11Display({.sessionType = "x11"}), std::nullopt);
}

} // namespace

TEST(DisplayEnvironment, LockersFitTheSessionAndNotTheServerThatWaylandRunsForOldPrograms) {
    EXPECT_EQ(displayKind({}), DisplayKind::none);
    EXPECT_EQ(displayKind({.x11Display = ":0"}), DisplayKind::x11);
    EXPECT_EQ(displayKind({.sessionType = "x11", .x11Display = ":0"}), DisplayKind::x11);
    EXPECT_EQ(displayKind({.waylandDisplay = "wayland-0", .x11Display = ":0"}),
              DisplayKind::wayland);
    EXPECT_EQ(displayKind({.sessionType = "wayland", .x11Display = ":0"}), DisplayKind::wayland);
    EXPECT_EQ(displayKind({.sessionType = "tty"}), DisplayKind::none);
}
