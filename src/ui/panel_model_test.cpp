#include "ui/panel_model.h"

#include "tests/support/panel_world.h"

using namespace wegslot;
using namespace wegslot::panel;
using namespace std::chrono_literals;

namespace {

using Texts = std::vector<std::string>;

struct PanelModelTest : testing::Test, PanelWorld {
    int changes = 0;
    std::optional<PanelModel> panel;

    void open(const std::vector<KeyDevice>& keys = {},
              PanelModel::Expand expand = PanelModel::Expand::asNeeded) {
        panel.emplace(run(keys), expand, [this] { ++changes; });
        panel->appear();
    }

    /// Whether a change was told since the last call.
    bool changed() { return std::exchange(changes, 0) > 0; }

    [[nodiscard]] bool launchAtLogin() {
        return std::get<Toggle>(panel->content().settings.parts.at(7)).isOn;
    }

    void hearPhones() {
        world.hearApple(1, -60, 0x10, "Mijn iPhone");
        world.hearApple(2, -60, 0x10, "Mijn Watch");
        world.pass(1s);
    }

    /// As the first key once more.
    void chooseAnew() {
        world.settings().keys.set({});
        hearPhones();
        panel->choose(numbered(1));
        ASSERT_EQ(world.settings().keys.get().size(), 1U);
    }

    [[nodiscard]] Dbm threshold() { return world.settings().keys.get().at(0).threshold; }

    [[nodiscard]] KeyRow row(std::size_t index = 0) {
        return std::get<KeyRow>(panel->content().keys.rows.at(index));
    }

    /// The names of the keys, those that can be taken back in brackets.
    [[nodiscard]] Texts keyNames() {
        Texts names;
        for (const KeyPlace& place : panel->content().keys.rows) {
            const auto* const removed = std::get_if<RemovedRow>(&place);
            names.push_back(removed == nullptr ? std::get<KeyRow>(place).name
                                               : "(" + removed->name + ")");
        }
        return names;
    }

    [[nodiscard]] Texts listed() {
        Texts names;
        for (const NearbyPlace& place : panel->content().nearby.named.places)
            names.push_back(place.row ? place.row->name : "-");
        return names;
    }
};

} // namespace

TEST_F(PanelModelTest, WithoutKeysTheListIsOpenWhenItAppears) {
    open();
    EXPECT_TRUE(panel->content().nearby.isOpen);
    EXPECT_FALSE(panel->content().settings.isOpen);
    EXPECT_TRUE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, WithAKeyTheListIsFoldedWhenItAppears) {
    open({keyNamed("A", 1)});
    EXPECT_FALSE(panel->content().nearby.isOpen);
    EXPECT_FALSE(world.scanner().discoveryActive());
    panel->openNearby(true);
    panel->disappear();
    panel->appear();
    EXPECT_FALSE(panel->content().nearby.isOpen);
    EXPECT_FALSE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, ForAPictureAllIsOpenButTheNameless) {
    open({keyNamed("A", 1)}, PanelModel::Expand::all);
    world.hearApple(2, -60);
    world.pass(1s);
    EXPECT_TRUE(panel->content().nearby.isOpen);
    EXPECT_FALSE(panel->content().nearby.nameless->isOpen);
    EXPECT_TRUE(panel->content().settings.isOpen);
    EXPECT_TRUE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, DevicesAreLookedForOnlyWhileTheListIsSeen) {
    open({keyNamed("A", 1)});
    panel->openNearby(true);
    EXPECT_TRUE(panel->content().nearby.isOpen);
    EXPECT_TRUE(world.scanner().discoveryActive());
    panel->openNearby(false);
    EXPECT_FALSE(panel->content().nearby.isOpen);
    EXPECT_FALSE(world.scanner().discoveryActive());
    panel->openNearby(true);
    panel->disappear();
    EXPECT_FALSE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, GroupsOpenAndFold) {
    open();
    world.hearApple(2, -60);
    world.pass(1s);
    panel->openNameless(true);
    panel->openSettings(true);
    EXPECT_TRUE(panel->content().nearby.nameless->isOpen);
    EXPECT_TRUE(panel->content().settings.isOpen);
    panel->openNameless(false);
    panel->openSettings(false);
    EXPECT_FALSE(panel->content().nearby.nameless->isOpen);
    EXPECT_FALSE(panel->content().settings.isOpen);
}

