#include "ui/panel_content.h"

#include "tests/support/world.h"

using namespace wegslot;
using namespace wegslot::panel;
using namespace std::chrono_literals;

namespace {

using Texts = std::vector<std::string>;

struct PanelContentTest : testing::Test {
    World world;
    Flags flags;
    UpdateFacts update{update_state::Idle{}, "1.3", true};
    Scheme scheme = Scheme::light;
    ClockTime clockTime = [](TimePoint) { return "14:30"; };

    [[nodiscard]] PanelContent content() {
        return panelContent({.settings = world.settings(),
                             .scanner = world.scanner(),
                             .monitor = world.monitor(),
                             .update = update,
                             .now = world.time.now(),
                             .clockTime = clockTime,
                             .scheme = scheme},
                            flags);
    }

    [[nodiscard]] KeyRow row(std::size_t index = 0) {
        return std::get<KeyRow>(content().keys.rows.at(index));
    }

    [[nodiscard]] bool offersToResume() {
        return std::holds_alternative<Button>(content().footer.pause);
    }
};

} // namespace

TEST(PanelHeight, IsTheScreenLessAMarginAndNeverAbove600) {
    EXPECT_EQ(panelHeight(623), 599);
    EXPECT_EQ(panelHeight(624), 600);
    EXPECT_EQ(panelHeight(625), 600);
    EXPECT_EQ(panelHeight(1400), 600);
}

TEST(PanelHeight, WithoutAScreenItIs600) { EXPECT_EQ(panelHeight(std::nullopt), 600); }

TEST_F(PanelContentTest, TheGroundFollowsTheScheme) {
    world.run();
    EXPECT_EQ(content().ground, brand::cream);
    EXPECT_EQ(content().header.nameColor, brand::navy);
    scheme = Scheme::dark;
    EXPECT_EQ(content().ground, brand::navy);
    EXPECT_EQ(content().header.nameColor, brand::cream);
    EXPECT_EQ(content().accent, brand::orange);
}

TEST_F(PanelContentTest, TheHeaderShowsThePhase) {
    world.run({keyNamed("Sleutel", 1)});
    EXPECT_EQ(content().header,
              (Header{.symbol = "hourglass",
                      .symbolColor = brand::orange,
                      .name = "Wegslot",
                      .nameColor = brand::navy,
                      .dot = brand::lila,
                      .status = "Wacht tot je sleutel in de buurt is",
                      .enabled = {Choice::enabled, "", "Wegslot aan of uit", true}}));
    world.keepHearing(1, -60, 2);
    EXPECT_EQ(content().header.symbol, "lock.open");
    EXPECT_EQ(content().header.symbolColor, brand::success);
    EXPECT_EQ(content().header.dot, brand::success);
    EXPECT_EQ(content().header.status, "Je bent in de buurt");
    world.monitor().pause(Seconds{900});
    EXPECT_EQ(content().header.symbolColor, brand::orange);
    EXPECT_EQ(content().header.status, "Gepauzeerd tot 14:30");
    world.settings().enabled.set(false);
    EXPECT_FALSE(content().header.enabled.isOn);
}

TEST_F(PanelContentTest, TheStatusIsOneLine) {
    world.run({keyNamed("Sleutel", 1)});
    world.keepHearing(1, -60, 2);
    world.activity.setMicrophone("Bel\nprogramma");
    world.settings().pauseWhileActive.set(false);
    world.pass(60s);
    EXPECT_EQ(content().header.status, "Pauze: Microfoon in gebruik door Bel\uFFFDprogramma");
}

TEST_F(PanelContentTest, TheBannerIsTheUpdaters) {
    world.run();
    EXPECT_EQ(content().banner, UpdateBanner{});
    update.state = update_state::InstallFailed{"De schijf is vol"};
    EXPECT_EQ(content().banner, updateBanner(update));
    EXPECT_EQ(std::get<VersionBlock>(content().settings.parts.back()).status, "De schijf is vol");
}

TEST_F(PanelContentTest, WithoutKeysTheInstructionStandsInTheirPlace) {
    world.run();
    EXPECT_EQ(content().keys,
              (KeysSection{"Jouw sleutels",
                           {},
                           "Leg je iPhone of Apple Watch naast je Mac en kies hem hieronder.",
                           std::nullopt}));
}

