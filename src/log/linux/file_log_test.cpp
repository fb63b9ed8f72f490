#include "log/linux/file_log.h"
#include "log/log.h"

#include "base/virtual_time.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/time_zone.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <set>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct FileLogTest : testing::Test {
    TimeZone zone{"CET-1CEST,M3.5.0,M10.5.0/3"};
    TemporaryFolder folder;
    // Five past nine and seven seconds on the first of March 2025 in Amsterdam.
    VirtualTime time{std::chrono::sys_days{std::chrono::year{2025} / 3 / 1} + 8h + 5min + 7s};
    std::filesystem::path file = folder.path() / "Wegslot.log";
};

} // namespace

TEST_F(FileLogTest, TheFirstLineMakesTheFileWithJustThatLine) {
    {
        FileLog log(file, time);
        log.write("Hervat");
    }
    EXPECT_EQ(folder.read("Wegslot.log"), "2025-03-01 09:05:07 Hervat\n");
}

TEST_F(FileLogTest, TheStampIsTheLocalTimeOfTheCallOnTheClockOnTheWall) {
    {
        FileLog log(file, time);
        log.write("een");
        time.stepWallClock(-1h);
        log.write("twee");
        time.advance(59s);
        log.write("drie");
    }
    EXPECT_EQ(folder.read("Wegslot.log"), "2025-03-01 09:05:07 een\n"
                                          "2025-03-01 08:05:07 twee\n"
                                          "2025-03-01 08:06:06 drie\n");
}

TEST_F(FileLogTest, ALineFeedInAMessageIsWrittenAsItStands) {
    {
        FileLog log(file, time);
        log.write("een\ntwee");
    }
    EXPECT_EQ(folder.read("Wegslot.log"), "2025-03-01 09:05:07 een\ntwee\n");
}

TEST_F(FileLogTest, AMessageThatIsNotUtf8IsDropped) {
    {
        FileLog log(file, time);
        log.write("\xFF");
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(FileLogTest, AMissingFolderLosesTheLineSilently) {
    {
        FileLog log(folder.path() / "weg" / "Wegslot.log", time);
        log.write("een");
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "weg"));
}

TEST_F(FileLogTest, AFileThatWasMovedAwayIsMadeAnew) {
    {
        FileLog log(file, time);
        log.write("een");
        while (folder.lines("Wegslot.log").empty())
            std::this_thread::yield();
        std::filesystem::rename(file, folder.path() / "oud");
        log.write("twee");
    }
    EXPECT_EQ(folder.read("oud"), "2025-03-01 09:05:07 een\n");
    EXPECT_EQ(folder.read("Wegslot.log"), "2025-03-01 09:05:07 twee\n");
}

TEST_F(FileLogTest, LinesOfSeveralThreadsAreWholeAndInCallOrder) {
    constexpr int threads = 4;
    constexpr int lines = 250;
    {
        FileLog log(file, time);
        std::vector<std::thread> writers;
        writers.reserve(threads);
        for (int thread = 0; thread < threads; ++thread)
            writers.emplace_back([&log, thread] {
                for (int line = 0; line < lines; ++line)
                    log.write(std::to_string(thread) + " " + std::to_string(line));
            });
        for (auto& writer : writers)
            writer.join();
    }
    std::vector<int> next(threads, 0);
    for (const auto& line : folder.lines("Wegslot.log")) {
        ASSERT_EQ(line.substr(0, 20), "2025-03-01 09:05:07 ");
        const auto thread = static_cast<std::size_t>(line.at(20) - '0');
        EXPECT_EQ(line.substr(22), std::to_string(next.at(thread)++));
    }
    EXPECT_EQ(next, std::vector<int>(threads, lines));
}

TEST_F(FileLogTest, LinesOfSeveralProcessesAreNeverMixed) {
    constexpr int processes = 4;
    constexpr int lines = 100;
    const std::string longText(3000, 'x');
    for (int process = 0; process < processes; ++process) {
        if (fork() != 0) continue;
        {
            FileLog log(file, time);
            for (int line = 0; line < lines; ++line)
                log.write(longText);
        }
        _exit(0);
    }
    for (int process = 0; process < processes; ++process) {
        int status = 0;
        ASSERT_GT(wait(&status), 0);
        EXPECT_EQ(status, 0);
    }
    const auto written = folder.lines("Wegslot.log");
    EXPECT_EQ(written.size(), static_cast<std::size_t>(processes * lines));
    const std::string expected = "2025-03-01 09:05:07 " + longText;
    EXPECT_TRUE(std::ranges::all_of(written, [&](const auto& line) { return line == expected; }));
}

TEST_F(FileLogTest, APipeThatNobodyReadsHoldsUpNeitherTheCallNorTheEnd) {
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    {
        FileLog log(file, time);
        log.write("een");
    }
    EXPECT_TRUE(std::filesystem::is_fifo(file));
}

TEST_F(FileLogTest, AFileThatIsFullGivesWayToANewOneAndIsKeptAsTheOneBefore) {
    folder.write("Wegslot.log.1", "of last year\n");
    folder.write("Wegslot.log", std::string(FileLog::largest - 1, 'x'));
    {
        FileLog log(file, time);
        log.write("een");
        log.write("twee");
    }
    EXPECT_EQ(folder.read("Wegslot.log"), "2025-03-01 09:05:07 twee\n");
    EXPECT_TRUE(folder.read("Wegslot.log.1").ends_with("x2025-03-01 09:05:07 een\n"));
}

TEST_F(FileLogTest, AFloodOfNewDevicesIsTwentyLinesAMinuteAndTheirNumber) {
    {
        FileLog log(file, time);
        const auto see = [&log](int count) {
            for (int i = 0; i < count; ++i)
                log.write("Gezien: " + std::to_string(i));
        };
        see(100);
        log.write("Hervat"); // all else is written as ever
        time.advance(60s - 1ns);
        see(1);
        time.advance(1ns);
        see(20);
        time.advance(60s);
        see(21);
    }
    const auto lines = folder.lines("Wegslot.log");
    ASSERT_EQ(lines.size(), 63U);
    EXPECT_EQ(lines[19].substr(20), "Gezien: 19");
    EXPECT_EQ(lines[20].substr(20), "Hervat");
    EXPECT_EQ(lines[21].substr(20), "Gezien: nog 81 apparaten in een minuut");
    EXPECT_EQ(lines[22].substr(20), "Gezien: 0");
    EXPECT_EQ(lines[41].substr(20), "Gezien: 19");
    EXPECT_EQ(lines[42].substr(20), "Gezien: 0"); // no more than may be: nothing is said
    EXPECT_EQ(lines[62].substr(20), "Gezien: nog 1 apparaten in een minuut");
}

TEST_F(FileLogTest, OnlyTheUserMayReadIt) {
    {
        FileLog log(file, time);
        log.write("een");
    }
    EXPECT_EQ(std::filesystem::status(file).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(FileLogTest, LivesUnderTheHomeFolder) {
    EXPECT_EQ(FileLog::pathUnder("/home/anna"), "/home/anna/Library/Logs/Wegslot.log");
}

TEST(Log, WithoutADestinationAMessageIsLost) {
    LogDestination* const before = Log::setDestination(nullptr);
    Log::write("niemand leest dit");
    EXPECT_EQ(Log::setDestination(before), nullptr);
}
