// Whether a camera is in use: on a real PipeWire with pictures that GStreamer makes, and in the
// process folder of this machine.

#include "platform/linux/media/capture_devices.h"
#include "platform/linux/media/pipewire_cameras.h"
#include "tests/integration/media_servers.h"
#include "tests/support/bus_loop.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <csignal>

#include <pwd.h>
#include <unistd.h>

using namespace wegslot;
using namespace std::chrono_literals;

class PipeWireCamerasTest : public testing::Test {
protected:
    void SetUp() override {
        if (const auto missing = firstMissing(
                {"dbus-daemon", "pipewire", "wireplumber", "pw-cli", "pw-dump", "gst-launch-1.0"}))
            GTEST_SKIP() << *missing << " is not installed";
        session.emplace();
        loop.emplace();
        if (!MediaSession::run({"gst-inspect-1.0", "pipewiresink"}))
            GTEST_SKIP() << "GStreamer has no PipeWire plugin";
    }

    [[nodiscard]] bool startDaemon() {
        sessionServer.reset();
        daemon.reset();
        daemon = startPipeWire();
        sessionServer = std::make_unique<Program>(Program::Start{.words = {"wireplumber"}});
        return daemon != nullptr;
    }

    [[nodiscard]] bool startBoth() {
        if (!startDaemon()) return false;
        cameras.emplace(*loop, loop->time);
        return cameras->isThere();
    }

    /// A node called `name` that gives pictures to whoever asks.
    [[nodiscard]] std::unique_ptr<Program> give(const std::string& name,
                                                const std::string& properties) const {
        auto program = std::make_unique<Program>(Program::Start{
            .words = {"gst-launch-1.0", "-q", "videotestsrc", "is-live=true", "!",
                      "video/x-raw,format=RGB,width=64,height=48,framerate=30/1", "!",
                      "pipewiresink", "mode=provide",
                      "stream-properties=props,media.class=Video/Source,node.name=" + name +
                          properties}});
        EXPECT_TRUE(becomesTrue([&] {
            const auto nodes = MediaSession::run({"pw-cli", "ls", "Node"});
            return nodes && nodes->find('"' + name + '"') != std::string::npos;
        })) << program->output();
        return program;
    }

    /// A program that looks at `name`; returns when it has seen something.
    [[nodiscard]] std::unique_ptr<Program> look(const std::string& name) const {
        const auto seen = pictures.path() / name;
        auto program = std::make_unique<Program>(
            Program::Start{.words = {"gst-launch-1.0", "-q", "pipewiresrc", "target-object=" + name,
                                     "!", "videoconvert", "!", "filesink", "buffer-mode=unbuffered",
                                     "location=" + seen.string()}});
        EXPECT_TRUE(becomesTrue([&] {
            std::error_code absent;
            return std::filesystem::file_size(seen, absent) > 0 && !absent;
        })) << program->output();
        return program;
    }

    /// The next answer, however late a busy machine gives it.
    [[nodiscard]] std::optional<bool> soon() {
        std::optional<bool> given;
        static_cast<void>(loop->runUntil([&] {
            given = cameras->inUse();
            return given.has_value();
        }));
        return given;
    }

    [[nodiscard]] bool becomes(std::optional<bool> expected) {
        return loop->runUntil([&] { return cameras->inUse() == expected; });
    }

    std::optional<MediaSession> session;
    std::optional<BusLoop> loop;
    TemporaryFolder pictures;
    std::unique_ptr<Program> daemon;
    std::unique_ptr<Program> sessionServer;
    std::optional<PipeWireCameras> cameras;
};

TEST_F(PipeWireCamerasTest, ACameraIsInUseWhileSomebodyLooks) {
    ASSERT_TRUE(startBoth());
    EXPECT_EQ(soon(), false);
    const auto camera = give("cam", ",media.role=Camera");
    EXPECT_EQ(soon(), false);
    const auto viewer = look("cam");
    EXPECT_EQ(soon(), true);
    viewer->stop();
    // Before it is suspended, which the session's own server does some seconds later. GStreamer's
    // ends with its last viewer from PipeWire 1.4 on.
    ASSERT_TRUE(becomesTrue([&camera] {
        const auto dump = MediaSession::run({"pw-dump"});
        const bool isIdle = dump && dump->find("\"state\": \"idle\"") != std::string::npos;
        return isIdle || !camera->isRunning();
    }));
    EXPECT_TRUE(camera->isRunning() ? soon() == false : becomes(false));
}

TEST_F(PipeWireCamerasTest, ACameraThatRunsAlreadyIsKnownAtTheFirstQuestion) {
    ASSERT_TRUE(startDaemon());
    const auto camera = give("cam", ",media.role=Camera");
    const auto viewer = look("cam");
    cameras.emplace(*loop, loop->time);
    EXPECT_EQ(soon(), true);
}

TEST_F(PipeWireCamerasTest, ACameraThatIsPulledOutIsNotInUse) {
    ASSERT_TRUE(startBoth());
    const auto camera = give("cam", ",media.role=Camera");
    const auto viewer = look("cam");
    ASSERT_EQ(soon(), true);
    camera->signal(SIGKILL);
    EXPECT_TRUE(becomes(false));
}

TEST_F(PipeWireCamerasTest, ASourceOfADriverForCamerasIsOneWithoutTheRole) {
    ASSERT_TRUE(startBoth());
    const auto camera = give("cam", ",device.api=v4l2");
    const auto viewer = look("cam");
    EXPECT_EQ(soon(), true);
}

