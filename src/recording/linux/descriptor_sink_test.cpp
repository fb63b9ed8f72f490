#include "recording/linux/descriptor_sink.h"

#include "recording/linux/foreign_descriptor.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;

namespace {

struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe");
    }
    std::array<int, 2> ends{};
};

/// The content of a file or what comes out of a pipe, once it is `wanted`.
bool becomes(const std::function<std::string()>& read, const std::string& wanted) {
    using Clock = std::chrono::steady_clock;
    for (const auto end = Clock::now() + std::chrono::seconds{20}; read() != wanted;)
        if (Clock::now() > end) return false;
    return true;
}

struct DescriptorSinkTest : testing::Test {
    LineThreads threads;
    TemporaryFolder folder;

    [[nodiscard]] std::string path(const std::string& name) const {
        return (folder.path() / name).string();
    }
    /// As a recording begins.
    [[nodiscard]] Result<DescriptorSink> fileSink(const std::string& name) {
        const auto file = recordingFile(path(name), Existing::replaced);
        if (!file) return file.failure();
        return descriptorSink(threads, *file);
    }
    /// What ends the recording, after as many lines as it takes.
    [[nodiscard]] static Failure failureOf(const DescriptorSink& sink, const std::string& line) {
        for (;;)
            if (auto failure = sink(line)) return *failure;
    }
};

} // namespace

