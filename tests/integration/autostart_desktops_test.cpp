// Entries that Wegslot writes and reads, as desktops take them: GLib's way to start what they name
// (GNOME, Xfce, MATE), the generator by which systemd starts them at login (GNOME, KDE), and the
// checker of the Desktop Entry Specification.

#include "platform/linux/linux_processes.h"
#include "tests/support/bus_loop.h"
#include "tests/support/environment.h"
#include "tests/support/program.h"
#include "ui/linux/autostart_item.h"

#include <gtest/gtest.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

constexpr auto generator = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";

struct AutostartDesktopsTest : testing::Test {
    TemporaryFolder folder;
    BusLoop loop;
    LinuxProcesses processes{loop};
    const fs::path file = folder.path() / "config" / "autostart" / AutostartItem::fileName;
    const fs::path shared = folder.path() / "xdg" / "autostart" / AutostartItem::fileName;

    /// A program that says that it was started, and with how many arguments.
    [[nodiscard]] fs::path programIn(const std::string& place) const {
        fs::create_directories(folder.path() / place);
        folder.write(place + "/wegslot", "#!/bin/sh\nprintf '%s %s' $# \"$0\" > '" +
                                             (folder.path() / "said.new").string() + "'\nmv '" +
                                             (folder.path() / "said.new").string() + "' '" +
                                             (folder.path() / "said").string() + "'\n");
        fs::permissions(folder.path() / place / "wegslot", fs::perms::owner_all);
        return folder.path() / place / "wegslot";
    }
    [[nodiscard]] AutostartItem itemOf(const fs::path& program) const {
        return {{file.parent_path(), shared.parent_path()}, program, "", processes};
    }
    static void put(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }
    /// Whether systemd would start it.
    [[nodiscard]] bool hasUnit() const {
        const fs::path units = folder.path() / "units";
        fs::remove_all(units);
        fs::create_directory(units);
        Program run({.words = {generator, units, units, units},
                     .environment = {{"XDG_CONFIG_HOME", folder.path() / "config"},
                                     {"XDG_CONFIG_DIRS", folder.path() / "xdg"}}});
        EXPECT_TRUE(run.ended());
        return fs::exists(units / R"(app-nl.wegslot.Wegslot@autostart.service)");
    }
};

} // namespace

TEST_F(AutostartDesktopsTest, AProgramIsStartedWhateverItsFolderIsCalled) {
    for (const char* const tool : {"gio", "desktop-file-validate"})
        if (!isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
    for (const std::string place :
         {"plain", "with blanks", "a\"b", "a`b", "a$HOME b", "tab\tb", "line\nb", "Zoë", "a;b&c|d",
          "~a#b", "-dash", "it(s)<a>*?", "a=b", "a'b", "a!b"}) {
        const fs::path program = programIn(place);
        AutostartItem item = itemOf(program);
        ASSERT_EQ(item.setEnabled(true), std::nullopt);
        EXPECT_TRUE(item.isEnabled()) << place;
        Program check({.words = {"desktop-file-validate", file}});
        EXPECT_EQ(check.ended(), 0) << check.output();
        Program launch({.words = {"gio", "launch", file}});
        ASSERT_TRUE(becomesTrue([this] { return fs::exists(folder.path() / "said"); }))
            << place << launch.output();
        EXPECT_TRUE(!fs::exists(generator) || hasUnit()) << place;
        EXPECT_EQ(folder.read("said"), "0 " + program.string());
        fs::remove(folder.path() / "said");
    }
}

TEST_F(AutostartDesktopsTest, SystemdStartsWhatIsSwitchedOnAndNothingElse) {
    if (!fs::exists(generator)) GTEST_SKIP() << generator << " is not installed";
    for (const bool hasShared : {false, true}) {
        AutostartItem item = itemOf(programIn("my \"own\" $app"));
        if (hasShared) put(shared, "[Desktop Entry]\nType=Application\nName=W\nExec=/bin/sh\n");
        EXPECT_EQ(hasUnit(), hasShared);
        ASSERT_EQ(item.setEnabled(true), std::nullopt);
        EXPECT_TRUE(hasUnit());
        ASSERT_EQ(item.setEnabled(false), std::nullopt);
        EXPECT_FALSE(hasUnit());
        EXPECT_EQ(fs::exists(file), hasShared);
        fs::remove(file);
    }
}

TEST_F(AutostartDesktopsTest, AProgramWhosePathDesktopsMisreadIsNotWrittenDown) {
    for (const std::string place : {"100%", "%f", "a\\b"}) {
        EXPECT_TRUE(itemOf(programIn(place)).setEnabled(true)) << place;
        EXPECT_FALSE(fs::exists(file));
    }
}

TEST_F(AutostartDesktopsTest, WhatIsReadAgreesWithSystemd) {
    if (!fs::exists(generator)) GTEST_SKIP() << generator << " is not installed";
    put(shared, "[Desktop Entry]\nType=Application\nName=W\nExec=/bin/sh\n");
    const std::string type = "[Desktop Entry]\nType=Application\nName=W\n";
    for (const std::string& text :
         {type + "Exec=/bin/sh\n", type + "Exec=sh\n", type + "Exec=\"/bin/sh\" -c \"a b\"\n",
          type + "Exec=/nowhere/sh\n", type + "Exec=/bin/s%%h\n", type,
          type + "Exec=/bin/sh\nHidden=true\n", type + "Exec=/bin/sh\nHidden=false\n",
          type + "Exec=/bin/sh\nX-GNOME-Autostart-enabled=true\n",
          type + "Exec=/bin/sh\nTryExec=/nowhere/sh\n", type + "Exec=/bin/sh\nTryExec=sh\n",
          std::string("[Desktop Entry]\nType=Link\nExec=/bin/sh\n"),
          std::string("[Desktop Entry]\nExec=/bin/sh\n"), "# a\n\n" + type + "Exec = /bin/sh \n"}) {
        put(file, text);
        EXPECT_EQ(itemOf("/bin/sh").isEnabled(), hasUnit()) << text;
    }
}
