// What may be wrong with the file, its place and its disk, and what two processes make of it.

#include "history/linux/place.h"
#include "tests/support/history_stage.h"

#include <csignal>
#include <set>

#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

struct HistoryFaultsTest : HistoryStage {
    const std::string garbage = std::string(20'000, 'x');

    /// A file with a hundred minutes in it, closed.
    void keepHundred() const {
        KeepingWriter writer(file);
        for (int number = 0; number < 100; ++number)
            writer.keep(minute(number));
    }
    void put(const std::string& content) const {
        fs::create_directories(file.parent_path());
        folder.write("wegslot/history.db", content);
    }
    [[nodiscard]] std::string content() const { return folder.read("wegslot/history.db"); }

    void run(const char* sql) const {
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
        sqlite3_close(connection);
    }
    [[nodiscard]] std::string aside(const std::string& why) const {
        return "Geschiedenis onbruikbaar en opzij gezet als " + file.string() + ".aside: " + why;
    }
    /// What is there cannot be read, and goes aside when something is kept.
    void expectSetAside(const std::string& why) {
        const std::string before = content();
        EXPECT_EQ(HistoryFile::read(file, always, never).failure().message,
                  "Geschiedenis niet te lezen: " + file.string() + ": " + why);
        EXPECT_TRUE(HistoryFile::keepOpinion(file, 1, Event{noon, Opinion{}}));
        EXPECT_EQ(content(), before);
        KeepingWriter writer(file);
        writer.keep(minute(7));
        EXPECT_EQ(log.take(), std::vector{aside(why)});
        EXPECT_EQ(folder.read("wegslot/history.db.aside"), before);
        EXPECT_EQ(numbers(), (Numbers{{7, 1}}));
    }
    [[nodiscard]] bool giveAway(const fs::path& path) const {
        constexpr uid_t nobody = 65534;
        return lchown(path.c_str(), nobody, nobody) == 0;
    }
};

/// Files of this process, and what writes them, may be no larger.
class SmallFiles {
public:
    explicit SmallFiles(rlim_t bytes) : signal_(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{.rlim_cur = bytes, .rlim_max = before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;
    ~SmallFiles() {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, signal_);
    }

private:
    rlimit before_{};
    sighandler_t signal_;
};

/// Another process, which keeps minutes and tells of each when it is kept.
class OtherWriter {
public:
    OtherWriter(const fs::path& file, int minutes) {
        if (pipe(ends_) != 0) throw std::runtime_error("pipe");
        child_ = fork();
        if (child_ != 0) {
            close(ends_[1]);
            return;
        }
        {
            KeepingWriter writer(file);
            for (int number = 0; number < minutes; ++number) {
                writer.keep(HistoryStage::minute(number));
                if (write(ends_[1], "k", 1) != 1) _exit(1);
            }
        }
        _exit(0);
    }
    OtherWriter(const OtherWriter&) = delete;
    OtherWriter& operator=(const OtherWriter&) = delete;
    ~OtherWriter() {
        end(SIGKILL);
        close(ends_[0]);
    }

