// What programs ask of a running Wegslot over time: the core in virtual time, asked on a real bus.

#include "control/linux/control_service.h"

#include "control/linux/activation.h"
#include "tests/support/bus_loop.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct ControlServiceTest : testing::Test {
    World world;
    BusLoop loop;
    dbus::Connection session{loop.opener(), loop.attacher(), loop.time};
    std::unique_ptr<dbus::Bus> program = loop.connect();
    Handle driving = loop.attach(*program);
    ClockTime clockTime = [](TimePoint) { return std::string("12:00"); };
    std::vector<Seconds> granted;
    std::optional<ControlService> service;

    void SetUp() override {
        world.run({keyNamed("Telefoon", 1)});
        service.emplace(session,
                        control::Sources{world.settings(), world.scanner(), world.monitor(),
                                         world.time, clockTime},
                        ControlService::Actions{.lock = [this] { world.monitor().lockNow(); },
                                                .pause =
                                                    [this](Seconds duration) {
                                                        granted.push_back(duration);
                                                        world.monitor().pause(duration);
                                                    },
                                                .resume = [this] { world.monitor().resume(); },
                                                .updateNow = [] {},
                                                .record = [](int, bool) { return std::nullopt; },
                                                .stopRecording = [] {}});
        ASSERT_TRUE(loop.runUntil([this] {
            return session.bus().get() != nullptr && !session.bus().get()->uniqueName().empty();
        }));
        loop.settle();
    }

    /// What the answer says against it; empty for nothing.
    std::string ask(const std::string& member, std::vector<dbus::Argument> arguments = {}) {
        std::optional<std::string> said;
        const auto asking = program->call(
            {.destination = session.bus().get()->uniqueName(),
             .path = Activation::path,
             .interface = control::interfaceName,
             .member = member,
             .arguments = std::move(arguments)},
            [&said](const dbus::Message& answer) { said = std::string(answer.errorText()); });
        EXPECT_TRUE(loop.runUntil([&said] { return said.has_value(); }));
        return said.value_or("no answer");
    }
    std::string pause(std::uint32_t seconds) { return ask("Pause", {seconds}); }

    /// "code name name" of what is said of a change or of the property.
    static std::string reasonIn(dbus::Reader& value) {
        std::string text;
        value.structure("sas", [&text](dbus::Reader& fields) {
            text = fields.text().value_or("");
            for (const std::string& name : fields.texts())
                text += " " + name;
        });
        return text;
    }
    std::string reason() {
        std::optional<std::string> said;
        const auto asking = program->call(
            {.destination = session.bus().get()->uniqueName(),
             .path = Activation::path,
             .interface = "org.freedesktop.DBus.Properties",
             .member = "Get",
             .arguments = {std::string(control::interfaceName), std::string("Reason")}},
            [&said](const dbus::Message& answer) {
                auto reader = answer.read();
                reader.variant([&said](dbus::Reader& value) { said = reasonIn(value); });
            });
        EXPECT_TRUE(loop.runUntil([&said] { return said.has_value(); }));
        return said.value_or("no answer");
    }

    bool logs(const std::string& beginning) {
        return std::ranges::any_of(world.log.messages, [&beginning](const std::string& line) {
            return line.starts_with(beginning);
        });
    }
};

constexpr auto over = "programma's hebben al vier uur lang laten pauzeren; "
                      "een langere pauze kan in het paneel";

} // namespace

TEST_F(ControlServiceTest, PausesOfProgramsEndFourHoursAfterTheFirst) {
    EXPECT_EQ(pause(14400), "");
    world.pass(1h);
    EXPECT_EQ(ask("Resume"), ""); // asked for by a program it opens nothing
    EXPECT_EQ(pause(14400), "");
    EXPECT_TRUE(logs("Pauze van 10800 s gevraagd door"));
    world.pass(3h);
    EXPECT_EQ(pause(1), over);
    world.pass(100h);
    EXPECT_EQ(pause(1), over);
    EXPECT_EQ(granted, (std::vector<Seconds>{4h, 3h}));
}

TEST_F(ControlServiceTest, WhoeverActsThemselvesLetsProgramsPauseAgain) {
    EXPECT_EQ(pause(14400), "");
    world.pass(4h);
    EXPECT_EQ(pause(900), over);
    world.monitor().pause(Seconds{60}); // in the panel
    EXPECT_EQ(pause(14400), "");
    EXPECT_EQ(granted, (std::vector<Seconds>{4h, 4h}));
}

TEST_F(ControlServiceTest, WhoAskedIsNamedByItsExecutableAndItsGroupToo) {
    EXPECT_EQ(pause(900), "");
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    EXPECT_TRUE(logs("Pauze van 900 s gevraagd door bus_tests (" + self + " in /"))
        << world.log.messages.back();
}

TEST_F(ControlServiceTest, TheReasonIsOfThePhaseThatHoldsHoweverItCame) {
    EXPECT_EQ(reason(), "guardBegins");
    world.hearApple(1, -50);
    world.pass(1s);
    EXPECT_EQ(reason(), "keyNear");
    EXPECT_EQ(pause(900), "");
    EXPECT_EQ(reason(), "pauseAsked");
    EXPECT_EQ(ask("Resume"), "");
    world.monitor().lockNow();
    EXPECT_EQ(reason(), "lockAsked");
    world.central.setState(CentralState::poweredOff);
    world.pass(1s);
    EXPECT_EQ(reason(), "bluetoothOff");
}

TEST_F(ControlServiceTest, EachChangeIsToldWithAllItsValuesBeforeItsSignal) {
    world.settings().keys.set({keyNamed("Telefoon", 1), keyNamed("Horloge\n", 2)});
    world.hearApple(1, -50);
    world.hearApple(2, -50);
    world.pass(1s);
    loop.settle();
    std::vector<std::string> told;
    const auto properties =
        program->onSignal(session.bus().get()->uniqueName(),
                          {.interface = "org.freedesktop.DBus.Properties",
                           .member = "PropertiesChanged",
                           .path = Activation::path},
                          [&told](const dbus::Message& signal) {
                              auto reader = signal.read();
                              static_cast<void>(reader.text());
                              std::string all;
                              reader.properties([&all](std::string_view name, dbus::Reader& value) {
                                  all += std::string(name) + "=";
                                  if (name == "Reason") all += reasonIn(value);
                                  if (const auto text = value.text()) all += *text;
                                  if (const auto number = value.integer())
                                      all += std::to_string(*number);
                                  all += ";";
                              });
                              told.push_back(all);
                          });
    const auto changes =
        program->onSignal(session.bus().get()->uniqueName(),
                          {.interface = control::interfaceName, .member = "PhaseChanged"},
                          [&told](const dbus::Message& signal) {
                              told.emplace_back(signal.read().text().value_or(""));
                          });
    loop.settle();
    while (!is<phase::Warning>(world.phase()))
        world.pass(1s);
    world.monitor().pause(Seconds{60});
    const auto until = world.time.wallClock() + 60s;
    const auto end = std::chrono::duration_cast<std::chrono::seconds>(until.time_since_epoch());
    loop.settle();
    EXPECT_EQ(
        told,
        (std::vector<std::string>{
            "Phase=leaving;Text=Signaal zwak, even afwachten;Reason=keyNotNear;PausedUntil=0;",
            "leaving",
            "Phase=warning;Text=Lockt zo;Reason=keysAway Telefoon Horloge\uFFFD;PausedUntil=0;",
            "warning",
            "Phase=snoozed;Text=Gepauzeerd tot 12:00;Reason=pauseAsked;PausedUntil=" +
                std::to_string(end.count()) + ";",
            "snoozed"}));
}
