// A Wegslot that runs for a user with a phone, asked from outside: by `busctl`, as any program on
// the session's bus, and by its own command line.
#pragma once

#include "scanner/bluez/device_id.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/mocked_logind.h"
#include "tests/support/own_home.h"
#include "tests/support/program.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace wegslot {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

inline const std::string id = deviceId(someAddress, "public").text();

/// One that starts, and a phone that sends as long as its strength is not 0.
struct ProgramStage : testing::Test {
    BusLoop loop; // the system's bus and the session's at once
    OwnHome home;
    std::map<std::string, std::string> variables = home.variables(loop);
    LookAlikeBluez bluez{loop};
    MockedLogind logind{loop};
    std::string sender = someAddress;
    std::int16_t strength = 0;
    std::optional<Program> application;

    /// Until the log says `started`.
    void start(const std::string& started) {
        application.emplace(Program::Start{.words = {WEGSLOT_PROGRAM}, .environment = variables});
        ASSERT_TRUE(happens([&] { return logs(started); }));
    }

    /// Until it is so, while the phone goes on sending if it is near.
    [[nodiscard]] bool happens(const std::function<bool()>& condition) {
        using Clock = std::chrono::steady_clock;
        auto next = Clock::now();
        return loop.runUntil([&] {
            if (Clock::now() >= next && strength != 0) {
                strength = static_cast<std::int16_t>(-101 - strength);
                bluez.report(sender, strength, {});
                next = Clock::now() + std::chrono::milliseconds{300};
            }
            return condition();
        });
    }
    [[nodiscard]] bool logs(const std::string& text) const {
        return home.log().find(text) != std::string::npos;
    }

    struct Ending {
        int status;
        std::string said;
    };

    [[nodiscard]] Ending run(Words words) {
        Program program({.words = std::move(words), .environment = variables});
        EXPECT_TRUE(happens([&program] { return !program.isRunning(); }));
        return {program.ended().value_or(-1), program.output()};
    }
    [[nodiscard]] Ending wegslot(Words words) {
        words.insert(words.begin(), WEGSLOT_PROGRAM);
        return run(std::move(words));
    }
};

/// The phone is its key.
struct ControlStage : ProgramStage {
    ControlStage() {
        strength = -50;
        plugIn();
        home.setPreferences(R"({"awayDelay": 1, "lostTimeout": 3, "warningSeconds": 2,)"
                            R"( "pauseWhileActive": false, "keys": [{"id": ")" +
                            id + R"(", "name": "Telefoon", "isApple": false, "threshold": -70}]})");
    }

    void plugIn() {
        bluez.addAdapter();
        bluez.addDevice(
            someAddress, strength,
            {{"AddressType", std::string("public")}, {"Name", std::string("Telefoon")}});
    }

    void start() { ProgramStage::start("Sleutel in de buurt, bewaking actief"); }

    /// As anybody on the bus.
    [[nodiscard]] Ending busctl(const std::string& verb, Words words) {
        Words all{"busctl",
                  "--user",
                  verb,
                  "nl.wegslot.Wegslot",
                  "/nl/wegslot/Wegslot",
                  "nl.wegslot.Wegslot1"};
        all.insert(all.end(), words.begin(), words.end());
        return run(std::move(all));
    }
    [[nodiscard]] Json status() { return Json::parse(wegslot({"status", "--json"}).said); }
};

} // namespace wegslot
