#include "trace/reader.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto uuid = "\"0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6\"";

/// What is wrong with `line` as the first of a trace; empty when nothing is.
std::string fault(const std::string& line) {
    TraceReader reader;
    const auto read = reader.read(line);
    return read ? "" : read.failure().message.builtIn();
}

template <typename Event>
Event only(const std::string& line) {
    TraceReader reader;
    const auto read = reader.read(line);
    EXPECT_TRUE(read) << line;
    return std::get<Event>(read->event);
}

std::string with(std::string pattern) {
    while (pattern.find('$') != std::string::npos)
        pattern.replace(pattern.find('$'), 1, uuid);
    return pattern;
}

} // namespace

TEST(TraceReader, TimeIsReadFromItsDecimalText) {
    TraceReader reader;
    EXPECT_EQ(reader.read(R"({"t":0,"input":true})")->time, 0ms);
    EXPECT_EQ(reader.read(R"({"t":0.3,"input":true})")->time, 300ms);
    EXPECT_EQ(reader.read(R"({"t":0.30,"input":true})")->time, 300ms);
    EXPECT_EQ(reader.read(R"({"t":4.357,"input":true})")->time, 4357ms);
    EXPECT_EQ(reader.read(R"({"t":86400,"input":true})")->time, 24h);
}

TEST(TraceReader, AnyOtherTimeIsRefused) {
    EXPECT_EQ(fault(R"({"input":true})"), "veld \"t\" ontbreekt in de regel");
    EXPECT_EQ(fault(R"({"t":"1","input":true})"), "t is geen getal");
    EXPECT_EQ(fault(R"({"t":-1,"input":true})"), "t is negatief");
    for (const char* const time : {"-0.5", "1.2345", "1e3", "1.0e1", "0.5e-1"})
        EXPECT_EQ(fault("{\"t\":" + std::string(time) + ",\"input\":true}"),
                  "t is geen tijd van hoogstens drie decimalen: " + std::string(time));
    EXPECT_EQ(fault(R"({"t":99999999999,"input":true})"), "t is te groot");
}

TEST(TraceReader, TimeNeverGoesBack) {
    TraceReader reader;
    EXPECT_TRUE(reader.read(R"({"t":1,"input":true})"));
    EXPECT_TRUE(reader.read(R"({"t":1,"input":true})"));
    EXPECT_EQ(reader.read(R"({"t":0.999,"input":true})").failure().message, "t gaat terug");
    EXPECT_TRUE(reader.read(R"({"t":1.001,"input":true})"));
}

TEST(TraceReader, ALineHasExactlyOneEvent) {
    EXPECT_EQ(fault(R"({"t":0})"), "geen gebeurtenis");
    EXPECT_EQ(fault(R"({"t":0,"input":true,"camera":true})"),
              "twee gebeurtenissen: \"input\" en \"camera\"");
    EXPECT_EQ(fault(R"({"t":0,"camera":true,"camera":false})"),
              "veld \"camera\" staat er twee keer");
    EXPECT_EQ(fault(R"({"t":0,"wandeling":true})"), "onbekende gebeurtenis \"wandeling\"");
}

TEST(TraceReader, WhatIsNoObjectIsRefused) {
    EXPECT_EQ(fault(""), "lege regel");
    EXPECT_EQ(fault(" \t\r"), "lege regel");
    EXPECT_EQ(fault("[]"), "de regel is geen object");
    EXPECT_EQ(fault("{"), "geen geldige JSON");
}

TEST(TraceReader, AnEventAloneHasNoTime) {
    EXPECT_TRUE(readEvent(R"({"input":true})"));
    for (const auto& [text, fault] :
         {std::pair{R"({"t":0,"input":true})", "twee gebeurtenissen: \"t\" en \"input\""},
          {"{}", "geen gebeurtenis"},
          {"", "lege regel"},
          {"[]", "de gebeurtenis is geen object"},
          {R"({"input":false})", "input kan alleen true zijn"}})
        EXPECT_EQ(readEvent(text).failure().message, fault);
}

TEST(TraceReader, OnlyAStartAndTheFirstSettingsAreSetUp) {
    TraceReader reader;
    EXPECT_TRUE(reader.read(R"({"t":0,"start":"2026-11-15T23:50:00Z"})"));
    EXPECT_TRUE(reader.isSetUp());
    EXPECT_TRUE(reader.read(R"({"t":0,"settings":{"rule":"onbekend"}})"));
    EXPECT_TRUE(reader.isSetUp());
    EXPECT_EQ(reader.read(R"({"t":0,"settings":{"rule":"onbekend"}})").failure().message,
              "onbekende regel \"onbekend\"");
    EXPECT_TRUE(reader.read(R"({"t":0,"settings":{"rule":"anyAway"}})"));
    EXPECT_FALSE(reader.isSetUp());
    EXPECT_EQ(reader.read(R"({"t":0,"start":"2026-11-15T23:50:00Z"})").failure().message,
              "start staat niet vooraan");
}

