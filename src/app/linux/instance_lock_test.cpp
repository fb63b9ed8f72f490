#include "app/linux/instance_lock.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <optional>

using namespace wegslot;

TEST(InstanceLock, ASecondOneIsRefusedUntilTheFirstHasGone) {
    const TemporaryFolder folder;
    {
        const auto first = InstanceLock::take(folder.path() / "wegslot");
        ASSERT_TRUE(first);
        const auto second = InstanceLock::take(folder.path() / "wegslot");
        ASSERT_FALSE(second);
        EXPECT_EQ(second.failure().message, "Wegslot draait al; stop het eerst");
    }
    EXPECT_TRUE(InstanceLock::take(folder.path() / "wegslot"));
}

TEST(InstanceLock, AFolderThatCannotBeUsedIsNamed) {
    const TemporaryFolder folder;
    folder.write("wegslot", "in the way");
    const auto lock = InstanceLock::take(folder.path() / "wegslot");
    ASSERT_FALSE(lock);
    EXPECT_TRUE(lock.failure().message.starts_with((folder.path() / "wegslot" / "lock").string()));
}