TEST_F(PanelModelTest, EveryChangeOfWhatItShowsIsTold) {
    open({keyNamed("A", 1)});
    static_cast<void>(changed());
    world.settings().visit([this](auto& setting) {
        setting.set(setting.get());
        EXPECT_TRUE(changed()) << setting.name();
    });
    world.scanner().refreshSnapshot();
    EXPECT_TRUE(changed());
    world.central.setState(CentralState::poweredOff);
    EXPECT_TRUE(changed());
    update.set(update_state::Checking{});
    EXPECT_TRUE(changed());
    scheme.set(Scheme::dark);
    EXPECT_TRUE(changed());
    world.monitor().lockNow();
    EXPECT_TRUE(changed());
    world.pass(1s);
    EXPECT_TRUE(changed());
    world.monitor().resume();
    EXPECT_EQ(changes, 3); // the pause, the list and the judgements
}

TEST_F(PanelModelTest, NothingIsToldAfterItHasGone) {
    open();
    panel.reset();
    static_cast<void>(changed());
    world.settings().enabled.set(true);
    update.set(update_state::Checking{});
    world.pass(5s);
    EXPECT_FALSE(changed());
}

TEST_F(PanelModelTest, ShowsTheStateOfTheUpdater) {
    open();
    update.set(update_state::InstallFailed{"De schijf is vol"});
    EXPECT_EQ(std::get<UpdateTrouble>(panel->content().banner).text,
              "Update mislukt: De schijf is vol");
    EXPECT_EQ(std::get<VersionBlock>(panel->content().settings.parts.back()).version, "Versie 1.3");
    scheme.set(Scheme::dark);
    EXPECT_EQ(panel->content().ground, brand::navy);
}

TEST_F(PanelModelTest, EachChoiceGoesToItsSetting) {
    open();
    Settings& settings = world.settings();
    const std::vector<std::pair<Choice, Setting<bool>*>> choices{
        {Choice::enabled, &settings.enabled},
        {Choice::showOtherDevices, &settings.showOtherDevices},
        {Choice::warningEnabled, &settings.warningEnabled},
        {Choice::pauseDuringMeetings, &settings.pauseDuringMeetings},
        {Choice::pauseWhileActive, &settings.pauseWhileActive}};
    for (const auto& [choice, setting] : choices)
        for (const bool on : {false, true, false}) {
            panel->set(choice, on);
            EXPECT_EQ(setting->get(), on);
        }
    panel->setRule(LockRule::anyAway);
    EXPECT_EQ(settings.rule.get(), LockRule::anyAway);
}

TEST_F(PanelModelTest, EachStepGoesToItsSetting) {
    open();
    panel->step(Delay::awayDelay, Step::up);
    panel->step(Delay::lostTimeout, Step::up);
    panel->step(Delay::warningSeconds, Step::down);
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{6});
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{20});
    EXPECT_EQ(world.settings().warningSeconds.get(), Seconds{4});
    for (int i = 0; i < 5; ++i)
        panel->step(Delay::warningSeconds, Step::down);
    EXPECT_EQ(world.settings().warningSeconds.get(), Seconds{3});
}

TEST_F(PanelModelTest, WhatIsTypedGoesToItsSetting) {
    open();
    Settings& settings = world.settings();
    panel->enter(Delay::awayDelay, "12");
    panel->enter(Delay::lostTimeout, "17");
    panel->enter(Delay::warningSeconds, "99");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{12});
    EXPECT_EQ(settings.lostTimeout.get(), Seconds{17});
    EXPECT_EQ(settings.warningSeconds.get(), Seconds{30});
    panel->enter(Delay::awayDelay, "straks");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{12});
    // What was only looked at stays what it is, also where no stepper would have brought it.
    settings.awayDelay.set(Seconds{7.5});
    panel->enter(Delay::awayDelay, "7");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{7.5});
    settings.awayDelay.set(Seconds{600});
    panel->enter(Delay::awayDelay, "600");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{600});
    panel->enter(Delay::awayDelay, "601");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{60});
}

