// What an archive becomes on a disk, compared with what the system's tar makes of the same one, and
// with whom it could lead astray.
#include "update/linux/unpacked_folder.h"

#include "tests/support/tar_archive.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <sys/stat.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

struct UnpackedFolderTest : testing::Test {
    UnpackedFolderTest() {
        fs::create_directory(ours);
        fs::create_directory(theirs);
    }

    std::optional<Message> unpack(const std::vector<TarMember>& members) const {
        UnpackedFolder folder(ours);
        const auto failure = readArchive(zipped(tarOf(members)), folder);
        return failure ? failure : folder.finish();
    }

    /// Kind, permissions and content of everything below a folder, a line each.
    [[nodiscard]] std::string listing(const fs::path& folder) const {
        const std::string command = "cd '" + folder.string() +
                                    "' && find . -printf '%y %m %P %l\\n' | sort > ../listing && "
                                    "find . -type f -exec sha256sum {} + | sort >> ../listing";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return home.read("listing");
    }

    TemporaryFolder home;
    fs::path ours = home.path() / "ours";
    fs::path theirs = home.path() / "theirs";
};

} // namespace

TEST_F(UnpackedFolderTest, BecomesWhatTarMakesOfIt) {
    const std::vector<TarMember> members{
        {.name = "Wegslot.app/bin/", .type = '5', .mode = 0755},
        {.name = "Wegslot.app/bin/wegslot", .content = std::string(100'000, 'x'), .mode = 0755},
        {.name = "Wegslot.app/empty", .mode = 0600},
        {.name = "Wegslot.app/block", .content = std::string(512, 'b')},
        {.name = "Wegslot.app/read-only", .content = "r", .mode = 0444},
        {.name = "Wegslot.app/for-all", .content = "w", .mode = 0777},
        {.name = "Wegslot.app/closed", .type = '5', .mode = 0555},
        {.name = "Wegslot.app/closed/in", .content = "it", .mode = 0400},
        {.name = "Wegslot.app/un/mentioned/file", .content = "u"},
        {.name = "Wegslot.app/bin/also", .type = '2', .link = "wegslot"},
        {.name = "Wegslot.app/dangling", .type = '2', .link = "bin/none"}};
    ASSERT_EQ(unpack(members), std::nullopt);
    const Bytes image = zipped(tarOf(members));
    home.write("image.tar.gz", std::string(image.begin(), image.end()));
    const std::string tar = "tar --extract --no-same-owner --no-same-permissions --gzip --file '" +
                            (home.path() / "image.tar.gz").string() + "' --directory '" +
                            theirs.string() + "'";
    ASSERT_EQ(std::system(tar.c_str()), 0);
    EXPECT_EQ(listing(ours), listing(theirs));
}

TEST_F(UnpackedFolderTest, NoLinkThatLiesThereIsFollowed) {
    const fs::path outside = home.path() / "outside";
    fs::create_directory(outside);
    const auto lies = [&](const fs::path& link, const fs::path& target) {
        fs::remove_all(ours / "Wegslot.app");
        fs::create_directories((ours / link).parent_path());
        fs::create_symlink(target, ours / link);
    };
    const std::vector<TarMember> file{{.name = "Wegslot.app/a/x", .content = "x"}};
    lies("Wegslot.app", outside);
    EXPECT_NE(unpack(file), std::nullopt);
    lies("Wegslot.app/a", outside);
    EXPECT_NE(unpack(file), std::nullopt);
    lies("Wegslot.app/a/x", outside / "x");
    EXPECT_NE(unpack(file), std::nullopt);
    lies("Wegslot.app/a", outside);
    EXPECT_NE(unpack({{.name = "Wegslot.app/a", .type = '5', .mode = 0777}}), std::nullopt);
    EXPECT_TRUE(fs::is_empty(outside));
}

TEST_F(UnpackedFolderTest, NoFileThatLiesThereIsReplaced) {
    fs::create_directory(ours / "Wegslot.app");
    home.write("ours/Wegslot.app/x", "old");
    EXPECT_EQ(unpack({{.name = "Wegslot.app/x", .content = "new"}}), "x: File exists");
    EXPECT_EQ(home.read("ours/Wegslot.app/x"), "old");
}

TEST_F(UnpackedFolderTest, AFolderThatIsNotThereIsSaid) {
    fs::remove(ours);
    EXPECT_NE(unpack({}), std::nullopt);
}
