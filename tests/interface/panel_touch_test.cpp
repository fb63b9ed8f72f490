// The panel under hands: pressed, dragged and typed on, without a screen. What comes of it is read
// from the core.

#include "tests/interface/picture_stage.h"
#include "tests/support/panel_world.h"
#include "tests/support/program.h"
#include "ui/qt/panel/panel_window.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Texts = std::vector<std::string>;

class PanelTouchTest : public testing::Test, protected PanelWorld {
protected:
    void open(const std::vector<KeyDevice>& keys = {}) {
        window.emplace(run(keys), images, PanelHost::window);
        window->open({});
        turn();
    }

    static void turn() {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    /// A second passes, with this heard in it.
    void hear(unsigned number, int rssi, std::string_view name) {
        world.hearApple(number, rssi, 0x10, name);
        world.pass(1s);
        turn();
    }

    /// The control that a screen reader calls so; null when it cannot be seen.
    template <typename Kind>
    Kind* find(const std::string& name) {
        for (Kind* const control : window->findChildren<Kind*>())
            if (control->accessibleName().toStdString() == name && control->isVisible())
                return control;
        return nullptr;
    }

    void press(const std::string& name) {
        auto* const button = find<QAbstractButton>(name);
        ASSERT_NE(button, nullptr) << name;
        const QPointF at(button->width() / 2.0, button->height() / 2.0);
        mouse(*button, QEvent::MouseButtonPress, at);
        mouse(*button, QEvent::MouseButtonRelease, at);
        turn();
    }

    static void mouse(QWidget& widget, QEvent::Type type, QPointF at) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, widget.mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
    }

    static void type(QWidget& widget, int key) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(&widget, &event);
        }
        turn();
    }

    /// A turn of the wheel over `widget`, handed on to what is around it until somebody takes it,
    /// as one of the window system's is.
    static void wheel(QWidget& widget, int turned) {
        const QPointF at(widget.width() / 2.0, widget.height() / 2.0);
        for (QWidget* part = &widget; part != nullptr; part = part->parentWidget()) {
            QWheelEvent event(widget.mapTo(part, at), widget.mapToGlobal(at), {}, {0, turned},
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(part, &event);
            if (event.isAccepted()) break;
        }
        turn();
    }

    static void typeText(QWidget& widget, const QString& text) {
        for (const QChar sign : text) {
            QKeyEvent event(QEvent::KeyPress, sign.unicode(), Qt::NoModifier, QString(sign));
            QCoreApplication::sendEvent(&widget, &event);
        }
        turn();
    }

    /// Where something is being typed; null when nothing is.
    QLineEdit* typingField() {
        for (QLineEdit* const field : window->findChildren<QLineEdit*>())
            if (field->isVisible()) return field;
        return nullptr;
    }

    /// Presses on a stepper's text.
    QLineEdit* beginTyping(const std::string& text) {
        window->activateWindow();
        turn();
        for (QLabel* const label : window->findChildren<QLabel*>()) {
            if (label->text().toStdString() != text || !label->isVisible()) continue;
            QWidget& stepper = *label->parentWidget();
            mouse(stepper, QEvent::MouseButtonPress, QPointF(label->geometry().center()));
            turn();
        }
        return typingField();
    }

    /// Chooses an entry of a button's menu.
    void choose(const std::string& name, const std::string& entry) {
        auto* const button = find<QPushButton>(name);
        ASSERT_NE(button, nullptr) << name;
        ASSERT_NE(button->menu(), nullptr) << name;
        for (QAction* const action : button->menu()->actions())
            if (action->text().toStdString() == entry) {
                action->trigger();
                return turn();
            }
        FAIL() << entry;
    }

    [[nodiscard]] bool shows(const std::string& text) {
        for (const QLabel* const label : window->findChildren<QLabel*>())
            if (label->text().toStdString() == text && label->isVisible()) return true;
        return false;
    }

    [[nodiscard]] double threshold() { return world.settings().keys.get().at(0).threshold.value; }

    /// Where the knob is drawn for a threshold.
    static QPointF knobAt(const QSlider& slider, double dBm) {
        const double fraction = (dBm + 95) / 55;
        return {8 + fraction * (slider.width() - 16), slider.height() / 2.0};
    }

    PictureStage stage;
    SymbolImages images;
    std::optional<PanelWindow> window;
};

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

