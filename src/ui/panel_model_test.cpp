#include "ui/panel_model.h"

#include "tests/support/panel_model_stage.h"

using namespace wegslot;
using namespace wegslot::panel;
using namespace std::chrono_literals;

namespace {

using Texts = std::vector<std::string>;

struct PanelModelTest : PanelModelStage {};

} // namespace

TEST_F(PanelModelTest, WithoutKeysTheListIsOpenWhenItAppears) {
    open();
    EXPECT_TRUE(model->content().nearby.isOpen);
    EXPECT_FALSE(model->content().settings.isOpen);
    EXPECT_TRUE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, WithAKeyTheListIsFoldedWhenItAppears) {
    open({keyNamed("A", 1)});
    EXPECT_FALSE(model->content().nearby.isOpen);
    EXPECT_FALSE(world.scanner().discoveryActive());
    model->openNearby(true);
    model->disappear();
    model->appear();
    EXPECT_FALSE(model->content().nearby.isOpen);
    EXPECT_FALSE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, ForAPictureAllIsOpenButTheNameless) {
    open({keyNamed("A", 1)}, PanelModel::Expand::all);
    world.hearApple(2, -60);
    world.pass(1s);
    EXPECT_TRUE(model->content().nearby.isOpen);
    EXPECT_FALSE(model->content().nearby.nameless->isOpen);
    EXPECT_TRUE(model->content().settings.isOpen);
    EXPECT_TRUE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, DevicesAreLookedForOnlyWhileTheListIsSeen) {
    open({keyNamed("A", 1)});
    model->openNearby(true);
    EXPECT_TRUE(model->content().nearby.isOpen);
    EXPECT_TRUE(world.scanner().discoveryActive());
    model->openNearby(false);
    EXPECT_FALSE(model->content().nearby.isOpen);
    EXPECT_FALSE(world.scanner().discoveryActive());
    model->openNearby(true);
    model->disappear();
    EXPECT_FALSE(world.scanner().discoveryActive());
}

TEST_F(PanelModelTest, GroupsOpenAndFold) {
    open();
    world.hearApple(2, -60);
    world.pass(1s);
    model->openNameless(true);
    model->openSettings(true);
    EXPECT_TRUE(model->content().nearby.nameless->isOpen);
    EXPECT_TRUE(model->content().settings.isOpen);
    model->openNameless(false);
    model->openSettings(false);
    EXPECT_FALSE(model->content().nearby.nameless->isOpen);
    EXPECT_FALSE(model->content().settings.isOpen);
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
    model.reset();
    static_cast<void>(changed());
    world.settings().enabled.set(true);
    update.set(update_state::Checking{});
    world.pass(5s);
    EXPECT_FALSE(changed());
}

TEST_F(PanelModelTest, ShowsTheStateOfTheUpdater) {
    open();
    update.set(update_state::InstallFailed{"De schijf is vol"});
    EXPECT_EQ(std::get<UpdateTrouble>(model->content().banner).text,
              "Update mislukt: De schijf is vol");
    EXPECT_EQ(std::get<VersionBlock>(model->content().settings.parts.back()).version, "Versie 1.3");
    scheme.set(Scheme::dark);
    EXPECT_EQ(model->content().ground, brand::navy);
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
            model->set(choice, on);
            EXPECT_EQ(setting->get(), on);
        }
    model->setRule(LockRule::anyAway);
    EXPECT_EQ(settings.rule.get(), LockRule::anyAway);
}

TEST_F(PanelModelTest, EachStepGoesToItsSetting) {
    open();
    model->step(Delay::awayDelay, Step::up);
    model->step(Delay::lostTimeout, Step::up);
    model->step(Delay::warningSeconds, Step::down);
    EXPECT_EQ(world.settings().awayDelay.get(), Seconds{6});
    EXPECT_EQ(world.settings().lostTimeout.get(), Seconds{20});
    EXPECT_EQ(world.settings().warningSeconds.get(), Seconds{4});
    for (int i = 0; i < 5; ++i)
        model->step(Delay::warningSeconds, Step::down);
    EXPECT_EQ(world.settings().warningSeconds.get(), Seconds{3});
}

