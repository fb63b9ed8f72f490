#include "update/linux/linux_installer.h"

#include "tests/support/application_folder.h"
#include "tests/support/captured_log.h"
#include "tests/support/temporary_folder.h"
#include "update/linux/own_bundle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

class InstallerTest : public testing::Test {
protected:
    InstallerTest() { fs::create_directories(temporary); }

    /// The image of an application made in `source`, by the system's own tar.
    [[nodiscard]] Bytes imageOf(const fs::path& folder) const {
        const fs::path file = home.path() / "image.tar.gz";
        const std::string command = "tar -C '" + folder.string() + "' --format=ustar -czf '" +
                                    file.string() + "' Wegslot.app";
        EXPECT_EQ(std::system(command.c_str()), 0);
        const std::string bytes = home.read("image.tar.gz");
        return {bytes.begin(), bytes.end()};
    }

    [[nodiscard]] Bytes image() const {
        makeApplication(source / "Wegslot.app", "1.4", 27);
        return imageOf(source);
    }

    /// The temporary folders of updates.
    [[nodiscard]] std::vector<std::string> leftovers() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(temporary))
            names.push_back(entry.path().filename());
        return names;
    }

    [[nodiscard]] std::string examined(const Release& release = {.version = "1.4", .build = 27}) {
        const auto result = installer.examine((source / "Wegslot.app").string(), release);
        return result ? "" : result.failure().message.builtIn();
    }

    TemporaryFolder home;
    fs::path temporary = home.path() / "tmp";
    fs::path source = home.path() / "source";
    fs::path app = home.path() / "Apps" / "Wegslot.app";
    CapturedLog log;
    LinuxInstaller installer{app, testIdentifier, temporary};
};

} // namespace

TEST_F(InstallerTest, UnpacksIntoAFolderOfItsOwn) {
    const auto unpacked = installer.unpack(image());
    ASSERT_TRUE(unpacked) << unpacked.failure().message;
    EXPECT_EQ(contentsOf(*unpacked), contentsOf(source / "Wegslot.app"));
    const fs::path folder = fs::path(*unpacked).parent_path();
    EXPECT_EQ(folder.parent_path(), temporary);
    EXPECT_EQ(leftovers().size(), 1U);
    const std::string name = folder.filename();
    EXPECT_TRUE(name.starts_with("Wegslot-update-")) << name;
    EXPECT_EQ(name.size(), std::string("Wegslot-update-").size() + 36);
    EXPECT_EQ(std::ranges::count_if(name.substr(15), [](char sign) { return std::islower(sign); }),
              0);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    // The program can be run, and nobody else may write to it.
    EXPECT_EQ(access((*unpacked + "/wegslot").c_str(), X_OK), 0);
    installer.discard(*unpacked);
    EXPECT_EQ(leftovers().size(), 0U);
}

TEST_F(InstallerTest, EachAttemptRemovesWhatTheOneBeforeLeft) {
    const auto first = installer.unpack(image());
    const auto second = installer.unpack(image());
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(leftovers(), std::vector<std::string>{fs::path(*second).parent_path().filename()});
}

TEST_F(InstallerTest, OnlyFoldersOfUpdatesAreRemoved) {
    fs::create_directories(temporary / "Wegslot-update-notes");
    fs::create_directories(temporary / "other");
    writeText(temporary / "Wegslot-update-00000000-0000-4000-8000-000000000001", "a file");
    fs::create_directory_symlink(home.path(),
                                 temporary / "Wegslot-update-00000000-0000-4000-8000-000000000002");
    fs::create_directories(temporary / "Wegslot-update-00000000-0000-4000-8000-000000000003");
    EXPECT_FALSE(installer.unpack({}));
    auto names = leftovers();
    std::ranges::sort(names);
    EXPECT_EQ(names,
              (std::vector<std::string>{"Wegslot-update-00000000-0000-4000-8000-000000000001",
                                        "Wegslot-update-00000000-0000-4000-8000-000000000002",
                                        "Wegslot-update-notes", "other"}));
}

TEST_F(InstallerTest, AnImageThatIsRefusedIsNotUnpacked) {
    makeApplication(source / "Wegslot.app", "1.4", 27);
    fs::create_symlink("/etc", source / "Wegslot.app" / "out");
    const auto refused = installer.unpack(imageOf(source));
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.failure().message, "De update bevat een onverwachte app");
    EXPECT_EQ(log.messages, std::vector<std::string>{
                                "Updatebestand geweigerd: koppeling naar buiten: Wegslot.app/out"});
    EXPECT_EQ(leftovers().size(), 0U);
}

TEST_F(InstallerTest, AFolderThatCannotBeWrittenSaysWhichStepFailed) {
    const auto whole = image();
    writeText(home.path() / "file", "");
    LinuxInstaller onFile(app, testIdentifier, home.path() / "file");
    const auto failed = onFile.unpack(whole);
    ASSERT_FALSE(failed);
    EXPECT_NE(failed.failure().message.builtIn().find("Not a directory"), std::string::npos)
        << failed.failure().message;
}

TEST_F(InstallerTest, ATemporaryFolderThatIsGoneIsMadeAgain) {
    fs::remove_all(temporary);
    EXPECT_TRUE(installer.unpack(image()));
}

