#include "own_address.h"

#include <gtest/gtest.h>

#include "security_functions.h"

namespace controller {
namespace {

using std::chrono::seconds;

constexpr Key secret{1, 2, 3};
const Address ownIdentity = parseAddress("00:00:5E:00:53:40", AddressType::Public).value();

bool isMadeWith(const Key& key, const Address& address) {
    const auto& bytes = address.bytes;
    return addressHash(key, {bytes[3], bytes[4], bytes[5]}) ==
           AddressPart{bytes[0], bytes[1], bytes[2]};
}

TEST(OwnAddress, WithoutPrivacyItIsTheIdentityForEver) {
    OwnAddress address(ownIdentity, {}, seconds(1), TimePoint{});
    address.change(TimePoint{});
    address.changeIfDue(TimePoint{seconds(5)});
    EXPECT_EQ(address.shown(), ownIdentity);
}

TEST(OwnAddress, ResolvableAddressIsMadeWithTheKey) {
    OwnAddress address(ownIdentity, Resolvable{secret}, std::nullopt, TimePoint{});
    for (int change = 0; change < 100; ++change) {
        const Address earlier = address.shown();
        EXPECT_TRUE(isMadeWith(secret, earlier));
        EXPECT_EQ(earlier.type, AddressType::Random);
        EXPECT_EQ(earlier.bytes[5] >> 6U, 1);
        address.change(TimePoint{});
        EXPECT_NE(address.shown(), earlier);
    }
}

TEST(OwnAddress, ChangingAddressIsMadeWithNoKnownKey) {
    const OwnAddress address(ownIdentity, Changing{}, std::nullopt, TimePoint{});
    EXPECT_FALSE(isMadeWith(secret, address.shown()));
    EXPECT_FALSE(isMadeWith(Key{}, address.shown()));
}

TEST(OwnAddress, ChangesByItselfWhenTheTimeHasCome) {
    OwnAddress address(ownIdentity, Resolvable{secret}, seconds(10), TimePoint{});
    const Address first = address.shown();
    address.changeIfDue(TimePoint{seconds(10)} - std::chrono::nanoseconds(1));
    EXPECT_EQ(address.shown(), first);
    address.changeIfDue(TimePoint{seconds(10)});
    EXPECT_NE(address.shown(), first);
}

} // namespace
} // namespace controller
