// The panel under hands: what each control does, where it stands and when it goes.

#include "tests/interface/touched_panel.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Texts = std::vector<std::string>;

class PanelTouchTest : public TouchedPanel {};

} // namespace

TEST_F(PanelTouchTest, TheSwitchTurnsAllOfItOffAndOn) {
    open({keyNamed("iPhone", 1)});
    press("Wegslot aan of uit");
    EXPECT_FALSE(world.settings().enabled.get());
    world.pass(1s);
    turn();
    EXPECT_TRUE(shows("Uitgeschakeld"));
    press("Wegslot aan of uit");
    EXPECT_TRUE(world.settings().enabled.get());
}

TEST_F(PanelTouchTest, ADeviceIsChosenAndRemovedAgain) {
    open();
    hear(2, -50, "iPhone van Anna");
    press("Kies: iPhone van Anna");
    ASSERT_EQ(world.settings().keys.get().size(), 1U);
    EXPECT_EQ(world.settings().keys.get()[0].name, "iPhone van Anna");
    EXPECT_TRUE(shows("Nu -50 dBm"));
    press("Verwijder deze sleutel: iPhone van Anna");
    EXPECT_TRUE(world.settings().keys.get().empty());
}

TEST_F(PanelTouchTest, TheSliderGoesWhereItIsPressedAndStaysUnderTheFinger) {
    open({keyNamed("iPhone", 1)});
    auto* const slider = find<QSlider>("iPhone: Lockt onder -75 dBm");
    ASSERT_NE(slider, nullptr);
    mouse(*slider, QEvent::MouseButtonPress, knobAt(*slider, -60));
    EXPECT_EQ(threshold(), -60);
    mouse(*slider, QEvent::MouseMove, knobAt(*slider, -64.4));
    EXPECT_EQ(threshold(), -64);
    const int held = slider->value();
    EXPECT_NEAR(held, -644, 3);
    // What comes from elsewhere meanwhile draws everything anew, but does not move it.
    hear(1, -50, "iPhone");
    EXPECT_EQ(slider->value(), held);
    EXPECT_TRUE(shows("Lockt onder -64 dBm"));
    mouse(*slider, QEvent::MouseMove, knobAt(*slider, -200));
    EXPECT_EQ(threshold(), -95);
    mouse(*slider, QEvent::MouseMove, knobAt(*slider, 0));
    EXPECT_EQ(threshold(), -40);
    mouse(*slider, QEvent::MouseMove, knobAt(*slider, -70.4));
    mouse(*slider, QEvent::MouseButtonRelease, knobAt(*slider, -70.4));
    turn();
    EXPECT_EQ(threshold(), -70);
    EXPECT_EQ(slider->value(), -700); // what is stored is whole
}

TEST_F(PanelTouchTest, TheSliderMovesByKeysADecibelAtATime) {
    open({keyNamed("iPhone", 1)});
    auto* const slider = find<QSlider>("iPhone: Lockt onder -75 dBm");
    ASSERT_NE(slider, nullptr);
    type(*slider, Qt::Key_Right);
    EXPECT_EQ(threshold(), -74);
    type(*slider, Qt::Key_Left);
    type(*slider, Qt::Key_Left);
    EXPECT_EQ(threshold(), -76);
    type(*slider, Qt::Key_Home);
    EXPECT_EQ(threshold(), -95);
    EXPECT_EQ(slider->value(), -950);
}

TEST_F(PanelTouchTest, TheThresholdIsSetFromWhereOneSits) {
    open({keyNamed("iPhone", 1)});
    EXPECT_EQ(find<QPushButton>("Stel in vanaf hier"), nullptr);
    hear(1, -60, "iPhone");
    press("Stel in vanaf hier");
    EXPECT_EQ(threshold(), -75);
    EXPECT_TRUE(shows("Drempel -75 dBm, 15 dB onder nu")); // though it stood there
    hear(1, -60, "iPhone");
    for (int i = 0; i < 6; ++i)
        hear(1, -55, "iPhone");
    press("Stel in vanaf hier");
    EXPECT_EQ(threshold(), -70);
}

TEST_F(PanelTouchTest, TheRuleIsPickedFromItsMenu) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    choose("Locken als alle sleutels weg zijn", "één sleutel weg is");
    EXPECT_EQ(world.settings().rule.get(), LockRule::anyAway);
    EXPECT_NE(find<QPushButton>("Locken als één sleutel weg is"), nullptr);
}

