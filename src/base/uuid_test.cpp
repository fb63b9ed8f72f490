#include "base/uuid.h"

#include <gtest/gtest.h>

#include <unordered_set>

using namespace wegslot;

TEST(Uuid, IsReadInAnyCaseAndWrittenInUpperCase) {
    const auto uuid = Uuid::parse("0f2c41a7-0b3D-4c5e-8f60-718293a4b5c6");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6");
}

TEST(Uuid, AnyOtherTextIsRefused) {
    EXPECT_FALSE(Uuid::parse(""));
    EXPECT_FALSE(Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C"));
    EXPECT_FALSE(Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C60"));
    EXPECT_FALSE(Uuid::parse("0F2C41A7x0B3D-4C5E-8F60-718293A4B5C6"));
    EXPECT_FALSE(Uuid::parse("0F2C41AG-0B3D-4C5E-8F60-718293A4B5C6"));
}

TEST(Uuid, OrdersAsItsText) {
    EXPECT_LT(*Uuid::parse("00000000-0000-0000-0000-0000000000FF"),
              *Uuid::parse("00000000-0000-0000-0000-000000000100"));
}

TEST(Uuid, NumbersInARowHaveHashesOfTheirOwn) {
    std::unordered_set<std::size_t> hashes;
    for (unsigned i = 0; i < 1000; ++i) {
        Uuid uuid;
        uuid.bytes[15] = static_cast<std::uint8_t>(i);
        uuid.bytes[14] = static_cast<std::uint8_t>(i >> 8U);
        hashes.insert(std::hash<Uuid>{}(uuid));
    }
    EXPECT_EQ(hashes.size(), 1000U);
}
