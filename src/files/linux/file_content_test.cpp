#include "files/linux/file_content.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace wegslot;

TEST(FileContent, IsReadWholeUpToItsBound) {
    const TemporaryFolder folder;
    const std::string content(20'000, 'x');
    folder.write("file", content);
    EXPECT_EQ(contentOf(folder.path() / "file", 19'999), std::nullopt);
    EXPECT_EQ(contentOf(folder.path() / "file", 20'000), content);
    EXPECT_EQ(contentOf(folder.path() / "file", 20'001), content);
    folder.write("empty", "");
    EXPECT_EQ(contentOf(folder.path() / "empty", 0), "");
    EXPECT_NE(contentOf("/proc/self/status", 100'000).value_or(""), ""); // says that it is empty
}

TEST(FileContent, WhatIsNoPlainFileIsNotRead) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
    for (const std::filesystem::path& path :
         {folder.path(), folder.path() / "pipe", folder.path() / "none",
          std::filesystem::path("/dev/zero")})
        EXPECT_EQ(contentOf(path, 100), std::nullopt) << path;
}