TEST_F(PanelTouchTest, SettingsAreFoldedOpenSteppedAndTicked) {
    open({keyNamed("iPhone", 1)});
    EXPECT_FALSE(shows("Weg na 5 s zwak signaal"));
    press("Instellingen");
    EXPECT_TRUE(shows("Weg na 5 s zwak signaal"));
    press("Weg na 5 s zwak signaal, meer");
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{6});
    press("Weg na 6 s zwak signaal, minder");
    press("Weg na 5 s zwak signaal, minder");
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{4});
    press("Waarschuw voordat je Mac lockt");
    EXPECT_FALSE(world.settings().warningEnabled.get());
    EXPECT_FALSE(shows("Aftellen vanaf 5 s"));
    press("Niet locken tijdens videobellen");
    EXPECT_FALSE(world.settings().pauseDuringMeetings.get());
    press("Start bij inloggen");
    EXPECT_TRUE(loginItem.enabled);
    press("Zoek naar updates");
    EXPECT_EQ(asked, Texts{"check"});
    press("Instellingen");
    EXPECT_FALSE(shows("Weg na 4 s zwak signaal"));
}

TEST_F(PanelTouchTest, ALoginItemThatFailsSpringsBack) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    loginItem.failure = Failure{"schijf vol"};
    press("Start bij inloggen");
    auto* const box = find<QAbstractButton>("Start bij inloggen");
    ASSERT_NE(box, nullptr);
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(world.log.messages.back(), "Start bij inloggen mislukt: schijf vol");
}

TEST_F(PanelTouchTest, TheFootPausesResumesLocksAndEnds) {
    open({keyNamed("iPhone", 1)});
    hear(1, -50, "iPhone");
    choose("Pauzeer", "15 minuten");
    EXPECT_EQ(world.phaseName(), "snoozed");
    press("Hervat");
    EXPECT_NE(world.phaseName(), "snoozed");
    press("Open het logboek");
    press("Stop");
    EXPECT_EQ(asked, (Texts{"log", "quit"}));
    press("Nu locken");
    EXPECT_EQ(world.locks, 1);
}

TEST_F(PanelTouchTest, AnUpdateIsInstalledOrTriedAgain) {
    open({keyNamed("iPhone", 1)});
    update.set(update_state::Available{{.version = "1.4", .build = 27}});
    turn();
    press("Update");
    update.set(update_state::InstallFailed{"Download mislukt"});
    turn();
    EXPECT_TRUE(shows("Update mislukt: Download mislukt"));
    press("Probeer opnieuw");
    EXPECT_EQ(asked, (Texts{"install", "check"}));
}

TEST_F(PanelTouchTest, TheListKeepsItsOrderUnderThePointer) {
    open();
    hear(3, -50, "Iris");
    auto* const row = find<QAbstractButton>("Kies: Iris");
    ASSERT_NE(row, nullptr);
    const QPoint place = row->mapTo(&*window, QPoint());
    QWidget* const list = row->parentWidget()->parentWidget()->parentWidget();
    const QPointF somewhere;
    QEnterEvent enter(somewhere, somewhere, somewhere);
    QCoreApplication::sendEvent(list, &enter);
    hear(2, -50, "Anna");
    EXPECT_EQ(find<QAbstractButton>("Kies: Iris")->mapTo(&*window, QPoint()), place);
    EXPECT_GT(find<QAbstractButton>("Kies: Anna")->mapTo(&*window, QPoint()).y(), place.y());
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(list, &leave);
    hear(2, -50, "Anna");
    EXPECT_EQ(find<QAbstractButton>("Kies: Anna")->mapTo(&*window, QPoint()), place);
}

TEST_F(PanelTouchTest, ManyChangesAreDrawnOnceAndNothingIsWhileItIsClosed) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    for (int seconds = 10; seconds < 20; ++seconds)
        world.settings().awayDelay.set(Seconds{static_cast<double>(seconds)});
    EXPECT_TRUE(shows("Weg na 5 s zwak signaal")); // nothing is drawn within a change
    turn();
    EXPECT_TRUE(shows("Weg na 19 s zwak signaal"));
    window->hide();
    world.settings().awayDelay.set(Seconds{30});
    turn();
    const auto labels = window->findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
        return label->text() == QStringLiteral("Weg na 19 s zwak signaal");
    }));
    window->open({});
    turn();
    EXPECT_TRUE(shows("Weg na 30 s zwak signaal"));
}

