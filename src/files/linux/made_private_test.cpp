#include "files/linux/made_private.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

struct MadePrivateTest : testing::Test {
    TemporaryFolder folder;
    const fs::path file = folder.path() / "file";

    void SetUp() override {
        folder.write("file", "x");
        fs::permissions(file, fs::perms::all);
    }
    /// What is answered of `path`, opened with `flags`.
    [[nodiscard]] static int made(const fs::path& path, int flags, mode_t kind, mode_t rights) {
        const int descriptor = open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW);
        const int answer = madePrivate(descriptor, kind, rights);
        close(descriptor);
        return answer;
    }
    [[nodiscard]] static mode_t rightsOf(const fs::path& path) {
        struct stat facts {};
        return stat(path.c_str(), &facts) == 0 ? facts.st_mode & 07777U : 0;
    }
};

} // namespace

TEST_F(MadePrivateTest, AFileForEverybodyBecomesItsOwnersAlsoByItsPlaceAlone) {
    EXPECT_EQ(made(file, O_RDONLY, S_IFREG, fileOfOwner), 0);
    EXPECT_EQ(rightsOf(file), fileOfOwner);
    fs::permissions(file, fs::perms::all);
    EXPECT_EQ(made(file, O_PATH, S_IFREG, fileOfOwner), 0);
    EXPECT_EQ(rightsOf(file), fileOfOwner);
}

TEST_F(MadePrivateTest, WhatHasFewerRightsKeepsThem) {
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_EQ(made(file, O_PATH, S_IFREG, fileOfOwner), 0);
    EXPECT_EQ(rightsOf(file), 0400U);
}

TEST_F(MadePrivateTest, WhatIsOfAnotherKindStaysAsItIs) {
    EXPECT_EQ(made(folder.path(), O_PATH, S_IFREG, fileOfOwner), EISDIR);
    EXPECT_EQ(made(file, O_PATH, S_IFDIR, folderOfOwner), ENOTDIR);
    fs::create_symlink(file, folder.path() / "link");
    EXPECT_EQ(made(folder.path() / "link", O_PATH, S_IFREG, fileOfOwner), ELOOP);
    EXPECT_EQ(rightsOf(file), 0777U);
}

TEST_F(MadePrivateTest, WhatIsSomebodyElsesStaysAsItIs) {
    if (chown(file.c_str(), 65534, 65534) != 0) GTEST_SKIP() << "only root gives files away";
    EXPECT_EQ(made(file, O_PATH, S_IFREG, fileOfOwner), EPERM);
    EXPECT_EQ(rightsOf(file), 0777U);
}
