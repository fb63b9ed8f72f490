// What the command line says of a running Wegslot that speaks another language, is older, or is
// none.

#include "tests/integration/control_stage.h"
#include "tests/support/look_alike.h"

#include <gtest/gtest.h>

#include <string_view>

#include <systemd/sd-bus.h>

using namespace wegslot;

namespace {

struct ControlLanguageTest : ControlStage {};

} // namespace

TEST_F(ControlLanguageTest, WhoFollowsReadsItInTheirOwnLanguageWhateverTheOneThatRunsSpeaks) {
    variables["LC_ALL"] = "de_DE.UTF-8";
    start();
    variables["LC_ALL"] = "en_US.UTF-8";
    Program follower({.words = {WEGSLOT_PROGRAM, "status", "--follow"}, .environment = variables});
    const auto says = [&follower](const char* text) {
        return follower.output().find(text) != std::string::npos;
    };
    ASSERT_TRUE(happens([&] { return says("You are near\n"); })) << follower.output();
    strength = 0; // it walks away
    EXPECT_TRUE(happens([&] { return says("Telefoon is out of range"); })) << follower.output();
    EXPECT_FALSE(says("buiten bereik"));
    EXPECT_NE(busctl("get-property", {"Text"}).said.find("ock"), std::string::npos); // Dutch
}

TEST_F(ControlLanguageTest, OfOneThatTellsNoReasonsItsOwnWordsAreShown) {
    LookAlike service(loop, "nl.wegslot.Wegslot");
    service.on("org.freedesktop.DBus.Properties.GetAll", [&](LookAlike& self,
                                                             sd_bus_message* call) {
        self.reply(call, [](sd_bus_message* answer) {
            sd_bus_message_append(answer, "a{sv}", 2, "Phase", "s", "present", "Text", "s",
                                  "Je bent in de buurt");
        });
        self.signal("/nl/wegslot/Wegslot", "nl.wegslot.Wegslot1", "PhaseChanged",
                    [](sd_bus_message* signal) {
                        sd_bus_message_append(signal, "sss", "locked", "Gelockt", "Lock gevraagd");
                    });
    });
    variables["LC_ALL"] = "en_US.UTF-8";
    Program follower({.words = {WEGSLOT_PROGRAM, "status", "--follow"}, .environment = variables});
    ASSERT_TRUE(happens([&] { return follower.output().ends_with("Lock gevraagd\n"); }))
        << follower.output();
    EXPECT_TRUE(follower.output().starts_with("Je bent in de buurt\n")) << follower.output();
    EXPECT_NE(follower.output().find("  Gelockt  "), std::string::npos) << follower.output();
}

TEST_F(ControlLanguageTest, AReasonOfAnotherShapeIsNone) {
    LookAlike service(loop, "nl.wegslot.Wegslot");
    const std::vector<const char*> shapes{"s", "as", "(ss)", "(sas)"};
    std::size_t asked = 0;
    service.on(
        "org.freedesktop.DBus.Properties.GetAll", [&](LookAlike& self, sd_bus_message* call) {
            self.reply(call, [shape = shapes.at(asked++)](sd_bus_message* answer) {
                sd_bus_message_open_container(answer, 'a', "{sv}");
                sd_bus_message_append(answer, "{sv}", "Phase", "s", "paused");
                sd_bus_message_append(answer, "{sv}", "Text", "s", "Zoals het er staat");
                const std::string_view kind = shape;
                if (kind == "s")
                    sd_bus_message_append(answer, "{sv}", "Reason", "s", "cameraInUse");
                if (kind == "as")
                    sd_bus_message_append(answer, "{sv}", "Reason", "as", 1, "cameraInUse");
                if (kind == "(ss)")
                    sd_bus_message_append(answer, "{sv}", "Reason", "(ss)", "cameraInUse", "");
                if (kind == "(sas)")
                    sd_bus_message_append(answer, "{sv}", "Reason", "(sas)", "cameraInUse", 0);
                sd_bus_message_close_container(answer);
            });
        });
    variables["LC_ALL"] = "en_US.UTF-8";
    while (asked + 1 < shapes.size())
        EXPECT_EQ(wegslot({"status"}).said, "Zoals het er staat\n") << shapes.at(asked - 1);
    EXPECT_EQ(wegslot({"status"}).said, "Paused: The camera is in use\n");
}

TEST_F(ControlLanguageTest, WhyItRefusesIsInTheLanguageOfWhoAsked) {
    start();
    variables["LC_ALL"] = "en_US.UTF-8";
    const auto into = [this](const char* name) {
        return Words{WEGSLOT_PROGRAM, "--record", (home.path() / name).string()};
    };
    Program recorder({.words = into("one.jsonl"), .environment = variables});
    ASSERT_TRUE(happens([&] { return !recorder.output().empty(); }));
    EXPECT_EQ(run(into("two.jsonl")).said,
              "wegslot: Wegslot answers with an error: there is a recording already\n");
}