TEST_F(PanelModelTest, WhatIsTypedGoesToItsSetting) {
    open();
    Settings& settings = world.settings();
    model->enter(Delay::awayDelay, "12");
    model->enter(Delay::lostTimeout, "17");
    model->enter(Delay::warningSeconds, "99");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{12});
    EXPECT_EQ(settings.lostTimeout.get(), Seconds{17});
    EXPECT_EQ(settings.warningSeconds.get(), Seconds{30});
    model->enter(Delay::awayDelay, "straks");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{12});
    // What was only looked at stays what it is, also where no stepper would have brought it.
    settings.awayDelay.set(Seconds{7.5});
    model->enter(Delay::awayDelay, "7");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{7.5});
    settings.awayDelay.set(Seconds{600});
    model->enter(Delay::awayDelay, "600");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{600});
    model->enter(Delay::awayDelay, "601");
    EXPECT_EQ(settings.awayDelay.get(), Seconds{60});
}

TEST_F(PanelModelTest, StartingAtLoginIsRegistered) {
    open();
    EXPECT_FALSE(launchAtLogin());
    model->set(Choice::launchAtLogin, true);
    EXPECT_TRUE(loginItem.enabled);
    EXPECT_TRUE(launchAtLogin());
    model->set(Choice::launchAtLogin, false);
    EXPECT_FALSE(loginItem.enabled);
    EXPECT_FALSE(launchAtLogin());
}

TEST_F(PanelModelTest, ARegistrationThatFailsIsLoggedAndSpringsBack) {
    open();
    loginItem.failure = Failure{"geen plaats\nop de schijf"};
    static_cast<void>(changed());
    model->set(Choice::launchAtLogin, true);
    EXPECT_FALSE(launchAtLogin());
    EXPECT_TRUE(changed());
    EXPECT_TRUE(world.logged("Start bij inloggen mislukt: geen plaats\uFFFDop de schijf"));
}

TEST_F(PanelModelTest, TheLoginItemIsAskedAgainEachTimeThePanelAppears) {
    loginItem.enabled = true;
    open();
    EXPECT_TRUE(launchAtLogin());
    model->disappear();
    loginItem.enabled = false;
    model->appear();
    EXPECT_FALSE(launchAtLogin());
}

TEST_F(PanelModelTest, AChosenDeviceBecomesAKeyAndLeavesTheList) {
    open();
    world.hearApple(1, -60, 0x10, "Mijn iPhone");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"Mijn iPhone"}));
    model->choose(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), (std::vector<KeyDevice>{{.id = numbered(1),
                                                                    .name = "Mijn iPhone",
                                                                    .model = {},
                                                                    .isApple = true,
                                                                    .threshold = Dbm{-75}}}));
    EXPECT_EQ(listed(), Texts{});
    EXPECT_TRUE(model->content().nearby.isOpen); // for the next one
    model->choose(numbered(1));
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(PanelModelTest, ADeviceThatHasGoneOrWillBeAStrangerIsNoKey) {
    open();
    world.hearApple(1, -60, 0x10, "Mijn iPhone");
    world.central.setChanging(numbered(1), true);
    world.pass(1s);
    model->choose(numbered(1));
    model->choose(numbered(2));
    EXPECT_TRUE(world.settings().keys.get().empty());
    world.central.setChanging(numbered(1), false);
    model->choose(numbered(1));
    EXPECT_EQ(world.settings().keys.get().size(), 1U);
}

TEST_F(PanelModelTest, AKeyIsRemoved) {
    open({keyNamed("A", 1), keyNamed("B", 2)});
    model->removeKey(numbered(1));
    EXPECT_EQ(world.settings().keys.get(), (std::vector{keyNamed("B", 2)}));
}

