#include "ui/qt/x11_tray.h"

#include "tests/support/offscreen.h"
#include "ui/qt/symbol_images.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <string>
#include <vector>

using namespace wegslot;

namespace {

using Texts = std::vector<std::string>;

struct X11TrayTest : testing::Test {
    /// Chooses each entry that can be seen.
    static Texts chosen() {
        Texts labels;
        for (QWidget* const widget : QApplication::topLevelWidgets())
            for (QAction* const action : widget->actions()) {
                if (!action->isVisible()) continue;
                labels.push_back(action->text().toStdString());
                action->trigger();
            }
        return labels;
    }

    Offscreen<QApplication> application;
    SymbolImages images;
    Texts done;
    X11Tray tray{images,
                 {.open =
                      [this](const TrayClick& click) {
                          done.emplace_back(click.at ? "open there" : "open");
                      },
                  .lock = [this] { done.emplace_back("lock"); },
                  .pause = [this](Seconds) { done.emplace_back("pause"); },
                  .pauseUntilMorning = [this] { done.emplace_back("morning"); },
                  .resume = [this] { done.emplace_back("resume"); },
                  .couple = [this] { done.emplace_back("couple"); },
                  .insight = [this] { done.emplace_back("insight"); },
                  .quit = [this] { done.emplace_back("quit"); }}};
};

} // namespace

TEST_F(X11TrayTest, IsNotThereWithoutAnXServer) { EXPECT_FALSE(X11Tray::isThere()); }

TEST_F(X11TrayTest, HasTheEntriesOfTheItemsMenu) {
    const Texts always{"Open Wegslot",
                       "Nu locken",
                       "Pauzeer 15 minuten",
                       "Pauzeer 1 uur",
                       "Pauzeer tot 06:00",
                       "Apparaat koppelen",
                       "Inzicht",
                       "Stop"};
    EXPECT_EQ(chosen(), always);
    EXPECT_EQ(done,
              (Texts{"open", "lock", "pause", "pause", "morning", "couple", "insight", "quit"}));
    done.clear();
    tray.show({"pause.circle", brand::navy, "Gepauzeerd tot 14:30", true});
    EXPECT_EQ(chosen().at(2), "Hervat");
    EXPECT_EQ(done, (Texts{"open", "lock", "resume", "pause", "pause", "morning", "couple",
                           "insight", "quit"}));
    tray.show({"lock.open", brand::navy, "Je bent in de buurt"});
    EXPECT_EQ(chosen(), always);
}

TEST_F(X11TrayTest, ShowsAndHides) {
    EXPECT_FALSE(tray.isShown());
    tray.show({"lock.fill", brand::navy, "Gelockt"});
    EXPECT_TRUE(tray.isShown());
    tray.hide();
    EXPECT_FALSE(tray.isShown());
}
