#include "ui/held_order.h"

#include "tests/support/world.h"

using namespace wegslot;

namespace {

std::vector<Uuid> ids(std::initializer_list<unsigned> numbers) {
    std::vector<Uuid> list;
    for (const unsigned number : numbers)
        list.push_back(numbered(number));
    return list;
}

} // namespace

TEST(HeldOrder, WhoWasShownKeepsThePlace) {
    EXPECT_EQ(heldOrder(ids({1, 2, 3}), ids({3, 1, 2})), ids({1, 2, 3}));
}

TEST(HeldOrder, WhoCameSinceStandsBehindInOrder) {
    EXPECT_EQ(heldOrder(ids({2, 4}), ids({1, 2, 3, 4, 5})), ids({2, 4, 1, 3, 5}));
}

TEST(HeldOrder, WhoHasGoneLeavesThePlaceEmpty) {
    EXPECT_EQ(heldOrder(ids({1, 2, 3}), ids({3})), ids({1, 2, 3}));
}

TEST(HeldOrder, WithNothingShownItIsTheListItself) {
    EXPECT_EQ(heldOrder({}, ids({2, 1})), ids({2, 1}));
    EXPECT_EQ(heldOrder({}, {}), ids({}));
}