TEST_F(PanelTouchTest, EscapeClosesItAndDevicesAreLookedForOnlyWhileItIsOpen) {
    open();
    EXPECT_TRUE(world.scanner().discoveryActive());
    type(*window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(world.scanner().discoveryActive());
}

TEST_F(PanelTouchTest, ItHasAButtonOfItsOwnToCloseIt) {
    open();
    press("Sluiten");
    EXPECT_FALSE(window->isVisible());
}

TEST_F(PanelTouchTest, StandsWhereTheIconWasClickedAndWhollyOnTheScreen) {
    open();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const auto placed = [this](const std::optional<QPoint>& at) {
        window->hide();
        window->open(at);
        turn();
        for (const QWidget* const child : window->findChildren<QWidget*>())
            if (const auto* const panel = dynamic_cast<const PanelView*>(child))
                return QRect(panel->mapToGlobal(QPoint()), panel->size()); // without its frame
        return QRect();
    };
    // Under an icon in a bar at the top, above one at the bottom.
    const QPoint middle = screen.center();
    const QRect below = placed(QPoint(middle.x(), screen.top() + 12));
    EXPECT_NEAR(below.center().x(), middle.x(), 1);
    EXPECT_EQ(below.top(), screen.top() + 20);
    const QRect above = placed(QPoint(middle.x(), screen.bottom() - 12));
    EXPECT_NEAR(above.center().x(), middle.x(), 1);
    EXPECT_EQ(above.bottom(), screen.bottom() - 21);
    // At the edges, and where no icon can be.
    for (const auto& at : {std::optional(screen.topLeft()), std::optional(screen.topRight()),
                           std::optional(screen.bottomRight()), std::optional(QPoint(-5000, 9)),
                           std::optional<QPoint>()})
        EXPECT_TRUE(screen.contains(placed(at))) << (at ? at->x() : 0);
    EXPECT_EQ(placed(std::nullopt).topRight(), screen.topRight() + QPoint(-8, 8));
}

TEST_F(PanelTouchTest, AnotherWindowClosesIt) {
    open();
    QWidget other;
    other.show();
    other.activateWindow();
    turn();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(PanelTouchTest, AClickOnTheIconOpensAndClosesIt) {
    open();
    window->toggle({});
    EXPECT_FALSE(window->isVisible());
    window->toggle({});
    EXPECT_TRUE(window->isVisible());
    // The press that closed it was on the icon: the click that follows does not open it again.
    window->hide();
    window->toggle({});
    EXPECT_FALSE(window->isVisible());
    window->toggle({});
    EXPECT_TRUE(window->isVisible());
}

TEST_F(PanelTouchTest, EverythingIsReachedByTabInReadingOrderAndHasANameAndARole) {
    open({keyNamed("iPhone", 1)});
    hear(1, -60, "iPhone");
    press("Instellingen");
    Texts names;
    window->activateWindow();
    QWidget* first = nullptr;
    for (int i = 0; i < 60; ++i) {
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
        QWidget* const at = window->focusWidget() == nullptr ? &*window : window->focusWidget();
        QCoreApplication::sendEvent(at, &tab);
        QWidget* const reached = window->focusWidget();
        ASSERT_NE(reached, nullptr);
        if (reached == first) break;
        if (first == nullptr) first = reached;
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(reached);
        ASSERT_NE(accessible, nullptr);
        const std::string name = accessible->text(QAccessible::Name).toStdString();
        EXPECT_NE(name, "");
        const auto role = accessible->role();
        const bool isKnown = role == QAccessible::PushButton || role == QAccessible::CheckBox ||
                             role == QAccessible::Slider || role == QAccessible::ButtonMenu ||
                             role == QAccessible::Button;
        EXPECT_TRUE(isKnown) << name << " " << role;
        names.push_back(name);
    }
    EXPECT_EQ(names, (Texts{"Wegslot aan of uit",
                            "Sluiten",
                            "Verwijder deze sleutel: iPhone",
                            "iPhone: Lockt onder -75 dBm",
                            "Stel in vanaf hier",
                            "Apparaten in de buurt",
                            "Instellingen",
                            "Weg na 5 s zwak signaal, minder",
                            "Weg na 5 s zwak signaal, meer",
                            "Weg na 15 s geen signaal, minder",
                            "Weg na 15 s geen signaal, meer",
                            "Waarschuw voordat je Mac lockt",
                            "Aftellen vanaf 5 s, minder",
                            "Aftellen vanaf 5 s, meer",
                            "Niet locken tijdens videobellen",
                            "Niet locken als je je Mac gebruikt",
                            "Start bij inloggen",
                            "Zoek naar updates",
                            "Nu locken",
                            "Pauzeer",
                            "Open het logboek",
                            "Stop"}));
}
