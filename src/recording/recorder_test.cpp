#include "recording/recorder.h"

#include "scanner/model_identifier.h"
#include "tests/support/world.h"
#include "trace/reader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;

const std::string one = "\"00000000-0000-0000-0000-000000000001\"";

/// The core with a recorder from the start on, in virtual time.
struct RecorderTest : testing::Test {
    World world;
    std::optional<Recorder> recorder;
    Lines lines;
    std::optional<Failure> refusal; ///< of the next line
    unsigned given = 1000;

    Recorder::Request request(bool anonymous = false) {
        return {.sink =
                    [this](std::string_view line) {
                        if (!refusal) lines.emplace_back(line);
                        return refusal;
                    },
                .anonymous = anonymous};
    }

    void make(std::optional<Recorder::Request> atOnce) {
        world.model.emplace(world.surroundings());
        recorder.emplace(
            *world.model, world.platform.ports, [this] { return numbered(++given); },
            std::move(atOnce));
    }

    /// Records from the start on, and leaves what is told then unmentioned.
    void start(bool anonymous = false) {
        make(request(anonymous));
        lines.clear();
    }

    /// What was told since this was asked last, without the times.
    [[nodiscard]] Lines told() {
        Lines events;
        for (const std::string& line : std::exchange(lines, {}))
            events.push_back("{" +
                             line.substr(line.find(',') + 1, line.size() - line.find(',') - 2));
        return events;
    }

    void TearDown() override {
        recorder.reset();
        world.model.reset();
    }
};

} // namespace

TEST_F(RecorderTest, BeginsWithTheClockAndTheSettings) {
    world.time.advance(750ms);
    make(request());
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "{\"t\":0,\"start\":\"2026-11-15T12:00:00Z\"}\n");
    EXPECT_EQ(lines[1],
              "{\"t\":0,\"settings\":{\"enabled\":true,\"keys\":[],\"rule\":\"allAway\","
              "\"awayDelay\":5,\"lostTimeout\":15,\"warningEnabled\":true,\"warningSeconds\":5,"
              "\"pauseDuringMeetings\":true,\"pauseWhileActive\":true,"
              "\"showOtherDevices\":false}}\n");
}

TEST_F(RecorderTest, HowThingsStandIsToldOfOneInstantHoweverLongTellingTakes) {
    make({});
    world.central.setState(CentralState::poweredOn);
    world.hear(1, -50);
    world.time.advance(1s); // the list of devices has it
    const auto slowly = [this](std::string_view line) {
        lines.emplace_back(line);
        world.time.sleep(3ms);
        return std::optional<Failure>();
    };
    ASSERT_EQ(recorder->record({.sink = slowly, .anonymous = false}), std::nullopt);
    EXPECT_EQ(lines.size(), 3U); // the start, the settings, the radio
    for (const std::string& line : lines)
        EXPECT_TRUE(line.starts_with("{\"t\":0,")) << line;
}

