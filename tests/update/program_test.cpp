// The program itself, as a user's own copy of it in a folder, brought to its next build with
// --update-now: quits, is swapped, and runs again. And what may come in between.

#include "tests/integration/answering_service.h"
#include "tests/support/private_bus.h"
#include "tests/update/published_update.h"

#include <csignal>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

using Lines = std::vector<std::string>;

/// The processes that run this program now. Whoever was forked from it and has not become another
/// program yet counts as well.
std::vector<pid_t> processesOf(const fs::path& program) {
    std::vector<pid_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        std::error_code gone;
        if (name.find_first_not_of("0123456789") == std::string::npos &&
            fs::read_symlink(entry.path() / "exe", gone) == program)
            found.push_back(std::stoi(name));
    }
    return found;
}

class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        lay(published.app, WEGSLOT_PROGRAM, first);
        lay(made, NEXT_PROGRAM, second);
        old = contentsOf(published.app);
        fresh = contentsOf(made);
    }

    ~ProgramTest() override { endAll(); }

    /// Ends whatever runs out of the application's folder.
    void endAll() const {
        for (const auto& folder : {published.app, fs::path(published.app.string() + ".oud")})
            for (const pid_t process : processesOf(folder / programFile))
                kill(process, SIGKILL);
    }

    /// An application around a real program. Without its symbols, so that packing takes less time.
    void lay(const fs::path& folder, const std::string& program, int build) const {
        makeApplication(folder, version(), build, published.feedKeys());
        const std::string command =
            "strip -o '" + (folder / programFile).string() + "' '" + program + "'";
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    static std::string version() { return WEGSLOT_VERSION; }

    void offer(const std::string& url = "image.tar.gz") const {
        const Bytes image = published.imageOf(made);
        auto release = published.releaseOf(image);
        release.version = version();
        release.build = second;
        release.url = url;
        published.publish(release, image);
    }

    /// Starts the installed program.
    [[nodiscard]] std::unique_ptr<Program> start(const Lines& words = {"--update-now"}) {
        Lines all{(published.app / programFile).string()};
        all.insert(all.end(), words.begin(), words.end());
        return std::make_unique<Program>(Program::Start{.words = all, .environment = environment});
    }

    [[nodiscard]] std::string log() const {
        return published.home.read("Library/Logs/Wegslot.log");
    }
    [[nodiscard]] bool logs(const std::string& line) const {
        return log().find(" " + line + "\n") != std::string::npos;
    }
    [[nodiscard]] bool isRunning() const {
        return !processesOf(published.app / programFile).empty();
    }
    [[nodiscard]] bool isOld() const { return contentsOf(published.app) == old; }
    [[nodiscard]] bool isNew() const { return contentsOf(published.app) == fresh; }

    /// Build 2 is in place, runs, and nothing else is left. What is being swapped is not looked at:
    /// between two renames there is nothing to be read. The last that the swap does is to remove
    /// the folder that it came in.
    void expectUpdated() const {
        EXPECT_TRUE(becomesTrue([this] { return published.leftovers().empty(); })) << log();
        EXPECT_TRUE(isNew()) << log();
        EXPECT_TRUE(becomesTrue([this] { return isRunning(); })) << log();
        EXPECT_EQ(besides(), Lines{"Wegslot.app"});
    }

    /// What lies where applications are.
    [[nodiscard]] Lines besides() const {
        Lines names;
        for (const auto& entry : fs::directory_iterator(published.app.parent_path()))
            names.push_back(entry.path().filename());
        return names;
    }

    static constexpr int first = 1;
    static constexpr int second = 2;

    PublishedUpdate published;
    fs::path made = published.home.path() / "made" / "Wegslot.app";
    PrivateBus bus;
    std::map<std::string, std::string> environment{
        {"HOME", published.home.path().string()},
        {"XDG_CONFIG_HOME", (published.home.path() / "config").string()},
        {"XDG_RUNTIME_DIR", published.home.path().string()},
        {"TMPDIR", published.temporary.string()},
        {"DBUS_SYSTEM_BUS_ADDRESS", bus.address()},
        {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
        {"XDG_SESSION_ID", ""},
        {"WAYLAND_DISPLAY", ""},
        {"DISPLAY", ""}};
    std::map<std::string, std::string> old;
    std::map<std::string, std::string> fresh;
};

/// Where mounts of its own can be made, which nobody else sees.
class ProgramOnMountTest : public ProgramTest {
protected:
    void SetUp() override {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            GTEST_SKIP() << "mounting needs root";
    }

    ~ProgramOnMountTest() override {
        endAll(); // by their place, which goes with the mount
        umount2(apps.c_str(), MNT_DETACH);
    }

    fs::path apps = published.app.parent_path();
};

} // namespace

