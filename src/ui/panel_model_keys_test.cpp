// Keys that are chosen, removed and set in the panel, and what it says and offers then.

#include "ui/panel_model.h"

#include "tests/support/panel_model_stage.h"

using namespace wegslot;
using namespace wegslot::panel;
using namespace std::chrono_literals;

namespace {

using Names = std::vector<std::string>;

struct PanelModelKeysTest : PanelModelStage {};

} // namespace

TEST_F(PanelModelKeysTest, WithTheFirstKeyStartingAtLoginIsOfferedOnce) {
    open();
    hearPhones();
    EXPECT_FALSE(model->content().loginOffer);
    model->choose(numbered(1));
    ASSERT_TRUE(model->content().loginOffer);
    EXPECT_EQ(model->content().loginOffer->accept->text, "Start bij inloggen");
    model->choose(numbered(2));
    EXPECT_TRUE(model->content().loginOffer);
    model->acceptLogin();
    EXPECT_TRUE(loginItem.enabled);
    EXPECT_TRUE(launchAtLogin());
    EXPECT_FALSE(model->content().loginOffer);
    // Never again, whatever becomes of it.
    model->set(Choice::launchAtLogin, false);
    chooseAnew();
    EXPECT_FALSE(model->content().loginOffer);
}

TEST_F(PanelModelKeysTest, WhoDeclinesOrClosesThePanelIsNotAskedAgain) {
    open();
    hearPhones();
    model->choose(numbered(1));
    model->declineLogin();
    EXPECT_FALSE(loginItem.enabled);
    EXPECT_FALSE(model->content().loginOffer);
    chooseAnew();
    EXPECT_FALSE(model->content().loginOffer);
    EXPECT_TRUE(Remembered(world.store).loginOffered.get());
}

TEST_F(PanelModelKeysTest, TheOfferEndsWithThePanelAndIsStoredWhenItIsMade) {
    open();
    hearPhones();
    model->choose(numbered(1));
    EXPECT_TRUE(Remembered(world.store).loginOffered.get());
    model->disappear();
    model->appear();
    EXPECT_FALSE(model->content().loginOffer);
}

TEST_F(PanelModelKeysTest, NothingIsOfferedWhereItStartsAtLoginOrThereWasAKey) {
    loginItem.enabled = true;
    open();
    hearPhones();
    model->choose(numbered(1));
    EXPECT_FALSE(model->content().loginOffer);
    EXPECT_FALSE(remembered.loginOffered.get());
    loginItem.enabled = false;
    model->choose(numbered(2));
    EXPECT_FALSE(model->content().loginOffer);
}

TEST_F(PanelModelKeysTest, AnOfferThatCannotBeKeptSaysSo) {
    open();
    hearPhones();
    model->choose(numbered(1));
    loginItem.failure = Failure{"schijf vol"};
    model->acceptLogin();
    EXPECT_FALSE(loginItem.enabled);
    ASSERT_TRUE(model->content().loginOffer);
    EXPECT_EQ(model->content().loginOffer->text, "Dat lukte niet; het logboek zegt waarom.");
    EXPECT_FALSE(model->content().loginOffer->accept);
    EXPECT_TRUE(world.logged("Start bij inloggen mislukt: schijf vol"));
    model->declineLogin();
    EXPECT_FALSE(model->content().loginOffer);
}

TEST_F(PanelModelKeysTest, ABoxThatIsTickedAnswersTheOfferToo) {
    open();
    hearPhones();
    model->choose(numbered(1));
    model->set(Choice::launchAtLogin, true);
    EXPECT_FALSE(model->content().loginOffer);
}

TEST_F(PanelModelKeysTest, WhatCouplesAPhoneIsOpenedAndAsLongAsItChangesAddressItIsNoKey) {
    open();
    world.hearApple(1, -60, 0x10, "Mijn iPhone");
    world.central.setChanging(numbered(1), true);
    world.pass(1s);
    const auto first = [this] { return *model->content().nearby.named.places.at(0).row; };
    EXPECT_EQ(first().choose.text, "Koppel…");
    model->couple();
    EXPECT_EQ(asked, Names{"couple"});
    world.central.setChanging(numbered(1), false);
    EXPECT_EQ(first().choose.text, "Kies");
    EXPECT_TRUE(world.settings().keys.get().empty());
}

TEST_F(PanelModelKeysTest, ARemovedKeyIsNoKeyAtOnceAndCanBeTakenBackInItsPlaceForEightSeconds) {
    open({keyNamed("A", 1), keyNamed("B", 2), keyNamed("C", 3)});
    model->removeKey(numbered(2));
    EXPECT_EQ(world.settings().keys.get(), (std::vector{keyNamed("A", 1), keyNamed("C", 3)}));
    EXPECT_EQ(keyNames(), (Names{"A", "(B)", "C"}));
    EXPECT_EQ(std::get<RemovedRow>(model->content().keys.rows.at(1)),
              (RemovedRow{numbered(2), "B", "Verwijderd", Button{"", "Zet terug"}}));
    world.pass(8s - 1ns);
    EXPECT_EQ(keyNames(), (Names{"A", "(B)", "C"}));
    static_cast<void>(changed());
    world.pass(1ns);
    EXPECT_TRUE(changed());
    EXPECT_EQ(keyNames(), (Names{"A", "C"}));
    model->putBack(numbered(2));
    EXPECT_EQ(world.settings().keys.get().size(), 2U);
}