TEST_F(DescriptorSinkTest, AFileHoldsEachLineSoonAfterItIsTaken) {
    const auto sink = fileSink("trace");
    ASSERT_TRUE(sink);
    const auto content = [this] { return folder.read("trace"); };
    EXPECT_EQ((*sink)("first\n"), std::nullopt);
    EXPECT_TRUE(becomes(content, "first\n"));
    const std::string longLine = std::string(300'000, 'x') + "\n";
    EXPECT_EQ((*sink)(longLine), std::nullopt);
    EXPECT_TRUE(becomes(content, "first\n" + longLine));
}

TEST_F(DescriptorSinkTest, AFileThatWasThereIsItsOwnersFromThenOnAndEmptiedByTheFirstLine) {
    folder.write("trace", "of another day");
    fs::permissions(path("trace"), fs::perms::all);
    const auto sink = fileSink("trace");
    ASSERT_TRUE(sink);
    EXPECT_EQ(fs::status(path("trace")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(folder.read("trace"), "of another day");
    EXPECT_EQ((*sink)("x"), std::nullopt);
    EXPECT_TRUE(becomes([this] { return folder.read("trace"); }, "x"));
}

TEST_F(DescriptorSinkTest, AFileThatCannotBeWrittenIsNamed) {
    EXPECT_EQ(fileSink("nowhere/trace").failure().message,
              "kan " + path("nowhere/trace") + " niet schrijven: No such file or directory");
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    EXPECT_FALSE(fileSink("fifo")); // nobody reads it, and nobody waits for one who does
}

TEST_F(DescriptorSinkTest, AFileWithSomethingInItIsRefusedUnlessItIsToBeReplaced) {
    folder.write("trace", "x");
    EXPECT_EQ(recordingFile(path("trace"), Existing::kept).failure().message,
              "kan " + path("trace") +
                  " niet schrijven: er staat al iets in (--force vervangt het)");
    EXPECT_EQ(folder.read("trace"), "x");
    folder.write("trace", ""); // as a script makes one first
    const auto empty = recordingFile(path("trace"), Existing::kept);
    ASSERT_TRUE(empty);
    close(*empty);
}

TEST_F(DescriptorSinkTest, ALinkOfSomebodyElsesIsNotFollowed) {
    folder.write("precious", "mine");
    fs::create_symlink("precious", path("link"));
    if (lchown(path("link").c_str(), 65534, 65534) != 0)
        GTEST_SKIP() << "only root gives links away";
    EXPECT_EQ(recordingFile(path("link"), Existing::replaced).failure().message,
              "kan " + path("link") + " niet schrijven: een verwijzing van iemand anders");
    EXPECT_EQ(folder.read("precious"), "mine");
}

TEST_F(DescriptorSinkTest, WhatIsNeitherFileNorPipeIsRefused) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    EXPECT_EQ(descriptorSink(threads, full).failure().message,
              "opnemen kan alleen in een bestand of een pijp");
}

TEST_F(DescriptorSinkTest, AReaderThatWentIsAFailureAndNotTheEnd) {
    const Pipe pipe;
    close(pipe.ends[0]);
    const auto sink = descriptorSink(threads, pipe.ends[1]);
    ASSERT_TRUE(sink);
    EXPECT_EQ(failureOf(*sink, "line\n"), Failure{"Broken pipe"});
    EXPECT_EQ((*sink)("line\n"), Failure{"Broken pipe"});
}

TEST_F(DescriptorSinkTest, AReaderThatDoesNotKeepUpIsWaitedForByNobody) {
    const Pipe pipe; // its writes wait, too, where they are not kept from it
    const auto sink = descriptorSink(threads, pipe.ends[1]);
    ASSERT_TRUE(sink);
    EXPECT_EQ(failureOf(*sink, std::string(999, 'x') + "\n"),
              Failure{"de lezer houdt het niet bij"});
    close(pipe.ends[0]);
}

TEST_F(DescriptorSinkTest, RecordingsThatHangAreFewAndTheEndLeavesThemBehind) {
    std::array<Pipe, 5> pipes;
    {
        LineThreads hanging;
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            const auto sink = descriptorSink(hanging, pipes.at(i).ends[1]);
            const bool isOneTooMany = i + 1 == pipes.size();
            EXPECT_EQ(static_cast<bool>(sink), !isOneTooMany);
            if (!sink) continue;
            EXPECT_EQ((*sink)(std::string(300'000, 'x')), std::nullopt);
        }
    }
    for (const Pipe& pipe : pipes)
        close(pipe.ends[0]);
}

TEST_F(DescriptorSinkTest, AFileThatMayNotGrowIsAFailureAndNotTheEnd) {
    const auto sink = fileSink("trace");
    ASSERT_TRUE(sink);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{.rlim_cur = 10, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const Failure failure = failureOf(*sink, "12345678\n");
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(failure, Failure{"File too large"});
}

TEST_F(DescriptorSinkTest, TheDescriptorIsClosedAfterTheLastCopy) {
    const Pipe pipe;
    {
        auto sink = descriptorSink(threads, pipe.ends[1]);
        ASSERT_TRUE(sink);
        const auto copy = *sink; // NOLINT(performance-unnecessary-copy-initialization)
        *sink = {};
        EXPECT_EQ(copy("x"), std::nullopt);
    }
    char read = 0;
    EXPECT_EQ(::read(pipe.ends[0], &read, 1), 1);
    EXPECT_EQ(::read(pipe.ends[0], &read, 1), 0); // nobody writes any more
    close(pipe.ends[0]);
}

TEST(ForeignDescriptor, IsTakenOverSoThatItsNumberMayBeClosed) {
    const Pipe pipe;
    const int own = takenOver(pipe.ends[1]);
    ASSERT_GE(own, 0);
    EXPECT_TRUE(isFileOrPipe(own));
    EXPECT_FALSE(isFileOrPipe(pipe.ends[1])); // it stands for nothing now
    EXPECT_EQ(write(own, "x", 1), 1);
    close(pipe.ends[1]);
    closeElsewhere(own);
    char read = 0;
    EXPECT_EQ(::read(pipe.ends[0], &read, 1), 1);
    EXPECT_EQ(::read(pipe.ends[0], &read, 1), 0);
    close(pipe.ends[0]);
    EXPECT_EQ(takenOver(-1), -1);
}

// As where the number of files that a program may have was lowered while it had them.
TEST(ForeignDescriptor, OneThatCannotBeReplacedIsRefusedAndNotWaitedFor) {
    const Pipe pipe;
    constexpr int high = 900;
    ASSERT_EQ(dup3(pipe.ends[1], high, O_CLOEXEC), high);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit fewer{.rlim_cur = high, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &fewer), 0);
    EXPECT_EQ(takenOver(high), -1);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    close(high);
}
