#include "ui/settings_group.h"

#include <gtest/gtest.h>

#include <limits>

using namespace wegslot;
using namespace wegslot::panel;

namespace {

struct SettingsGroupTest : testing::Test {
    MemoryStore store;
    Settings settings{store};
    UpdateFacts update{update_state::Idle{}, "1.3", true};

    [[nodiscard]] SettingsGroup group(bool launchAtLogin = false) const {
        return settingsGroup(settings, true, launchAtLogin, update);
    }

    template <typename Part>
    [[nodiscard]] Part part(std::size_t index) const {
        return std::get<Part>(group().parts.at(index));
    }
};

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST_F(SettingsGroupTest, AFreshUserSeesTheDefaultsInOrder) {
    const std::vector<SettingsPart> parts{
        Stepper{Delay::awayDelay, "Weg na ", "5", " s zwak signaal", true, true},
        Stepper{Delay::lostTimeout, "Weg na ", "15", " s geen signaal", true, true},
        Divider{},
        Toggle{Choice::warningEnabled, "Waarschuw voordat je Mac lockt", "", true},
        Stepper{Delay::warningSeconds, "Aftellen vanaf ", "5", " s", true, true, true, true},
        Toggle{Choice::pauseDuringMeetings, "Niet locken tijdens videobellen",
               "Pauzeert als je camera of microfoon in gebruik is", true},
        Toggle{Choice::pauseWhileActive, "Niet locken als je je Mac gebruikt",
               "Pauzeert als je de afgelopen 10 seconden typte of de muis bewoog", true},
        Toggle{Choice::launchAtLogin, "Start bij inloggen", "", false},
        Divider{},
        VersionBlock{"Versie 1.3", "", {"", "Zoek naar updates"}},
    };
    EXPECT_EQ(group(), (SettingsGroup{"Instellingen", true, parts}));
    EXPECT_FALSE(settingsGroup(settings, false, false, update).isOpen);
}

TEST_F(SettingsGroupTest, EachCheckboxShowsItsSetting) {
    settings.warningEnabled.set(false);
    EXPECT_FALSE(part<Toggle>(3).isOn);
    settings.pauseDuringMeetings.set(false);
    EXPECT_FALSE(part<Toggle>(5).isOn);
    EXPECT_TRUE(part<Toggle>(6).isOn);
    settings.pauseWhileActive.set(false);
    EXPECT_FALSE(part<Toggle>(6).isOn);
    EXPECT_TRUE(std::get<Toggle>(group(true).parts.at(7)).isOn);
}

TEST_F(SettingsGroupTest, WithoutAWarningThereIsNoCountdownToSet) {
    settings.warningEnabled.set(false);
    EXPECT_FALSE(part<Stepper>(4).isShown);
    settings.warningEnabled.set(true);
    EXPECT_TRUE(part<Stepper>(4).isShown);
    EXPECT_EQ(group().parts.size(), 10U);
}

TEST_F(SettingsGroupTest, SecondsAreCutOff) {
    settings.awayDelay.set(Seconds{7.99});
    settings.lostTimeout.set(Seconds{notANumber});
    settings.warningSeconds.set(Seconds{-0.5});
    EXPECT_EQ(part<Stepper>(0).text(), "Weg na 7 s zwak signaal");
    EXPECT_EQ(part<Stepper>(1).text(), "Weg na 0 s geen signaal");
    EXPECT_EQ(part<Stepper>(4).text(), "Aftellen vanaf 0 s");
}

TEST_F(SettingsGroupTest, StepsEndAtTheBounds) {
    struct Row {
        Delay delay;
        std::size_t index;
        double lowest;
        double highest;
        double step;
    };
    for (const Row& row :
         {Row{Delay::awayDelay, 0, 2, 60, 1}, Row{Delay::lostTimeout, 1, 5, 120, 5},
          Row{Delay::warningSeconds, 4, 3, 30, 1}}) {
        SCOPED_TRACE(row.index);
        const DelayRange range = rangeOf(row.delay);
        const auto step = [&range](double value, Step which) {
            return stepped(Seconds{value}, range, which).count();
        };
        EXPECT_EQ(step(row.lowest, Step::down), row.lowest);
        EXPECT_EQ(step(row.lowest + row.step, Step::down), row.lowest);
        EXPECT_EQ(step(row.lowest + 2 * row.step, Step::down), row.lowest + row.step);
        EXPECT_EQ(step(row.highest - 2 * row.step, Step::up), row.highest - row.step);
        EXPECT_EQ(step(row.highest - row.step, Step::up), row.highest);
        EXPECT_EQ(step(row.highest, Step::up), row.highest);

        const auto can = [&](double value) {
            settingOf(settings, row.delay).set(Seconds{value});
            const auto stepper = part<Stepper>(row.index);
            EXPECT_EQ(stepper.delay, row.delay);
            return std::pair(stepper.canDecrease, stepper.canIncrease);
        };
        EXPECT_EQ(can(row.lowest - 0.5), std::pair(false, true));
        EXPECT_EQ(can(row.lowest), std::pair(false, true));
        EXPECT_EQ(can(row.lowest + 0.5), std::pair(true, true));
        EXPECT_EQ(can(row.highest - 0.5), std::pair(true, true));
        EXPECT_EQ(can(row.highest), std::pair(true, false));
        EXPECT_EQ(can(row.highest + 0.5), std::pair(true, false));
        EXPECT_EQ(can(notANumber), std::pair(false, true));
    }
}

TEST_F(SettingsGroupTest, AStepFromOutsideTheRangeComesInto) {
    const DelayRange range = rangeOf(Delay::lostTimeout);
    EXPECT_EQ(stepped(Seconds{3}, range, Step::up), Seconds{8});
    EXPECT_EQ(stepped(Seconds{-600}, range, Step::up), Seconds{5});
    EXPECT_EQ(stepped(Seconds{notANumber}, range, Step::up), Seconds{5});
    EXPECT_EQ(stepped(Seconds{600}, range, Step::down), Seconds{120});
    EXPECT_EQ(stepped(Seconds{infinite}, range, Step::down), Seconds{120});
    EXPECT_EQ(stepped(Seconds{17}, range, Step::down), Seconds{12});
}

TEST(TypedSeconds, AreWholeAndWithinTheRangeButNotOnItsSteps) {
    const DelayRange range = rangeOf(Delay::lostTimeout); // 5 to 120, each fifth
    const auto typed = [&range](std::string_view text) { return typedSeconds(text, range); };
    EXPECT_EQ(typed("17"), Seconds{17});
    EXPECT_EQ(typed(" 7 "), Seconds{7});
    for (const auto& [text, seconds] :
         std::vector<std::pair<const char*, double>>{{"4", 5},
                                                     {"5", 5},
                                                     {"6", 6},
                                                     {"119", 119},
                                                     {"120", 120},
                                                     {"121", 120},
                                                     {"0", 5},
                                                     {"-8", 5},
                                                     {"99999999999999999999", 120},
                                                     {"-99999999999999999999", 5}})
        EXPECT_EQ(typed(text), Seconds{seconds}) << text;
    for (const char* const text : {"", " ", "-", "zeven", "7,5", "7.5", "7 8", "1e2", "0x10", "7s"})
        EXPECT_EQ(typed(text), std::nullopt) << text;
}
