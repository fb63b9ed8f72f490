#include "coupling/linux/pairable_note.h"

#include "tests/support/captured_log.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <sys/stat.h>

using namespace wegslot;
using coupling::PairableNote;

namespace {

using Addresses = std::set<std::string>;

struct PairableNoteTest : testing::Test {
    CapturedLog log;
    TemporaryFolder data;
    const std::filesystem::path path = PairableNote::pathUnder(data.path());
    PairableNote note{path};

    void write(const std::string& content) const {
        std::filesystem::create_directories(path.parent_path());
        data.write("wegslot/pairable", content);
    }
    [[nodiscard]] static unsigned rights(const std::filesystem::path& what) {
        struct stat facts {};
        EXPECT_EQ(stat(what.c_str(), &facts), 0);
        return facts.st_mode & 07777U;
    }
};

const std::string first = "00:11:22:33:44:55";
const std::string second = "aa:bb:CC:DD:EE:0f";

} // namespace

TEST_F(PairableNoteTest, WithoutOneThereIsNothingToPutBackAndNothingIsMade) {
    EXPECT_EQ(note.adapters(), Addresses{});
    note.remove(first);
    EXPECT_FALSE(std::filesystem::exists(path.parent_path()));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PairableNoteTest, WhatIsNotedIsReadByAnotherAndOnlyItsOwnerMayReadIt) {
    EXPECT_EQ(note.add(first), 0);
    EXPECT_EQ(note.add(second), 0);
    EXPECT_EQ(note.add(first), 0);
    EXPECT_EQ(PairableNote(path).adapters(), (Addresses{first, second}));
    EXPECT_EQ(rights(path), 0600U);
    EXPECT_EQ(rights(path.parent_path()), 0700U);
}

TEST_F(PairableNoteTest, TheLastThatIsPutBackTakesTheFileWithIt) {
    ASSERT_EQ(note.add(first), 0);
    ASSERT_EQ(note.add(second), 0);
    note.remove(first);
    EXPECT_EQ(note.adapters(), Addresses{second});
    note.remove(first);
    EXPECT_EQ(note.adapters(), Addresses{second});
    note.remove(second);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PairableNoteTest, ADamagedNoteIsRemovedAndTheLogSaysSoOnce) {
    for (const std::string& damaged :
         {std::string(), std::string("\n"), std::string("00:11:22:33:44:5\n"),
          std::string("00:11:22:33:44:5G\n"), std::string("00-11-22-33-44-55\n"),
          first + "\n/org/bluez/hci0\n", std::string(1025, 'A')}) {
        write(damaged);
        EXPECT_EQ(note.adapters(), Addresses{}) << damaged;
        EXPECT_FALSE(std::filesystem::exists(path)) << damaged;
        EXPECT_EQ(log.take(),
                  std::vector<std::string>{"Notitie over koppelen onleesbaar en verwijderd: " +
                                           path.string()});
        EXPECT_EQ(note.adapters(), Addresses{});
        EXPECT_TRUE(log.messages.empty());
    }
}

TEST_F(PairableNoteTest, ALinkThatLeadsNowhereIsADamagedNote) {
    std::filesystem::create_directories(path.parent_path());
    std::filesystem::create_symlink(data.path() / "nowhere", path);
    EXPECT_EQ(note.adapters(), Addresses{});
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(path)));
}

TEST_F(PairableNoteTest, WhatCannotBeNotedSaysWhy) {
    data.write("wegslot", "a file in the folder's place");
    EXPECT_EQ(note.add(first), ENOTDIR);
}