TEST_F(RecorderTest, WhileNobodyRecordsNothingIsAskedOrWritten) {
    make({});
    world.central.setState(CentralState::poweredOn);
    world.hear(1, -50);
    world.settings().enabled.set(false);
    world.monitor().lockNow();
    EXPECT_TRUE(lines.empty());
    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(RecorderTest, TimesAreWholeMillisecondsRoundedDown) {
    start();
    world.time.advance(1'999'999ns);
    world.session.tell(SessionEvent::locked);
    world.time.advance(1ns);
    world.session.tell(SessionEvent::unlocked);
    EXPECT_EQ(lines, (Lines{"{\"t\":0.001,\"session\":\"locked\"}\n",
                            "{\"t\":0.002,\"session\":\"unlocked\"}\n"}));
}

TEST_F(RecorderTest, EachReportOfTheRadioIsTold) {
    start();
    const Uuid id = numbered(1);
    world.central.setState(CentralState::poweredOn);
    world.hearApple(1, -50, 0x10, "Telefoon");
    world.central.connected(id);
    world.central.connectFailed(id);
    world.central.disconnected(id, "weg");
    world.central.disconnected(id);
    world.central.rssiRead(id, -44);
    world.central.rssiRead(id, {});
    world.central.services(id, std::vector{ModelIdentifier::deviceInfoService});
    world.central.characteristics(id, ModelIdentifier::deviceInfoService,
                                  std::vector{ModelIdentifier::modelCharacteristic});
    world.central.value(id, ModelIdentifier::modelCharacteristic, "P1");
    world.central.identify(id, numbered(2));
    EXPECT_EQ(
        told(),
        (Lines{
            R"({"bluetooth":{"state":"poweredOn","authorization":"allowedAlways"}})",
            R"({"advertisement":{"id":)" + one +
                R"(,"rssi":-50,"name":"Telefoon","manufacturerData":"4C001000"}})",
            R"({"connected":{"id":)" + one + "}}",
            R"({"connectFailed":{"id":)" + one + "}}",
            R"({"disconnected":{"id":)" + one + R"(,"error":"weg"}})",
            R"({"disconnected":{"id":)" + one + "}}",
            R"({"rssiRead":{"id":)" + one + R"(,"rssi":-44}})",
            R"({"rssiRead":{"id":)" + one + R"(,"error":"niet gelezen"}})",
            R"({"services":{"id":)" + one + R"(,"services":["180A"]}})",
            R"({"characteristics":{"id":)" + one +
                R"(,"service":"180A","characteristics":["2A24"]}})",
            R"({"value":{"id":)" + one + R"(,"characteristic":"2A24","value":"5031"}})",
            R"({"identity":{"from":)" + one + R"(,"to":"00000000-0000-0000-0000-000000000002"}})",
        }));
}

// Each of these reports makes the core do something, and something else.
TEST_F(RecorderTest, TheCoreDoesTheSameWhetherItIsRecordedOrNot) {
    const auto lived = [](World& lives) {
        lives.settings().keys.set({keyNamed("Telefoon", 1)});
        lives.central.setState(CentralState::poweredOn);
        lives.hearApple(1, -50);
        lives.hearApple(2, -60);
        lives.central.connected(numbered(1));
        lives.central.rssiRead(numbered(1), -40);
        lives.pass(1s);
        std::vector<std::string> done{
            std::to_string(lives.scanner().smoothedRSSI(numbered(1))->value)};
        lives.central.disconnected(numbered(1), "weg");
        lives.central.connectFailed(numbered(1));
        lives.pass(5s);
        lives.central.services(numbered(2), std::vector{ModelIdentifier::deviceInfoService});
        lives.central.characteristics(numbered(2), ModelIdentifier::deviceInfoService,
                                      std::vector{ModelIdentifier::modelCharacteristic});
        lives.scanner().setDiscoveryActive(true);
        lives.hearApple(2, -60);
        lives.central.value(numbered(2), ModelIdentifier::modelCharacteristic, "P1");
        lives.central.identify(numbered(2), numbered(3));
        lives.pass(1s);
        for (const SeenDevice& device : lives.scanner().snapshot().get())
            done.push_back(device.id.text() + " " + device.model.value_or("-"));
        for (const std::string& call : lives.takeCalls())
            done.push_back(call);
        for (const std::string& message : lives.log.messages)
            done.push_back(message);
        return done;
    };
    start();
    const auto recorded = lived(world);
    EXPECT_EQ(told().size(), 14U); // the keys, ten kinds of report, one of them thrice, the list
    TearDown();
    World unheard;
    unheard.model.emplace(unheard.surroundings());
    static_cast<void>(unheard.monitor());
    EXPECT_EQ(recorded, lived(unheard));
}

TEST_F(RecorderTest, AnEndedRecordingHearsNothingAndTheCoreGoesOn) {
    start();
    refusal = Failure{"vol"};
    world.central.setState(CentralState::poweredOn); // ends it within the report
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_TRUE(world.scanner().isPoweredOn());
    world.hearApple(1, -50);
    EXPECT_TRUE(world.logged("Gezien: " + numbered(1).text() + " naam=- type=0x10 rssi=-50"));
}

TEST_F(RecorderTest, ANameIsToldWhenItIsAnother) {
    start();
    const auto hear = [this](std::optional<std::string_view> name) {
        world.hearApple(1, -50, 0x10, name);
    };
    const auto named = [this](const char* name) {
        const std::string line = told().at(0);
        return line.find(R"("name":")" + std::string(name) + "\"") != std::string::npos;
    };
    hear("Telefoon");
    EXPECT_TRUE(named("Telefoon"));
    hear("Telefoon");
    EXPECT_FALSE(named("Telefoon"));
    hear("Toestel");
    EXPECT_TRUE(named("Toestel"));
    hear("");
    EXPECT_TRUE(named(""));
    hear("");
    EXPECT_FALSE(named(""));
    world.central.value(numbered(1), ModelIdentifier::modelCharacteristic, "P1", "Telefoon");
    EXPECT_TRUE(named("Telefoon"));
}

