#include "replay/replay.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace wegslot;

namespace {

struct Outcome {
    std::string output;
    std::string fault;
};

Outcome replayed(const std::string& trace, Preferences overrides = {}) {
    Outcome outcome;
    std::istringstream input(trace);
    Replay replay([&](std::string_view line) { outcome.output += line; }, std::move(overrides));
    const auto result = replay.run(input);
    if (!result) outcome.fault = result.failure().message.builtIn();
    return outcome;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A key heard for two seconds and then no more.
const std::string departure =
    R"({"t":0,"settings":{"keys":[{"id":"00000000-0000-0000-0000-000000000001","name":"Tag","isApple":false,"threshold":-70}]}}
{"t":0,"bluetooth":{"state":"poweredOn"}}
{"t":0.5,"advertisement":{"id":"00000000-0000-0000-0000-000000000001","rssi":-50}}
{"t":40,"end":true}
)";

} // namespace

TEST(Replay, AnEmptyTraceMakesTheCore) {
    EXPECT_EQ(replayed("").output, "{\"t\":0,\"log\":\"Wegslot gestart met 0 sleutel(s)\"}\n");
}

TEST(Replay, TheSameTraceGivesTheSameBytes) {
    const auto first = replayed(departure);
    EXPECT_TRUE(has(first.output, R"({"t":16,"lock":true})"));
    EXPECT_EQ(replayed(departure).output, first.output);
}

TEST(Replay, AnOverrideWinsOverTheTrace) {
    // Weak at 6 s, and away a second later instead of five.
    const auto outcome = replayed(departure, {{"awayDelay", 1.0}, {"warningSeconds", 2.0}});
    EXPECT_TRUE(has(outcome.output, R"({"t":7,"phase":"warning","deadline":9})"));
    EXPECT_TRUE(has(outcome.output, R"({"t":9,"lock":true})"));
    const std::string later = R"({"t":0,"settings":{}}
{"t":0,"settings":{"warningEnabled":true}}
)";
    EXPECT_FALSE(has(
        replayed(later + departure.substr(departure.find('\n') + 1), {{"warningEnabled", false}})
            .output,
        "warning\""));
}

TEST(Replay, AnOverrideStandsWithoutSettingsInTheTrace) {
    const auto outcome = replayed("{\"t\":1,\"end\":true}\n", {{"enabled", false}});
    EXPECT_TRUE(has(outcome.output, R"({"t":1,"phase":"disabled"})"));
}

TEST(Replay, AFaultNamesItsLineAndNoTimerFiresForIt) {
    const auto outcome = replayed("{\"t\":0,\"input\":true}\n{\"t\":9,\"input\":1}\n");
    EXPECT_EQ(outcome.fault, "regel 2: input is geen true of false");
    EXPECT_EQ(outcome.output, "{\"t\":0,\"log\":\"Wegslot gestart met 0 sleutel(s)\"}\n");
}

TEST(Replay, NothingAfterTheEndIsRead) {
    EXPECT_EQ(replayed("{\"t\":0,\"end\":true}\nonzin\n").fault, "");
}

TEST(Replay, TheLogGoesBackToWhereItWas) {
    LogDestination* const before = Log::setDestination(nullptr);
    static_cast<void>(replayed(departure));
    EXPECT_EQ(Log::setDestination(before), nullptr);
}