TEST_F(ProgramTest, IsReplacedByItsNextBuildWhichThenRuns) {
    offer();
    const auto program = start();
    EXPECT_EQ(program->ended(), 0) << program->output();
    expectUpdated();
    EXPECT_TRUE(logs("Update beschikbaar: " + version() + " (2)"));
    EXPECT_TRUE(logs("Update " + version() + " wordt gedownload"));
    EXPECT_TRUE(logs("Update naar " + version() + " (2) wordt geïnstalleerd"));
    // The one that runs now is at its newest, and says so when it is asked as well.
    for (const pid_t process : processesOf(published.app / programFile))
        kill(process, SIGTERM);
    EXPECT_TRUE(becomesTrue([this] { return !isRunning(); }));
    const auto again = start();
    EXPECT_TRUE(becomesTrue([this] { return published.server.requests("feed.json") == 2; }));
    again->signal(SIGTERM);
    EXPECT_EQ(again->ended(), 0);
    EXPECT_EQ(published.server.requests("image.tar.gz"), 1);
    EXPECT_TRUE(isNew());
}

TEST_F(ProgramTest, WithNothingNewerItGoesOnAsItIs) {
    published.publishFeed(R"({"version":"0","build":1,"url":"x","sha256":"","signature":""})");
    const auto program = start();
    EXPECT_TRUE(becomesTrue([this] { return published.server.requests("feed.json") == 1; }));
    EXPECT_TRUE(program->isRunning());
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    EXPECT_TRUE(isOld());
    EXPECT_EQ(log().find("Update"), std::string::npos) << log();
}

TEST_F(ProgramTest, OnItsOwnItHasNoUpdates) {
    fs::remove(published.app / infoFile);
    const auto program = start();
    EXPECT_TRUE(becomesTrue([this] { return !log().empty(); }));
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    EXPECT_EQ(published.server.requests(""), 0);
}

TEST_F(ProgramTest, KilledWhileItDownloadsItStaysWhatItWas) {
    offer("stall/image.tar.gz");
    const auto program = start();
    EXPECT_TRUE(becomesTrue([this] { return published.server.requests("stall/") == 1; }));
    program->signal(SIGKILL);
    EXPECT_EQ(program->ended(), 128 + SIGKILL);
    EXPECT_TRUE(isOld());
    offer();
    const auto again = start();
    EXPECT_EQ(again->ended(), 0) << log();
    expectUpdated();
}

TEST_F(ProgramTest, KilledWhileItExaminesItCleansUpTheNextTime) {
    offer();
    const fs::path real = made / "real";
    fs::rename(made / programFile, real);
    writeText(made / programFile, "#!/bin/sh\nsleep 1000\n");
    fs::permissions(made / programFile, fs::perms::owner_all);
    offer();
    const auto program = start();
    EXPECT_TRUE(becomesTrue([this] { return published.leftovers().size() == 1; }));
    program->signal(SIGKILL);
    EXPECT_EQ(program->ended(), 128 + SIGKILL);
    EXPECT_TRUE(isOld());
    EXPECT_EQ(published.leftovers().size(), 1U);
    fs::rename(real, made / programFile);
    offer();
    const auto again = start();
    EXPECT_EQ(again->ended(), 0) << log();
    expectUpdated();
}

