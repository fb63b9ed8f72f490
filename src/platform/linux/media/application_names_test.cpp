#include "platform/linux/media/application_names.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <vector>

#include <sys/stat.h>

using namespace wegslot;

namespace fs = std::filesystem;

class ApplicationNamesTest : public testing::Test {
protected:
    void write(const std::string& folder, const std::string& file, const std::string& fields) {
        const auto path = folder_.path() / folder / "applications" / file;
        fs::create_directories(path.parent_path());
        folder_.write(fs::relative(path, folder_.path()).string(), "[Desktop Entry]\n" + fields);
    }

    [[nodiscard]] fs::path applications(const std::string& folder) const {
        return folder_.path() / folder / "applications";
    }

    [[nodiscard]] std::string nameOf(const std::string& identifier) const {
        return ApplicationNames({folder_.path() / "user", folder_.path() / "system"})
            .nameOf(identifier);
    }

private:
    TemporaryFolder folder_;
};

TEST_F(ApplicationNamesTest, WithoutAnyFolderTheIdentifierIsTheName) {
    EXPECT_EQ(nameOf("org.praat.App"), "org.praat.App");
    EXPECT_EQ(ApplicationNames({}).nameOf("praat.app"), "praat.app");
    EXPECT_EQ(nameOf(""), "");
}

TEST_F(ApplicationNamesTest, TheEntryOfThatNameGivesTheName) {
    write("system", "org.praat.App.desktop", "Name=Praat\nName[nl]=Praatje\n");
    EXPECT_EQ(nameOf("org.praat.App"), "Praatje");
    EXPECT_EQ(nameOf("org.praat"), "org.praat");
}

TEST_F(ApplicationNamesTest, TheUsersFolderComesBeforeTheSystems) {
    write("user", "praat.desktop", "Name=mine\n");
    write("system", "praat.desktop", "Name=everybody's\n");
    EXPECT_EQ(nameOf("praat"), "mine");
}

TEST_F(ApplicationNamesTest, ASubfolderIsPartOfTheIdWithADash) {
    write("system", "praat/lijn/bel.desktop", "Name=Bel\n");
    EXPECT_EQ(nameOf("praat-lijn-bel"), "Bel");
    EXPECT_EQ(nameOf("praat/lijn/bel"), "praat/lijn/bel");
    EXPECT_EQ(nameOf("bel"), "bel");
}

TEST_F(ApplicationNamesTest, FoldersAreReadToTheDeepestAndNoDeeper) {
    write("system", "1/2/3/4.desktop", "Name=before\n");
    write("system", "1/2/3/4/5.desktop", "Name=at\n");
    write("system", "1/2/3/4/5/6.desktop", "Name=after\n");
    EXPECT_EQ(nameOf("1-2-3-4"), "before");
    EXPECT_EQ(nameOf("1-2-3-4-5"), "at");
    EXPECT_EQ(nameOf("1-2-3-4-5-6"), "1-2-3-4-5-6");
}

TEST_F(ApplicationNamesTest, LinkedFoldersAreReadAndACircleEnds) {
    write("elsewhere", "praat.desktop", "Name=Praat\n");
    fs::create_directories(applications("system"));
    fs::create_directory_symlink(applications("system"), applications("system") / "circle");
    fs::create_directory_symlink(applications("elsewhere"), applications("system") / "linked");
    EXPECT_EQ(nameOf("linked-praat"), "Praat");
}

TEST_F(ApplicationNamesTest, TheProgramOrTheWindowClassFindsItInAnyCase) {
    write("system", "org.praat.App.desktop",
          "Name=Praat\nExec=/opt/PraatBin %U\nStartupWMClass=Praat-Venster\n");
    EXPECT_EQ(nameOf("praatbin"), "Praat");
    EXPECT_EQ(nameOf("PRAAT-VENSTER"), "Praat");
    EXPECT_EQ(nameOf("ORG.PRAAT.APP"), "ORG.PRAAT.APP"); // ids are names of files
}

TEST_F(ApplicationNamesTest, AnExactIdAnywhereComesBeforeAProgram) {
    write("user", "a.desktop", "Name=by program\nExec=praat\n");
    write("system", "praat.desktop", "Name=by id\n");
    EXPECT_EQ(nameOf("praat"), "by id");
}

TEST_F(ApplicationNamesTest, OfSeveralWithThatProgramTheFirstIdOfTheFirstFolderWins) {
    write("system", "a.desktop", "Name=system a\nExec=praat\n");
    write("user", "c.desktop", "Name=user c\nExec=praat\n");
    write("user", "b.desktop", "Name=user b\nExec=praat\n");
    EXPECT_EQ(nameOf("praat"), "user b");
}

