#include "history/linux/history_file.h"

#include "tests/support/history_stage.h"

using namespace wegslot;
using namespace wegslot::history;
namespace fs = std::filesystem;

namespace {

struct HistoryFileTest : HistoryStage {
    /// Those of any run.
    [[nodiscard]] bool has(std::size_t minutes) const {
        return becomes([this, minutes] { return all().size() == minutes; });
    }
};

} // namespace

TEST_F(HistoryFileTest, LiesWithTheUsersData) {
    EXPECT_EQ(HistoryFile::pathUnder("/data"), "/data/wegslot/history.db");
}

TEST_F(HistoryFileTest, WhatIsHandedOverIsWrittenWithoutMoreBeingHandedOver) {
    HistoryFile history(file, 1);
    history.keep(minute(0));
    EXPECT_TRUE(has(1));
    history.keep(minute(1));
    EXPECT_TRUE(has(2));
}

TEST_F(HistoryFileTest, TheEndWritesWhatThereIs) {
    {
        HistoryFile history(file, 1);
        for (std::size_t number = 0; number < HistoryFile::capacity; ++number)
            history.keep(minute(static_cast<int>(number)));
    }
    EXPECT_TRUE(has(HistoryFile::capacity));
    EXPECT_TRUE(becomes([this] { return !fs::exists(beside("-wal")); })); // and closes it
}

TEST_F(HistoryFileTest, EachIsARunOfItsOwn) {
    for (int number = 0; number < 2; ++number) {
        HistoryFile history(file, 1);
        Minute kept = minute(number);
        kept.run = 17;
        history.keep(kept);
        EXPECT_TRUE(has(static_cast<std::size_t>(number) + 1));
    }
    EXPECT_EQ(numbers(), (Numbers{{0, 1}, {1, 2}}));
}

TEST_F(HistoryFileTest, NoDaysKeepNothingAndRemoveWhatIsThere) {
    KeepingWriter(file).keep(minute(0));
    HistoryFile history(file, 0);
    EXPECT_TRUE(becomes([this] { return !fs::exists(file); }));
    history.keep(minute(1));
    history.setDays(1);
    history.keep(minute(2));
    EXPECT_TRUE(has(1));
    EXPECT_EQ(numbers(), (Numbers{{2, 1}}));
    history.setDays(0);
    EXPECT_TRUE(becomes([this] { return fs::is_empty(file.parent_path()); }));
}

TEST_F(HistoryFileTest, WhatIsOldGoesWithoutMoreBeingAsked) {
    {
        KeepingWriter writer(file);
        for (int number = 0; number < 150; ++number)
            writer.keep(minute(number));
    }
    HistoryFile history(file, 1);
    history.keep(minuteAt(10 * std::chrono::hours{24}));
    EXPECT_TRUE(has(1));
}

TEST_F(HistoryFileTest, ClearingBeginsAnew) {
    HistoryFile history(file, 1);
    history.keep(minute(0));
    EXPECT_TRUE(has(1));
    history.clear();
    EXPECT_TRUE(becomes([this] { return !fs::exists(file); }));
    history.keep(minute(1));
    EXPECT_TRUE(has(1));
    EXPECT_EQ(numbers(), (Numbers{{1, 1}}));
}
