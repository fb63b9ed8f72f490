// The history on disks that are full, that hang, or that cannot be written.

#include "tests/support/hanging_disk.h"
#include "tests/support/history_stage.h"

using namespace wegslot;
using namespace wegslot::history;
namespace fs = std::filesystem;

namespace {

/// A disk of a megabyte, as root alone can have one.
struct HistoryOnSmallDiskTest : HistoryStage {
    bool isMounted = false;

    void SetUp() override {
        fs::create_directory(file.parent_path());
        isMounted = mount("tmpfs", file.parent_path().c_str(), "tmpfs", 0, "mode=700,size=1m") == 0;
        if (!isMounted) GTEST_SKIP() << "mounting needs root";
    }
    void TearDown() override {
        if (isMounted) umount2(file.parent_path().c_str(), MNT_DETACH);
    }
};

} // namespace

TEST_F(HistoryOnSmallDiskTest, AFullDiskStopsTheHistoryUntilThereIsRoomAgain) {
    KeepingWriter writer(file);
    folder.write("wegslot/ballast", std::string(400'000, 'x'));
    int number = 0;
    while (log.messages.empty())
        writer.keep(minute(number++));
    EXPECT_EQ(log.take(), std::vector{trouble("No space left on device")});
    const std::size_t before = all().size();
    EXPECT_EQ(before, static_cast<std::size_t>(number) - 1);
    fs::remove(file.parent_path() / "ballast");
    writer.keep(minute(number));
    EXPECT_EQ(all().size(), before);
    writer.keep(minute(number + 60));
    EXPECT_EQ(log.take(), std::vector{"Geschiedenis wordt weer bewaard: " + file.string()});
    EXPECT_EQ(all().size(), before + 1);
}

TEST_F(HistoryOnSmallDiskTest, WhereNothingCanBeWrittenTheHistoryStops) {
    ASSERT_EQ(mount(nullptr, file.parent_path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr),
              0);
    KeepingWriter writer(file);
    writer.keep(minute(0));
    EXPECT_EQ(log.take(), std::vector{trouble("Read-only file system")});
    EXPECT_TRUE(all().empty());
}

TEST_F(HistoryOnSmallDiskTest, WhatWasKeptOnADiskThatCanOnlyBeReadStaysThere) {
    KeepingWriter(file).keep(minute(0));
    ASSERT_EQ(mount(nullptr, file.parent_path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr),
              0);
    KeepingWriter writer(file);
    writer.keep(minute(1));
    EXPECT_EQ(log.take().size(), 1U);
    writer.clear();
    EXPECT_EQ(log.take(), std::vector{"Geschiedenis kan niet worden verwijderd: " + file.string() +
                                      ": Read-only file system"});
    EXPECT_TRUE(fs::exists(file));
}

TEST(HistoryOnHangingDiskTest, NobodyWaitsForItAndTheOldestMinutesGo) {
    HangingDisk disk;
    if (!disk.isThere()) GTEST_SKIP() << "no disk of our own without root and /dev/fuse";
    CapturedLog log;
    {
        HistoryFile history(disk.file(), 1);
        history.keep(HistoryStage::minute(0));
        // Its folder is made private first.
        ASSERT_TRUE(becomesTrue([&disk] { return disk.says("hangs setattr"); }));
        int number = 0;
        while (++number <= static_cast<int>(HistoryFile::capacity))
            history.keep(HistoryStage::minute(number));
        EXPECT_EQ(log.take(), std::vector<std::string>());
        history.keep(HistoryStage::minute(number));
        const std::vector told{
            std::string("Geschiedenis: de schijf antwoordt niet, de oudste minuten vervallen")};
        EXPECT_EQ(log.take(), told);
        history.keep(HistoryStage::minute(number + 1));
        EXPECT_EQ(log.take(), std::vector<std::string>());
    } // and leaves the thread behind
}