    /// Waits until it has kept one more; false at its end.
    [[nodiscard]] bool kept() const {
        char told = 0;
        return read(ends_[0], &told, 1) == 1;
    }
    void end(int signal) {
        if (child_ <= 0) return;
        kill(child_, signal);
        waitpid(child_, nullptr, 0);
        child_ = 0;
    }

private:
    int ends_[2]{};
    pid_t child_ = 0;
};

} // namespace

TEST_F(HistoryFaultsTest, GarbageIsSetAside) {
    put(garbage);
    expectSetAside("beschadigd");
}

TEST_F(HistoryFaultsTest, OneFileIsKeptThatWasSetAside) {
    put("of an earlier time");
    folder.write("wegslot/history.db.aside", garbage);
    folder.write("wegslot/history.db.aside-wal", garbage);
    expectSetAside("beschadigd");
    EXPECT_FALSE(fs::exists(beside(".aside-wal")));
}

TEST_F(HistoryFaultsTest, WhatWasNotWrittenToItYetGoesAsideWithIt) {
    put(garbage);
    folder.write("wegslot/history.db-wal", "not written yet");
    EXPECT_FALSE(HistoryFile::read(file, always, never));
    EXPECT_EQ(folder.read("wegslot/history.db-wal"), "not written yet");
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(folder.read("wegslot/history.db.aside-wal"), "not written yet");
    EXPECT_EQ(log.take(), std::vector{aside("beschadigd")});
}

TEST_F(HistoryFaultsTest, AFileThatWasCutOffIsSetAside) {
    keepHundred();
    fs::resize_file(file, fs::file_size(file) / 2);
    expectSetAside("beschadigd");
}

TEST_F(HistoryFaultsTest, ADatabaseOfAnotherProgramIsSetAside) {
    fs::create_directories(file.parent_path());
    run("CREATE TABLE songs(title)");
    expectSetAside("geen geschiedenis van Wegslot");
}

TEST_F(HistoryFaultsTest, AHistoryOfANewerProgramIsSetAside) {
    keepHundred();
    run("PRAGMA user_version = 2");
    expectSetAside("van een nieuwere Wegslot");
}

TEST_F(HistoryFaultsTest, TablesThatAreMissingAreDamage) {
    keepHundred();
    run("DROP TABLE keys");
    EXPECT_FALSE(HistoryFile::read(file, always, never));
    KeepingWriter writer(file);
    writer.keep(minute(7));
    EXPECT_EQ(log.take(), std::vector{aside("beschadigd")});
    EXPECT_EQ(numbers(), (Numbers{{7, 1}}));
}

// What neither writing nor reading a new minute comes upon.
TEST_F(HistoryFaultsTest, DamageSomewhereInsideIsFoundWhenItIsOpened) {
    keepHundred();
    const std::string whole = content();
    std::string damaged = whole;
    constexpr std::size_t page = 8192;
    damaged.replace(damaged.size() - 3 * page, page, page, '\xFF');
    put(damaged);
    KeepingWriter writer(file);
    writer.keep(minute(200));
    EXPECT_EQ(log.take(), std::vector{aside("beschadigd")});
    EXPECT_EQ(numbers(), (Numbers{{200, 1}}));
}

TEST_F(HistoryFaultsTest, BytesThatMeanNothingAreAFailureOfReading) {
    keepHundred();
    for (const char* const sql :
         {"UPDATE keys SET content = x'05' WHERE row = 3", "UPDATE minutes SET judged = x'80'",
          "UPDATE minutes SET start = 9223372036854775807 WHERE id = 1",
          "UPDATE keys SET row = -row"}) {
        const std::string before = content();
        run(sql);
        EXPECT_FALSE(HistoryFile::read(file, always, never)) << sql;
        put(before);
        EXPECT_TRUE(HistoryFile::read(file, always, never)) << sql;
    }
}

// --- Its place -----------------------------------------------------------------------------------

TEST_F(HistoryFaultsTest, ALinkIsNotFollowed) {
    folder.write("precious", "mine");
    fs::create_directories(file.parent_path());
    fs::create_symlink(folder.path() / "precious", file);
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(log.take(), std::vector{trouble("Too many levels of symbolic links")});
    EXPECT_FALSE(HistoryFile::read(file, always, never));
    EXPECT_EQ(folder.read("precious"), "mine");
    writer.clear();
    EXPECT_EQ(folder.read("precious"), "mine");
}

TEST_F(HistoryFaultsTest, LinksInThePathToItsFolderAreFollowed) {
    fs::create_directory(folder.path() / "elsewhere");
    fs::create_directory_symlink("elsewhere", folder.path() / "wegslot");
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(numbers(), (Numbers{{0, 1}}));
    EXPECT_TRUE(fs::exists(folder.path() / "elsewhere" / "history.db"));
}

TEST_F(HistoryFaultsTest, WhatIsNoFileIsLeft) {
    fs::create_directories(file);
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(log.take(), std::vector{trouble("Is a directory")});
    EXPECT_TRUE(fs::is_directory(file));
    EXPECT_FALSE(HistoryFile::read(file, always, never));
}

TEST_F(HistoryFaultsTest, SomebodyElsesIsNeitherWrittenNorRead) {
    keepHundred();
    if (!giveAway(file)) GTEST_SKIP() << "only root gives files away";
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(log.take(), std::vector{trouble("Operation not permitted")});
    EXPECT_FALSE(HistoryFile::read(file, always, never));

    ASSERT_EQ(chown(file.c_str(), geteuid(), getegid()), 0);
    ASSERT_TRUE(giveAway(file.parent_path()));
    KeepingWriter other(file);
    other.keep(minute(0));
    EXPECT_EQ(log.take(), std::vector{trouble("Operation not permitted")});
}

TEST_F(HistoryFaultsTest, AfterAFaultItIsTriedAgainAnHourLaterAndEachReasonIsSaidOnce) {
    folder.write("wegslot", "in the way");
    KeepingWriter writer(file);
    log.messages.clear();
    const std::vector first{trouble("Not a directory")};
    writer.keep(minute(0));
    EXPECT_EQ(log.take(), first);
    writer.keep(minute(60));
    EXPECT_EQ(log.take(), std::vector<std::string>());
    fs::remove(folder.path() / "wegslot");
    writer.keep(minute(119));
    EXPECT_FALSE(fs::exists(file));
    writer.keep(minute(120));
    EXPECT_EQ(log.take(), std::vector{"Geschiedenis wordt weer bewaard: " + file.string()});
    writer.keep(minute(121));
    EXPECT_EQ(log.take(), std::vector<std::string>());
    EXPECT_EQ(numbers(), (Numbers{{120, 1}, {121, 1}}));
}

TEST_F(HistoryFaultsTest, AFileThatMayNotGrowStopsTheHistoryAndHarmsNothing) {
    keepHundred();
    KeepingWriter writer(file);
    writer.keep(minute(100));
    int number = 101;
    {
        const SmallFiles limit(100'000);
        while (log.messages.empty())
            writer.keep(minute(number++));
    }
    EXPECT_EQ(log.take(), std::vector{trouble("File too large")});
    const std::size_t before = all().size();
    EXPECT_EQ(before, static_cast<std::size_t>(number) - 1);
    writer.keep(minute(number + 60));
    EXPECT_EQ(log.take(), std::vector{"Geschiedenis wordt weer bewaard: " + file.string()});
    EXPECT_EQ(all().size(), before + 1);
}

// --- Several processes -------------------------------------------------------------------------

TEST_F(HistoryFaultsTest, AWriterThatIsKilledLosesNothingThatItHadKept) {
    for (int round = 0; round < 5; ++round) {
        OtherWriter other(file, 100'000);
        for (int number = 0; number < 10 + 7 * round; ++number)
            ASSERT_TRUE(other.kept());
        other.end(SIGKILL);
        std::size_t kept = 0;
        for (const auto& [number, run] : numbers())
            kept += run == round + 1 ? 1 : 0;
        EXPECT_GE(kept, static_cast<std::size_t>(10 + 7 * round));
    }
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(all().back().run, 6);
    EXPECT_EQ(log.take(), std::vector<std::string>());
}

TEST_F(HistoryFaultsTest, WhatWasLeftBesideAFileThatIsGoneDoesNotComeBack) {
    {
        OtherWriter other(file, 100'000);
        for (int number = 0; number < 10; ++number)
            ASSERT_TRUE(other.kept());
    }
    ASSERT_GT(fs::file_size(beside("-wal")), 0U);
    fs::remove(file);
    KeepingWriter writer(file);
    writer.keep(minute(7));
    EXPECT_EQ(numbers(), (Numbers{{7, 1}}));
}

// A reader that comes while it is made finds nothing, and is in nobody's way.
TEST_F(HistoryFaultsTest, AFileIsThereAtOnceOrNotAtAll) {
    for (int round = 0; round < 50; ++round) {
        OtherWriter other(file, 1);
        ASSERT_TRUE(becomes([this] { return !all().empty(); }));
        EXPECT_TRUE(other.kept());
        other.end(SIGKILL);
        removeAll(file);
    }
}

TEST_F(HistoryFaultsTest, OneReadsAndAddsWhileAnotherWrites) {
    constexpr int minutes = 200;
    OtherWriter other(file, minutes);
    std::size_t before = 0;
    while (other.kept()) {
        const std::size_t now = all().size();
        EXPECT_GE(now, before);
        before = now;
        EXPECT_EQ(HistoryFile::keepOpinion(file, 1, Event{minute(0).start, Opinion{}}),
                  std::nullopt);
    }
    EXPECT_EQ(all().size(), static_cast<std::size_t>(minutes));
    EXPECT_EQ(all().front().events.size(), minute(0).events.size() + minutes);
}