TEST_F(RecorderTest, WhatTheStackKnowsOfAKeyIsToldBeforeTheCoreAsksForIt) {
    world.central.know(numbered(1), "Telefoon");
    start();
    world.settings().keys.set({keyNamed("Telefoon", 1), keyNamed("Horloge", 2)});
    const Lines changed = told();
    ASSERT_EQ(changed.size(), 2U);
    EXPECT_EQ(changed[0], R"({"known":{"id":)" + one + R"(,"name":"Telefoon"}})");
    EXPECT_TRUE(changed[1].starts_with(R"({"settings":{"keys":[)"));

    world.central.know(numbered(2));
    world.central.setState(CentralState::poweredOn);
    EXPECT_EQ(told(),
              (Lines{R"({"known":{"id":"00000000-0000-0000-0000-000000000002"}})",
                     R"({"bluetooth":{"state":"poweredOn","authorization":"allowedAlways"}})"}));
    world.central.setState(CentralState::poweredOff);
    EXPECT_EQ(told().size(), 1U);
}

TEST_F(RecorderTest, EachSettingIsToldByItself) {
    start();
    Settings& settings = world.settings();
    settings.enabled.set(false);
    settings.rule.set(LockRule::anyAway);
    settings.awayDelay.set(2.5s);
    settings.lostTimeout.set(Seconds{std::numeric_limits<double>::quiet_NaN()});
    settings.warningEnabled.set(false);
    settings.warningSeconds.set(10s);
    settings.pauseDuringMeetings.set(false);
    settings.pauseWhileActive.set(false);
    settings.showOtherDevices.set(true);
    settings.showOtherDevices.set(true);
    EXPECT_EQ(
        told(),
        (Lines{R"({"settings":{"enabled":false}})", R"({"settings":{"rule":"anyAway"}})",
               R"({"settings":{"awayDelay":2.5}})", R"({"settings":{"lostTimeout":0}})",
               R"({"settings":{"warningEnabled":false}})", R"({"settings":{"warningSeconds":10}})",
               R"({"settings":{"pauseDuringMeetings":false}})",
               R"({"settings":{"pauseWhileActive":false}})",
               R"({"settings":{"showOtherDevices":true}})",
               R"({"settings":{"showOtherDevices":true}})"}));
}

TEST_F(RecorderTest, WhatThePersonAsksIsTold) {
    start();
    world.monitor().pause(900s);
    world.monitor().resume();
    world.monitor().cancelWarning();
    world.monitor().lockNow();
    world.scanner().setDiscoveryActive(true);
    world.scanner().setDiscoveryActive(false);
    EXPECT_EQ(told(), (Lines{R"({"action":{"pause":900}})", R"({"action":"resume"})",
                             R"({"action":"cancelWarning"})", R"({"action":"lockNow"})",
                             R"({"discovery":true})", R"({"discovery":false})"}));
}

