#include "ui/tray_content.h"

#include <gtest/gtest.h>

#include <vector>

using namespace wegslot;

namespace {

std::string noTime(TimePoint) { return "?"; }

} // namespace

TEST(TrayContent, IsThePhasesSymbolAndTextInTheColorThatStandsOut) {
    EXPECT_EQ(trayContent(phase::Present{}, Scheme::light, noTime),
              (TrayContent{"lock.open", brand::navy, "Je bent in de buurt"}));
    EXPECT_EQ(trayContent(phase::Present{}, Scheme::dark, noTime),
              (TrayContent{"lock.open", brand::white, "Je bent in de buurt"}));
    EXPECT_EQ(trayContent(phase::BluetoothUnavailable{"uit"}, Scheme::dark, noTime),
              (TrayContent{"exclamationmark.lock", brand::white, "uit"}));
}

TEST(TrayContent, AnyPauseOfTheUsersCanBeEndedWhoeverBeganIt) {
    EXPECT_TRUE(trayContent(phase::Snoozed{}, Scheme::light, noTime).isPaused);
    EXPECT_FALSE(
        trayContent(phase::Paused{"Camera is in gebruik"}, Scheme::light, noTime).isPaused);
    EXPECT_FALSE(trayContent(phase::Present{}, Scheme::light, noTime).isPaused);
}

TEST(BarScheme, FollowsTheWindowsWhereTheBarDoes) {
    for (const char* const desktop : {"", "KDE", "XFCE", "X-Cinnamon", "MATE", "GNOMEish", ":::"}) {
        EXPECT_EQ(barScheme(Scheme::light, desktop), Scheme::light) << desktop;
        EXPECT_EQ(barScheme(Scheme::dark, desktop), Scheme::dark) << desktop;
    }
}

TEST(BarScheme, IsDarkWhereTheBarAlwaysIs) {
    for (const char* const desktop : {"GNOME", "ubuntu:GNOME", "Hyprland", "sway:wlroots", "i3:"})
        EXPECT_EQ(barScheme(Scheme::light, desktop), Scheme::dark) << desktop;
}

TEST(TrayPresenter, ShowsAnewWithEachPhaseAndScheme) {
    Observable<Phase> phase{phase::NoKeys{}};
    Observable<Scheme> windows{Scheme::light};
    std::vector<TrayContent> shown;
    const TrayPresenter presenter(phase, windows, "KDE", noTime,
                                  [&](const TrayContent& content) { shown.push_back(content); });
    phase.set(phase::Locked{});
    windows.set(Scheme::dark);
    EXPECT_EQ(shown, (std::vector<TrayContent>{
                         {"exclamationmark.lock", brand::navy, "Kies een sleutel om te beginnen"},
                         {"lock.fill", brand::navy, "Gelockt"},
                         {"lock.fill", brand::white, "Gelockt"}}));
}

TEST(TrayPresenter, ShowsNothingOnceItIsGone) {
    Observable<Phase> phase{phase::NoKeys{}};
    Observable<Scheme> windows{Scheme::light};
    int shown = 0;
    {
        const TrayPresenter presenter(phase, windows, "GNOME", noTime,
                                      [&](const TrayContent&) { ++shown; });
    }
    phase.set(phase::Locked{});
    windows.set(Scheme::dark);
    EXPECT_EQ(shown, 1);
}
