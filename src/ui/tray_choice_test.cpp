#include "ui/tray_choice.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(TrayChoice, AnItemThatIsTakenIsAllThereIs) {
    for (const bool x11 : {false, true})
        for (const bool tray : {false, true})
            EXPECT_EQ(trayKind({.itemIsTaken = true, .isX11Session = x11, .hasWindowTray = tray}),
                      TrayKind::item);
}

TEST(TrayChoice, AWindowServesWherePanelsOfX11TakeOne) {
    EXPECT_EQ(trayKind({.isX11Session = true, .hasWindowTray = true}), TrayKind::window);
    EXPECT_EQ(trayKind({.isX11Session = true}), TrayKind::none);
    EXPECT_EQ(trayKind({.hasWindowTray = true}), TrayKind::none);
    EXPECT_EQ(trayKind({}), TrayKind::none);
}
