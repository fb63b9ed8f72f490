#include "ui/linux/autostart_item.h"

#include "tests/support/fake_processes.h"
#include "tests/support/glossary.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

struct AutostartItemTest : testing::Test {
    TemporaryFolder folder;
    FakeProcesses processes;
    const fs::path program = folder.path() / "bin" / "wegslot";
    const std::string running = program.string();
    const std::string own =
        "[Desktop Entry]\nType=Application\nName=Wegslot\nExec=" + running + "\n";
    std::string desktops = "GNOME";

    AutostartItemTest() {
        processes.installed = {running, "/opt/other/wegslot", "env"};
        fs::create_directories(program.parent_path());
        folder.write("bin/wegslot", "");
    }
    [[nodiscard]] AutostartItem itemOf(const fs::path& started) const {
        return {{folder.path() / "user", folder.path() / "shared", folder.path() / "last"},
                started,
                desktops,
                processes};
    }
    [[nodiscard]] AutostartItem item() const { return itemOf(program); }
    static std::string pathIn(const std::string& where) {
        return where + "/" + AutostartItem::fileName;
    }
    void put(const std::string& where, const std::string& text) const {
        fs::create_directories(folder.path() / where);
        folder.write(pathIn(where), text);
    }
    [[nodiscard]] std::string users() const { return folder.read(pathIn("user")); }
    [[nodiscard]] bool hasUsers() const { return fs::exists(folder.path() / pathIn("user")); }
    [[nodiscard]] std::string usersPath() const {
        return (folder.path() / pathIn("user")).string();
    }

    /// Whether an entry with these fields beside Type and Exec is started.
    [[nodiscard]] bool isStartedWith(const std::string& fields) const {
        put("user", own + fields);
        return item().isEnabled();
    }
    /// What becomes of the user's entry.
    [[nodiscard]] std::string switchedOn(const std::string& text) const {
        put("user", text);
        EXPECT_EQ(item().setEnabled(true), std::nullopt);
        EXPECT_TRUE(item().isEnabled());
        return users();
    }
    [[nodiscard]] std::string switchedOff(const std::string& text) const {
        put("user", text);
        EXPECT_EQ(item().setEnabled(false), std::nullopt);
        EXPECT_FALSE(item().isEnabled());
        return hasUsers() ? users() : "gone";
    }
};

} // namespace

// What counts as switched on.

TEST_F(AutostartItemTest, WithoutAnEntryItIsOff) { EXPECT_FALSE(item().isEnabled()); }

TEST_F(AutostartItemTest, AnEntryInAnyFolderSwitchesItOn) {
    put("last", own);
    EXPECT_TRUE(item().isEnabled());
}

TEST_F(AutostartItemTest, TheFirstEntryFoundDecidesAlone) {
    put("user", own + "Hidden=true\n");
    put("shared", own);
    EXPECT_FALSE(item().isEnabled());
    put("user", own);
    put("shared", own + "Hidden=true\n");
    EXPECT_TRUE(item().isEnabled());
    fs::remove(folder.path() / pathIn("user"));
    put("last", own);
    EXPECT_FALSE(item().isEnabled());
}

TEST_F(AutostartItemTest, ItIsReadAnewEachTime) {
    const AutostartItem same = item();
    EXPECT_FALSE(same.isEnabled());
    put("user", own);
    EXPECT_TRUE(same.isEnabled());
    put("user", own + "Hidden=true\n");
    EXPECT_FALSE(same.isEnabled());
}

TEST_F(AutostartItemTest, AHiddenOrDisabledEntryIsOff) {
    EXPECT_FALSE(isStartedWith("Hidden=true\n"));
    EXPECT_TRUE(isStartedWith("Hidden=false\n"));
    EXPECT_FALSE(isStartedWith("X-GNOME-Autostart-enabled=false\n"));
    EXPECT_TRUE(isStartedWith("X-GNOME-Autostart-enabled=true\n"));
}

TEST_F(AutostartItemTest, AnEntryOfAProgramThatIsNotThereIsOff) {
    EXPECT_TRUE(isStartedWith("Exec=/opt/other/wegslot --x\n"));
    EXPECT_FALSE(isStartedWith("Exec=/opt/gone/wegslot\n"));
    EXPECT_TRUE(isStartedWith("Exec=env A=1 wegslot\n"));
    EXPECT_FALSE(isStartedWith("Exec=\n"));
    EXPECT_TRUE(isStartedWith("TryExec=env\n"));
    EXPECT_FALSE(isStartedWith("TryExec=gone\n"));
}

TEST_F(AutostartItemTest, AnEntryThatDesktopsDoNotTakeForAnApplicationIsOff) {
    put("user", "[Desktop Entry]\nName=Wegslot\nExec=" + running + "\n");
    EXPECT_FALSE(item().isEnabled());
    EXPECT_FALSE(isStartedWith("Type=Link\n"));
    put("user", "[Desktop Entry]\nType=Application\nName=Wegslot\n");
    EXPECT_FALSE(item().isEnabled());
}

