#include "trace/writer.h"

#include "trace/reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <variant>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto quotedId = "\"0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6\"";

std::string withIds(std::string pattern) {
    while (pattern.find('$') != std::string::npos)
        pattern.replace(pattern.find('$'), 1, quotedId);
    return pattern;
}

std::string rewritten(const std::string& line) {
    TraceReader reader;
    const auto read = reader.read(line);
    return read ? written(*read) : read.failure().message.builtIn();
}

std::string rewrittenAlone(const std::string& event) {
    const auto read = readEvent(event);
    return read ? written(*read) : read.failure().message.builtIn();
}

std::string settings(const char* name, PreferenceValue value) {
    return written({.time = 0s, .event = trace::SettingsChange{{{name, std::move(value)}}}});
}

} // namespace

// Whatever a line can say is said again: nothing of an event is lost or changed.
TEST(TraceWriter, EveryEventReadsBackAsItWas) {
    std::set<std::size_t> kinds;
    for (
        const char* const pattern : {
            R"({"t":0,"start":"2026-11-15T23:50:00Z"})",
            R"({"t":0,"settings":{"enabled":false,"keys":[{"id":$,"name":"Tag","model":"T1","isApple":false,"threshold":-70.5}],"rule":"anyAway","awayDelay":5,"lostTimeout":15.25,"warningEnabled":true,"warningSeconds":0,"pauseDuringMeetings":true,"pauseWhileActive":false,"showOtherDevices":true}})",
            R"({"t":3,"settings":{"rule":"allAway"}})",
            R"({"t":3,"settings":{}})",
            R"({"t":0.5,"bluetooth":{"state":"poweredOn"}})",
            R"({"t":0.5,"bluetooth":{"state":"unauthorized","authorization":"denied"}})",
            R"({"t":0.05,"known":{"id":$}})",
            R"({"t":0.05,"known":{"id":$,"name":"De \"telefoon\" é"}})",
            R"({"t":0.005,"advertisement":{"id":$,"rssi":-50}})",
            R"({"t":12.345,"advertisement":{"id":$,"rssi":127,"name":"","localName":"Tag","manufacturerData":"4C0010FF"}})",
            R"({"t":1,"advertisement":{"id":$,"rssi":-50,"manufacturerData":""}})",
            R"({"t":1,"connected":{"id":$}})",
            R"({"t":1,"connectFailed":{"id":$}})",
            R"({"t":1,"connectFailed":{"id":$,"error":"weg"}})",
            R"({"t":1,"disconnected":{"id":$}})",
            R"({"t":1,"disconnected":{"id":$,"error":"weg"}})",
            R"({"t":1,"rssiRead":{"id":$,"rssi":-44}})",
            R"({"t":1,"rssiRead":{"id":$,"error":"niet gelezen"}})",
            R"({"t":1,"services":{"id":$}})",
            R"({"t":1,"services":{"id":$,"services":["180A","0000180F","12345678"]}})",
            R"({"t":1,"characteristics":{"id":$,"service":"180A"}})",
            R"({"t":1,"characteristics":{"id":$,"service":"180A","characteristics":["2A24"]}})",
            R"({"t":1,"value":{"id":$,"characteristic":"2A24"}})",
            R"({"t":1,"value":{"id":$,"characteristic":"2A24","value":"00FF61","name":"Tag"}})",
            R"({"t":1,"value":{"id":$,"characteristic":"2A24","value":""}})",
            R"({"t":1,"session":"locked"})",
            R"({"t":1,"session":"unlocked"})",
            R"({"t":1,"input":true})",
            R"({"t":1,"camera":true})",
            R"({"t":1,"camera":false})",
            R"({"t":1,"microphone":"Vergaderen"})",
            R"({"t":1,"microphone":""})",
            R"({"t":1,"microphone":null})",
            R"({"t":1,"addKey":$})",
            R"({"t":1,"removeKey":$})",
            R"({"t":1,"setThreshold":{"id":$,"value":-71.5}})",
            R"({"t":1,"discovery":true})",
            R"({"t":1,"action":"lockNow"})",
            R"({"t":1,"action":"resume"})",
            R"({"t":1,"action":"cancelWarning"})",
            R"({"t":1,"action":{"pause":900}})",
            R"({"t":1,"action":{"pause":-2.5}})",
            R"({"t":1,"show":"snapshot"})",
            R"({"t":1,"show":"keys"})",
            R"({"t":1,"identity":{"from":$,"to":"00000000-0000-0000-0000-000000000001"}})",
            R"({"t":86400,"end":true})",
        }) {
        std::string line = withIds(pattern);
        std::string expected = line;
        // A short UUID is written as short as it can be.
        if (const auto at = expected.find("0000180F"); at != std::string::npos)
            expected.erase(at, 4);
        EXPECT_EQ(rewritten(line), expected + "\n");
        // Alone it is the same without its time.
        const std::string alone = "{" + expected.substr(expected.find(',') + 1);
        EXPECT_EQ(rewrittenAlone(alone), alone);
        if (const auto read = TraceReader().read(line)) kinds.insert(read->event.index());
    }
    EXPECT_EQ(kinds.size(), std::variant_size_v<trace::Event>) << "an event has no line above";
}

TEST(TraceWriter, TimesHaveNoMoreDecimalsThanTheyNeed) {
    for (const auto& [time, text] : {std::pair{0ms, "0"},
                                     {1ms, "0.001"},
                                     {10ms, "0.01"},
                                     {300ms, "0.3"},
                                     {999ms, "0.999"},
                                     {1000ms, "1"},
                                     {100'000ms, "100"},
                                     {86'400'120ms, "86400.12"}})
        EXPECT_EQ(written({.time = time, .event = trace::Input{}}),
                  "{\"t\":" + std::string(text) + ",\"input\":true}\n");
}

TEST(TraceWriter, NumbersThatJsonCannotSayAreWrittenAsOnesThatMeanTheSame) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(settings("awayDelay", std::nan("")), "{\"t\":0,\"settings\":{\"awayDelay\":0}}\n");
    for (const double number : {infinity, -infinity, 1e300, -1e300}) {
        TraceReader reader;
        std::string line = settings("awayDelay", number);
        line.pop_back();
        const auto read = reader.read(line);
        ASSERT_TRUE(read) << line;
        const auto& values = std::get<trace::SettingsChange>(read->event).value;
        EXPECT_EQ(rounded(Seconds{std::get<double>(values.at("awayDelay"))}),
                  rounded(Seconds{number}));
    }
}

TEST(TraceWriter, BytesThatAreNoTextDoNotSpoilTheLine) {
    TraceReader reader;
    std::string line = written({.time = 1s, .event = trace::Microphone{std::string("App\xFF\n")}});
    EXPECT_EQ(std::ranges::count(line, '\n'), 1);
    line.pop_back();
    EXPECT_TRUE(reader.read(line)) << line;
}