TEST_F(RecorderTest, TheButtonOfTheCountdownIsAPersonButTheMonitorItselfIsNot) {
    make(request());
    world.central.setState(CentralState::poweredOn);
    world.settings().keys.set(
        {{.id = numbered(1), .name = "Tag", .isApple = false, .threshold = Dbm{-75}}});
    world.keepHearing(1, -50, 2);
    lines.clear();
    world.pass(12s);
    ASSERT_TRUE(world.warning) << testing::PrintToString(world.log.messages);
    world.warning->onCancel();
    EXPECT_EQ(told(), Lines{R"({"action":"cancelWarning"})"});
    EXPECT_EQ(world.phaseName(), "snoozed");
    world.monitor().resume();
    world.pass(30s); // the countdown runs out
    EXPECT_EQ(world.locks, 1);
    EXPECT_EQ(told(), Lines{R"({"action":"resume"})"});
}

TEST_F(RecorderTest, TheActivityIsAskedFiveTimesASecond) {
    start();
    world.pass(300ms);
    world.activity.touch();
    world.activity.setCamera(true);
    world.activity.setMicrophone("Vergaderen");
    world.pass(700ms);
    EXPECT_EQ(lines, (Lines{"{\"t\":0.4,\"input\":true}\n", "{\"t\":0.4,\"camera\":true}\n",
                            "{\"t\":0.4,\"microphone\":\"Vergaderen\"}\n"}));
}

TEST_F(RecorderTest, ATouchThatATickFindsIsToldBeforeIt) {
    start();
    world.pass(900ms); // the question at 0.8 s was the last before the tick
    world.activity.touch();
    world.pass(100ms); // the tick, and only then the question of five times a second
    EXPECT_EQ(lines, Lines{"{\"t\":0.999,\"input\":true}\n"});
}

TEST_F(RecorderTest, WhatComesInWhileATickIsHeldUpIsToldBeforeIt) {
    start();
    world.settings().keys.set({keyNamed("Telefoon", 1)});
    world.central.setState(CentralState::poweredOn);
    world.pass(999ms);
    lines.clear();
    world.time.sleep(300ms); // the clock goes on and the timers do not, as on a busy machine
    world.hear(1, -50);
    world.pass(1ms);
    EXPECT_EQ(world.monitor().judgedAt(), World::start + 1s);
    EXPECT_EQ(world.phaseName(), "present");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("{\"t\":0.999,")) << lines[0];
}

TEST_F(RecorderTest, InARunningCoreItBeginsWithHowThingsStand) {
    make({});
    world.settings().keys.set({keyNamed("Telefoon", 2)});
    world.central.know(numbered(2), "Telefoon van Jan");
    world.central.setState(CentralState::poweredOn);
    world.hearApple(1, -50, 0x10, "Horloge");
    world.pass(2500ms);
    world.central.connected(numbered(2));
    world.session.tell(SessionEvent::locked);
    world.activity.setCamera(true);
    world.scanner().setDiscoveryActive(true);
    EXPECT_EQ(recorder->record(request()), std::nullopt);
    EXPECT_TRUE(lines.at(0).starts_with("{\"t\":0,\"start\":\"2026-11-15T12:00:02Z\"}"));
    EXPECT_TRUE(lines.at(1).starts_with("{\"t\":0,\"settings\":{\"enabled\":true,\"keys\":[{"));
    lines.erase(lines.begin(), lines.begin() + 2);
    EXPECT_EQ(
        told(),
        (Lines{
            R"({"bluetooth":{"state":"poweredOn","authorization":"allowedAlways"}})",
            R"({"known":{"id":"00000000-0000-0000-0000-000000000002","name":"Telefoon van Jan"}})",
            R"({"known":{"id":)" + one + R"(,"name":"Horloge"}})",
            R"({"connected":{"id":"00000000-0000-0000-0000-000000000002"}})",
            R"({"session":"locked"})", R"({"discovery":true})", R"({"camera":true})"}));
    world.session.tell(SessionEvent::unlocked);
    EXPECT_EQ(lines, Lines{"{\"t\":0,\"session\":\"unlocked\"}\n"});
}