TEST(TraceReader, SettingsAfterTimeZeroAreAnEvent) {
    TraceReader reader;
    EXPECT_TRUE(reader.read(R"({"t":0.001,"settings":{}})"));
    EXPECT_FALSE(reader.isSetUp());
}

TEST(TraceReader, AStartIsAnInstantInUtc) {
    EXPECT_EQ(only<trace::Start>(R"({"t":0,"start":"2026-11-15T23:50:00Z"})").value,
              std::chrono::sys_days{std::chrono::year{2026} / 11 / 15} + 23h + 50min);
    for (const char* const text :
         {"2026-11-15", "2026-13-01T00:00:00Z", "2026-02-30T00:00:00Z", "2026-11-15T24:00:00Z",
          "2026-11-15T23:50:00", "morgen", "2500-01-01T00:00:00Z", "2026-11-15T23:50:00.5Z"})
        EXPECT_EQ(fault("{\"t\":0,\"start\":\"" + std::string(text) + "\"}"),
                  "start is geen tijdstip: \"" + std::string(text) + "\"");
    EXPECT_EQ(fault(R"({"t":1,"start":"2026-11-15T23:50:00Z"})"), "start is niet op t 0");
}

TEST(TraceReader, DurationsAreRoundedToMilliseconds) {
    const auto change = only<trace::SettingsChange>(R"({"t":1,"settings":{"awayDelay":1.0004}})");
    EXPECT_EQ(std::get<double>(change.value.at("awayDelay")), 1.0);
    const auto asked = only<trace::Action>(R"({"t":1,"action":{"pause":0.0006}})").value;
    EXPECT_EQ(std::get<action::Pause>(asked).duration, Seconds{0.001});
}

TEST(TraceReader, AnAdvertisementHasItsFields) {
    const auto heard = only<trace::Heard>(with(
        R"({"t":1,"advertisement":{"id":$,"rssi":-60,"name":"a","localName":"b","manufacturerData":"4c0010Ff"}})"));
    EXPECT_EQ(heard.rssi, -60);
    EXPECT_EQ(heard.name, "a");
    EXPECT_EQ(heard.localName, "b");
    EXPECT_EQ(heard.manufacturerData, (std::vector<std::uint8_t>{0x4C, 0x00, 0x10, 0xFF}));
}

TEST(TraceReader, WrongMissingAndUnknownFieldsAreNamed) {
    const auto advertisement = [](const std::string& fields) {
        return fault(with("{\"t\":1,\"advertisement\":{" + fields + "}}"));
    };
    EXPECT_EQ(advertisement(R"("id":$)"), "veld \"rssi\" ontbreekt in advertisement");
    EXPECT_EQ(advertisement(R"("id":$,"rssi":-60.5)"), "rssi is geen geheel getal");
    EXPECT_EQ(advertisement(R"("id":$,"rssi":-60.0)"), "rssi is geen geheel getal");
    EXPECT_EQ(advertisement(R"("id":$,"rssi":"-60")"), "rssi is geen geheel getal");
    EXPECT_EQ(advertisement(R"("id":"x","rssi":-60)"), "id is geen UUID: \"x\"");
    EXPECT_EQ(advertisement(R"("id":$,"rssi":-60,"name":null)"), "name is geen tekst");
    EXPECT_EQ(advertisement(R"("id":$,"rssi":-60,"kleur":1)"),
              "onbekend veld \"kleur\" in advertisement");
    for (const char* const data : {"4c0", "4g", "-1", "+1", " 1"})
        EXPECT_EQ(
            advertisement(R"("id":$,"rssi":-60,"manufacturerData":")" + std::string(data) + "\""),
            "manufacturerData is geen hexadecimale tekst");
}

TEST(TraceReader, ASignalReadingHasExactlyOneOutcome) {
    EXPECT_EQ(only<trace::RssiRead>(with(R"({"t":1,"rssiRead":{"id":$,"rssi":-60}})")).rssi, -60);
    EXPECT_EQ(only<trace::RssiRead>(with(R"({"t":1,"rssiRead":{"id":$,"error":"weg"}})")).rssi,
              std::nullopt);
    constexpr auto expected = "rssiRead heeft precies een van rssi en error";
    EXPECT_EQ(fault(with(R"({"t":1,"rssiRead":{"id":$}})")), expected);
    EXPECT_EQ(fault(with(R"({"t":1,"rssiRead":{"id":$,"rssi":-60,"error":"weg"}})")), expected);
}

