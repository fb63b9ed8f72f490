// An object of ours on a real bus, asked by another program on it.

#include "dbus/object.h"

#include "tests/support/bus_loop.h"

#include <gtest/gtest.h>

#include <map>

#include <systemd/sd-bus.h>

using namespace wegslot;

namespace {

struct ExportedObjectTest : testing::Test {
    BusLoop loop;
    std::unique_ptr<dbus::Bus> ours = loop.connect();
    std::unique_ptr<dbus::Bus> other = loop.connect();
    Handle drivingOurs = loop.attach(*ours);
    Handle drivingOther = loop.attach(*other);

    std::string level = "laag";
    int called = 0;
    std::vector<dbus::Answer> waiting;
    std::vector<Subscription> calls;

    [[nodiscard]] std::string name() const {
        const char* unique = nullptr;
        sd_bus_get_unique_name(ours->native(), &unique);
        return unique;
    }
    [[nodiscard]] dbus::Interface lamp() {
        return {
            .name = "nl.example.Lamp",
            .properties = {{"Level", "s", [this](dbus::Writer& value) { value.text(level); }},
                           {"Steps", "ay",
                            [](dbus::Writer& value) {
                                value.bytes(std::array<std::uint8_t, 2>{1, 2});
                            }}},
            .methods = {{"Set", "s", "s", [this](const dbus::Message& call, dbus::Writer& answer) {
                             ++called;
                             answer.text(std::exchange(
                                 level, std::string(call.read().text().value_or(""))));
                         }}}};
    }
    /// Answers when `waiting` does.
    [[nodiscard]] dbus::Interface patientLamp() {
        return {.name = "nl.example.Lamp",
                .methods = {{.name = "Set",
                             .results = "s",
                             .answerLater = [this](const dbus::Message&, dbus::Answer answer) {
                                 waiting.push_back(std::move(answer));
                             }}}};
    }
    /// What comes of a call, once it has.
    std::shared_ptr<std::string> asked() {
        const auto result = std::make_shared<std::string>();
        calls.push_back(other->call({.destination = name(),
                                     .path = "/lamp",
                                     .interface = "nl.example.Lamp",
                                     .member = "Set"},
                                    [result](const dbus::Message& answer) {
                                        *result = answer.error()
                                                      ? *answer.error() + ": " +
                                                            std::string(answer.errorText())
                                                      : std::string(*answer.read().text());
                                    }));
        return result;
    }
    /// What `read` makes of the answer; the error's name when it is one.
    std::string ask(const std::string& path, const std::string& interface,
                    const std::string& member, std::vector<dbus::Argument> arguments,
                    const std::function<std::string(dbus::Reader&)>& read) {
        std::optional<std::string> result;
        const auto call = other->call({.destination = name(),
                                       .path = path,
                                       .interface = interface,
                                       .member = member,
                                       .arguments = std::move(arguments)},
                                      [&](const dbus::Message& answer) {
                                          auto reader = answer.read();
                                          result = answer.error() ? *answer.error() : read(reader);
                                      });
        EXPECT_TRUE(loop.runUntil([&] { return result.has_value(); }));
        return result.value_or("");
    }
    std::string property(const std::string& which) {
        return ask("/lamp", "org.freedesktop.DBus.Properties", "Get",
                   {std::string("nl.example.Lamp"), which}, [](dbus::Reader& reader) {
                       std::string text;
                       reader.variant([&text](dbus::Reader& value) {
                           if (const auto bytes = value.bytes()) {
                               for (const auto byte : *bytes)
                                   text += std::to_string(byte);
                           } else {
                               text = value.text().value_or("");
                           }
                       });
                       return text;
                   });
    }
    static std::string text(dbus::Reader& reader) {
        return std::string(reader.text().value_or(""));
    }
};

} // namespace

TEST_F(ExportedObjectTest, PropertiesAreReadWhenAskedFor) {
    const auto shown = dbus::exportObject(*ours, "/lamp", lamp());
    loop.settle();
    EXPECT_EQ(property("Level"), "laag");
    level = "hoog";
    EXPECT_EQ(property("Level"), "hoog");
    EXPECT_EQ(property("Steps"), "12");
    EXPECT_EQ(property("Geen"), "org.freedesktop.DBus.Error.UnknownProperty");
}

