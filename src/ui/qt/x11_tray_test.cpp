#include "ui/qt/x11_tray.h"

#include "tests/support/offscreen.h"
#include "ui/qt/symbol_images.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <string>
#include <vector>

using namespace wegslot;

namespace {

struct X11TrayTest : testing::Test {
    Offscreen<QApplication> application;
    SymbolImages images;
    std::vector<std::string> done;
    X11Tray tray{images,
                 {.open =
                      [this](const TrayClick& click) {
                          done.emplace_back(click.at ? "open there" : "open");
                      },
                  .lock = [this] { done.emplace_back("lock"); },
                  .quit = [this] { done.emplace_back("quit"); }}};
};

} // namespace

TEST_F(X11TrayTest, IsNotThereWithoutAnXServer) { EXPECT_FALSE(X11Tray::isThere()); }

TEST_F(X11TrayTest, HasTheEntriesOfTheItemsMenu) {
    std::vector<std::string> labels;
    for (QWidget* const widget : QApplication::topLevelWidgets())
        for (QAction* const action : widget->actions()) {
            labels.push_back(action->text().toStdString());
            action->trigger();
        }
    EXPECT_EQ(labels, (std::vector<std::string>{"Open Wegslot", "Nu locken", "Stop"}));
    EXPECT_EQ(done, (std::vector<std::string>{"open", "lock", "quit"}));
}

TEST_F(X11TrayTest, ShowsAndHides) {
    EXPECT_FALSE(tray.isShown());
    tray.show({"lock.fill", brand::navy, "Gelockt"});
    EXPECT_TRUE(tray.isShown());
    tray.hide();
    EXPECT_FALSE(tray.isShown());
}