TEST_F(PanelModelTest, AMovedThresholdIsStoredWholeAndTheSliderRestsThereWhenLetGo) {
    open({keyNamed("A", 1)});
    model->moveThreshold(numbered(1), Dbm{-71.5});
    EXPECT_EQ(threshold(), Dbm{-72});
    EXPECT_EQ(row().threshold.value, Dbm{-71.5});
    world.pass(3s);
    EXPECT_EQ(row().threshold.value, Dbm{-71.5});
    static_cast<void>(changed());
    model->releaseThreshold();
    EXPECT_TRUE(changed());
    EXPECT_EQ(row().threshold.value, Dbm{-72});
}

TEST_F(PanelModelTest, FromHereTheThresholdIs15BelowThePresentSignal) {
    open({keyNamed("A", 1)});
    model->setFromHere(numbered(1));
    EXPECT_EQ(threshold(), Dbm{-75});
    world.keepHearing(1, -70, 1);
    model->setFromHere(numbered(1));
    EXPECT_EQ(threshold(), Dbm{-85});
    world.pass(60s);
    world.settings().setThreshold(Dbm{-50}, numbered(1));
    model->setFromHere(numbered(1));
    EXPECT_EQ(threshold(), Dbm{-50});
}

TEST_F(PanelModelTest, UnderAPointerTheListStandsStillUntilItIsLeft) {
    open();
    world.hearApple(2, -60, 0x10, "M");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M"}));
    model->holdLists();
    world.hearApple(1, -60, 0x10, "Z");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M", "Z"}));
    world.hearApple(3, -60, 0x10, "A");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M", "Z", "A"}));
    model->choose(numbered(2));
    EXPECT_EQ(listed(), (Texts{"-", "Z", "A"}));
    static_cast<void>(changed());
    model->releaseLists();
    EXPECT_TRUE(changed());
    EXPECT_EQ(listed(), (Texts{"A", "Z"}));
}

TEST_F(PanelModelTest, NothingIsHeldAfterItDisappeared) {
    open();
    world.hearApple(2, -60, 0x10, "M");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"M"}));
    model->holdLists();
    model->choose(numbered(2));
    model->moveThreshold(numbered(2), Dbm{-71.4});
    model->disappear();
    model->appear();
    model->openNearby(true);
    world.hearApple(1, -60, 0x10, "Z");
    world.hearApple(3, -60, 0x10, "A");
    world.pass(1s);
    EXPECT_EQ(listed(), (Texts{"A", "Z"}));
    EXPECT_EQ(row().threshold.value, Dbm{-71});
}

TEST_F(PanelModelTest, LocksPausesAndResumes) {
    open({keyNamed("A", 1)});
    world.keepHearing(1, -60, 2);
    model->pause(Seconds{900});
    EXPECT_EQ(world.phaseName(), "snoozed");
    model->resume();
    EXPECT_EQ(world.phaseName(), "present");
    model->lockNow();
    EXPECT_EQ(world.phaseName(), "locked");
    EXPECT_EQ(world.locks, 1);
}

TEST_F(PanelModelTest, ThePauseThatAWarningBeganEndsByAPauseOfOnesOwn) {
    open({keyNamed("A", 1)});
    world.keepHearing(1, -60, 2);
    for (int second = 0; world.phaseName() != "warning"; ++second) {
        ASSERT_LT(second, 60);
        world.pass(1s);
    }
    world.monitor().cancelWarning();
    EXPECT_EQ(world.phaseName(), "snoozed");
    const auto entry = std::get<PauseMenu>(model->content().footer.pause).entries.at(0);
    model->pause(entry.duration);
    EXPECT_EQ(std::get<Button>(model->content().footer.pause).text, "Hervat");
    model->resume();
    EXPECT_NE(world.phaseName(), "snoozed");
}

TEST_F(PanelModelTest, WhatOthersDoIsAskedOfThem) {
    open();
    model->checkForUpdates();
    model->installUpdate();
    model->openLog();
    model->quit();
    EXPECT_EQ(asked, (Texts{"check", "install", "log", "quit"}));
}