TEST_F(ApplicationNamesTest, AHiddenEntryIsNoneAndTakesTheSystemsWithIt) {
    write("user", "praat.desktop", "Name=mine\nHidden=true\nExec=praat\n");
    write("system", "praat.desktop", "Name=everybody's\nExec=praat\n");
    EXPECT_EQ(nameOf("praat"), "praat");
    write("system", "other.desktop", "Name=other\nExec=praat\n");
    EXPECT_EQ(nameOf("praat"), "other");
}

TEST_F(ApplicationNamesTest, EveryAppSuffixGoesOnce) {
    write("system", "a.desktop", "Name=Foo.app\n");
    write("system", "b.desktop", "Name=Foo.application.app\n");
    write("system", "c.desktop", "Name=.a.appppx\n");
    write("system", "d.desktop", "Name=Foo.App\n");
    EXPECT_EQ(nameOf("a"), "Foo");
    EXPECT_EQ(nameOf("b"), "Foolication");
    EXPECT_EQ(nameOf("c"), ".appx");
    EXPECT_EQ(nameOf("d"), "Foo.App");
}

TEST_F(ApplicationNamesTest, WithoutANameLeftTheIdentifierServesAsItIs) {
    write("system", "a.app.desktop", "Name=.app\n");
    write("system", "b.desktop", "Name=\n");
    write("system", "c.desktop", "Name=\\s\\s\n");
    EXPECT_EQ(nameOf("a.app"), "a.app");
    EXPECT_EQ(nameOf("b"), "b");
    EXPECT_EQ(nameOf("c"), "c");
}

TEST_F(ApplicationNamesTest, NeitherNameNorIdentifierBringsControlsOrBadBytes) {
    write("system", "a.desktop", "Name=one\\ntwo\x1B[2J\xFF\n");
    EXPECT_EQ(nameOf("a"), "one\uFFFDtwo\uFFFD[2J\uFFFD");
    EXPECT_EQ(nameOf("x\ny\xC3"), "x\uFFFDy\uFFFD");
}

TEST_F(ApplicationNamesTest, OtherFilesAreNoEntries) {
    write("system", "praat.desktop.bak", "Name=backup\nExec=praat\n");
    write("system", "praat", "Name=no suffix\nExec=praat\n");
    EXPECT_EQ(nameOf("praat"), "praat");
}

TEST_F(ApplicationNamesTest, WhatCannotBeReadIsPassedOver) {
    fs::create_directories(applications("user") / "praat.desktop"); // a folder of that name
    fs::create_directories(applications("user"));
    ASSERT_EQ(mkfifo((applications("user") / "bel.desktop").c_str(), 0600), 0);
    fs::create_symlink("nowhere", applications("user") / "lijn.desktop");
    for (const char* const id : {"praat", "bel", "lijn"})
        write("system", std::string(id) + ".desktop", std::string("Name=the ") + id + "\n");
    EXPECT_EQ(nameOf("praat"), "the praat");
    EXPECT_EQ(nameOf("bel"), "the bel");
    EXPECT_EQ(nameOf("lijn"), "the lijn");
}

TEST_F(ApplicationNamesTest, AFileIsReadUpToTheLargestSize) {
    const std::string start = "[Desktop Entry]\n";
    const std::string fields = "Name=found\n#";
    for (const int excess : {-1, 0, 1}) {
        const auto size = static_cast<int>(ApplicationNames::largestEntry) + excess;
        const auto filling = static_cast<std::size_t>(size) - start.size() - fields.size();
        write("system", "large.desktop", fields + std::string(filling, 'x'));
        EXPECT_EQ(fs::file_size(applications("system") / "large.desktop"), size);
        EXPECT_EQ(nameOf("large"), excess > 0 ? "large" : "found") << excess;
    }
}

TEST(DataFolders, AreTheUsualOnesWhenNothingIsSet) {
    const std::vector<fs::path> wanted{"/home/a/.local/share", "/usr/local/share", "/usr/share"};
    EXPECT_EQ(ApplicationNames::dataFolders("/home/a", "", ""), wanted);
}

TEST(DataFolders, AreThoseThatAreSet) {
    const std::vector<fs::path> wanted{"/data", "/one", "/two"};
    EXPECT_EQ(ApplicationNames::dataFolders("/home/a", "/data", "/one::relative:/two"), wanted);
}

TEST(DataFolders, ARelativeHomeIsPassedOver) {
    const std::vector<fs::path> wanted{"/home/a/.local/share", "/one"};
    EXPECT_EQ(ApplicationNames::dataFolders("/home/a", "data", "/one"), wanted);
}
