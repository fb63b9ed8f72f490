// Hundreds of random lives of the core, each compared with the oracle at every event. Another
// number of lives: WEGSLOT_LIVES. One life again, told: WEGSLOT_SEED.
#include "tests/properties/how_many.h"
#include "tests/properties/life.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <string>

using namespace wegslot;

namespace {

// What a hundred lives cannot miss, unless they have become too dull to prove anything.
constexpr const char* expected[] = {"phase bluetoothUnavailable",
                                    "phase disabled",
                                    "phase leaving",
                                    "phase locked",
                                    "phase noKeys",
                                    "phase paused",
                                    "phase present",
                                    "phase snoozed",
                                    "phase waitingForReturn",
                                    "phase warning",
                                    "lock",
                                    "log Geen",
                                    "log Handmatig",
                                    "log Hervat",
                                    "log Sleutel",
                                    "log Waarschuwing",
                                    "log Waarschuwing geannuleerd",
                                    "radio cancel",
                                    "radio connect",
                                    "radio discoverServices",
                                    "radio readRSSI",
                                    "radio readValue"};

std::string story(std::uint64_t seed) {
    Life life(seed, Life::Telling::yes);
    life.run();
    std::string result;
    for (const std::string& line : life.told())
        result += line + "\n";
    for (const std::string& fault : life.faults())
        result += "FAULT " + fault + "\n";
    return result;
}

} // namespace

TEST(Lives, KeepEveryInvariantAndDoWhatTheOracleDoes) {
    if (const auto seed = environmentNumber("WEGSLOT_SEED")) {
        const std::string told = story(*seed);
        std::cout << "the end of life " << *seed << ":\n" << told;
        EXPECT_EQ(told.find("FAULT"), std::string::npos);
        return;
    }
    const std::uint64_t count = howManyLives(300);
    std::map<std::string, int> tally;
    for (std::uint64_t seed = 1; seed <= count; ++seed) {
        Life life(seed);
        life.run();
        ASSERT_TRUE(life.faults().empty())
            << life.faults().front() << "\nthe story of it:\n"
            << story(seed) << "again with: WEGSLOT_SEED=" << seed
            << " property_tests --gtest_filter=" << test_info_->test_suite_name() << "."
            << test_info_->name();
        for (const auto& [what, times] : life.tally())
            tally[what] += times;
        for (const auto& [name, value] : life.stage().store.values())
            ++tally["choice of " + name];
    }
    if (count < 100) return;
    // A rule with a setting that no life chooses is not compared with the oracle's.
    Settings::specimen().visit([&tally](const auto& setting) {
        EXPECT_GT(tally["choice of " + std::string(setting.name())], 0)
            << "none of the lives chooses " << setting.name();
    });
    for (const char* const what : expected)
        EXPECT_GT(tally[what], 0) << "none of the lives has met: " << what;
}