TEST_F(PanelModelTest, StartingAtLoginIsRegistered) {
    open();
    EXPECT_FALSE(launchAtLogin());
    panel->set(Choice::launchAtLogin, true);
    EXPECT_TRUE(loginItem.enabled);
    EXPECT_TRUE(launchAtLogin());
    panel->set(Choice::launchAtLogin, false);
    EXPECT_FALSE(loginItem.enabled);
    EXPECT_FALSE(launchAtLogin());
}

TEST_F(PanelModelTest, ARegistrationThatFailsIsLoggedAndSpringsBack) {
    open();
    loginItem.failure = Failure{"geen plaats\nop de schijf"};
    static_cast<void>(changed());
    panel->set(Choice::launchAtLogin, true);
    EXPECT_FALSE(launchAtLogin());
    EXPECT_TRUE(changed());
    EXPECT_TRUE(world.logged("Start bij inloggen mislukt: geen plaats\uFFFDop de schijf"));
}

TEST_F(PanelModelTest, TheLoginItemIsAskedAgainEachTimeThePanelAppears) {
    loginItem.enabled = true;
    open();
    EXPECT_TRUE(launchAtLogin());
    panel->disappear();
    loginItem.enabled = false;
    panel->appear();
    EXPECT_FALSE(launchAtLogin());
}

TEST_F(PanelModelTest, AChosenDeviceBecomesAKeyAndLeavesTheList) {
    open();
    world.hearApple(1, -60, 0x10, "Mijn iPhone");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"Mijn iPhone"}));
    panel->choose(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), (std::vector<KeyDevice>{{.id = numbered(1),
                                                                    .name = "Mijn iPhone",
                                                                    .model = {},
                                                                    .isApple = true,
                                                                    .threshold = Dbm{-75}}}));
    EXPECT_EQ(listed(), Texts{});
    EXPECT_TRUE(panel->content().nearby.isOpen); // for the next one
    panel->choose(numbered(1));
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(PanelModelTest, WithTheFirstKeyStartingAtLoginIsOfferedOnce) {
    open();
    hearPhones();
    EXPECT_FALSE(panel->content().loginOffer);
    panel->choose(numbered(1));
    ASSERT_TRUE(panel->content().loginOffer);
    EXPECT_EQ(panel->content().loginOffer->accept->text, "Start bij inloggen");
    panel->choose(numbered(2));
    EXPECT_TRUE(panel->content().loginOffer);
    panel->acceptLogin();
    EXPECT_TRUE(loginItem.enabled);
    EXPECT_TRUE(launchAtLogin());
    EXPECT_FALSE(panel->content().loginOffer);
    // Never again, whatever becomes of it.
    panel->set(Choice::launchAtLogin, false);
    chooseAnew();
    EXPECT_FALSE(panel->content().loginOffer);
}

TEST_F(PanelModelTest, WhoDeclinesOrClosesThePanelIsNotAskedAgain) {
    open();
    hearPhones();
    panel->choose(numbered(1));
    panel->declineLogin();
    EXPECT_FALSE(loginItem.enabled);
    EXPECT_FALSE(panel->content().loginOffer);
    chooseAnew();
    EXPECT_FALSE(panel->content().loginOffer);
    EXPECT_TRUE(Remembered(world.store).loginOffered.get());
}

TEST_F(PanelModelTest, TheOfferEndsWithThePanelAndIsStoredWhenItIsMade) {
    open();
    hearPhones();
    panel->choose(numbered(1));
    EXPECT_TRUE(Remembered(world.store).loginOffered.get());
    panel->disappear();
    panel->appear();
    EXPECT_FALSE(panel->content().loginOffer);
}