TEST_F(PanelModelKeysTest, AKeyThatIsTakenBackIsAsItWasAndWhereItWas) {
    KeyDevice band{.id = numbered(1),
                   .name = "Bandje",
                   .model = "B2",
                   .isApple = false,
                   .threshold = Dbm{-61}};
    open({keyNamed("A", 2), band, keyNamed("C", 3)});
    world.keepHearing(1, -50, 3);
    const auto before = world.settings().keys.get();
    model->removeKey(numbered(1));
    world.pass(7s);
    model->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), before);
    EXPECT_EQ(keyNames(), (Names{"A", "Bandje", "C"}));
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(row(1).badge.text, "Dichtbij");
    world.pass(60s); // what would have forgotten it has ended
    EXPECT_EQ(world.settings().keys.get(), before);
}

TEST_F(PanelModelKeysTest, TheLastKeyIsTakenBackToo) {
    open({keyNamed("A", 1)});
    model->removeKey(numbered(1));
    EXPECT_EQ(keyNames(), Names{"(A)"});
    EXPECT_NE(model->content().keys.instruction, "");
    model->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), std::vector{keyNamed("A", 1)});
}

TEST_F(PanelModelKeysTest, EachRemovalHasItsOwnEightSeconds) {
    open({keyNamed("A", 1), keyNamed("B", 2), keyNamed("C", 3)});
    model->removeKey(numbered(1));
    world.pass(5s);
    model->removeKey(numbered(2));
    world.pass(3s);
    EXPECT_EQ(keyNames(), (Names{"(B)", "C"}));
    world.pass(5s);
    EXPECT_EQ(keyNames(), Names{"C"});
    model->removeKey(numbered(9)); // no key
    EXPECT_EQ(keyNames(), Names{"C"});
}

TEST_F(PanelModelKeysTest, WhoRemovesTheSameKeyAgainHasEightSecondsAgain) {
    open({keyNamed("A", 1)});
    model->removeKey(numbered(1));
    world.pass(7s);
    model->putBack(numbered(1));
    model->removeKey(numbered(1));
    world.pass(7s);
    EXPECT_EQ(keyNames(), Names{"(A)"});
    // Chosen once more from the list, it is a key and nothing is left to take back.
    world.hearApple(1, -50, 0x10, "A");
    world.pass(500ms);
    world.scanner().refreshSnapshot();
    model->choose(numbered(1));
    EXPECT_EQ(keyNames(), Names{"A"});
    const auto keys = world.settings().keys.get();
    model->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), keys);
}

TEST_F(PanelModelKeysTest, ThePanelThatClosesTakesTheOfferAlong) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    model->removeKey(numbered(1));
    model->disappear();
    model->appear();
    EXPECT_EQ(keyNames(), Names{"B"});
    model->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), std::vector{keyNamed("B", 2)});
    static_cast<void>(changed());
    model->removeKey(numbered(2));
    model.reset();
    world.pass(9s); // nobody is left to be told
}

TEST_F(PanelModelKeysTest, FromHereItSaysForAMomentWhatTheThresholdIsAlsoWhereItStoodThere) {
    auto key = keyNamed("A", 1);
    key.threshold = Dbm{-65};
    open({key});
    world.keepHearing(1, -47, 1);
    EXPECT_EQ(row().justSet, "");
    static_cast<void>(changed());
    model->setFromHere(numbered(1));
    EXPECT_TRUE(changed());
    EXPECT_EQ(row().justSet, "Drempel -65 dBm, 18 dB onder nu");
    world.pass(6s - 1ns);
    EXPECT_EQ(row().justSet, "Drempel -65 dBm, 18 dB onder nu");
    static_cast<void>(changed());
    world.pass(1ns);
    EXPECT_TRUE(changed());
    EXPECT_EQ(row().justSet, "");
}

TEST_F(PanelModelKeysTest, WhatWasSaidOfAThresholdEndsWithIt) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    world.keepHearing(1, -60, 1);
    model->setFromHere(numbered(1));
    EXPECT_EQ(row(0).justSet, "Drempel -75 dBm, 15 dB onder nu");
    EXPECT_EQ(row(1).justSet, "");
    model->moveThreshold(numbered(1), Dbm{-80});
    EXPECT_EQ(row(0).justSet, "");
    model->setFromHere(numbered(1));
    model->disappear();
    model->appear();
    EXPECT_EQ(row(0).justSet, "");
    model->setFromHere(numbered(2)); // not heard
    EXPECT_EQ(row(1).justSet, "");
}
