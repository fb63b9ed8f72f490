#include "history/linux/history_writer.h"

#include "tests/support/history_stage.h"

#include <random>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

struct HistoryWriterTest : HistoryStage {
    /// How large the file is after so many minutes, two keys of which were heard this often.
    [[nodiscard]] std::uintmax_t sizeAfter(int minutes, std::chrono::milliseconds period) const {
        std::minstd_rand dice(7); // NOLINT: the same each time
        {
            KeepingWriter writer(file);
            for (int number = 0; number < minutes; ++number) {
                Minute kept = minute(number);
                kept.keys.clear();
                for (const Row row : {1, 2}) {
                    KeyMinute& key = kept.keys[row];
                    key.states.assign(60, KeyState::near);
                    for (auto at = 0ms; at < Minute::length; at += period)
                        key.samples.push_back(
                            {kept.start + at + std::chrono::milliseconds{dice()} % (period / 5),
                             -90 + static_cast<int>(dice() % 50)});
                }
                writer.keep(kept);
            }
        }
        return fs::file_size(file);
    }
};

Event opinionAt(TimePoint at) {
    return {at, Opinion{.of = at - 5min, .opinion = Opinion::Of::unjust}};
}

} // namespace

TEST_F(HistoryWriterTest, WhatWasKeptIsReadAgain) {
    KeepingWriter writer(file);
    writer.keep(minute(0));
    const auto kept = all();
    ASSERT_EQ(kept.size(), 1U);
    const Minute& again = kept.front();
    EXPECT_EQ(again.run, 1);
    EXPECT_EQ(again.start, minute(0).start);
    EXPECT_EQ(again.wallOffset, -ahead);
    EXPECT_EQ(again.judged, minute(0).judged);
    ASSERT_EQ(again.keys.size(), 2U);
    EXPECT_EQ(again.keys.at(3).samples, minute(0).keys.at(3).samples);
    EXPECT_EQ(again.keys.at(3).states, minute(0).keys.at(3).states);
    EXPECT_EQ(again.keys.at(1).states, minute(0).keys.at(1).states);
    ASSERT_EQ(again.events.size(), 2U);
    EXPECT_EQ(again.events.at(0).at, minute(0).start + 5s);
    EXPECT_EQ(std::get<PhaseEntered>(again.events.at(1).what).name, "present");
    EXPECT_EQ(log.take(), std::vector<std::string>());
}

TEST_F(HistoryWriterTest, AMinuteTakesThePlaceOfTheSameOne) {
    KeepingWriter writer(file);
    Minute soFar = minute(0);
    soFar.judged.resize(7);
    soFar.keys.erase(1);
    writer.keep(soFar);
    EXPECT_EQ(all().front().judged.size(), 7U);
    writer.keep(minute(0));
    ASSERT_EQ(all().size(), 1U);
    EXPECT_EQ(all().front().judged.size(), 60U);
    EXPECT_EQ(all().front().keys.size(), 2U);
}

TEST_F(HistoryWriterTest, EachBeginsARunAndTheirOrderIsNotThatOfTheirClocks) {
    for (const int number : {5, 1}) {
        KeepingWriter writer(file);
        writer.keep(minute(number + 1));
        writer.keep(minute(number));
    }
    EXPECT_EQ(numbers(), (Numbers{{5, 1}, {6, 1}, {1, 2}, {2, 2}}));
}

TEST_F(HistoryWriterTest, MinutesAreReadThatTouchTheTimeAskedFor) {
    KeepingWriter writer(file);
    for (int number = 0; number < 4; ++number)
        writer.keep(minute(number));
    const auto count = [this](TimePoint from, TimePoint until) {
        return HistoryFile::read(file, from, until)->size();
    };
    EXPECT_EQ(count(noon + 1min, noon + 3min), 2U);
    EXPECT_EQ(count(noon + 1min - 1ms, noon + 3min), 3U);
    EXPECT_EQ(count(noon + 1min - 1ns, noon + 3min), 3U);
    EXPECT_EQ(count(noon + 1min + 1ns, noon + 3min), 2U);
    EXPECT_EQ(count(noon + 1min, noon + 3min + 1ns), 3U);
    EXPECT_EQ(count(noon + 1min, noon + 3min - 1ns), 2U);
    EXPECT_EQ(count(noon + 1min, noon + 1min), 0U);
    EXPECT_EQ(count(noon + 4min, never), 0U);
}

