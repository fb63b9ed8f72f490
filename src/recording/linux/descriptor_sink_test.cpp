#include "recording/linux/descriptor_sink.h"

#include "recording/linux/random_uuid.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
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

/// As a recording begins.
Result<DescriptorSink> fileSink(const std::string& path) {
    const auto file = recordingFile(path);
    if (!file) return file.failure();
    return emptiedSink(*file);
}

} // namespace

TEST(DescriptorSink, AFileHoldsEachLineAsSoonAsItIsTaken) {
    const TemporaryFolder folder;
    const auto sink = fileSink((folder.path() / "trace").string());
    ASSERT_TRUE(sink);
    EXPECT_EQ((*sink)("first\n"), std::nullopt);
    EXPECT_EQ(folder.read("trace"), "first\n");
    const std::string longLine = std::string(300'000, 'x') + "\n";
    EXPECT_EQ((*sink)(longLine), std::nullopt);
    EXPECT_EQ(folder.read("trace"), "first\n" + longLine);
}

TEST(DescriptorSink, AFileThatWasThereIsEmptiedAndIsItsOwnersFromThenOn) {
    const TemporaryFolder folder;
    const fs::path file = folder.path() / "trace";
    std::ofstream(file) << "of another day";
    fs::permissions(file, fs::perms::all);
    ASSERT_TRUE(fileSink(file.string()));
    EXPECT_EQ(fs::file_size(file), 0U);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(DescriptorSink, AFileThatCannotBeWrittenIsNamed) {
    const TemporaryFolder folder;
    const std::string path = (folder.path() / "nowhere" / "trace").string();
    EXPECT_EQ(fileSink(path).failure().message,
              "kan " + path + " niet schrijven: No such file or directory");
    const std::string fifo = (folder.path() / "fifo").string();
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(fileSink(fifo)); // nobody reads it, and nobody waits for one who does
}

TEST(DescriptorSink, WhatIsInAFileStaysUntilTheRecordingBegins) {
    const TemporaryFolder folder;
    folder.write("trace", "before");
    const auto file = recordingFile((folder.path() / "trace").string());
    ASSERT_TRUE(file);
    EXPECT_EQ(folder.read("trace"), "before");
    const auto sink = emptiedSink(*file);
    EXPECT_EQ(folder.read("trace"), "");
}

TEST(DescriptorSink, AFullDiskIsAFailure) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    EXPECT_EQ(descriptorSink(full)("line\n"), Failure{"No space left on device"});
}

TEST(DescriptorSink, AReaderThatWentIsAFailureAndNotTheEnd) {
    const Pipe pipe;
    close(pipe.ends[0]);
    const auto sink = descriptorSink(pipe.ends[1]);
    EXPECT_EQ(sink("line\n"), Failure{"Broken pipe"});
    EXPECT_EQ(sink("line\n"), Failure{"Broken pipe"});
}

TEST(DescriptorSink, AReaderThatDoesNotKeepUpIsNotWaitedFor) {
    const Pipe pipe;
    const auto sink = descriptorSink(pipe.ends[1]);
    std::optional<Failure> failure;
    for (int i = 0; i < 10'000 && !failure; ++i)
        failure = sink(std::string(999, 'x') + "\n");
    EXPECT_EQ(failure, Failure{"de lezer houdt het niet bij"});
    EXPECT_EQ(sink(std::string(300'000, 'x')), Failure{"de lezer houdt het niet bij"});
    close(pipe.ends[0]);
}

TEST(DescriptorSink, AFileThatMayNotGrowIsAFailureAndNotTheEnd) {
    const TemporaryFolder folder;
    const auto sink = fileSink((folder.path() / "trace").string());
    ASSERT_TRUE(sink);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{.rlim_cur = 10, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto first = (*sink)("12345678\n");
    const auto second = (*sink)("12345678\n");
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_EQ(first, std::nullopt);
    EXPECT_EQ(second, Failure{"File too large"});
}

TEST(DescriptorSink, TheDescriptorIsClosedWithTheLastCopy) {
    const Pipe pipe;
    {
        auto sink = descriptorSink(pipe.ends[1]);
        const auto copy = sink; // NOLINT(performance-unnecessary-copy-initialization)
        sink = {};
        EXPECT_EQ(copy("x"), std::nullopt);
    }
    char read = 0;
    EXPECT_EQ(::read(pipe.ends[0], &read, 1), 1);
    EXPECT_EQ(::read(pipe.ends[0], &read, 1), 0); // nobody writes any more
    close(pipe.ends[0]);
}

TEST(RandomUuid, IsAnotherEachTimeAndSaysThatItIsRandom) {
    const Uuid one = randomUuid();
    EXPECT_NE(one, randomUuid());
    EXPECT_EQ(one.text()[14], '4');
    EXPECT_NE(std::string("89AB").find(one.text()[19]), std::string::npos);
}
