#include "app/identity_adder.h"

#include "control/control_text.h"
#include "tests/support/known_identities.h"
#include "tests/support/world.h"

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct IdentityAdderTest : testing::Test {
    World world;
    AppModel model{world.surroundings()};
    Identities identities{ordinaryMemory()};
    MemoryIdentities store;
    std::vector<std::string> lines;
    std::optional<std::string> failure;
    std::optional<Failure> notKept;
    std::optional<IdentityAdder> adder;
    const Uuid id = phonesIdentity().id();

    void add() {
        world.central.setState(CentralState::poweredOn);
        adder.emplace(
            model, identities, store, world.time, phonesIdentity(), [this] { return notKept; },
            [this](std::string_view line) { lines.emplace_back(line); },
            [this](const Result<std::string>& outcome) {
                if (outcome) lines.push_back(*outcome);
                if (!outcome) failure = outcome.failure().message.builtIn();
            });
    }
};

} // namespace

TEST_F(IdentityAdderTest, TheKeyIsThereAtOnceAndItIsSaidWhenItIsHeard) {
    add();
    ASSERT_EQ(model.settings().keys.get(), std::vector{pastedKey(phonesIdentity())});
    EXPECT_EQ(store.kept, identitiesOf({phonesIdentity()}));
    EXPECT_EQ(lines, std::vector<std::string>{"Sleutel toegevoegd: Telefoon, drempel -75 dBm"});
    world.pass(10s);
    world.central.advertise({.id = id, .rssi = -58});
    world.pass(1s);
    EXPECT_EQ(lines.back(), "Gehoord: -58 dBm");
    EXPECT_EQ(lines.size(), 2U);
}

TEST_F(IdentityAdderTest, WhatIsNotHeardIsAKeyAllTheSameAndItIsSaidWhatToDo) {
    add();
    world.pass(control::identityPatience - 1s);
    EXPECT_EQ(lines.size(), 1U);
    world.pass(1s);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines.back().starts_with("De identiteit is geldig, maar Telefoon is nog niet "
                                         "gehoord. Ontgrendel het apparaat"))
        << lines.back();
    EXPECT_EQ(model.settings().keys.get().size(), 1U);
}

TEST_F(IdentityAdderTest, WhatCannotBeKeptIsNoKey) {
    store.fault = Failure{"de schijf is vol"};
    add();
    world.pass(1s);
    EXPECT_EQ(failure, "de schijf is vol");
    EXPECT_TRUE(model.settings().keys.get().empty());
}

TEST_F(IdentityAdderTest, WithoutPreferencesNothingStaysBehind) {
    notKept = Failure{"alleen te lezen"};
    add();
    world.pass(1s);
    EXPECT_EQ(failure, "alleen te lezen");
    EXPECT_TRUE(model.settings().keys.get().empty());
    EXPECT_TRUE(store.kept.empty());
    EXPECT_TRUE(lines.empty());
}