TEST_F(PanelModelTest, NothingIsOfferedWhereItStartsAtLoginOrThereWasAKey) {
    loginItem.enabled = true;
    open();
    hearPhones();
    panel->choose(numbered(1));
    EXPECT_FALSE(panel->content().loginOffer);
    EXPECT_FALSE(remembered.loginOffered.get());
    loginItem.enabled = false;
    panel->choose(numbered(2));
    EXPECT_FALSE(panel->content().loginOffer);
}

TEST_F(PanelModelTest, AnOfferThatCannotBeKeptSaysSo) {
    open();
    hearPhones();
    panel->choose(numbered(1));
    loginItem.failure = Failure{"schijf vol"};
    panel->acceptLogin();
    EXPECT_FALSE(loginItem.enabled);
    ASSERT_TRUE(panel->content().loginOffer);
    EXPECT_EQ(panel->content().loginOffer->text, "Dat lukte niet; het logboek zegt waarom.");
    EXPECT_FALSE(panel->content().loginOffer->accept);
    EXPECT_TRUE(world.logged("Start bij inloggen mislukt: schijf vol"));
    panel->declineLogin();
    EXPECT_FALSE(panel->content().loginOffer);
}

TEST_F(PanelModelTest, ABoxThatIsTickedAnswersTheOfferToo) {
    open();
    hearPhones();
    panel->choose(numbered(1));
    panel->set(Choice::launchAtLogin, true);
    EXPECT_FALSE(panel->content().loginOffer);
}

TEST_F(PanelModelTest, ADeviceThatHasGoneOrWillBeAStrangerIsNoKey) {
    open();
    world.hearApple(1, -60, 0x10, "Mijn iPhone");
    world.central.setChanging(numbered(1), true);
    world.pass(1s);
    panel->choose(numbered(1));
    panel->choose(numbered(2));
    EXPECT_TRUE(world.settings().keys.get().empty());
    world.central.setChanging(numbered(1), false);
    panel->choose(numbered(1));
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(PanelModelTest, WhatCouplesAPhoneIsOpenedOrItsRowSaysThatNothingDoes) {
    open();
    world.hearApple(1, -60, 0x10, "Mijn iPhone");
    world.central.setChanging(numbered(1), true);
    world.pass(1s);
    const auto first = [this] { return *panel->content().nearby.named.places.at(0).row; };
    EXPECT_EQ(first().choose.text, "Koppel…");
    const std::string before = first().obstacle;
    panel->couple(numbered(1));
    EXPECT_EQ(asked, Texts{"bluetooth"});
    EXPECT_EQ(first().obstacle, before);

    bluetoothFailure = Failure{"niets\ngevonden"};
    static_cast<void>(changed());
    panel->couple(numbered(1));
    EXPECT_TRUE(changed());
    EXPECT_NE(first().obstacle, before);
    EXPECT_TRUE(world.logged("Koppelen mislukt: niets\uFFFDgevonden"));
    panel->disappear(); // by the next time something may be installed
    panel->appear();
    EXPECT_EQ(first().obstacle, before);
    world.central.setChanging(numbered(1), false);
    EXPECT_EQ(first().choose.text, "Kies");
    EXPECT_TRUE(world.settings().keys.get().empty());
}

TEST_F(PanelModelTest, AKeyIsRemoved) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    panel->removeKey(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), (std::vector{keyNamed("B", 2)}));
}

TEST_F(PanelModelTest, ARemovedKeyIsNoKeyAtOnceAndCanBeTakenBackInItsPlaceForEightSeconds) {
    open({keyNamed("A", 1), keyNamed("B", 2), keyNamed("C", 3)});
    panel->removeKey(numbered(2));
    EXPECT_EQ(world.settings().keys.get(), (std::vector{keyNamed("A", 1), keyNamed("C", 3)}));
    EXPECT_EQ(keyNames(), (Texts{"A", "(B)", "C"}));
    EXPECT_EQ(std::get<RemovedRow>(panel->content().keys.rows.at(1)),
              (RemovedRow{numbered(2), "B", "Verwijderd", Button{"", "Zet terug"}}));
    world.pass(8s - 1ns);
    EXPECT_EQ(keyNames(), (Texts{"A", "(B)", "C"}));
    static_cast<void>(changed());
    world.pass(1ns);
    EXPECT_TRUE(changed());
    EXPECT_EQ(keyNames(), (Texts{"A", "C"}));
    panel->putBack(numbered(2));
    EXPECT_EQ(world.settings().keys.get().size(), 2U);
}