TEST_F(HistoryWriterTest, NothingKeptIsNoFailureAndReadingMakesNothing) {
    EXPECT_TRUE(all().empty());
    EXPECT_FALSE(fs::exists(file.parent_path()));
    fs::create_directory(file.parent_path());
    folder.write("wegslot/history.db", ""); // as it is before it is a database
    EXPECT_TRUE(all().empty());
    EXPECT_EQ(fs::file_size(file), 0U);
    EXPECT_FALSE(fs::exists(beside("-wal")));
}

TEST_F(HistoryWriterTest, OnlyItsUserMayReadItOrLookIntoItsFolder) {
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(rightsOf(file.parent_path()), 0700U);
    for (const char* const ending : {"", "-wal", "-shm"})
        EXPECT_EQ(rightsOf(beside(ending)), 0600U) << ending;
}

TEST_F(HistoryWriterTest, RightsThatOthersHadAreTakenBack) {
    KeepingWriter(file).keep(minute(0));
    fs::permissions(file, fs::perms::all);
    fs::permissions(file.parent_path(), fs::perms::all);
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(rightsOf(file.parent_path()), 0700U);
    for (const char* const ending : {"", "-wal", "-shm"})
        EXPECT_EQ(rightsOf(beside(ending)), 0600U) << ending;
}

TEST_F(HistoryWriterTest, AFileThatWasTakenAwayIsMadeAnew) {
    KeepingWriter writer(file);
    writer.keep(minute(0));
    fs::rename(file, folder.path() / "elsewhere");
    writer.keep(minute(1));
    EXPECT_EQ(numbers(), (Numbers{{1, 1}}));
}

// --- How long, and how much --------------------------------------------------------------------

TEST_F(HistoryWriterTest, WholeDaysAreKeptAndWhatIsBeforeThemGoes) {
    KeepingWriter writer(file, 2);
    const auto midnight = -12h - 2 * 24h; // that with which the first of two whole days begins
    writer.keep(minuteAt(midnight - 1min));
    writer.keep(minuteAt(midnight - 1ms));
    writer.keep(minuteAt(midnight));
    writer.keep(minuteAt(midnight + 1ms));
    EXPECT_EQ(all().size(), 4U); // it is not two days ago yet
    writer.keep(minuteAt(0ms));
    while (writer.removeOld()) {
    }
    std::vector<TimePoint> starts;
    for (const Minute& kept : all())
        starts.push_back(kept.start - ahead);
    EXPECT_EQ(starts, (std::vector<TimePoint>{noon + midnight, noon + midnight + 1ms, noon}));
}

TEST_F(HistoryWriterTest, WhatIsOldIsLookedForOnceAnHourAndGoesInPortions) {
    KeepingWriter writer(file, 1);
    EXPECT_FALSE(writer.removeOld());
    for (int number = 0; number < 150; ++number)
        writer.keep(minute(number));
    while (writer.removeOld()) {
    }
    const auto days = 3 * 24h;
    writer.keep(minuteAt(days));
    std::size_t before = all().size();
    EXPECT_EQ(before, 151U);
    for (int portions = 0; writer.removeOld(); ++portions) {
        const std::size_t now = all().size();
        EXPECT_LE(before - now, 60U);
        before = now;
    }
    EXPECT_EQ(all().size(), 1U);

    const auto old = minute(0); // a clock may be set back for a while
    for (const auto& [after, left] : {std::pair{59min, 3U}, {60min, 3U}}) {
        writer.keep(old);
        writer.keep(minuteAt(days + after));
        const bool isDue = after == 60min;
        EXPECT_EQ(writer.removeOld(), isDue);
        while (writer.removeOld()) {
        }
        EXPECT_EQ(all().size(), left);
    }
}

TEST_F(HistoryWriterTest, FewerDaysCountFromTheNextMinuteOn) {
    KeepingWriter writer(file, 10);
    writer.keep(minuteAt(-4 * 24h));
    writer.keep(minute(0));
    while (writer.removeOld()) {
    }
    EXPECT_EQ(all().size(), 2U);
    writer.setDays(3);
    writer.keep(minute(1));
    while (writer.removeOld()) {
    }
    EXPECT_EQ(numbers(), (Numbers{{0, 1}, {1, 1}}));
}

