#include "app/linux/instance_lock.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

using namespace wegslot;
using Outcome = InstanceLock::Outcome;

TEST(InstanceLock, ASecondOneIsRefusedUntilTheFirstHasGone) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "wegslot";
    {
        const auto first = InstanceLock::take({file});
        ASSERT_EQ(first.outcome(), Outcome::held);
        EXPECT_EQ(first.trouble(), "");
        EXPECT_EQ(InstanceLock::take({file}).outcome(), Outcome::heldByAnother);
    }
    EXPECT_EQ(InstanceLock::take({file}).outcome(), Outcome::held);
}

TEST(InstanceLock, WhereAFolderCannotBeUsedTheNextOneIsAndItIsNamed) {
    const TemporaryFolder folder;
    folder.write("wegslot", "in the way");
    const auto usual = folder.path() / "wegslot";
    const auto other = folder.path() / "runtime";
    const auto first = InstanceLock::take({usual, other});
    EXPECT_EQ(first.outcome(), Outcome::held);
    EXPECT_TRUE(first.trouble().builtIn().starts_with((usual / "lock").string() + ": "));
    EXPECT_EQ(InstanceLock::take({usual, other}).outcome(), Outcome::heldByAnother);
    const auto none = InstanceLock::take({usual});
    EXPECT_EQ(none.outcome(), Outcome::impossible);
    EXPECT_EQ(none.trouble(), first.trouble());
}
