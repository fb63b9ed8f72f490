#include "platform/linux/media/capture_devices.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace fs = std::filesystem;

/// A process folder and devices of the test's own: one camera, and processes as told.
class CaptureDevicesTest : public testing::Test {
protected:
    static constexpr uid_t user = 1000;
    static constexpr pid_t self = 50;

    CaptureDevicesTest() {
        fs::create_directories(root() / "proc" / "sys"); // one of those that are no process
        fs::create_directories(root() / "dev");
        fs::create_directories(root() / "udev");
        device("video0", "81:0");
        record("c81:0", "E:ID_V4L_CAPABILITIES=:capture:\n");
    }

    void device(const std::string& name, const std::string& number) const {
        write("dev/" + name, "");
        write("class/" + name + "/dev", number + "\n");
    }

    void record(const std::string& name, const std::string& content) const {
        write("udev/" + name, content);
    }

    void process(const std::string& id, const std::string& program = "praat",
                 const std::string& users = "1000\t1000\t1000\t1000") const {
        fs::create_directories(root() / "proc" / id / "fd");
        write("proc/" + id + "/comm", program + "\n");
        write("proc/" + id + "/status", "Name:\t" + program + "\nUid:\t" + users + "\n");
    }

    void opens(const std::string& id, const std::string& number, const fs::path& target) const {
        fs::create_symlink(target, root() / "proc" / id / "fd" / number);
    }

    [[nodiscard]] fs::path dev(const std::string& name) const { return root() / "dev" / name; }

    void write(const std::string& name, const std::string& content) const {
        fs::create_directories((root() / name).parent_path());
        folder_.write(name, content);
    }

    [[nodiscard]] fs::path root() const { return folder_.path(); }

    [[nodiscard]] CaptureDevices devices() const {
        return CaptureDevices({.processes = root() / "proc",
                               .devices = root() / "dev",
                               .numbers = root() / "class",
                               .records = root() / "udev",
                               .user = user,
                               .self = self});
    }

    [[nodiscard]] std::optional<bool> inUse() const { return devices().inUse(); }

private:
    TemporaryFolder folder_;
};

TEST_F(CaptureDevicesTest, WithoutAProgramThatHoldsItACameraIsNotInUse) {
    EXPECT_EQ(inUse(), false);
    process("7");
    opens("7", "0", "/dev/null");
    opens("7", "1", "socket:[1234]");
    EXPECT_EQ(inUse(), false);
}

TEST_F(CaptureDevicesTest, AProgramOfTheUserThatHoldsItUsesIt) {
    process("7");
    opens("7", "0", "/dev/null");
    opens("7", "21", dev("video0"));
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, OtherDevicesAreNoCameras) {
    process("7");
    for (const char* const name : {"video", "video0a", "media0", "v4l-subdev0", "xvideo0"}) {
        write(std::string("dev/") + name, "");
        opens("7", name, dev(name));
    }
    opens("7", "gone", dev("video0").string() + " (deleted)");
    opens("7", "elsewhere", root() / "else" / "video0");
    opens("7", "below", dev("video0") / "video0");
    EXPECT_EQ(inUse(), false);
}

TEST_F(CaptureDevicesTest, OurselvesDoNotCount) {
    process("50");
    opens("50", "3", dev("video0"));
    EXPECT_EQ(inUse(), false);
    process("51");
    opens("51", "3", dev("video0"));
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, TheServersOfTheSessionDoNotCount) {
    int id = 100;
    for (const char* const server : {"pipewire", "wireplumber", "pipewire-media-"}) {
        process(std::to_string(++id), server);
        opens(std::to_string(id), "3", dev("video0"));
        EXPECT_EQ(inUse(), false) << server;
    }
    process("99", "pipewire-camera");
    opens("99", "3", dev("video0"));
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, TheRealUserDecidesWhoseAProgramIs) {
    process("7", "praat", "1001\t1000\t1000\t1000");
    opens("7", "3", dev("video0"));
    process("8", "praat", "100\t1000\t1000\t1000");
    opens("8", "3", dev("video0"));
    EXPECT_EQ(inUse(), false);
    process("9", "praat", "1000\t0\t0\t0");
    opens("9", "3", dev("video0"));
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, ADeviceRecordedWithoutCaptureIsNoCamera) {
    process("7");
    opens("7", "3", dev("video0"));
    record("c81:0", "I:1\nE:ID_V4L_VERSION=2\nE:ID_V4L_CAPABILITIES=:video_output:\n");
    EXPECT_EQ(inUse(), false);
    record("c81:0", "E:ID_V4L_CAPABILITIES=:\n");
    EXPECT_EQ(inUse(), false);
    record("c81:0", "E:ID_V4L_CAPABILITIES=:video_output:capture:\n");
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, TheRecordIsFoundByTheDevicesNumberNotByItsName) {
    device("video4", "81:11");
    record("c81:4", "E:ID_V4L_CAPABILITIES=:capture:\n");
    record("c81:11", "E:ID_V4L_CAPABILITIES=:\n");
    process("7");
    opens("7", "3", dev("video4"));
    EXPECT_EQ(inUse(), false);
}

TEST_F(CaptureDevicesTest, ADeviceOfWhichNothingIsRecordedCounts) {
    process("7");
    opens("7", "3", dev("video9"));
    EXPECT_EQ(inUse(), true) << "without a number";
    device("video9", "82:9");
    EXPECT_EQ(inUse(), true) << "with a strange one";
    device("video9", "81:../c81:0");
    EXPECT_EQ(inUse(), true) << "with nonsense";
    device("video9", "81:9");
    EXPECT_EQ(inUse(), true) << "without a record";
    record("c81:9", "E:ID_V4L_VERSION=2\n");
    EXPECT_EQ(inUse(), true) << "with a record that names no abilities";
}

TEST_F(CaptureDevicesTest, OneThatCapturesAmongOthersIsEnough) {
    device("video1", "81:1");
    record("c81:1", "E:ID_V4L_CAPABILITIES=:\n");
    process("7");
    opens("7", "3", dev("video1"));
    EXPECT_EQ(inUse(), false);
    opens("7", "4", dev("video0"));
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, ProcessesThatEndWhileTheyAreReadAreNoError) {
    fs::create_directories(root() / "proc" / "6"); // its files have gone
    process("7");
    opens("7", "3", dev("video0"));
    fs::remove(root() / "proc" / "7" / "status");
    EXPECT_EQ(inUse(), false);
    process("8");
    opens("8", "3", dev("video0"));
    fs::remove(root() / "proc" / "8" / "comm");
    EXPECT_EQ(inUse(), false);
    process("9");
    opens("9", "3", dev("video0"));
    EXPECT_EQ(inUse(), true);
}

TEST_F(CaptureDevicesTest, WithoutACameraNobodyIsLookedAt) {
    process("7");
    opens("7", "3", dev("video0"));
    fs::remove(dev("video0"));
    EXPECT_EQ(inUse(), false);
    fs::remove_all(root() / "dev");
    EXPECT_EQ(inUse(), false);
}

TEST_F(CaptureDevicesTest, WithoutAProcessFolderNothingIsKnown) {
    EXPECT_TRUE(devices().isThere());
    fs::remove_all(root() / "proc");
    EXPECT_FALSE(devices().isThere());
    EXPECT_EQ(inUse(), std::nullopt);
}
