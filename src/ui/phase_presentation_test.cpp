#include "ui/phase_presentation.h"

#include "ui/symbols.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint noon{12h};

std::string hours(TimePoint instant) {
    return std::to_string(
               std::chrono::duration_cast<std::chrono::hours>(instant.time_since_epoch()).count()) +
           ":00";
}

struct Row {
    Phase phase;
    std::string_view symbol;
    Color color;
    std::string text;
};

std::vector<Row> table() {
    return {
        {phase::BluetoothUnavailable{"Bluetooth staat uit"}, "exclamationmark.lock", brand::danger,
         "Bluetooth staat uit"},
        {phase::Paused{"camera in gebruik"}, "pause.circle", brand::lila,
         "Pauze: camera in gebruik"},
        {phase::Snoozed{noon}, "pause.circle", brand::lila, "Gepauzeerd tot 12:00"},
        {phase::Warning{noon}, "figure.walk", brand::orange, "Lockt zo"},
        {phase::Disabled{}, "lock.slash", brand::lila, "Uitgeschakeld"},
        {phase::NoKeys{}, "exclamationmark.lock", brand::lila, "Kies een sleutel om te beginnen"},
        {phase::WaitingForReturn{}, "hourglass", brand::lila,
         "Wacht tot je sleutel in de buurt is"},
        {phase::Present{}, "lock.open", brand::success, "Je bent in de buurt"},
        {phase::Leaving{}, "figure.walk", brand::orange, "Signaal zwak, even afwachten"},
        {phase::Locked{}, "lock.fill", brand::navy, "Gelockt"},
    };
}

} // namespace

TEST(PhasePresentation, EveryPhaseHasItsSymbolColorAndText) {
    const auto rows = table();
    ASSERT_EQ(rows.size(), std::variant_size_v<Phase>);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[i];
        SCOPED_TRACE(name(row.phase));
        EXPECT_EQ(row.phase.index(), i);
        EXPECT_EQ(symbol(row.phase), row.symbol);
        EXPECT_EQ(color(row.phase), row.color);
        EXPECT_EQ(text(row.phase, hours), row.text);
    }
}

TEST(PhasePresentation, SevenSymbolsServeAllPhases) {
    std::set<std::string_view> names;
    for (const Row& row : table())
        names.insert(symbol(row.phase));
    EXPECT_EQ(names.size(), 7U);
    for (const auto name : names)
        EXPECT_NE(std::ranges::find(symbols::all, name), symbols::all.end()) << name;
}

TEST(PhasePresentation, EmptyPauseTextLeavesThePrefixWithItsBlank) {
    EXPECT_EQ(text(phase::Paused{""}, hours), "Pauze: ");
}

TEST(PhasePresentation, ReasonForNoBluetoothIsShownUnchanged) {
    for (const std::string reason : {"", " ", "Pauze: ", "Géén adapter %s"})
        EXPECT_EQ(text(phase::BluetoothUnavailable{reason}, hours), reason);
}

TEST(PhasePresentation, EndOfASnoozeIsWrittenByTheGivenFormatAndNothingFollows) {
    EXPECT_EQ(text(phase::Snoozed{noon + 1h}, hours), "Gepauzeerd tot 13:00");
    EXPECT_EQ(text(phase::Snoozed{noon}, [](TimePoint) { return ""; }), "Gepauzeerd tot ");
}

TEST(PhasePresentation, OnlyASnoozeAsksForTheTime) {
    int asked = 0;
    for (const Row& row : table())
        static_cast<void>(text(row.phase, [&asked](TimePoint) {
            ++asked;
            return "";
        }));
    EXPECT_EQ(asked, 1);
}