TEST_F(PanelModelTest, AKeyThatIsTakenBackIsAsItWasAndWhereItWas) {
    KeyDevice band{.id = numbered(1),
                   .name = "Bandje",
                   .model = "B2",
                   .isApple = false,
                   .threshold = Dbm{-61}};
    open({keyNamed("A", 2), band, keyNamed("C", 3)});
    world.keepHearing(1, -50, 3);
    const auto before = world.settings().keys.get();
    panel->removeKey(numbered(1));
    world.pass(7s);
    panel->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), before);
    EXPECT_EQ(keyNames(), (Texts{"A", "Bandje", "C"}));
    world.keepHearing(1, -50, 1);
    EXPECT_EQ(row(1).badge.text, "Dichtbij");
    world.pass(60s); // what would have forgotten it has ended
    EXPECT_EQ(world.settings().keys.get(), before);
}

TEST_F(PanelModelTest, TheLastKeyIsTakenBackToo) {
    open({keyNamed("A", 1)});
    panel->removeKey(numbered(1));
    EXPECT_EQ(keyNames(), Texts{"(A)"});
    EXPECT_NE(panel->content().keys.instruction, "");
    panel->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), std::vector{keyNamed("A", 1)});
}

TEST_F(PanelModelTest, EachRemovalHasItsOwnEightSeconds) {
    open({keyNamed("A", 1), keyNamed("B", 2), keyNamed("C", 3)});
    panel->removeKey(numbered(1));
    world.pass(5s);
    panel->removeKey(numbered(2));
    world.pass(3s);
    EXPECT_EQ(keyNames(), (Texts{"(B)", "C"}));
    world.pass(5s);
    EXPECT_EQ(keyNames(), Texts{"C"});
    panel->removeKey(numbered(9)); // no key
    EXPECT_EQ(keyNames(), Texts{"C"});
}

TEST_F(PanelModelTest, WhoRemovesTheSameKeyAgainHasEightSecondsAgain) {
    open({keyNamed("A", 1)});
    panel->removeKey(numbered(1));
    world.pass(7s);
    panel->putBack(numbered(1));
    panel->removeKey(numbered(1));
    world.pass(7s);
    EXPECT_EQ(keyNames(), Texts{"(A)"});
    // Chosen once more from the list, it is a key and nothing is left to take back.
    world.hearApple(1, -50, 0x10, "A");
    world.pass(500ms);
    world.scanner().refreshSnapshot();
    panel->choose(numbered(1));
    EXPECT_EQ(keyNames(), Texts{"A"});
    const auto keys = world.settings().keys.get();
    panel->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), keys);
}

TEST_F(PanelModelTest, ThePanelThatClosesTakesTheOfferAlong) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    panel->removeKey(numbered(1));
    panel->disappear();
    panel->appear();
    EXPECT_EQ(keyNames(), Texts{"B"});
    panel->putBack(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), std::vector{keyNamed("B", 2)});
    static_cast<void>(changed());
    panel->removeKey(numbered(2));
    panel.reset();
    world.pass(9s); // nobody is left to be told
}

TEST_F(PanelModelTest, AMovedThresholdIsStoredWholeAndTheSliderRestsThereWhenLetGo) {
    open({keyNamed("A", 1)});
    panel->moveThreshold(numbered(1), Dbm{-71.5});
    EXPECT_EQ(threshold(), Dbm{-72});
    EXPECT_EQ(row().threshold.value, Dbm{-71.5});
    world.pass(3s);
    EXPECT_EQ(row().threshold.value, Dbm{-71.5});
    static_cast<void>(changed());
    panel->releaseThreshold();
    EXPECT_TRUE(changed());
    EXPECT_EQ(row().threshold.value, Dbm{-72});
}