TEST_F(PanelContentTest, TheRuleIsAskedForFromTwoKeysOn) {
    world.run({keyNamed("A", 1)});
    EXPECT_FALSE(content().keys.rule);
    EXPECT_EQ(content().keys.instruction, "");
    world.settings().keys.set({keyNamed("A", 1), keyNamed("B", 2)});
    EXPECT_EQ(content().keys.rule, (RulePicker{"Locken als",
                                               {{LockRule::allAway, "alle sleutels weg zijn"},
                                                {LockRule::anyAway, "één sleutel weg is"}},
                                               LockRule::allAway}));
    world.settings().rule.set(LockRule::anyAway);
    EXPECT_EQ(content().keys.rule->selected, LockRule::anyAway);
    world.settings().keys.set({keyNamed("A", 1), keyNamed("B", 2), keyNamed("C", 3)});
    EXPECT_TRUE(content().keys.rule);
}

TEST_F(PanelContentTest, KeysStandInTheOrderOfTheSettings) {
    world.run({keyNamed("B", 2), keyNamed("A", 1)});
    EXPECT_EQ(row(0).name, "B");
    EXPECT_EQ(row(1).name, "A");
}

TEST_F(PanelContentTest, AKeyHasItsOwnSignalAndJudgement) {
    world.run({keyNamed("A", 1), keyNamed("B", 2)});
    world.keepHearing(2, -60, 1);
    EXPECT_EQ(row(0).signal, "Geen signaal");
    EXPECT_EQ(row(0).badge.text, "Weg");
    EXPECT_EQ(row(1).signal, "Nu -60 dBm");
    EXPECT_EQ(row(1).badge.text, "Dichtbij");
}

TEST_F(PanelContentTest, AKeySilentForLongerThanTheWindowShowsNoSignalButItsBadge) {
    world.run({keyNamed("A", 1)});
    world.keepHearing(1, -60, 1);
    world.pass(4s);
    EXPECT_EQ(row().signal, "Nu -60 dBm");
    world.pass(1s);
    EXPECT_EQ(row().signal, "Geen signaal");
    EXPECT_EQ(row().badge.text, "Zwak");
}

TEST_F(PanelContentTest, AKeyThatIsNotJudgedYetIsAway) {
    world.run();
    world.keepHearing(1, -60, 1);
    world.settings().keys.set({keyNamed("A", 1)});
    EXPECT_EQ(row().badge.text, "Weg");
}

TEST_F(PanelContentTest, AKeyIsConnectedOnlyWhileItsLinkTellsTheSignal) {
    world.run({keyNamed("A", 1)});
    world.hear(1, -60);
    EXPECT_EQ(row().link, "");
    world.central.connected(numbered(1));
    EXPECT_EQ(row().link, "");
    world.central.rssiRead(numbered(1), -50);
    EXPECT_EQ(row().link, "verbonden");
    world.central.rssiRead(numbered(1), std::nullopt);
    EXPECT_EQ(row().link, "");
    world.central.rssiRead(numbered(1), -50);
    world.central.disconnected(numbered(1));
    EXPECT_EQ(row().link, "");
}

TEST_F(PanelContentTest, AKeyThatLostItsBondSaysSo) {
    world.run({keyNamed("A", 1), keyNamed("B", 2)});
    world.central.setChanging(numbered(2), true);
    EXPECT_EQ(row(0).trouble, "");
    EXPECT_EQ(row(1).trouble, "Wisselt van adres, koppel opnieuw");
}

TEST_F(PanelContentTest, OnlyTheSliderThatIsHeldStaysUnderTheFinger) {
    world.run({keyNamed("A", 1), keyNamed("B", 2)});
    flags.heldThreshold = {numbered(2), Dbm{-71.4}};
    EXPECT_EQ(row(0).threshold.value, Dbm{-75});
    EXPECT_EQ(row(1).threshold.value, Dbm{-71.4});
}