TEST_F(ProgramTest, KilledOnceTheSwapWaitsItIsReplacedAllTheSame) {
    offer();
    const auto program = start();
    EXPECT_TRUE(becomesTrue([&] {
        return logs("Update naar " + version() + " (2) wordt geïnstalleerd") ||
               !program->isRunning();
    }));
    program->signal(SIGKILL);
    expectUpdated();
}

TEST_F(ProgramOnMountTest, ADiskThatFillsUpWhileItIsCopiedBringsTheOldOneBack) {
    offer();
    // Room for what is there, and for half of what is to come.
    const auto size =
        fs::file_size(published.app / programFile) + fs::file_size(made / programFile) / 2;
    const fs::path aside = published.home.path() / "aside";
    fs::copy(apps, aside, fs::copy_options::recursive);
    ASSERT_EQ(
        mount("tmpfs", apps.c_str(), "tmpfs", 0, ("mode=700,size=" + std::to_string(size)).c_str()),
        0);
    fs::copy(aside, apps, fs::copy_options::recursive);
    const auto program = start();
    EXPECT_EQ(program->ended(), 0) << log();
    EXPECT_TRUE(logs("Update naar " + version() + " (2) wordt geïnstalleerd"));
    EXPECT_TRUE(becomesTrue([this] { return isRunning() && published.leftovers().empty(); }));
    EXPECT_TRUE(isOld());
    EXPECT_EQ(besides(), Lines{"Wegslot.app"});
}

TEST_F(ProgramOnMountTest, AFullDiskForTemporaryFilesSaysSoAndLeavesNothing) {
    offer();
    ASSERT_EQ(mount("tmpfs", published.temporary.c_str(), "tmpfs", 0, "size=65536"), 0);
    const auto program = start();
    EXPECT_TRUE(becomesTrue([this] {
        return logs("Update mislukt: wegslot: No space left on device");
    })) << log();
    EXPECT_EQ(published.leftovers(), Lines{});
    EXPECT_TRUE(program->isRunning());
    program->stop();
    umount2(published.temporary.c_str(), MNT_DETACH);
    EXPECT_TRUE(isOld());
}

TEST_F(ProgramOnMountTest, WhereItMayNotBeReplacedTheNewOneIsShownAndKept) {
    std::mutex mutex;
    std::string revealed;
    const AnsweringService files(
        bus.address(), "org.freedesktop.FileManager1", [&](sd_bus*, sd_bus_message* call) {
            const char* address = nullptr;
            if (std::string_view(sd_bus_message_get_member(call)) != "ShowItems") return;
            sd_bus_message_enter_container(call, 'a', "s");
            sd_bus_message_read(call, "s", &address);
            const std::lock_guard lock(mutex);
            revealed = address == nullptr ? "" : address;
        });
    offer();
    ASSERT_EQ(mount(apps.c_str(), apps.c_str(), nullptr, MS_BIND, nullptr), 0);
    ASSERT_EQ(mount(nullptr, apps.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const auto program = start();
    EXPECT_TRUE(becomesTrue([this] {
        return logs("Update mislukt: Geen rechten om de app te vervangen. Sleep de nieuwe versie "
                    "zelf naar Apps.");
    })) << log();
    ASSERT_EQ(published.leftovers().size(), 1U);
    const fs::path kept = published.temporary / published.leftovers().front() / "Wegslot.app";
    EXPECT_EQ(contentsOf(kept), fresh);
    EXPECT_TRUE(becomesTrue([&] {
        const std::lock_guard lock(mutex);
        return revealed == "file://" + kept.string();
    })) << revealed;
    EXPECT_TRUE(program->isRunning());
    program->stop();
    EXPECT_TRUE(isOld());
}