TEST_F(PanelModelTest, FromHereTheThresholdIs15BelowThePresentSignal) {
    open({keyNamed("A", 1)});
    panel->setFromHere(numbered(1));
    EXPECT_EQ(threshold(), Dbm{-75});
    world.keepHearing(1, -70, 1);
    panel->setFromHere(numbered(1));
    EXPECT_EQ(threshold(), Dbm{-85});
    world.pass(60s);
    world.settings().setThreshold(Dbm{-50}, numbered(1));
    panel->setFromHere(numbered(1));
    EXPECT_EQ(threshold(), Dbm{-50});
}

TEST_F(PanelModelTest, FromHereItSaysForAMomentWhatTheThresholdIsAlsoWhereItStoodThere) {
    auto key = keyNamed("A", 1);
    key.threshold = Dbm{-65};
    open({key});
    world.keepHearing(1, -47, 1);
    EXPECT_EQ(row().justSet, "");
    static_cast<void>(changed());
    panel->setFromHere(numbered(1));
    EXPECT_TRUE(changed());
    EXPECT_EQ(row().justSet, "Drempel -65 dBm, 18 dB onder nu");
    world.pass(6s - 1ns);
    EXPECT_EQ(row().justSet, "Drempel -65 dBm, 18 dB onder nu");
    static_cast<void>(changed());
    world.pass(1ns);
    EXPECT_TRUE(changed());
    EXPECT_EQ(row().justSet, "");
}

TEST_F(PanelModelTest, WhatWasSaidOfAThresholdEndsWithIt) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    world.keepHearing(1, -60, 1);
    panel->setFromHere(numbered(1));
    EXPECT_EQ(row(0).justSet, "Drempel -75 dBm, 15 dB onder nu");
    EXPECT_EQ(row(1).justSet, "");
    panel->moveThreshold(numbered(1), Dbm{-80});
    EXPECT_EQ(row(0).justSet, "");
    panel->setFromHere(numbered(1));
    panel->disappear();
    panel->appear();
    EXPECT_EQ(row(0).justSet, "");
    panel->setFromHere(numbered(2)); // not heard
    EXPECT_EQ(row(1).justSet, "");
}

TEST_F(PanelModelTest, UnderAPointerTheListStandsStillUntilItIsLeft) {
    open();
    world.hearApple(2, -60, 0x10, "M");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M"}));
    panel->holdLists();
    world.hearApple(1, -60, 0x10, "Z");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M", "Z"}));
    world.hearApple(3, -60, 0x10, "A");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M", "Z", "A"}));
    panel->choose(numbered(2));
    EXPECT_EQ(listed(), (Texts{"-", "Z", "A"}));
    static_cast<void>(changed());
    panel->releaseLists();
    EXPECT_TRUE(changed());
    EXPECT_EQ(listed(), (Texts{"A", "Z"}));
}

TEST_F(PanelModelTest, NothingIsHeldAfterItDisappeared) {
    open();
    world.hearApple(2, -60, 0x10, "M");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M"}));
    panel->holdLists();
    panel->choose(numbered(2));
    panel->moveThreshold(numbered(2), Dbm{-71.4});
    panel->disappear();
    panel->appear();
    panel->openNearby(true);
    world.hearApple(1, -60, 0x10, "Z");
    world.hearApple(3, -60, 0x10, "A");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"A", "Z"}));
    EXPECT_EQ(row().threshold.value, Dbm{-71});
}

TEST_F(PanelModelTest, LocksPausesAndResumes) {
    open({keyNamed("A", 1)});
    world.keepHearing(1, -60, 2);
    panel->pause(Seconds{900});
    EXPECT_EQ(world.phaseName(), "snoozed");
    panel->resume();
    EXPECT_EQ(world.phaseName(), "present");
    panel->lockNow();
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_EQ(world.locks, 1);
}

TEST_F(PanelModelTest, WhatOthersDoIsAskedOfThem) {
    open();
    panel->checkForUpdates();
    panel->installUpdate();
    panel->openLog();
    panel->quit();
    EXPECT_EQ(asked, (Texts{"check", "install", "log", "quit"}));
}
