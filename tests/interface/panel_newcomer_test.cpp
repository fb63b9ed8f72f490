// The panel under the hands of who is new to it: couples a phone, removes what was not meant, types
// a number, scrolls across everything.

#include "tests/interface/touched_panel.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

class PanelNewcomerTest : public TouchedPanel {};

} // namespace

TEST_F(PanelNewcomerTest, WithTheFirstKeyStartingAtLoginIsOffered) {
    open();
    hear(2, -50, "iPhone van Anna");
    EXPECT_EQ(find<QAbstractButton>("Start bij inloggen"), nullptr);
    press("Kies: iPhone van Anna");
    press("Start bij inloggen");
    EXPECT_TRUE(loginItem.enabled);
    EXPECT_EQ(find<QAbstractButton>("Start bij inloggen"), nullptr);
    EXPECT_EQ(find<QAbstractButton>("Niet nu"), nullptr);
}

TEST_F(PanelNewcomerTest, WhoDoesNotWantItToStartAtLoginSaysSo) {
    open();
    hear(2, -50, "iPhone van Anna");
    press("Kies: iPhone van Anna");
    press("Niet nu");
    EXPECT_FALSE(loginItem.enabled);
    EXPECT_EQ(find<QAbstractButton>("Start bij inloggen"), nullptr);
}

TEST_F(PanelNewcomerTest, APhoneThatCannotBeChosenSaysWhyAndOpensWhatCouplesIt) {
    open();
    world.central.setChanging(numbered(2), true);
    hear(2, -50, "iPhone van Anna");
    EXPECT_TRUE(shows("Dit apparaat wisselt van adres. Koppel het eerst met deze computer."));
    EXPECT_EQ(find<QAbstractButton>("Kies: iPhone van Anna"), nullptr);
    press("Koppel…: iPhone van Anna");
    EXPECT_EQ(asked, std::vector<std::string>{"couple"});
    EXPECT_TRUE(world.settings().keys.get().empty());
    world.central.setChanging(numbered(2), false);
    hear(2, -50, "iPhone van Anna");
    press("Kies: iPhone van Anna");
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(PanelNewcomerTest, ARemovedKeyIsTakenBackByItsRow) {
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

TEST_F(PanelNewcomerTest, ASliderThatIsHeldStaysItsKeysWhenAnotherGoes) {
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

TEST_F(PanelNewcomerTest, AValueIsTypedWhereItStands) {
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

TEST_F(PanelNewcomerTest, EscapeLeavesAValueAndThePanelOpen) {
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

TEST_F(PanelNewcomerTest, WhoGoesElsewhereHasTypedAValue) {
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

TEST_F(PanelNewcomerTest, ADigitOnAStepButtonBeginsToType) {
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

TEST_F(PanelNewcomerTest, AHeldStepButtonGoesOn) {
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

TEST_F(PanelNewcomerTest, TheWheelScrollsThePanelAndChangesNothingOnItsWay) {
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