TEST(TraceReader, ShortUuidsAreComparedWithoutCase) {
    EXPECT_EQ(
        only<trace::Services>(with(R"({"t":1,"services":{"id":$,"services":["180a","180A"]}})"))
            .services,
        (std::vector{GattUuid{0x180A}, GattUuid{0x180A}}));
    EXPECT_TRUE(only<trace::Services>(with(R"({"t":1,"services":{"id":$}})")).services.empty());
    EXPECT_EQ(fault(with(R"({"t":1,"services":{"id":$,"services":["180"]}})")),
              "services is geen korte UUID: \"180\"");
    EXPECT_EQ(fault(with(R"({"t":1,"services":{"id":$,"services":"180A"}})")),
              "services is geen lijst");
}

TEST(TraceReader, KeysOfALaterEventMustBeReadable) {
    constexpr auto expected = "keys bevat een onleesbare of dubbele sleutel";
    EXPECT_EQ(fault(R"({"t":1,"settings":{"keys":[{}]}})"), expected);
    const std::string key = with(R"({"id":$,"name":"a","threshold":-70})");
    EXPECT_EQ(fault("{\"t\":1,\"settings\":{\"keys\":[" + key + "," + key + "]}}"), expected);
    EXPECT_EQ(fault("{\"t\":1,\"settings\":{\"keys\":[" + key + "]}}"), "");
    EXPECT_EQ(fault(R"({"t":0,"settings":{"keys":[{}]}})"), ""); // stored: loads as empty
    EXPECT_EQ(fault(R"({"t":0,"settings":{"keys":{}}})"), "keys is geen lijst");
}

TEST(TraceReader, SettingsAreTyped) {
    EXPECT_EQ(fault(R"({"t":0,"settings":{"enabled":1}})"), "enabled is geen true of false");
    EXPECT_EQ(fault(R"({"t":0,"settings":{"awayDelay":true}})"), "awayDelay is geen getal");
    EXPECT_EQ(fault(R"({"t":0,"settings":{"rule":1}})"), "rule is geen tekst");
    EXPECT_EQ(fault(R"({"t":0,"settings":{"kleur":1}})"), "onbekend veld \"kleur\" in settings");
    EXPECT_EQ(fault(R"({"t":0,"settings":[]})"), "settings is geen object");
}

TEST(TraceReader, EventsWithoutContentAreTrue) {
    EXPECT_EQ(fault(R"({"t":0,"input":true})"), "");
    EXPECT_EQ(fault(R"({"t":0,"input":false})"), "input kan alleen true zijn");
    EXPECT_EQ(fault(R"({"t":0,"end":false})"), "end kan alleen true zijn");
    EXPECT_EQ(fault(R"({"t":0,"camera":false})"), "");
}

TEST(TraceReader, NullStandsOnlyForNoMicrophone) {
    EXPECT_EQ(only<trace::Microphone>(R"({"t":0,"microphone":null})").value, std::nullopt);
    EXPECT_EQ(only<trace::Microphone>(R"({"t":0,"microphone":"App"})").value, "App");
    EXPECT_EQ(fault(R"({"t":0,"camera":null})"), "camera is geen true of false");
}

TEST(TraceReader, UnknownWordsAreNamed) {
    EXPECT_EQ(fault(R"({"t":0,"action":"dans"})"), "onbekende actie \"dans\"");
    EXPECT_EQ(fault(R"({"t":0,"show":"alles"})"), "onbekende waarde \"alles\" van show");
    EXPECT_EQ(fault(R"({"t":0,"session":"open"})"), "onbekende waarde \"open\" van session");
    EXPECT_EQ(fault(R"({"t":0,"bluetooth":{"state":"on"}})"), "onbekende waarde \"on\" van state");
    EXPECT_EQ(fault(R"({"t":0,"bluetooth":{"state":"poweredOn","authorization":"ja"}})"),
              "onbekende waarde \"ja\" van authorization");
}

TEST(TraceReader, APreferenceOfTheCommandLineIsJsonOrABareText) {
    EXPECT_EQ(*readPreference("awayDelay", "10"), PreferenceValue{10.0});
    EXPECT_EQ(*readPreference("enabled", "false"), PreferenceValue{false});
    EXPECT_EQ(*readPreference("rule", "anyAway"), PreferenceValue{std::string("anyAway")});
    EXPECT_EQ(*readPreference("keys", "[]"), PreferenceValue{Data{"[]"}});
    EXPECT_EQ(readPreference("kleur", "1").failure().message,
              "onbekende waarde \"kleur\" van voorkeur");
    EXPECT_EQ(readPreference("awayDelay", "veel").failure().message, "awayDelay is geen getal");
    EXPECT_EQ(readPreference("rule", "soms").failure().message, "onbekende regel \"soms\"");
}
