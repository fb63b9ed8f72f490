#include "files/linux/replace_file.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

struct ReplaceFileTest : testing::Test {
    TemporaryFolder folder;
    const fs::path file = folder.path() / "a" / "b" / "text";

    static mode_t modeOf(const fs::path& path) {
        struct stat facts {};
        stat(path.c_str(), &facts);
        return facts.st_mode & 07777U;
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(file.parent_path()))
            found.push_back(entry.path().filename());
        return found;
    }
};

using Names = std::vector<std::string>;

/// No file of this process grows beyond this size.
class SmallFiles {
public:
    explicit SmallFiles(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;
    ~SmallFiles() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

} // namespace

TEST_F(ReplaceFileTest, MissingFoldersAreMadeTheLastForItsOwnerAlone) {
    EXPECT_EQ(replaceFile(file, "new", 0600), 0);
    EXPECT_EQ(folder.read("a/b/text"), "new");
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
}

TEST_F(ReplaceFileTest, AFolderThatIsThereKeepsItsRights) {
    fs::create_directories(file.parent_path());
    fs::permissions(file.parent_path(), fs::perms(0755));
    EXPECT_EQ(replaceFile(file, "new", 0600), 0);
    EXPECT_EQ(modeOf(file.parent_path()), 0755U);
}

TEST_F(ReplaceFileTest, TheRightsAreThoseAskedForWhateverTheMask) {
    const mode_t before = umask(0077);
    EXPECT_EQ(replaceFile(file, "new", 0644), 0);
    umask(before);
    EXPECT_EQ(modeOf(file), 0644U);
    EXPECT_EQ(replaceFile(file, "newer", 0600), 0);
    EXPECT_EQ(modeOf(file), 0600U);
}

TEST_F(ReplaceFileTest, TheWholeContentIsReplacedAndNoOtherFileStays) {
    EXPECT_EQ(replaceFile(file, "a long content", 0600), 0);
    folder.write("a/b/text.new", "left by a crash");
    EXPECT_EQ(replaceFile(file, "short", 0600), 0);
    EXPECT_EQ(folder.read("a/b/text"), "short");
    EXPECT_EQ(names(), Names{"text"});
}

TEST_F(ReplaceFileTest, ALinkStaysAndWhatItLeadsToIsReplaced) {
    fs::create_directories(file.parent_path());
    folder.write("elsewhere", "old");
    fs::create_symlink("../../elsewhere", file);
    EXPECT_EQ(replaceFile(file, "new", 0600), 0);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(folder.read("elsewhere"), "new");
}

TEST_F(ReplaceFileTest, ALinkThatLeadsNowhereIsReplacedItself) {
    fs::create_directories(file.parent_path());
    fs::create_symlink("/nowhere/text", file);
    EXPECT_EQ(replaceFile(file, "new", 0600), 0);
    EXPECT_EQ(folder.read("a/b/text"), "new");
}

TEST_F(ReplaceFileTest, AWriteThatBreaksOffLosesNothing) {
    EXPECT_EQ(replaceFile(file, "old", 0600), 0);
    {
        const SmallFiles tenBytes(10);
        EXPECT_EQ(replaceFile(file, "eleven byte", 0600), EFBIG);
        EXPECT_EQ(folder.read("a/b/text"), "old");
        EXPECT_EQ(names(), Names{"text"});
        EXPECT_EQ(replaceFile(file, "ten bytes!", 0600), 0);
    }
    EXPECT_EQ(folder.read("a/b/text"), "ten bytes!");
}

TEST_F(ReplaceFileTest, WhatCannotBeReplacedIsSaidAndLeavesNothingBehind) {
    fs::create_directories(file / "in the way");
    EXPECT_EQ(replaceFile(file, "new", 0600), EISDIR);
    EXPECT_EQ(names(), Names{"text"});
    folder.write("plain", "");
    EXPECT_EQ(replaceFile(folder.path() / "plain" / "text", "new", 0600), ENOTDIR);
}