TEST_F(PanelContentTest, TheListFollowsRadioKeysClockAndSwitches) {
    world.run({keyNamed("A", 1)});
    flags.showNearby = true;
    world.hearApple(1, -60, 0x10, "Sleutel");
    world.hearApple(2, -60, 0x10, "Mijn iPhone");
    world.hearApple(3, -60);
    world.central.setChanging(numbered(2), true);
    world.pass(29s);
    NearbyGroup nearby = content().nearby;
    ASSERT_EQ(nearby.named.places.size(), 1U);
    EXPECT_EQ(nearby.named.places[0].id, numbered(2));
    EXPECT_EQ(nearby.named.places[0].row->choose.text, "Koppel…");
    EXPECT_EQ(nearby.nameless->label, "1 andere apparaten zonder naam");
    EXPECT_FALSE(nearby.nameless->isOpen);
    EXPECT_FALSE(nearby.others);

    flags.showNameless = true;
    world.settings().showOtherDevices.set(true);
    nearby = content().nearby;
    EXPECT_TRUE(nearby.nameless->isOpen);
    EXPECT_TRUE(nearby.showOthers.isOn);
    ASSERT_TRUE(nearby.others);
    EXPECT_EQ(nearby.others->list.placeholder, "Zoeken…");

    world.pass(1s);
    EXPECT_EQ(content().nearby.named.placeholder, "Zoeken…");
    EXPECT_FALSE(content().nearby.nameless);
    flags.showNearby = false;
    EXPECT_FALSE(content().nearby.isOpen);
}

TEST_F(PanelContentTest, HeldPlacesAreKept) {
    world.run();
    flags.showNearby = true;
    world.hearApple(1, -60, 0x10, "A");
    world.hearApple(2, -60, 0x10, "B");
    world.pass(1s);
    flags.heldPlaces = {.named = {numbered(2), numbered(1)}, .nameless = {}, .others = {}};
    EXPECT_EQ(placesOf(content().nearby).named, (std::vector{numbered(2), numbered(1)}));
}

TEST_F(PanelContentTest, TheSettingsFollowTheirFlagAndTheLoginItem) {
    world.run();
    EXPECT_FALSE(content().settings.isOpen);
    EXPECT_FALSE(std::get<Toggle>(content().settings.parts.at(7)).isOn);
    flags.showSettings = true;
    flags.launchAtLogin = true;
    EXPECT_TRUE(content().settings.isOpen);
    EXPECT_TRUE(std::get<Toggle>(content().settings.parts.at(7)).isOn);
}

TEST_F(PanelContentTest, TheFooterOffersAPause) {
    world.run();
    EXPECT_EQ(content().footer, (Footer{.lock = {"lock.fill", "Nu locken"},
                                        .pause = PauseMenu{"Pauzeer",
                                                           {{"15 minuten", Seconds{900}},
                                                            {"1 uur", Seconds{3600}},
                                                            {"4 uur", Seconds{14400}}}},
                                        .log = {"doc.text.magnifyingglass", "", "Open het logboek"},
                                        .quit = {"", "Stop"}}));
}

TEST_F(PanelContentTest, OnlyAPauseOfTheUsersOwnIsEndedFromTheFooter) {
    world.run({keyNamed("A", 1)});
    world.keepHearing(1, -60, 2);
    EXPECT_FALSE(offersToResume());
    world.monitor().pause(Seconds{900});
    ASSERT_TRUE(offersToResume());
    EXPECT_EQ(std::get<Button>(content().footer.pause), (Button{"", "Hervat"}));
    world.monitor().resume();
    EXPECT_FALSE(offersToResume());

    for (int second = 0; second < 60 && !world.warning; ++second)
        world.pass(1s);
    world.monitor().cancelWarning();
    EXPECT_EQ(world.phaseName(), "snoozed");
    EXPECT_FALSE(offersToResume());
}

TEST_F(PanelContentTest, APauseThatDoesNotShowIsNotEndedFromTheFooter) {
    world.run({keyNamed("A", 1)});
    world.pass(1s);
    world.monitor().pause(Seconds{900});
    EXPECT_TRUE(world.monitor().snoozeIsManual().get());
    EXPECT_EQ(world.phaseName(), "waitingForReturn");
    EXPECT_FALSE(offersToResume());
}