TEST_F(RecorderTest, ARecordingThatIsStoppedSaysWhenAndAnotherMayBegin) {
    start();
    world.pass(2s);
    recorder->stop();
    EXPECT_EQ(lines, Lines{"{\"t\":2,\"end\":true}\n"});
    world.session.tell(SessionEvent::locked);
    world.pass(2s);
    recorder->stop();
    EXPECT_EQ(lines.size(), 1U);
    EXPECT_EQ(recorder->record(request()), std::nullopt);
    EXPECT_TRUE(recorder->isRecording());
}

TEST_F(RecorderTest, ASecondRecordingIsRefused) {
    start();
    EXPECT_EQ(recorder->record(request()), Failure{"er loopt al een opname"});
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_TRUE(lines.empty());
}

TEST_F(RecorderTest, ALineThatCannotBeWrittenEndsTheRecordingAndNothingElse) {
    start();
    world.central.setState(CentralState::poweredOn);
    lines.clear();
    refusal = Failure{"No space left on device"};
    world.hearApple(1, -50);
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(world.timesLogged("Opname gestopt: No space left on device"), 1);
    EXPECT_TRUE(world.scanner().lastSeen(numbered(1)));
    refusal.reset();
    world.hearApple(1, -50);
    world.pass(5s);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(world.timesLogged("Opname gestopt: No space left on device"), 1);
}

TEST_F(RecorderTest, AnyLineMayBeTheOneThatFails) {
    world.activity.setCamera(true);
    world.activity.setMicrophone("Vergaderen");
    world.central.know(numbered(1));
    world.central.know(numbered(2));
    make({});
    world.settings().keys.set({keyNamed("Telefoon", 1), keyNamed("Horloge", 2)});
    for (std::size_t taken = 0; taken < 7; ++taken) {
        lines.clear();
        const auto failure = recorder->record(
            {.sink = [this, taken](std::string_view line) -> std::optional<Failure> {
                if (lines.size() == taken) return Failure{"vol"};
                lines.emplace_back(line);
                return std::nullopt;
            }});
        EXPECT_EQ(failure, std::nullopt);
        EXPECT_FALSE(recorder->isRecording()) << taken;
    }
    EXPECT_EQ(world.timesLogged("Opname gestopt: vol"), 7);
}

TEST_F(RecorderTest, AnAnonymousRecordingHasNoNameAndNoId) {
    world.store.write(
        "keys",
        Data{
            "[{\"id\":" + one +
            R"(,"name":"Jan zijn sleutel","model":"iPhone14,2","isApple":true,"threshold":-70}])"});
    make(request(true));
    const Uuid id = numbered(1);
    world.central.setState(CentralState::poweredOn);
    world.hearApple(1, -50, 0x10, "Telefoon van Jan");
    world.central.advertise({.id = numbered(3), .rssi = -50, .localName = "Piet"});
    world.central.disconnected(id, "Telefoon van Jan is weg");
    world.central.value(id, ModelIdentifier::modelCharacteristic, "iPhone14,2", "Toestel van Jan");
    world.central.identify(id, numbered(4));
    world.settings().keys.set({keyNamed("Jans tag", 4)});
    world.activity.setMicrophone("Gesprek met Jan");
    world.pass(1s);
    TraceReader reader;
    std::string all;
    for (const std::string& line : lines) {
        EXPECT_TRUE(reader.read(line.substr(0, line.size() - 1))) << line;
        all += line;
    }
    for (const char* const original : {"Jan", "Piet", "Telefoon", "Toestel", "Gesprek",
                                       "000000001\"", "000000003\"", "000000004\""})
        EXPECT_EQ(all.find(original), std::string::npos) << original << " in\n" << all;
    for (const char* const kept : {"Apparaat 1", "Apparaat 2", "App 1", "iPhone14,2", "\"4C0010\""})
        EXPECT_NE(all.find(kept), std::string::npos) << kept << " in\n" << all;
}