TEST_F(ExportedObjectTest, MethodsAreAnswered) {
    const auto shown = dbus::exportObject(*ours, "/lamp", lamp());
    loop.settle();
    EXPECT_EQ(ask("/lamp", "nl.example.Lamp", "Set", {std::string("hoog")}, text), "laag");
    EXPECT_EQ(level, "hoog");
    EXPECT_EQ(ask("/lamp", "nl.example.Lamp", "Set", {true}, text),
              "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(ask("/lamp", "nl.example.Lamp", "Break", {}, text),
              "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(called, 1);
}

TEST_F(ExportedObjectTest, AnAnswerThatCannotBeSentIsAnError) {
    level = "\xFF"; // not UTF-8
    const auto shown = dbus::exportObject(*ours, "/lamp", lamp());
    loop.settle();
    EXPECT_EQ(property("Level"), "org.freedesktop.DBus.Error.InvalidArgs");
}

TEST_F(ExportedObjectTest, AnEndedHandleTakesTheObjectAway) {
    auto shown = dbus::exportObject(*ours, "/lamp", lamp());
    loop.settle();
    EXPECT_EQ(property("Level"), "laag");
    shown.reset();
    EXPECT_EQ(property("Level"), "org.freedesktop.DBus.Error.UnknownObject");
}

TEST_F(ExportedObjectTest, AnObjectMayEndFromWithinACallToIt) {
    Subscription shown;
    shown = dbus::exportObject(
        *ours, "/lamp",
        {.name = "nl.example.Lamp",
         .methods = {{"Break", "", "s", [&shown](const dbus::Message&, dbus::Writer& answer) {
                          shown.reset();
                          answer.text("stuk");
                      }}}});
    loop.settle();
    EXPECT_EQ(ask("/lamp", "nl.example.Lamp", "Break", {}, text), "stuk");
    EXPECT_EQ(ask("/lamp", "nl.example.Lamp", "Break", {}, text),
              "org.freedesktop.DBus.Error.UnknownObject");
}

TEST_F(ExportedObjectTest, AMethodMayBeAnsweredWhenTheAnswerIsKnown) {
    const auto shown = dbus::exportObject(*ours, "/lamp", patientLamp());
    loop.settle();
    const auto first = asked();
    const auto second = asked();
    loop.settle();
    ASSERT_EQ(waiting.size(), 2U);
    EXPECT_EQ(*first, "");
    waiting[1].give([](dbus::Writer& writer) { writer.text("twee"); });
    waiting[0].give([](dbus::Writer& writer) { writer.text("een"); });
    waiting[0].give([](dbus::Writer& writer) { writer.text("nog een"); }); // is answered
    loop.settle();
    EXPECT_EQ(*first, "een");
    EXPECT_EQ(*second, "twee");
}

TEST_F(ExportedObjectTest, AnAnswerMayBeAnErrorOfAnyName) {
    const auto shown = dbus::exportObject(*ours, "/lamp", patientLamp());
    loop.settle();
    const auto result = asked();
    loop.settle();
    ASSERT_EQ(waiting.size(), 1U);
    waiting[0].refuse("nl.example.Error.Dark", "100% donker");
    loop.settle();
    EXPECT_EQ(*result, "nl.example.Error.Dark: 100% donker");
}

TEST_F(ExportedObjectTest, ACallThatIsGivenUpOrCannotBeAnsweredIsNotLeftWaiting) {
    auto shown = dbus::exportObject(*ours, "/lamp", patientLamp());
    loop.settle();
    const auto forgotten = asked();
    const auto spoiled = asked();
    const auto replaced = asked();
    loop.settle();
    ASSERT_EQ(waiting.size(), 3U);
    waiting[1].give([](dbus::Writer& writer) { writer.text("\xFF"); }); // not UTF-8
    waiting[2] = std::move(waiting[0]);
    shown.reset(); // the object may go first
    loop.settle();
    EXPECT_EQ(*forgotten, "");
    waiting.clear();
    loop.settle();
    const std::string givenUp = "org.freedesktop.DBus.Error.Failed: given up";
    EXPECT_EQ(*forgotten, givenUp);
    EXPECT_EQ(*spoiled, givenUp);
    EXPECT_EQ(*replaced, givenUp);
}

TEST_F(ExportedObjectTest, AnAnswerMayOutliveTheBus) {
    auto shown = dbus::exportObject(*ours, "/lamp", patientLamp());
    loop.settle();
    const auto result = asked();
    loop.settle();
    ASSERT_EQ(waiting.size(), 1U);
    shown.reset();
    drivingOurs.reset();
    ours.reset();
    waiting[0].give([](dbus::Writer& writer) { writer.text("te laat"); });
    EXPECT_TRUE(loop.runUntil([&] { return !result->empty(); }));
    EXPECT_TRUE(result->starts_with("org.freedesktop.DBus.Error.NoReply")) << *result;
}

TEST_F(ExportedObjectTest, ChangesAreToldOfWithoutTheirValue) {
    auto interface = lamp();
    interface.properties[0].telling = dbus::Telling::ofChanges;
    interface.signals = {{"Flickered", "i"}};
    const auto shown = dbus::exportObject(*ours, "/lamp", interface);
    std::string told;
    loop.settle(); // which names the connections
    const auto changes = other->onSignal(
        ours->uniqueName(),
        {.interface = "org.freedesktop.DBus.Properties",
         .member = "PropertiesChanged",
         .path = "/lamp"},
        [&told](const dbus::Message& message) {
            auto reader = message.read();
            static_cast<void>(reader.text());
            EXPECT_TRUE(reader.properties([](std::string_view, dbus::Reader&) { FAIL(); }));
            for (const std::string& name : reader.texts())
                told += name;
        });
    const auto flickers =
        other->onSignal(ours->uniqueName(), {.interface = "nl.example.Lamp", .member = "Flickered"},
                        [&told](const dbus::Message& message) {
                            told += std::to_string(*message.read().integer());
                        });
    loop.settle();
    dbus::emitChanged(*ours, "/lamp", "nl.example.Lamp", {"Level"});
    dbus::emitChanged(*ours, "/lamp", "nl.example.Lamp", {"Steps"}); // does not tell
    dbus::emitSignal(*ours, "/lamp", "nl.example.Lamp", "Flickered",
                     [](dbus::Writer& writer) { writer.int32(-3); });
    dbus::emitSignal(*ours, "/lamp", "nl.example.Lamp", "Flickered",
                     [](dbus::Writer& writer) { writer.text("\xFF"); }); // cannot be sent
    loop.settle();
    EXPECT_EQ(told, "Level-3");
}

TEST_F(ExportedObjectTest, AChangeIsToldOfWithTheValueWhereThePropertyTellsIt) {
    auto interface = lamp();
    interface.properties[0].telling = dbus::Telling::ofValues;
    const auto shown = dbus::exportObject(*ours, "/lamp", interface);
    loop.settle(); // which names the connections
    std::vector<std::string> told;
    const auto changes = other->onSignal(
        ours->uniqueName(),
        {.interface = "org.freedesktop.DBus.Properties",
         .member = "PropertiesChanged",
         .path = "/lamp"},
        [&told](const dbus::Message& message) {
            auto reader = message.read();
            static_cast<void>(reader.text());
            EXPECT_TRUE(reader.properties([&told](std::string_view name, dbus::Reader& value) {
                told.push_back(std::string(name) + " " + text(value));
            }));
            EXPECT_EQ(reader.texts(), std::vector<std::string>{});
        });
    loop.settle();
    for (const char* const next : {"hoog", "\xFF", "laag"}) { // the second cannot be sent
        level = next;
        dbus::emitChanged(*ours, "/lamp", "nl.example.Lamp", {"Level"});
    }
    loop.settle();
    EXPECT_EQ(told, (std::vector<std::string>{"Level hoog", "Level laag"}));
}

TEST_F(ExportedObjectTest, AManagerListsWhatIsBelowItAndTellsOfChanges) {
    const auto manager = dbus::exportObjectManager(*ours, "/lamps");
    auto shown = dbus::exportObject(*ours, "/lamps/one", lamp());
    const auto objects = [](dbus::Reader& reader) {
        std::string paths;
        reader.objects([&paths](std::string_view path, dbus::Reader&) { paths += path; });
        return paths;
    };
    loop.settle();
    EXPECT_EQ(ask("/lamps", "org.freedesktop.DBus.ObjectManager", "GetManagedObjects", {}, objects),
              "/lamps/one");
    bool removed = false;
    const auto told = other->onSignal(
        ours->uniqueName(),
        {.interface = "org.freedesktop.DBus.ObjectManager", .member = "InterfacesRemoved"},
        [&removed](const dbus::Message&) { removed = true; });
    loop.settle();
    shown.reset();
    EXPECT_TRUE(loop.runUntil([&] { return removed; }));
}

TEST_F(ExportedObjectTest, WhatHasNoProperNameIsNotShown) {
    EXPECT_FALSE(dbus::exportObject(*ours, "lamp", lamp()));
    EXPECT_FALSE(dbus::exportObject(*ours, "/lamp", {.name = "lamp!"}));
}