TEST_F(PanelTouchTest, WithTheFirstKeyStartingAtLoginIsOffered) {
    open();
    hear(2, -50, "iPhone van Anna");
    EXPECT_EQ(find<QAbstractButton>("Start bij inloggen"), nullptr);
    press("Kies: iPhone van Anna");
    press("Start bij inloggen");
    EXPECT_TRUE(loginItem.enabled);
    EXPECT_EQ(find<QAbstractButton>("Start bij inloggen"), nullptr);
    EXPECT_EQ(find<QAbstractButton>("Niet nu"), nullptr);
}

TEST_F(PanelTouchTest, WhoDoesNotWantItToStartAtLoginSaysSo) {
    open();
    hear(2, -50, "iPhone van Anna");
    press("Kies: iPhone van Anna");
    press("Niet nu");
    EXPECT_FALSE(loginItem.enabled);
    EXPECT_EQ(find<QAbstractButton>("Start bij inloggen"), nullptr);
}

TEST_F(PanelTouchTest, APhoneThatCannotBeChosenSaysWhyAndOpensWhatCouplesIt) {
    open();
    world.central.setChanging(numbered(2), true);
    hear(2, -50, "iPhone van Anna");
    EXPECT_TRUE(shows("Dit apparaat wisselt van adres. Koppel het eerst met deze computer."));
    EXPECT_EQ(find<QAbstractButton>("Kies: iPhone van Anna"), nullptr);
    press("Koppel…: iPhone van Anna");
    EXPECT_EQ(asked, Texts{"bluetooth"});
    EXPECT_TRUE(world.settings().keys.get().empty());
    // What opens nothing says so, and stays where it is under the pointer.
    bluetoothFailure = Failure{"niets gevonden"};
    auto* const button = find<QAbstractButton>("Koppel…: iPhone van Anna");
    const QPoint place = button->mapTo(&*window, QPoint());
    press("Koppel…: iPhone van Anna");
    EXPECT_TRUE(shows("Dit apparaat wisselt van adres. Hier is geen venster om het te koppelen; "
                      "dat kan met bluetoothctl in een terminal."));
    EXPECT_EQ(button->mapTo(&*window, QPoint()), place);
    world.central.setChanging(numbered(2), false);
    hear(2, -50, "iPhone van Anna");
    press("Kies: iPhone van Anna");
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(PanelTouchTest, ARemovedKeyIsTakenBackByItsRow) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    const auto keys = world.settings().keys.get();
    auto* const remove = find<QAbstractButton>("Verwijder deze sleutel: A");
    ASSERT_NE(remove, nullptr);
    remove->setFocus();
    type(*remove, Qt::Key_Space);
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
    EXPECT_TRUE(shows("Verwijderd"));
    EXPECT_EQ(find<QSlider>("A: Lockt onder -75 dBm"), nullptr);
    // The keyboard is on what takes it back, and above the key that stayed.
    auto* const back = find<QAbstractButton>("Zet terug: A");
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(window->focusWidget(), back);
    const auto top = [this](QWidget& part) { return part.mapTo(&*window, QPoint()).y(); };
    EXPECT_LT(top(*back), top(*find<QAbstractButton>("Verwijder deze sleutel: B")));
    type(*back, Qt::Key_Space);
    EXPECT_EQ(world.settings().keys.get(), keys);
    EXPECT_EQ(window->focusWidget(), find<QAbstractButton>("Verwijder deze sleutel: A"));
    EXPECT_FALSE(shows("Verwijderd"));
}

TEST_F(PanelTouchTest, ASliderThatIsHeldStaysItsKeysWhenAnotherGoes) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    press("Verwijder deze sleutel: A");
    auto* const slider = find<QSlider>("B: Lockt onder -75 dBm");
    ASSERT_NE(slider, nullptr);
    mouse(*slider, QEvent::MouseButtonPress, knobAt(*slider, -60));
    world.pass(8s);
    turn();
    EXPECT_EQ(find<QAbstractButton>("Zet terug: A"), nullptr);
    ASSERT_EQ(find<QSlider>("B: Lockt onder -60 dBm"), slider);
    mouse(*slider, QEvent::MouseMove, knobAt(*slider, -70));
    EXPECT_EQ(threshold(), -70);
    mouse(*slider, QEvent::MouseButtonRelease, knobAt(*slider, -70));
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