TEST_F(InstallerTest, TheUnpackedAppMustBeTheOneThatWasOffered) {
    makeApplication(source / "Wegslot.app", "1.4", 27);
    EXPECT_EQ(examined(), "");
    EXPECT_EQ(examined({.version = "1.4", .build = 26}), unexpectedApp());
    EXPECT_EQ(examined({.version = "1.4", .build = 28}), unexpectedApp());
    EXPECT_EQ(examined({.version = "1.5", .build = 27}), ""); // a name is no more than that
    makeApplication(source / "Wegslot.app", "1.4", 27, "", "nl.wegslot.Other");
    EXPECT_EQ(examined(), unexpectedApp());
    EXPECT_EQ(log.messages.back(), "Updatebestand geweigerd: het is nl.wegslot.Other 27");
}

TEST_F(InstallerTest, WithoutInfoOrProgramItIsNotAnApp) {
    EXPECT_EQ(examined(), unexpectedApp());
    makeApplication(source / "Wegslot.app", "1.4", 27);
    fs::remove(source / "Wegslot.app" / "wegslot");
    EXPECT_EQ(examined(), unexpectedApp());
    makeApplication(source / "Wegslot.app", "1.4", 27);
    fs::permissions(source / "Wegslot.app" / "wegslot", fs::perms::owner_read);
    EXPECT_EQ(examined(), unexpectedApp());
    makeApplication(source / "Wegslot.app", "1.4", 27);
    writeText(source / "Wegslot.app" / "Info.json",
              contentsOf(source / "Wegslot.app")["Info.json"] + std::string(70'000, ' '));
    EXPECT_EQ(examined(), unexpectedApp());
}

TEST_F(InstallerTest, TheProgramMustAnswerWithItsVersion) {
    makeApplication(source / "Wegslot.app", "1.4", 27);
    const fs::path program = source / "Wegslot.app" / "wegslot";
    const auto answering = [&](const std::string& body) {
        writeText(program, "#!/bin/sh\n" + body + "\n");
        return examined();
    };
    EXPECT_EQ(answering("echo 'wegslot 1.4 (27)'"), "");
    EXPECT_EQ(answering("echo 'wegslot 1.4 (26)'"), unexpectedApp());
    EXPECT_EQ(log.messages.back(),
              "Updatebestand geweigerd: het programma noemt zich wegslot 1.4 (26)\uFFFD");
    EXPECT_EQ(answering("echo 'wegslot 1.4 (27)'; echo more"), unexpectedApp());
    EXPECT_EQ(answering("echo 'wegslot 1.4 (27)'; exit 1"), unexpectedApp());
    EXPECT_EQ(log.messages.back(), "Updatebestand geweigerd: wegslot mislukt (1)");
    EXPECT_EQ(answering("[ \"$*\" = --version ] && echo 'wegslot 1.4 (27)'"), "");
}

TEST_F(InstallerTest, OnlyWhatMayBeWrittenMayBeReplaced) {
    EXPECT_FALSE(installer.mayReplace()); // nothing is there
    makeApplication(app, "1.3", 26);
    EXPECT_TRUE(installer.mayReplace());
    if (geteuid() == 0)
        return; // who may write everywhere; the whole update is tried as another user
    fs::permissions(app, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(installer.mayReplace());
    fs::permissions(app, fs::perms::owner_all);
    fs::permissions(app.parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_FALSE(installer.mayReplace());
    fs::permissions(app.parent_path(), fs::perms::owner_all);
}

TEST_F(InstallerTest, WhatOthersMayWriteIsNotReplaced) {
    makeApplication(app, "1.3", 26);
    const fs::path parent = app.parent_path();
    ASSERT_TRUE(installer.mayReplace());
    for (const fs::path& path : {parent, app, app / "Info.json"}) {
        const auto before = fs::status(path).permissions();
        fs::permissions(path, fs::perms::others_write, fs::perm_options::add);
        EXPECT_FALSE(installer.mayReplace()) << path;
        fs::permissions(path, fs::perms::sticky_bit, fs::perm_options::add);
        EXPECT_FALSE(installer.mayReplace()) << path;
        fs::permissions(path, before);
        EXPECT_TRUE(installer.mayReplace());
        if (geteuid() != 0) continue; // who cannot give it away
        ASSERT_EQ(chown(path.c_str(), 65534, 65534), 0);
        EXPECT_FALSE(installer.mayReplace()) << path;
        ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
    }
}

TEST(OwnBundle, AnInfoThatSomebodyElseLaidThereDoesNotCount) {
    const TemporaryFolder home;
    const fs::path folder = home.path() / "gedeeld";
    makeApplication(folder, "1.3", 26);
    ASSERT_TRUE(bundleOf(folder / "wegslot"));
    fs::permissions(folder, fs::perms::all | fs::perms::sticky_bit);
    EXPECT_FALSE(bundleOf(folder / "wegslot"));
    fs::permissions(folder, fs::perms::owner_all);
    ASSERT_TRUE(bundleOf(folder / "wegslot"));
    fs::permissions(folder / "Info.json", fs::perms::others_write, fs::perm_options::add);
    EXPECT_FALSE(bundleOf(folder / "wegslot"));
}

TEST(OwnBundle, AProgramBesideAnInfoBelongsToABundle) {
    const TemporaryFolder home;
    makeApplication(home.path() / "Apps" / "Wegslot.app", "1.3", 26);
    fs::create_symlink(home.path() / "Apps" / "Wegslot.app" / "wegslot", home.path() / "wegslot");
    const auto bundle = bundleOf(home.path() / "wegslot");
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->folder, fs::canonical(home.path()) / "Apps" / "Wegslot.app");
    EXPECT_EQ(bundle->info.build, 26);
}

TEST(OwnBundle, AProgramOnItsOwnDoesNot) {
    EXPECT_FALSE(bundleOf()); // this one
    EXPECT_FALSE(bundleOf("/bin/sh"));
    EXPECT_FALSE(bundleOf("/nergens"));
}
