#include "files/linux/own_file.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

/// Writes "x" into what is opened; the reason why not.
int written(const fs::path& path, int flags = O_CREAT) {
    const int descriptor = openOwn(path.string(), O_WRONLY | O_CLOEXEC | flags, 0600);
    if (descriptor < 0) return errno;
    const bool taken = write(descriptor, "x", 1) == 1;
    close(descriptor);
    return taken ? 0 : EIO;
}

struct OwnFileTest : testing::Test {
    TemporaryFolder folder;

    /// A link of the folder's, as somebody else's if that can be had.
    void link(const std::string& name, const fs::path& target) const {
        fs::create_symlink(target, folder.path() / name);
    }

    [[nodiscard]] bool giveAway(const std::string& name) const {
        constexpr uid_t nobody = 65534;
        return lchown((folder.path() / name).c_str(), nobody, nobody) == 0;
    }
};

} // namespace

TEST_F(OwnFileTest, AnOwnLinkIsFollowedAlsoToAFileThatIsNotThereYet) {
    fs::create_directory(folder.path() / "elsewhere");
    link("absolute", folder.path() / "elsewhere" / "one");
    link("relative", fs::path("elsewhere") / "two");
    link("twice", "relative");
    EXPECT_EQ(written(folder.path() / "absolute"), 0);
    EXPECT_EQ(written(folder.path() / "twice"), 0);
    EXPECT_EQ(folder.read("elsewhere/one"), "x");
    EXPECT_EQ(folder.read("elsewhere/two"), "x");
}

TEST_F(OwnFileTest, ALinkOfSomebodyElsesIsNotFollowedNotEvenBehindAnOwnOne) {
    folder.write("precious", "mine");
    link("trap", folder.path() / "precious");
    link("own", "trap");
    if (!giveAway("trap")) GTEST_SKIP() << "only root gives links away";
    EXPECT_EQ(written(folder.path() / "trap"), ELOOP);
    EXPECT_EQ(written(folder.path() / "own"), ELOOP);
    EXPECT_EQ(folder.read("precious"), "mine");
}

TEST_F(OwnFileTest, ARingOfLinksEnds) {
    link("one", "two");
    link("two", "one");
    EXPECT_EQ(written(folder.path() / "one"), ELOOP);
}

TEST_F(OwnFileTest, WhatThisProcessHoldsOpenIsReachedByItsNumber) {
    folder.write("held", "");
    const int held = open((folder.path() / "held").c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(held, 0);
    EXPECT_EQ(written("/proc/self/fd/" + std::to_string(held)), 0);
    EXPECT_EQ(written("/dev/fd/" + std::to_string(held)), 0);
    close(held);
    EXPECT_EQ(folder.read("held"), "x");
}