TEST_F(AutostartItemTest, ADamagedEntryIsOffAndHidesTheOthers) {
    put("shared", own);
    for (const char* const damaged : {"", "Exec=env\n", "\xFF\xFE", "[Desktop Entr"}) {
        put("user", damaged);
        EXPECT_FALSE(item().isEnabled()) << damaged;
    }
}

TEST_F(AutostartItemTest, WhatCannotBeReadIsOff) {
    put("shared", own);
    fs::create_directories(usersPath());
    EXPECT_FALSE(item().isEnabled());
    fs::remove(usersPath());
    ASSERT_EQ(mkfifo(usersPath().c_str(), 0600), 0);
    EXPECT_FALSE(item().isEnabled()); // and does not wait for who writes into it
}

TEST_F(AutostartItemTest, AnEntryForOtherDesktopsIsOff) {
    EXPECT_TRUE(isStartedWith("OnlyShowIn=KDE;GNOME;\n"));
    EXPECT_FALSE(isStartedWith("OnlyShowIn=KDE;\n"));
    EXPECT_FALSE(isStartedWith("OnlyShowIn=GNOM;GNOME2;\n"));
    EXPECT_FALSE(isStartedWith("OnlyShowIn=\n"));
    EXPECT_TRUE(isStartedWith("NotShowIn=KDE;\n"));
    EXPECT_FALSE(isStartedWith("NotShowIn=KDE;GNOME\n"));
}

TEST_F(AutostartItemTest, OfSeveralNamesOfADesktopTheFirstThatIsMentionedDecides) {
    desktops = "ubuntu:GNOME";
    EXPECT_TRUE(isStartedWith("OnlyShowIn=GNOME;\n"));
    EXPECT_TRUE(isStartedWith("OnlyShowIn=ubuntu;\n"));
    EXPECT_FALSE(isStartedWith("NotShowIn=GNOME;\n"));
    EXPECT_TRUE(isStartedWith("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n"));
    EXPECT_FALSE(isStartedWith("OnlyShowIn=GNOME;\nNotShowIn=ubuntu;\n"));
    EXPECT_FALSE(isStartedWith("OnlyShowIn=ubuntu:GNOME;\n"));
}

TEST_F(AutostartItemTest, ADesktopWithoutANameIsNoneOfThose) {
    desktops = "";
    EXPECT_TRUE(isStartedWith(""));
    EXPECT_FALSE(isStartedWith("OnlyShowIn=GNOME;\n"));
    EXPECT_TRUE(isStartedWith("NotShowIn=GNOME;\n"));
}

// Switching on.

