#include "platform/linux/media/desktop_entry.h"

#include "tests/support/glossary.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

DesktopEntry entryOf(const std::string& fields) {
    return readDesktopEntry("[Desktop Entry]\n" + fields).value_or(DesktopEntry{});
}

} // namespace

TEST(DesktopEntry, WithoutItsGroupItIsNone) {
    EXPECT_EQ(readDesktopEntry(""), std::nullopt);
    EXPECT_EQ(readDesktopEntry("Name=a"), std::nullopt);
    EXPECT_EQ(readDesktopEntry("[Desktop entry]\nName=a\n"), std::nullopt);
    EXPECT_EQ(readDesktopEntry("[Desktop Entry]"), DesktopEntry{});
}

TEST(DesktopEntry, ReadsWhatIsAskedFor) {
    const DesktopEntry wanted{.name = "Praat",
                              .program = "praat",
                              .windowClass = "Praat-Venster",
                              .hidden = true,
                              .type = "Application",
                              .executable = "/opt/praat/praat"};
    EXPECT_EQ(entryOf("Type=Application\nName=Praat\nExec=/opt/praat/praat --new %U\n"
                      "StartupWMClass=Praat-Venster\nHidden=true\n"),
              wanted);
}

TEST(DesktopEntry, OtherGroupsAreNotLookedAt) {
    const auto entry = readDesktopEntry("# one\n\n[Before]\nName=before\n[Desktop Entry]\nName=in\n"
                                        "[Desktop Action new]\nName=after\nHidden=true\n");
    EXPECT_EQ(entry, DesktopEntry{.name = "in"});
}

TEST(DesktopEntry, TheDutchNameIsPreferredWhereverItStands) {
    EXPECT_EQ(entryOf("Name[nl]=Rekenmachine\nName=Calculator\n").name, "Rekenmachine");
    EXPECT_EQ(entryOf("Name=Calculator\nName[nl]=Rekenmachine\n").name, "Rekenmachine");
    EXPECT_EQ(entryOf("Name=Calculator\nName[de]=Rechner\nName[nl_BE]=Telraam\n").name,
              "Calculator");
    EXPECT_EQ(entryOf("Name[nl]=\nName=Calculator\n").name, "Calculator");
    EXPECT_EQ(entryOf("Name[de]=Rechner\n").name, "");
}

TEST(DesktopEntry, WhoReadsAnotherLanguageGetsTheNameInThat) {
    const Glossary german{{"nl", "de"}};
    EXPECT_EQ(entryOf("Name=Calculator\nName[nl]=Rekenmachine\nName[de]=Rechner\n").name,
              "Rechner");
    EXPECT_EQ(entryOf("Name=Calculator\nName[nl]=Rekenmachine\n").name, "Calculator");
}

TEST(DesktopEntry, EitherWayOfEndingALineIsRead) {
    const auto entry =
        readDesktopEntry("[Desktop Entry]\r\nName=a b\r\nStartupWMClass=c\r\nHidden=true\r\n");
    EXPECT_EQ(entry, (DesktopEntry{.name = "a b", .windowClass = "c", .hidden = true}));
}

TEST(DesktopEntry, TheLastLineNeedsNoEnd) { EXPECT_EQ(entryOf("Name=last").name, "last"); }

TEST(DesktopEntry, ABegunByteOrderMarkIsPassedOver) {
    EXPECT_EQ(readDesktopEntry("\xEF\xBB\xBF[Desktop Entry]\nName=a\n"), DesktopEntry{.name = "a"});
}

TEST(DesktopEntry, BlanksAroundTheEqualsSignDoNotCount) {
    EXPECT_EQ(entryOf("Name \t= \ta b \n").name, "a b ");
    EXPECT_TRUE(entryOf("Hidden = true \n").hidden);
    EXPECT_EQ(readDesktopEntry("[Desktop Entry] \nName=a\n"), DesktopEntry{.name = "a"});
}

