#include "identity/pasted_keys.h"

#include "base/virtual_time.h"
#include "tests/support/captured_log.h"
#include "tests/support/known_identities.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct PastedKeysTest : testing::Test {
    CapturedLog log;
    VirtualTime time{TimePoint{std::chrono::hours{1}}};
    MemoryStore preferences;
    Settings settings{preferences};
    Identities identities{ordinaryMemory()};
    MemoryIdentities store;
    std::optional<PastedKeys> keys;

    void start(PastedKeys::WithoutKey orphans = PastedKeys::WithoutKey::forgotten) {
        keys.emplace(settings, identities, store, time, orphans);
    }
    /// As another program does, which then asks for it to be read.
    void paste(const KnownIdentity& known) {
        store.kept.push_back(known);
        EXPECT_FALSE(keys->reread());
    }
};

} // namespace

TEST_F(PastedKeysTest, WhatWasAddedToTheStoreBecomesAKeyThatIsOnlyListenedTo) {
    start();
    paste(phonesIdentity());
    ASSERT_EQ(settings.keys.get().size(), 1U);
    EXPECT_EQ(settings.keys.get().front(), pastedKey(phonesIdentity()));
    EXPECT_EQ(settings.keys.get().front().isApple, false);
    EXPECT_TRUE(settings.keys.get().front().isPasted);
    EXPECT_EQ(settings.keys.get().front().threshold, Dbm{-75});
    EXPECT_NE(identities.find(phonesIdentity().id()), nullptr);
    paste(watchsIdentity());
    EXPECT_FALSE(keys->reread());
    EXPECT_EQ(settings.keys.get().size(), 2U);
}

TEST_F(PastedKeysTest, AKeyThatIsThereKeepsWhatBelongsToIt) {
    KeyDevice set = pastedKey(phonesIdentity());
    set.threshold = Dbm{-60};
    settings.keys.set({set});
    store.kept.push_back(phonesIdentity());
    start();
    EXPECT_FALSE(keys->reread());
    EXPECT_EQ(settings.keys.get(), std::vector{set});
    EXPECT_NE(identities.find(phonesIdentity().id()), nullptr);
}

TEST_F(PastedKeysTest, RemovingTheKeyRemovesTheIdentityAtOnceAndSoonFromMemory) {
    start();
    paste(phonesIdentity());
    paste(watchsIdentity());
    settings.removeKey(phonesIdentity().id());
    ASSERT_EQ(store.kept.size(), 1U);
    EXPECT_EQ(store.kept.front(), watchsIdentity());
    time.advance(PastedKeys::grace - 1ms);
    EXPECT_NE(identities.find(phonesIdentity().id()), nullptr);
    time.advance(1ms);
    EXPECT_EQ(identities.find(phonesIdentity().id()), nullptr);
    EXPECT_NE(identities.find(watchsIdentity().id()), nullptr);
}

TEST_F(PastedKeysTest, PutBackTheKeyHasItsIdentityAgain) {
    start();
    paste(phonesIdentity());
    const KeyDevice key = settings.keys.get().front();
    settings.removeKey(key.id);
    time.advance(8s);
    settings.insertKey(key, 0);
    ASSERT_EQ(store.kept.size(), 1U);
    EXPECT_EQ(store.kept.front(), phonesIdentity());
    time.advance(60s);
    EXPECT_NE(identities.find(phonesIdentity().id()), nullptr);
    EXPECT_EQ(store.kept.size(), 1U);
}

TEST_F(PastedKeysTest, WhatCouldNotBeDroppedIsDroppedWhenItIsForgotten) {
    start();
    paste(phonesIdentity());
    store.fault = Failure{"de schijf is vol"};
    settings.removeKey(phonesIdentity().id());
    EXPECT_EQ(log.take(), std::vector<std::string>{"de schijf is vol"});
    store.fault.reset();
    ASSERT_EQ(store.kept.size(), 1U);
    time.advance(PastedKeys::grace);
    EXPECT_TRUE(store.kept.empty());
}

TEST_F(PastedKeysTest, AnIdentityWhoseKeyWasRemovedMeanwhileIsForgottenAtTheStart) {
    store.kept.push_back(phonesIdentity());
    start();
    EXPECT_TRUE(store.kept.empty());
    EXPECT_TRUE(identities.ids().empty());
    EXPECT_TRUE(settings.keys.get().empty());
}

TEST_F(PastedKeysTest, WhereTheKeysAreNotKnownNothingIsForgotten) {
    store.kept.push_back(phonesIdentity());
    start(PastedKeys::WithoutKey::kept);
    EXPECT_EQ(store.kept.size(), 1U);
    EXPECT_NE(identities.find(phonesIdentity().id()), nullptr);
}

TEST_F(PastedKeysTest, AStoreThatCannotBeReadIsToldOfAndLeft) {
    settings.keys.set({pastedKey(phonesIdentity())});
    store.fault = Failure{"onleesbaar"};
    start();
    EXPECT_EQ(log.take(), std::vector<std::string>{"onleesbaar"});
    EXPECT_EQ(settings.keys.get().size(), 1U);
    EXPECT_EQ(keys->reread(), store.fault);
}

TEST_F(PastedKeysTest, ADeviceThatIsBondedLaterStaysTheKeyThatItWas) {
    start();
    paste(phonesIdentity());
    settings.setThreshold(Dbm{-62}, phonesIdentity().id());
    const Uuid fixed = *Uuid::parse("00000000-0000-0000-0000-000000000001");
    identities.learned(phonesIdentity().id(), fixed);
    ASSERT_EQ(settings.keys.get().size(), 1U);
    EXPECT_EQ(settings.keys.get().front().id, fixed);
    EXPECT_EQ(settings.keys.get().front().threshold, Dbm{-62});
    ASSERT_EQ(store.kept.size(), 1U);
    EXPECT_EQ(store.kept.front().fixedId, fixed);
    // And goes with it.
    settings.removeKey(fixed);
    EXPECT_TRUE(store.kept.empty());
}

TEST_F(PastedKeysTest, TwoKeysThatTurnOutToBeOneDeviceAreOneKey) {
    start();
    paste(phonesIdentity());
    const Uuid fixed = *Uuid::parse("00000000-0000-0000-0000-000000000001");
    settings.insertKey({.id = fixed,
                        .name = "iPhone",
                        .model = std::nullopt,
                        .isApple = true,
                        .threshold = Dbm{-70}},
                       1);
    identities.learned(phonesIdentity().id(), fixed);
    ASSERT_EQ(settings.keys.get().size(), 1U);
    EXPECT_EQ(settings.keys.get().front().name, "iPhone");
    EXPECT_NE(identities.find(fixed), nullptr);
}
