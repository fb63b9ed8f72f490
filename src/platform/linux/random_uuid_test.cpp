#include "platform/linux/random_uuid.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;

TEST(RandomUuid, IsAnotherEachTimeAndSaysThatItIsRandom) {
    const Uuid one = randomUuid();
    EXPECT_NE(one, randomUuid());
    EXPECT_EQ(one.text()[14], '4');
    EXPECT_NE(std::string("89AB").find(one.text()[19]), std::string::npos);
}
