#include "identity/linux/identities_file.h"

#include "tests/support/known_identities.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace wegslot;

namespace {

struct IdentitiesFileTest : testing::Test {
    TemporaryFolder data;
    const std::filesystem::path path = IdentitiesFile::pathUnder(data.path());
    IdentitiesFile file{path, ordinaryMemory()};

    [[nodiscard]] KnownIdentities read() {
        const auto identities = file.read();
        EXPECT_TRUE(identities) << identities.failure().message.builtIn();
        return identities ? *identities : identitiesOf({});
    }
    [[nodiscard]] std::string complaint() {
        const auto identities = file.read();
        return identities ? "" : identities.failure().message.builtIn();
    }
    [[nodiscard]] static unsigned rights(const std::filesystem::path& what) {
        struct stat facts {};
        EXPECT_EQ(stat(what.c_str(), &facts), 0);
        return facts.st_mode & 07777U;
    }
    void write(const std::string& content) const {
        std::filesystem::create_directories(path.parent_path());
        data.write("wegslot/identities.json", content);
    }
};

} // namespace

TEST_F(IdentitiesFileTest, WithoutOneThereAreNoneAndNothingIsMade) {
    EXPECT_TRUE(read().empty());
    EXPECT_FALSE(std::filesystem::exists(path.parent_path()));
    EXPECT_EQ(path, data.path() / "wegslot/identities.json");
}

TEST_F(IdentitiesFileTest, WhatIsKeptIsReadAgainAndOnlyItsOwnerMayReadIt) {
    EXPECT_FALSE(file.change({}, identitiesOf({phonesIdentity()})));
    EXPECT_FALSE(file.change({}, identitiesOf({watchsIdentity()})));
    EXPECT_EQ(read(), identitiesOf({phonesIdentity(), watchsIdentity()}));
    EXPECT_EQ(rights(path), 0600U);
    EXPECT_EQ(rights(path.parent_path()), 0700U);
}

TEST_F(IdentitiesFileTest, WhatOthersMayReadIsTakenFromThem) {
    ASSERT_FALSE(file.change({}, identitiesOf({phonesIdentity()})));
    chmod(path.c_str(), 0644);
    chmod(path.parent_path().c_str(), 0755);
    EXPECT_EQ(read(), identitiesOf({phonesIdentity()}));
    EXPECT_EQ(rights(path), 0600U);
    ASSERT_FALSE(file.change({}, identitiesOf({watchsIdentity()})));
    EXPECT_EQ(rights(path.parent_path()), 0700U);
}

TEST_F(IdentitiesFileTest, OneKeyIsKeptOnceAndWhatIsGoneIsGone) {
    ASSERT_FALSE(file.change({}, identitiesOf({phonesIdentity(), watchsIdentity()})));
    KnownIdentity renamed = phonesIdentity("Mijn telefoon");
    renamed.key = renamed.key.reversed();
    ASSERT_FALSE(file.change({}, identitiesOf({renamed})));
    EXPECT_EQ(read(), identitiesOf({watchsIdentity(), renamed}));
    const std::array gone{watchsIdentity().id()};
    ASSERT_FALSE(file.change(gone, identitiesOf({})));
    EXPECT_EQ(read(), identitiesOf({renamed}));
    EXPECT_EQ(data.read("wegslot/identities.json").find("00112233"), std::string::npos);
}

TEST_F(IdentitiesFileTest, ADamagedFileIsToldOfAndNeverWrittenOver) {
    write("{\n  \"version\": 1,\n");
    const std::string expected =
        "Identiteiten niet te gebruiken: " + path.string() + ": regel 3: geen JSON";
    EXPECT_EQ(complaint(), expected);
    const auto failure = file.change({}, identitiesOf({phonesIdentity()}));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->message.builtIn(), expected);
    EXPECT_EQ(data.read("wegslot/identities.json"), "{\n  \"version\": 1,\n");
}

TEST_F(IdentitiesFileTest, WhatIsNoFileOrTooLargeIsRefused) {
    write(std::string(65 << 10, ' '));
    EXPECT_TRUE(complaint().ends_with(": groter dan 64 kB"));
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_NE(complaint(), "");
}

TEST_F(IdentitiesFileTest, SomebodyElsesIsNotRead) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can make a file of somebody else's";
    ASSERT_FALSE(file.change({}, identitiesOf({phonesIdentity()})));
    ASSERT_EQ(chown(path.c_str(), 12345, 12345), 0);
    EXPECT_NE(complaint(), "");
}

TEST_F(IdentitiesFileTest, WhileAnotherChangesItNothingIsChanged) {
    ASSERT_FALSE(file.change({}, identitiesOf({phonesIdentity()})));
    const int folder = open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    EXPECT_TRUE(file.change({}, identitiesOf({watchsIdentity()})));
    EXPECT_EQ(read(), identitiesOf({phonesIdentity()}));
    close(folder);
    EXPECT_FALSE(file.change({}, identitiesOf({watchsIdentity()})));
}