TEST_F(AutostartItemTest, SwitchedOnTheUsersEntryStartsTheRunningProgram) {
    EXPECT_EQ(item().setEnabled(true), std::nullopt);
    EXPECT_EQ(users(), own);
    EXPECT_TRUE(item().isEnabled());
    struct stat facts {};
    ASSERT_EQ(stat(usersPath().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, 0644U);
}

TEST_F(AutostartItemTest, SwitchedOnOverASharedEntryItIsTheUsersThatCounts) {
    put("shared", own + "Hidden=true\n");
    EXPECT_EQ(item().setEnabled(true), std::nullopt);
    EXPECT_TRUE(item().isEnabled());
    EXPECT_EQ(folder.read(pathIn("shared")), own + "Hidden=true\n");
}

TEST_F(AutostartItemTest, ThePathIsQuotedWhereItMustBe) {
    const auto exec = [this](const std::string& path) {
        processes.installed.insert(path);
        EXPECT_EQ(itemOf(path).setEnabled(true), std::nullopt);
        EXPECT_TRUE(itemOf(path).isEnabled()) << path; // read back as the same path
        return folder.lines(pathIn("user")).at(3).substr(5);
    };
    EXPECT_EQ(exec("/opt/W-1.0_a+b,c@d:e/wegslot"), "/opt/W-1.0_a+b,c@d:e/wegslot");
    EXPECT_EQ(exec("/opt/my app/wegslot"), R"("/opt/my app/wegslot")");
    EXPECT_EQ(exec("/opt/Zoë/wegslot"), R"("/opt/Zoë/wegslot")");
    EXPECT_EQ(exec("/opt/a\"b/w"), R"("/opt/a\\"b/w")");
    EXPECT_EQ(exec("/opt/a`b/w"), R"("/opt/a\\`b/w")");
    EXPECT_EQ(exec("/opt/a$b/w"), R"("/opt/a\\$b/w")");
    EXPECT_EQ(exec("/opt/a\nb\tc\rd/w"), R"("/opt/a\nb\tc\rd/w")");
    EXPECT_EQ(exec("/opt/a'b;c=d~e&f/w"), R"("/opt/a'b;c=d~e&f/w")");
}

TEST_F(AutostartItemTest, WhatSomebodyElseWroteStaysWhenItIsSwitchedOn) {
    EXPECT_EQ(
        switchedOn(
            "# mine\n[Desktop Entry]\nType=Application\nName=Slot\nHidden=true\nExec=" + running +
            " --update-now\nX-GNOME-Autostart-Delay=9\nOnlyShowIn=GNOME;\n"
            "\n[Desktop Action x]\nHidden=true\n"),
        "# mine\n[Desktop Entry]\nType=Application\nName=Slot\nExec=" + running +
            " --update-now\nX-GNOME-Autostart-Delay=9\nOnlyShowIn=GNOME;\n"
            "\n[Desktop Action x]\nHidden=true\n");
}

TEST_F(AutostartItemTest, WhatKeepsItFromStartingIsChangedAndNothingElse) {
    EXPECT_EQ(switchedOn(own + "Hidden=true\n"), own);
    EXPECT_EQ(switchedOn(own + "X-GNOME-Autostart-enabled=false\nIcon=a\n"),
              own + "X-GNOME-Autostart-enabled=true\nIcon=a\n");
    EXPECT_EQ(switchedOn(own + "Hidden=false\nOnlyShowIn=KDE;\n"), own + "Hidden=false\n");
    EXPECT_EQ(switchedOn(own + "NotShowIn=GNOME;\n"), own);
    EXPECT_EQ(switchedOn(own + "TryExec=gone\n"), own);
    EXPECT_EQ(switchedOn(own + "TryExec=env\nNotShowIn=KDE;\n"),
              own + "TryExec=env\nNotShowIn=KDE;\n");
    EXPECT_EQ(switchedOn("[Desktop Entry]\nHidden=true\n"), own);
    EXPECT_EQ(switchedOn("[Desktop Entry]\nExec=x\n"),
              "[Desktop Entry]\nExec=" + running + "\nType=Application\nName=Wegslot\n");
}

TEST_F(AutostartItemTest, AnotherProgramIsReplacedByTheRunningOne) {
    for (const char* const other : {"/opt/gone/wegslot", "/opt/other/wegslot --x", "wegslot", ""})
        EXPECT_EQ(switchedOn("[Desktop Entry]\nType=Application\nName=Wegslot\nExec=" +
                             std::string(other) + "\n"),
                  own);
}

TEST_F(AutostartItemTest, TheSameProgramByAnotherPathStays) {
    fs::create_symlink(program, folder.path() / "link");
    const std::string link = (folder.path() / "link").string();
    processes.installed.insert(link);
    const std::string text = "[Desktop Entry]\nType=Application\nName=Wegslot\nExec=" + link + "\n";
    EXPECT_EQ(switchedOn(text), text);
}

TEST_F(AutostartItemTest, APathFromWhereThisProcessStandsIsNoneForTheDesktop) {
    const std::string relative = fs::relative(program).string();
    processes.installed.insert(relative);
    EXPECT_EQ(
        switchedOn("[Desktop Entry]\nType=Application\nName=Wegslot\nExec=" + relative + "\n"),
        own);
}

TEST_F(AutostartItemTest, ADamagedEntryIsReplacedWhenItIsSwitchedOn) {
    EXPECT_EQ(switchedOn("[Desktop Entr"), own);
    EXPECT_EQ(switchedOn(""), own);
}

TEST_F(AutostartItemTest, AnEntryThatIsRightIsNotWrittenAgain) {
    put("user", own);
    const auto before = fs::last_write_time(usersPath()) - std::chrono::hours{1};
    fs::last_write_time(usersPath(), before);
    EXPECT_EQ(item().setEnabled(true), std::nullopt);
    EXPECT_EQ(fs::last_write_time(usersPath()), before);
}

// Switching off.

TEST_F(AutostartItemTest, SwitchedOffTheOwnEntryIsTakenAway) {
    EXPECT_EQ(switchedOff(own), "gone");
    EXPECT_EQ(switchedOff("[Desktop Entry]\nType=Application\nName=Wegslot\nExec=/opt/before\n"),
              "gone");
}

TEST_F(AutostartItemTest, SwitchedOffWithoutAnEntryNothingIsMade) {
    EXPECT_EQ(item().setEnabled(false), std::nullopt);
    EXPECT_FALSE(fs::exists(folder.path() / "user"));
}

TEST_F(AutostartItemTest, ASharedEntryIsHiddenByTheUsers) {
    put("last", own);
    EXPECT_EQ(item().setEnabled(false), std::nullopt);
    EXPECT_EQ(users(), own + "Hidden=true\n");
    EXPECT_FALSE(item().isEnabled());
    EXPECT_EQ(switchedOff(own), own + "Hidden=true\n");
    EXPECT_EQ(switchedOff("damaged"), own + "Hidden=true\n");
    EXPECT_EQ(folder.read(pathIn("last")), own);
}

TEST_F(AutostartItemTest, TheUsersOwnFolderAmongTheSharedOnesIsNoSharedOne) {
    put("user", own);
    AutostartItem same{{folder.path() / "user", folder.path() / "user"}, program, "", processes};
    EXPECT_EQ(same.setEnabled(false), std::nullopt);
    EXPECT_FALSE(hasUsers());
}

TEST_F(AutostartItemTest, WhatSomebodyElseWroteIsHiddenAndStays) {
    EXPECT_EQ(switchedOff(own + "X-GNOME-Autostart-Delay=9\n"),
              own + "X-GNOME-Autostart-Delay=9\nHidden=true\n");
    EXPECT_EQ(switchedOff(own + "Hidden=false\nIcon=a\n"), own + "Hidden=true\nIcon=a\n");
    EXPECT_EQ(switchedOff("# mine\n" + own), "# mine\n" + own + "Hidden=true\n");
    EXPECT_EQ(switchedOff(own + "OnlyShowIn=KDE;\n"), own + "OnlyShowIn=KDE;\nHidden=true\n");
    EXPECT_EQ(switchedOff("damaged"), "damaged");
}

TEST_F(AutostartItemTest, SwitchedOffAndOnAgainItIsAsItWas) {
    put("shared", own);
    for (const std::string& text : {own, own + "X-GNOME-Autostart-Delay=9\n"}) {
        static_cast<void>(switchedOff(text));
        EXPECT_EQ(item().setEnabled(true), std::nullopt);
        EXPECT_EQ(users(), text);
    }
}

// Failures.

TEST_F(AutostartItemTest, AFailureIsInTheUsersLanguage) {
    const Glossary german{{"een deel van het pad is geen map", "kein Ordner"},
                          {"niet te starten door het bureaublad", "nicht zu starten"}};
    folder.write("user", "in the way of the folder");
    const auto inTheWay = item().setEnabled(true);
    ASSERT_TRUE(inTheWay);
    EXPECT_EQ(inTheWay->message.translated(), usersPath() + ": kein Ordner");
    const auto odd =
        AutostartItem{{folder.path()}, "/opt/100%/wegslot", "", processes}.setEnabled(true);
    ASSERT_TRUE(odd);
    EXPECT_EQ(odd->message.translated(), "/opt/100%/wegslot: nicht zu starten");
}

TEST_F(AutostartItemTest, AFailureSaysWhereAndWhyInOneLine) {
    folder.write("user", "in the way of the folder");
    EXPECT_EQ(item().setEnabled(true), Failure{usersPath() + ": Not a directory"});
    put("shared", own);
    EXPECT_EQ(item().setEnabled(false), Failure{usersPath() + ": Not a directory"});
    folder.write("a\nb", "");
    const auto failure =
        AutostartItem{{folder.path() / "a\nb"}, program, "", processes}.setEnabled(true);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->message.builtIn().find('\n'), std::string::npos);
}

TEST_F(AutostartItemTest, AnEntryThatCannotBeReadIsNotReplacedAndNotTakenAway) {
    fs::create_directories(usersPath());
    const Failure unreadable{usersPath() + ": niet te lezen"};
    EXPECT_EQ(item().setEnabled(true), unreadable);
    EXPECT_EQ(item().setEnabled(false), unreadable);
    EXPECT_TRUE(fs::is_directory(usersPath()));
}

TEST_F(AutostartItemTest, AProgramThatDesktopsCouldNotStartIsNotWrittenDown) {
    EXPECT_EQ(itemOf("/opt/gone/wegslot").setEnabled(true),
              Failure{"/opt/gone/wegslot: niet te starten door het bureaublad"});
    for (const char* const path : {"/opt/\xFF/wegslot", "/opt/100%/wegslot", "/opt/a\\b/wegslot"}) {
        processes.installed.insert(path);
        EXPECT_TRUE(itemOf(path).setEnabled(true)) << path;
        EXPECT_FALSE(hasUsers());
    }
    put("user", own); // it may be switched off all the same
    EXPECT_EQ(itemOf("/opt/gone/wegslot").setEnabled(false), std::nullopt);
    EXPECT_FALSE(hasUsers());
}

TEST_F(AutostartItemTest, AWriteThatBreaksOffLosesNothingOfTheEntry) {
    const std::string before = own + "X-Mine=1\n";
    put("user", before);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{before.size(), limit.rlim_max};
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const auto failure = item().setEnabled(false);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(failure, Failure{usersPath() + ": File too large"});
    EXPECT_EQ(users(), before);
    EXPECT_TRUE(item().isEnabled());
}
