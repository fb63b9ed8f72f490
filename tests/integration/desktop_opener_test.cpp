// Opening a file with the desktop's application: a script stands for xdg-open.

#include "ui/linux/desktop_opener.h"

#include "platform/linux/linux_processes.h"
#include "tests/support/bus_loop.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <iterator>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

struct DesktopOpenerTest : testing::Test {
    TemporaryFolder folder;
    BusLoop loop;
    LinuxProcesses processes{loop};
    DesktopOpener opener{processes};
    Environment path{{{"PATH", folder.path().string() + ":" + std::getenv("PATH")}}};

    DesktopOpenerTest() {
        // Its number, its words, and then `then`, as that was before it said them: a test that
        // has heard it may write another.
        folder.write("xdg-open", "#!/bin/sh\nthen=$(cat '" + (folder.path() / "then").string() +
                                     "')\necho \"$$ $# $1\" >> '" +
                                     (folder.path() / "said").string() + "'\neval \"$then\"\n");
        folder.write("then", "");
        fs::permissions(folder.path() / "xdg-open", fs::perms::owner_all);
    }
    [[nodiscard]] std::vector<std::string> said(std::size_t count) {
        EXPECT_TRUE(loop.runUntil([&] { return folder.lines("said").size() >= count; }));
        return folder.lines("said");
    }
    static auto openFiles() {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    }
    static std::string wordsOf(const std::string& line) { return line.substr(line.find(' ') + 1); }
    static bool isThere(const std::string& line) { // as a zombie is, too
        return kill(std::stoi(line), 0) == 0;
    }
};

} // namespace

TEST_F(DesktopOpenerTest, TheFileIsOpenedByItsPath) {
    EXPECT_EQ(opener.open("/var/log/my app $HOME.log"), std::nullopt);
    EXPECT_EQ(wordsOf(said(1).at(0)), "1 /var/log/my app $HOME.log");
}

TEST_F(DesktopOpenerTest, APathIsAlwaysFromTheRootSoThatItIsNoOption) {
    EXPECT_EQ(opener.open("--version"), std::nullopt);
    EXPECT_EQ(wordsOf(said(1).at(0)), "1 " + (fs::current_path() / "--version").string());
}

TEST_F(DesktopOpenerTest, NoneStaysBehindWhenTheyHaveEnded) {
    folder.write("then", "exit 3\n");
    const auto before = openFiles();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(opener.open("/a"), std::nullopt);
    for (const std::string& line : said(3))
        EXPECT_TRUE(loop.runUntil([&line] { return !isThere(line); })) << line;
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(opener.open("/b"), std::nullopt);
    EXPECT_EQ(wordsOf(said(4).at(3)), "1 /b");
}

TEST_F(DesktopOpenerTest, ItIsNotWaitedFor) {
    folder.write("then", "exec sleep 1000\n");
    EXPECT_EQ(opener.open("/a"), std::nullopt);
    const std::string slow = said(1).at(0);
    folder.write("then", "");
    EXPECT_EQ(opener.open("/b"), std::nullopt);
    const std::string quick = said(2).at(1);
    EXPECT_TRUE(loop.runUntil([&quick] { return !isThere(quick); }));
    EXPECT_TRUE(isThere(slow));
    kill(std::stoi(slow), SIGKILL);
    EXPECT_TRUE(loop.runUntil([&slow] { return !isThere(slow); }));
}

TEST_F(DesktopOpenerTest, WithoutXdgOpenTheFailureSaysSo) {
    const Environment empty{{{"PATH", "/nowhere"}}};
    EXPECT_EQ(opener.open("/a/b"), Failure{"/a/b: xdg-open: No such file or directory"});
}

TEST_F(DesktopOpenerTest, OneThatMayNotBeStartedIsAFailure) {
    fs::permissions(folder.path() / "xdg-open", fs::perms::owner_read);
    const Environment only{{{"PATH", folder.path().string()}}};
    EXPECT_EQ(opener.open("/a/b"), Failure{"/a/b: xdg-open: Permission denied"});
}

TEST_F(DesktopOpenerTest, TheFailureIsOneLine) {
    const Environment empty{{{"PATH", "/nowhere"}}};
    const auto failure = opener.open("/a\nb");
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->message.builtIn().find('\n'), std::string::npos);
}
