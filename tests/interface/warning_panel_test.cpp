// What the panel does, without a screen.

#include "hud/qt/warning_picture.h"
#include "tests/interface/picture_stage.h"
#include "tests/interface/shown_panel.h"
#include "tests/support/program.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QKeyEvent>
#include <QPaintEvent>

#include <functional>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

/// Notes which parts of a window are painted.
class Painted final : public QObject {
public:
    explicit Painted(QWidget& window) { window.installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            areas.push_back(static_cast<QPaintEvent*>(event)->region().boundingRect());
        return false;
    }

    std::vector<QRect> areas;
};

struct WarningPanelTest : testing::Test {
    PictureStage stage;
    ShownPanel warning;

    /// With what `then` does once it is cancelled.
    void show(const std::function<void()>& then) {
        warning.hud.show(later(warning.time.now(), 5s), Seconds{5}, ShownPanel::message,
                         [this, then] {
                             ++warning.cancelled;
                             then();
                         });
    }
    static void press(Qt::Key key, bool again = false) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString(), again);
        QCoreApplication::sendEvent(&ShownPanel::panel(), &event);
    }
    /// All that is under way has been painted.
    static void paint() {
        const auto until = std::chrono::steady_clock::now() + 50ms; // Qt waits up to a frame
        while (std::chrono::steady_clock::now() < until)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
};

} // namespace

TEST_F(WarningPanelTest, EachPressCancelsOnce) {
    warning.show();
    ShownPanel::button().click();
    EXPECT_EQ(warning.cancelled, 1);
    press(Qt::Key_Escape);
    EXPECT_EQ(warning.cancelled, 2);
    press(Qt::Key_Escape, true); // held down
    press(Qt::Key_A);
    EXPECT_EQ(warning.cancelled, 2);
}

TEST_F(WarningPanelTest, TheButtonIsReachedByTabAndPressedByEachKeyThatPressesOnes) {
    warning.show();
    ShownPanel::panel().activateWindow(); // as a click on the panel does
    ShownPanel::settle();
    ShownPanel::panel().setFocus(Qt::MouseFocusReason);
    EXPECT_FALSE(ShownPanel::button().hasFocus());
    press(Qt::Key_Tab);
    ASSERT_TRUE(ShownPanel::button().hasFocus());
    EXPECT_TRUE(ShownPanel::panel().testAttribute(Qt::WA_KeyboardFocusChange)); // and it shows
    int presses = 0;
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(&ShownPanel::button(), &event);
        }
        EXPECT_EQ(warning.cancelled, ++presses) << key;
    }
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(&ShownPanel::button(), &held);
    EXPECT_EQ(warning.cancelled, presses);
}

TEST_F(WarningPanelTest, TheButtonShowsAHand) {
    warning.show();
    EXPECT_EQ(ShownPanel::button().cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(WarningPanelTest, TheCancelMayHideThePanel) {
    for (const bool byKey : {false, true}) {
        show([this] { warning.hud.hide(); });
        byKey ? press(Qt::Key_Escape) : ShownPanel::button().click();
        ShownPanel::settle();
        EXPECT_TRUE(ShownPanel::panels().isEmpty());
    }
    EXPECT_EQ(warning.cancelled, 2);
}

TEST_F(WarningPanelTest, TheCancelMayShowAnother) {
    show([this] { warning.show("Sleutelbos is niet gehoord"); });
    ShownPanel::button().click();
    ShownPanel::settle();
    ASSERT_EQ(ShownPanel::panels().size(), 1);
    EXPECT_EQ(ShownPanel::panel().accessibleDescription(), "Sleutelbos is niet gehoord");
    ShownPanel::button().click();
    EXPECT_EQ(warning.cancelled, 2);
}

TEST_F(WarningPanelTest, APanelThatWasReplacedReportsNothing) {
    warning.show();
    QAbstractButton& former = ShownPanel::button();
    warning.show();
    former.click();
    EXPECT_EQ(warning.cancelled, 0);
}

TEST_F(WarningPanelTest, NothingRunsWhileThereIsNoPanel) {
    warning.hud.hide();
    EXPECT_EQ(warning.time.pending(), 0U);
    warning.show();
    EXPECT_EQ(warning.time.pending(), 1U);
    warning.show();
    EXPECT_EQ(warning.time.pending(), 1U);
    warning.hud.hide();
    EXPECT_EQ(warning.time.pending(), 0U);
}

TEST_F(WarningPanelTest, AFrameRepaintsTheRingAlone) {
    warning.show();
    paint();
    Painted painted(ShownPanel::panel());
    warning.time.advance(49ms);
    paint();
    EXPECT_TRUE(painted.areas.empty());
    warning.time.advance(1ms);
    EXPECT_TRUE(becomesTrue([&] {
        QCoreApplication::processEvents();
        return !painted.areas.empty();
    }));
    paint();
    EXPECT_EQ(painted.areas, std::vector{picture::ringBounds});
}

TEST_F(WarningPanelTest, AfterTheDeadlineThereIsNothingToRepaint) {
    warning.show();
    warning.time.advance(5s);
    paint();
    Painted painted(ShownPanel::panel());
    warning.time.advance(10s);
    paint();
    EXPECT_TRUE(painted.areas.empty());
    EXPECT_EQ(ShownPanel::panels().size(), 1); // it does not hide by itself
}

TEST_F(WarningPanelTest, IsAnAlertWithAButtonToAScreenReader) {
    QAccessible::setActive(true);
    warning.show();
    QAccessibleInterface* const alert = QAccessible::queryAccessibleInterface(&ShownPanel::panel());
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->role(), QAccessible::AlertMessage);
    EXPECT_EQ(alert->text(QAccessible::Name), "Je Mac lockt zo");
    EXPECT_EQ(alert->text(QAccessible::Description), "Telefoon is buiten bereik");
    ASSERT_EQ(alert->childCount(), 1);
    QAccessibleInterface* const button = alert->child(0);
    EXPECT_EQ(button->role(), QAccessible::Button);
    EXPECT_EQ(button->text(QAccessible::Name), "Ik ben er nog");
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(becomesTrue([this] { // it is seen to be pressed for a moment
        QCoreApplication::processEvents();
        return warning.cancelled == 1;
    }));
}