TEST_F(HistoryWriterTest, WhatGoesGivesItsRoomBack) {
    const std::uintmax_t before = sizeAfter(200, 100ms);
    {
        KeepingWriter writer(file, 1);
        writer.keep(minuteAt(10 * 24h));
        while (writer.removeOld()) {
        }
    }
    EXPECT_LT(fs::file_size(file), before / 5);
}

// Of two keys; a day has four times as many minutes.
TEST_F(HistoryWriterTest, ADayOfAKeyTakesFourMegabytesAtTenReportsASecond) {
    EXPECT_LE(sizeAfter(360, 100ms), 2 * 4'000'000U / 4);
}

TEST_F(HistoryWriterTest, ADayOfAKeyTakesAMegabyteAtOneReportASecond) {
    EXPECT_LE(sizeAfter(360, 1000ms), 2 * 1'000'000U / 4);
}

// --- Being removed -----------------------------------------------------------------------------

TEST_F(HistoryWriterTest, ClearingRemovesAllAndTheRunGoesOn) {
    KeepingWriter(file).keep(minute(0));
    KeepingWriter writer(file);
    writer.keep(minute(1));
    for (const char* const ending : {".aside", ".aside-wal", ".new"})
        std::ofstream{beside(ending)};
    writer.clear();
    EXPECT_TRUE(fs::is_empty(file.parent_path()));
    writer.keep(minute(2));
    EXPECT_EQ(numbers(), (Numbers{{2, 2}}));
}

TEST_F(HistoryWriterTest, NoDaysRemoveItAndKeepNothing) {
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_TRUE(fs::exists(beside("-wal")));
    writer.setDays(0);
    EXPECT_TRUE(fs::is_empty(file.parent_path()));
    writer.keep(minute(1));
    EXPECT_TRUE(fs::is_empty(file.parent_path()));
    writer.setDays(1);
    writer.keep(minute(2));
    EXPECT_EQ(numbers(), (Numbers{{2, 1}}));
}

// --- What is said of it ------------------------------------------------------------------------

TEST_F(HistoryWriterTest, AnOpinionStandsInItsMinuteAndOutlivesWhatIsKeptOfIt) {
    KeepingWriter writer(file);
    writer.keep(minute(0));
    const Event opinion = opinionAt(minute(0).start + 5500ms);
    EXPECT_EQ(HistoryFile::keepOpinion(file, 1, opinion), std::nullopt);
    writer.keep(minute(0));
    const auto kept = all();
    ASSERT_EQ(kept.size(), 1U);
    ASSERT_EQ(kept.front().events.size(), 3U);
    EXPECT_EQ(kept.front().events.at(1).at, opinion.at);
    EXPECT_EQ(std::get<Opinion>(kept.front().events.at(1).what), std::get<Opinion>(opinion.what));
}

TEST_F(HistoryWriterTest, AnOpinionOfLaterHasAMinuteOfItsOwn) {
    KeepingWriter writer(file, 1);
    writer.keep(minute(0));
    const TimePoint at = minute(0).start + 24h + 7s;
    EXPECT_EQ(HistoryFile::keepOpinion(file, 1, opinionAt(at)), std::nullopt);
    const auto late = HistoryFile::read(file, at - ahead, at - ahead + 1ms);
    ASSERT_EQ(late->size(), 1U);
    EXPECT_EQ(late->front().start, minute(0).start + 24h);
    EXPECT_EQ(late->front().wallOffset, -ahead);
    EXPECT_TRUE(late->front().judged.empty());
    EXPECT_TRUE(HistoryFile::read(file, at - ahead + 1ms, never)->empty());
    EXPECT_EQ(HistoryFile::read(file, always, at - ahead)->size(), 1U);
    // It goes as minutes do.
    writer.keep(minuteAt(10 * 24h));
    while (writer.removeOld()) {
    }
    EXPECT_EQ(all().size(), 1U);
}

TEST_F(HistoryWriterTest, AnOpinionOfWhatWasNotKeptIsRefused) {
    const std::string refusal =
        "Geschiedenis niet aan te vullen: " + file.string() + ": er is niets bewaard";
    EXPECT_EQ(HistoryFile::keepOpinion(file, 1, opinionAt(noon)), Failure{refusal});
    EXPECT_FALSE(fs::exists(file.parent_path()));
    KeepingWriter(file).keep(minute(0));
    EXPECT_EQ(HistoryFile::keepOpinion(file, 2, opinionAt(noon)), Failure{refusal});
    EXPECT_EQ(HistoryFile::keepOpinion(file, 1, opinionAt(noon)), std::nullopt);
}