TEST_F(PipeWireCamerasTest, ARecordingOfTheScreenIsNoCamera) {
    ASSERT_TRUE(startBoth());
    const auto screen = give("screen", "");
    const auto viewer = look("screen");
    EXPECT_EQ(soon(), false);
    const auto other = give("strange", ",device.api=x11");
    const auto another = look("strange");
    EXPECT_EQ(soon(), false);
}

TEST_F(PipeWireCamerasTest, ADaemonThatHangsAnswersNothingAndThenAgain) {
    ASSERT_TRUE(startBoth());
    ASSERT_EQ(soon(), false);
    daemon->signal(SIGSTOP);
    ASSERT_TRUE(becomes(std::nullopt));
    EXPECT_TRUE(cameras->isThere());
    const long before = waitsSoFar();
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(cameras->inUse(), std::nullopt);
    EXPECT_LT(waitsSoFar() - before, 50); // one for each would be a hundred
    daemon->signal(SIGCONT);
    EXPECT_EQ(soon(), false);
}

TEST_F(PipeWireCamerasTest, ADaemonThatHangsHoldsUpNoEnd) {
    ASSERT_TRUE(startBoth());
    daemon->signal(SIGSTOP);
    ASSERT_TRUE(becomes(std::nullopt));
    cameras.reset();
}

TEST_F(PipeWireCamerasTest, ADaemonThatDiesIsNotThereAndIsFoundWhenItIsBack) {
    ASSERT_TRUE(startBoth());
    const auto camera = give("cam", ",media.role=Camera");
    const auto viewer = look("cam");
    ASSERT_EQ(soon(), true);
    daemon->signal(SIGKILL);
    ASSERT_TRUE(daemon->ended()); // one that is dying still takes connections
    EXPECT_TRUE(loop->runUntil([this] { return !cameras->isThere(); }));
    EXPECT_EQ(cameras->inUse(), std::nullopt);
    loop->time.advance(PipeWireCameras::betweenAttempts); // in vain
    EXPECT_FALSE(cameras->isThere());
    ASSERT_TRUE(startDaemon());
    loop->time.advance(PipeWireCameras::betweenAttempts - 1ns);
    EXPECT_FALSE(cameras->isThere());
    loop->time.advance(1ns);
    EXPECT_TRUE(cameras->isThere());
    EXPECT_EQ(soon(), false);
    const auto newCamera = give("again", ",media.role=Camera");
    const auto newViewer = look("again");
    EXPECT_EQ(soon(), true);
}

TEST_F(PipeWireCamerasTest, ADaemonThatDiesWhileItIsAskedIsNotThereAfter) {
    ASSERT_TRUE(startBoth());
    daemon->signal(SIGSTOP);
    ASSERT_TRUE(becomes(std::nullopt));
    daemon->signal(SIGKILL);
    EXPECT_TRUE(becomesTrue([this] {
        EXPECT_EQ(cameras->inUse(), std::nullopt);
        return !cameras->isThere();
    }));
}

TEST_F(PipeWireCamerasTest, WithoutADaemonNothingIsThereAndNothingIsPrinted) {
    testing::internal::CaptureStderr();
    cameras.emplace(*loop, loop->time);
    EXPECT_FALSE(cameras->isThere());
    EXPECT_EQ(cameras->inUse(), std::nullopt);
    loop->time.advance(PipeWireCameras::betweenAttempts);
    EXPECT_FALSE(cameras->isThere());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_TRUE(startDaemon());
    loop->time.advance(PipeWireCameras::betweenAttempts);
    EXPECT_TRUE(cameras->isThere());
    EXPECT_EQ(soon(), false);
}

namespace {

/// The real process folder, with devices of the test's own.
CaptureDevices::World realProcesses(const RuntimeFolder& devices, uid_t user) {
    return {.processes = "/proc",
            .devices = devices.path(),
            .numbers = devices.path(),
            .records = devices.path(),
            .user = user,
            .self = getpid()};
}

Program::Start opening(const std::string& device, bool unprivileged) {
    return {.words = {"sh", "-c", "exec 9<>\"$0\"; exec sleep 1000", device},
            .unprivileged = unprivileged};
}

} // namespace

TEST(CaptureDevicesOfThisMachine, AProgramThatOpensADeviceUsesItUntilItEnds) {
    const RuntimeFolder devices;
    CaptureDevices cameras(realProcesses(devices, getuid()));
    EXPECT_TRUE(cameras.isThere());
    EXPECT_EQ(cameras.inUse(), false);
    Program program(opening(devices.path() + "/video3", false));
    EXPECT_TRUE(becomesTrue([&] { return cameras.inUse() == true; })) << program.output();
    program.stop();
    EXPECT_EQ(cameras.inUse(), false);
}

TEST(CaptureDevicesOfThisMachine, AnotherUsersProgramDoesNotCount) {
    if (getuid() != 0) GTEST_SKIP() << "only root can start a program of another user";
    const RuntimeFolder devices;
    CaptureDevices theirs(realProcesses(devices, getpwnam("nobody")->pw_uid));
    CaptureDevices ours(realProcesses(devices, getuid()));
    const Program program(opening(devices.path() + "/video3", true));
    ASSERT_TRUE(becomesTrue([&] { return theirs.inUse() == true; })) << program.output();
    EXPECT_EQ(ours.inUse(), false);
}

TEST(CaptureDevicesOfThisMachine, TheWorldAsItIsCanBeAsked) {
    CaptureDevices cameras;
    EXPECT_TRUE(cameras.isThere());
    EXPECT_NE(cameras.inUse(), std::nullopt);
}
