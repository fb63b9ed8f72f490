#include "control/control_status.h"

#include "base/text.h"
#include "tests/support/world.h"

using namespace wegslot;

namespace {

/// The clock on the wall shows what the steady one does, an hour late.
struct ControlStatusTest : testing::Test {
    World world;
    ClockTime clockTime = [](TimePoint at) { return utcText(at); };

    [[nodiscard]] control::Sources sources() {
        return {world.settings(), world.scanner(), world.monitor(), world.time, clockTime};
    }
    [[nodiscard]] control::Status status() {
        return control::status(sources(), world.monitor().phase().get(), {});
    }

    /// The changes from here on.
    void follow() {
        following = world.monitor().phase().onChange([this](const Phase& next) {
            const control::Change change = control::change(sources(), next);
            changes.push_back(change.phase + ": " + change.why);
            // Whatever it is, it can be told as a code too.
            EXPECT_EQ(control::words(change.reason), std::optional<Message>(change.why));
        });
    }
    [[nodiscard]] std::vector<std::string> told() { return std::exchange(changes, {}); }

    std::vector<std::string> changes;
    Subscription following;
};

using Told = std::vector<std::string>;

} // namespace

TEST_F(ControlStatusTest, KeysAreAsThePanelHasThem) {
    world.run({keyNamed("Telefoon", 1), keyNamed("Plaatje", 2)});
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    const auto now = status();
    EXPECT_EQ(now.phase, "present");
    EXPECT_EQ(now.text, "Je bent in de buurt");
    EXPECT_EQ(now.pausedUntil, std::nullopt);
    EXPECT_EQ(now.keys, (std::vector<control::Key>{{.id = numbered(1).text(),
                                                    .name = "Telefoon",
                                                    .state = "near",
                                                    .rssi = Dbm{-50},
                                                    .threshold = Dbm{-75}},
                                                   {.id = numbered(2).text(),
                                                    .name = "Plaatje",
                                                    .state = "away",
                                                    .rssi = std::nullopt,
                                                    .threshold = Dbm{-75}}}));
}

TEST_F(ControlStatusTest, WhatIsNearbyIsApplesAndTheKeysAndOthersOnRequest) {
    world.run({keyNamed("Plaatje", 2)});
    world.settings().showOtherDevices.set(true);
    world.hearApple(1, -60, 0x10, "Telefoon");
    world.central.advertise({.id = numbered(2), .rssi = -50, .localName = "Plaatje"});
    world.central.advertise({.id = numbered(3), .rssi = -40, .localName = "Muis"});
    world.pass(std::chrono::seconds{1});
    const auto idsOf = [](const control::Nearby& nearby) {
        std::vector<std::string> ids;
        for (const control::Device& device : nearby.devices)
            ids.push_back(device.id.substr(35));
        return ids;
    };
    const auto all = control::nearby(world.scanner(), true);
    EXPECT_EQ(idsOf(all), (std::vector<std::string>{"3", "2", "1"}));
    EXPECT_EQ(idsOf(control::nearby(world.scanner(), false)), (std::vector<std::string>{"2", "1"}));
    EXPECT_TRUE(all.includesOthers);
    EXPECT_EQ(all.radio, "");
    EXPECT_EQ(all.devices[0], (control::Device{.id = numbered(3).text(),
                                               .name = "Muis",
                                               .kind = "Bluetooth-apparaat",
                                               .rssi = Dbm{-40},
                                               .changesAddress = false}));
    world.central.setState(CentralState::poweredOff);
    EXPECT_EQ(control::nearby(world.scanner(), true).radio, "Bluetooth staat uit");
}

TEST_F(ControlStatusTest, AFloodOfDevicesIsNotAllTold) {
    world.run({keyNamed("Telefoon", 1)});
    for (unsigned number = 1; number <= control::mostDevices + 1; ++number)
        world.hearApple(number, -60);
    world.pass(std::chrono::seconds{1});
    EXPECT_EQ(control::nearby(world.scanner(), true).devices.size(), control::mostDevices);
}

TEST_F(ControlStatusTest, APauseHasAnEndOnTheClockOfTheWall) {
    world.run({keyNamed("Telefoon", 1)});
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    world.time.stepWallClock(std::chrono::hours{-1});
    world.monitor().pause(Seconds{900});
    const auto end = World::start + std::chrono::seconds{1 + 900} - std::chrono::hours{1};
    EXPECT_EQ(status().phase, "snoozed");
    EXPECT_EQ(status().pausedUntil,
              std::chrono::duration_cast<std::chrono::seconds>(end.time_since_epoch()).count());
    world.monitor().resume();
    EXPECT_EQ(status().pausedUntil, std::nullopt);
}

TEST_F(ControlStatusTest, ADepartureIsToldStepByStepWithItsReasons) {
    world.run({keyNamed("Telefoon", 1)});
    follow();
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    EXPECT_EQ(told(), Told{"present: Sleutel in de buurt"});
    world.pass(std::chrono::seconds{60}); // silent
    EXPECT_EQ(told(),
              (Told{"leaving: Sleutel niet meer dichtbij", "warning: Telefoon is buiten bereik",
                    "locked: Telefoon is buiten bereik",
                    "waitingForReturn: Geen bevestiging van lock ontvangen"}));
    world.session.tell(SessionEvent::locked);
    world.session.tell(SessionEvent::unlocked);
    EXPECT_EQ(told(), (Told{"locked: Scherm gelockt", "waitingForReturn: Scherm ontgrendeld"}));
}

TEST_F(ControlStatusTest, WhatWasAskedForIsToldAsThat) {
    world.run({keyNamed("Telefoon", 1)});
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    follow();
    world.monitor().lockNow();
    world.session.tell(SessionEvent::locked);
    world.session.tell(SessionEvent::unlocked);
    EXPECT_EQ(told(), (Told{"locked: Lock gevraagd", "waitingForReturn: Scherm ontgrendeld"}));
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    world.monitor().pause(Seconds{60});
    world.monitor().resume();
    EXPECT_EQ(told(), (Told{"present: Sleutel in de buurt", "snoozed: Pauze gevraagd",
                            "present: Sleutel in de buurt"}));
}

TEST_F(ControlStatusTest, ALockWithoutAWarningIsOneOfJudgement) {
    world.run({keyNamed("Telefoon", 1)});
    world.settings().warningEnabled.set(false);
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    follow();
    world.pass(std::chrono::seconds{40});
    const Told all = told();
    ASSERT_GE(all.size(), 2U);
    EXPECT_EQ(all.at(1), "locked: Telefoon is buiten bereik");
}

TEST_F(ControlStatusTest, ACancelledWarningIsAPauseOfTheUsers) {
    world.run({keyNamed("Telefoon", 1)});
    world.hearApple(1, -50);
    world.pass(std::chrono::seconds{1});
    while (!is<phase::Warning>(world.phase()))
        world.pass(std::chrono::seconds{1});
    follow();
    world.monitor().cancelWarning();
    EXPECT_EQ(told(), Told{"snoozed: Waarschuwing geannuleerd"});
}
