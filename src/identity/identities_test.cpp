#include "tests/support/known_identities.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace wegslot;

namespace {

constexpr auto phonesAddress = "70:81:94:0D:FB:AA";

struct IdentitiesTest : testing::Test {
    Identities identities{ordinaryMemory()};
    int changes = 0;
    Subscription counting = identities.onChange([this] { ++changes; });
};

} // namespace

TEST_F(IdentitiesTest, ResolveTheAddressOfTheStandardsSample) {
    EXPECT_FALSE(identities.whose(phonesAddress));
    identities.put(phonesIdentity());
    EXPECT_EQ(identities.whose(phonesAddress), phonesIdentity().id());
    EXPECT_EQ(identities.whose("70:81:94:0d:fb:aa"), phonesIdentity().id());
    EXPECT_FALSE(identities.whose("70:81:94:0D:FB:AB"));
    EXPECT_FALSE(identities.whose("70:81:95:0D:FB:AA"));
}

TEST_F(IdentitiesTest, PastedFromTheOtherEndResolveTheSame) {
    KnownIdentity other = phonesIdentity();
    other.key = other.key.reversed();
    identities.put(other);
    EXPECT_EQ(identities.whose(phonesAddress), phonesIdentity().id());
}

TEST_F(IdentitiesTest, AskOnlyForResolvableAddresses) {
    identities.put(phonesIdentity());
    for (const auto* const text :
         {"", "70:81:94:0D:FB", "70:81:94:0D:FB:AA:", "70-81-94-0D-FB-AA", "70:81:94:0D:FB:AG",
          "F0:81:94:0D:FB:AA", "30:81:94:0D:FB:AA", "B0:81:94:0D:FB:AA"})
        EXPECT_FALSE(identities.whose(text)) << text;
}

TEST_F(IdentitiesTest, OfSeveralTheRightOneIsFound) {
    identities.put(watchsIdentity());
    identities.put(phonesIdentity());
    EXPECT_EQ(identities.whose(phonesAddress), phonesIdentity().id());
    identities.remove(phonesIdentity().id());
    EXPECT_FALSE(identities.whose(phonesAddress));
    EXPECT_EQ(identities.ids(), std::vector{watchsIdentity().id()});
}

TEST_F(IdentitiesTest, OfOneDeviceThereIsOne) {
    identities.put(phonesIdentity());
    KnownIdentity again = phonesIdentity("Mijn telefoon");
    again.key = again.key.reversed();
    identities.put(again);
    ASSERT_EQ(identities.ids().size(), 1U);
    EXPECT_EQ(identities.find(phonesIdentity().id())->name, "Mijn telefoon");
}

TEST_F(IdentitiesTest, TellWhenOthersAreKnownAndNotOtherwise) {
    identities.put(phonesIdentity());
    EXPECT_EQ(changes, 1);
    identities.put(phonesIdentity());
    identities.remove(watchsIdentity().id());
    EXPECT_EQ(changes, 1);
    identities.remove(phonesIdentity().id());
    EXPECT_EQ(changes, 2);
}

TEST_F(IdentitiesTest, ADeviceThatTurnsOutToHaveAFixedAddressGoesByItsId) {
    identities.put(phonesIdentity());
    const Uuid before = phonesIdentity().id();
    const Uuid fixed = *Uuid::parse("00000000-0000-0000-0000-000000000001");
    std::vector<Uuid> told;
    const auto telling = identities.lastLearned().onChange([&](const auto& learned) {
        told = {learned.from, learned.to};
    });
    identities.learned(fixed, before);
    EXPECT_TRUE(told.empty());
    identities.learned(before, fixed);
    EXPECT_EQ(told, (std::vector{before, fixed}));
    EXPECT_EQ(identities.whose(phonesAddress), fixed);
    EXPECT_EQ(identities.find(before), nullptr);
}