TEST(DesktopEntry, CommentsAndLinesWithoutAnEqualsSignAreNothing) {
    EXPECT_EQ(entryOf("#Name=comment\nName\n\nName=a=b\n#Name=comment\n").name, "a=b");
}

TEST(DesktopEntry, EscapesAreUndone) {
    EXPECT_EQ(entryOf(R"(Name=\sa\nb\tc\rd\\se\x\)").name, " a\nb\tc\rd\\se\\x\\");
}

TEST(DesktopEntry, OnlyTrueIsHidden) {
    EXPECT_FALSE(entryOf("Hidden=false\n").hidden);
    EXPECT_FALSE(entryOf("Hidden=True\n").hidden);
    EXPECT_FALSE(entryOf("NoDisplay=true\n").hidden);
}

TEST(DesktopEntry, TheProgramIsTheBaseNameOfTheFirstWord) {
    EXPECT_EQ(entryOf("Exec=praat\n").program, "praat");
    EXPECT_EQ(entryOf("Exec=  praat\t%U\n").program, "praat");
    EXPECT_EQ(entryOf("Exec=/usr/bin/praat %U /else/where\n").program, "praat");
    EXPECT_EQ(entryOf("Exec=/usr/bin/\n").program, "");
    EXPECT_EQ(entryOf("Exec=\n").program, "");
}

TEST(DesktopEntry, TheExecutableIsTheFirstWordWhole) {
    EXPECT_EQ(entryOf("Exec=/usr/bin/praat %U\n").executable, "/usr/bin/praat");
    EXPECT_EQ(entryOf("Exec=praat --new\n").executable, "praat");
    EXPECT_EQ(entryOf(R"(Exec="/opt/100 \\$ a" %U)").executable, "/opt/100 $ a");
    EXPECT_EQ(entryOf("Exec=a%%b\n").executable, "a%%b"); // desktops do not read it otherwise
    EXPECT_EQ(entryOf(R"(Exec="a\nb")").executable, "a\nb");
    EXPECT_EQ(entryOf(R"(TryExec=/opt/Mijn Praat/praat )").neededExecutable,
              "/opt/Mijn Praat/praat");
}

TEST(DesktopEntry, OnlyFalseKeepsItFromStartingAtLogin) {
    EXPECT_TRUE(entryOf("").startsAtLogin);
    EXPECT_TRUE(entryOf("X-GNOME-Autostart-enabled=true\n").startsAtLogin);
    EXPECT_TRUE(entryOf("X-GNOME-Autostart-enabled=nonsense\n").startsAtLogin);
    EXPECT_FALSE(entryOf("X-GNOME-Autostart-enabled = false \n").startsAtLogin);
}

TEST(DesktopEntry, ListsOfDesktopsEndTheirNamesWithASemicolon) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(entryOf("").onlyShowIn, std::nullopt);
    EXPECT_EQ(entryOf("OnlyShowIn=\n").onlyShowIn, Names{});
    EXPECT_EQ(entryOf("OnlyShowIn=GNOME;\n").onlyShowIn, Names{"GNOME"});
    EXPECT_EQ(entryOf("OnlyShowIn=GNOME;;KDE\n").onlyShowIn, (Names{"GNOME", "KDE"}));
    EXPECT_EQ(entryOf("NotShowIn= GNOME ;KDE; \n").notShowIn, (Names{"GNOME", "KDE"}));
}

TEST(DesktopEntry, AQuotedFirstWordMayHoldBlanksAndEscapes) {
    EXPECT_EQ(entryOf(R"(Exec="/opt/Mijn Praat/praat app" %U)").program, "praat app");
    EXPECT_EQ(entryOf(R"(Exec="/opt/a\\"b\\\\c" %U)").program, R"(a"b\c)");
    EXPECT_EQ(entryOf(R"(Exec="/opt/never ended)").program, "never ended");
}
