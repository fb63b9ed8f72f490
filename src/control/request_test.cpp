#include "control/request.h"

#include "control/control_status.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;
using namespace wegslot::control;

namespace {

using Words = std::vector<std::string_view>;

std::string fault(const Words& words) {
    const auto parsed = parseRequest(words);
    return parsed ? "" : parsed.failure().message.builtIn();
}

template <typename Kind>
Kind parsed(const Words& words) {
    return std::get<Kind>(*parseRequest(words));
}

/// 0 for none.
std::uint32_t seconds(std::string_view text) {
    const auto duration = pauseDuration(text);
    return duration ? *duration : 0;
}

std::string durationFault(std::string_view text) {
    const auto duration = pauseDuration(text);
    return duration ? "" : duration.failure().message.builtIn();
}

constexpr auto outOfRange = "een pauze duurt 1 tot 14400 seconden";

} // namespace

TEST(ControlRequest, OnlyItsWordsBeginOne) {
    for (const char* const word : {"status", "keys", "lock", "pause", "resume"})
        EXPECT_TRUE(isRequest(word)) << word;
    for (const char* const word : {"--keys", "unlock", "Status", ""})
        EXPECT_FALSE(isRequest(word)) << word;
}

TEST(ControlRequest, EachWordAsksForItsOwn) {
    EXPECT_FALSE(parsed<request::Status>({"status"}).json);
    EXPECT_FALSE(parsed<request::Status>({"status"}).follow);
    EXPECT_TRUE(parsed<request::Status>({"status", "--json", "--follow"}).json);
    EXPECT_TRUE(parsed<request::Status>({"status", "--follow"}).follow);
    EXPECT_TRUE(parsed<request::Keys>({"keys", "--json"}).json);
    EXPECT_EQ(parsed<request::Pause>({"pause", "15m"}).seconds, 900U);
    EXPECT_NO_THROW(parsed<request::Lock>({"lock"}));
    EXPECT_NO_THROW(parsed<request::Resume>({"resume"}));
}

TEST(ControlRequest, AnythingElseIsNamed) {
    EXPECT_EQ(fault({"status", "--snel"}), "status: onbekend woord --snel (zie --help)");
    EXPECT_EQ(fault({"keys", "--follow"}), "keys: onbekend woord --follow (zie --help)");
    EXPECT_EQ(fault({"lock", "nu"}), "lock: onbekend woord nu (zie --help)");
    EXPECT_EQ(parsed<request::Pause>({"pause", "15", "m"}).seconds, 900U);
    EXPECT_EQ(parsed<request::Pause>({"pause", "1,5", "uur"}).seconds, 5400U);
    EXPECT_EQ(fault({"pause", "15", "30"}), "pause: onbekend woord 30 (zie --help)");
    EXPECT_EQ(fault({"pause", "15", "weken"}), "pause: onbekend woord weken (zie --help)");
    EXPECT_EQ(fault({"pause"}), "pause verwacht een duur (bijvoorbeeld 15m)");
    EXPECT_EQ(fault({"pause", "15m", "30m"}), "pause: onbekend woord 30m (zie --help)");
    EXPECT_EQ(fault({"pause", "lang"}),
              "pause: geen geldige duur: lang (bijvoorbeeld 15m, 90s, 1,5u of 2h)");
}

TEST(ControlRequest, ADurationIsANumberWithAUnit) {
    EXPECT_EQ(seconds("15m"), 900U);
    EXPECT_EQ(seconds("90s"), 90U);
    EXPECT_EQ(seconds("2h"), 7200U);
    EXPECT_EQ(seconds("2u"), 7200U);
    EXPECT_EQ(seconds("600"), 600U);
    EXPECT_EQ(seconds("15min"), 900U);
    EXPECT_EQ(seconds("15 m"), 900U);
    EXPECT_EQ(seconds("90sec"), 90U);
    EXPECT_EQ(seconds("2uur"), 7200U);
    EXPECT_EQ(seconds("1.5h"), 5400U);
    EXPECT_EQ(seconds("1,5u"), 5400U);
    EXPECT_EQ(seconds("0.5m"), 30U);
    for (const char* const text : {"", "m", "-5m", "+5m", "5 m 3", "5mm", "5M", "0x10", ".5h",
                                   "nan", "inf", "1e3", "1..5h", "1.5.5h", "15m "})
        EXPECT_NE(durationFault(text).find("geen geldige duur"), std::string::npos) << text;
}

TEST(ControlRequest, APauseIsOneSecondToFourHours) {
    EXPECT_EQ(durationFault("0"), outOfRange);
    EXPECT_EQ(seconds("1"), 1U);
    EXPECT_EQ(seconds("2"), 2U);
    EXPECT_EQ(seconds("14399s"), 14399U);
    EXPECT_EQ(seconds("4h"), 14400U);
    EXPECT_EQ(durationFault("14401"), outOfRange);
    EXPECT_EQ(durationFault("0.4"), outOfRange);
    EXPECT_EQ(seconds("0.5"), 1U);
    EXPECT_EQ(durationFault("241m"), outOfRange);
    // Neither what does not fit in a number nor what would not after its unit is taken for less.
    EXPECT_EQ(durationFault("99999999999999999999"), outOfRange);
    EXPECT_EQ(durationFault("4294967295h"), outOfRange);
    EXPECT_EQ(durationFault("71582789m"), outOfRange);
}