TEST_F(PanelTouchTest, AValueIsTypedWhereItStands) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    QLineEdit* const field = beginTyping("Weg na 15 s geen signaal");
    ASSERT_NE(field, nullptr);
    EXPECT_FALSE(shows("Weg na 15 s geen signaal"));
    EXPECT_EQ(field->text(), "15");
    typeText(*field, "17");
    world.settings().awayDelay.set(Seconds{9}); // draws everything anew
    world.pass(1s);
    turn();
    EXPECT_EQ(field->text(), "17");
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{15});
    type(*field, Qt::Key_Return);
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{17});
    EXPECT_TRUE(shows("Weg na 17 s geen signaal"));
    EXPECT_FALSE(field->isVisible());
}

TEST_F(PanelTouchTest, EscapeLeavesAValueAndThePanelOpen) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    QLineEdit* const field = beginTyping("Weg na 5 s zwak signaal");
    ASSERT_NE(field, nullptr);
    typeText(*field, "40");
    type(*field, Qt::Key_Escape);
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{5});
    EXPECT_TRUE(shows("Weg na 5 s zwak signaal"));
    EXPECT_TRUE(window->isVisible());
    type(*window, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(PanelTouchTest, WhoGoesElsewhereHasTypedAValue) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    QLineEdit* field = beginTyping("Weg na 5 s zwak signaal");
    ASSERT_NE(field, nullptr);
    typeText(*field, "999");
    find<QAbstractButton>("Nu locken")->setFocus();
    turn();
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{60});
    EXPECT_EQ(window->focusWidget(), find<QAbstractButton>("Nu locken"));
    field = beginTyping("Weg na 60 s zwak signaal");
    ASSERT_NE(field, nullptr);
    typeText(*field, "8");
    window->hide();
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{8});
}

TEST_F(PanelTouchTest, ADigitOnAStepButtonBeginsToType) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    auto* const more = find<QAbstractButton>("Weg na 5 s zwak signaal, meer");
    ASSERT_NE(more, nullptr);
    more->setFocus();
    typeText(*more, "2");
    QLineEdit* const field = typingField();
    ASSERT_NE(field, nullptr);
    typeText(*field, "0");
    type(*field, Qt::Key_Enter);
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{20});
    EXPECT_EQ(window->focusWidget(), more);
    typeText(*more, "x");
    EXPECT_EQ(typingField(), nullptr);
}

TEST_F(PanelTouchTest, AHeldStepButtonGoesOn) {
    open({keyNamed("iPhone", 1)});
    press("Instellingen");
    auto* const more = find<QAbstractButton>("Aftellen vanaf 5 s, meer");
    ASSERT_NE(more, nullptr);
    const QPointF middle(more->width() / 2.0, more->height() / 2.0);
    mouse(*more, QEvent::MouseButtonPress, middle);
    EXPECT_TRUE(becomesTrue([this] {
        turn();
        return world.settings().warningSeconds.get() >= Seconds{8};
    }));
    mouse(*more, QEvent::MouseButtonRelease, middle);
}

TEST_F(PanelTouchTest, TheWheelScrollsThePanelAndChangesNothingOnItsWay) {
    open({keyNamed("iPhone", 1), keyNamed("Watch", 2), keyNamed("Tag", 3)});
    press("Instellingen");
    auto* const slider = find<QSlider>("iPhone: Lockt onder -75 dBm");
    auto* const more = find<QAbstractButton>("Weg na 5 s zwak signaal, meer");
    ASSERT_NE(slider, nullptr);
    ASSERT_NE(more, nullptr);
    auto* const bar = window->findChild<QScrollArea*>()->verticalScrollBar();
    for (QWidget* const part : std::initializer_list<QWidget*>{slider, more}) {
        bar->setValue(0);
        wheel(*part, -120);
        EXPECT_GT(bar->value(), 0);
    }
    slider->setFocus(); // as a press on it does
    bar->setValue(0);
    wheel(*slider, -120);
    EXPECT_GT(bar->value(), 0);
    EXPECT_EQ(threshold(), -75);
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{5});
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
        return window->geometry();
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
