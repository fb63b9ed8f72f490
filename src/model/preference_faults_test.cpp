#include "model/preference_faults.h"

#include "model/settings.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

std::vector<std::string> faultsOf(Preferences values) {
    MemoryStore store(std::move(values));
    const Settings settings(store); // registers the defaults
    std::vector<std::string> texts;
    for (const PreferenceFault& fault : preferenceFaults(store))
        texts.push_back(fault.text.builtIn());
    return texts;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(PreferenceFaults, WhatWegslotWritesItselfHasNone) {
    MemoryStore store;
    Settings settings(store);
    settings.enabled.set(false);
    settings.rule.set(LockRule::anyAway);
    settings.awayDelay.set(Seconds{7});
    settings.addKey({});
    EXPECT_EQ(preferenceFaults(store), std::vector<PreferenceFault>{});
}

TEST(PreferenceFaults, AValueOfAnotherKindIsNamed) {
    EXPECT_EQ(faultsOf({{"awayDelay", std::string("5")},
                        {"enabled", 1.0},
                        {"keys", std::string("none")},
                        {"lockCommand", std::string("swaylock -f")},
                        {"rule", true}}),
              (Texts{"awayDelay is geen getal", "enabled is geen true of false",
                     "keys is geen lijst van sleutels", "lockCommand is geen lijst van woorden",
                     "rule is geen tekst"}));
    EXPECT_EQ(faultsOf({{"keys", Data{R"([{"name": 3}])"}}}),
              Texts{"keys is geen lijst van sleutels"});
    EXPECT_EQ(faultsOf({{"lockCommand", Data{R"(["swaylock", "-f"])"}}}), Texts{});
}

TEST(PreferenceFaults, ARuleThatIsNoneIsNamed) {
    EXPECT_EQ(faultsOf({{"rule", std::string("allaway")}}),
              Texts{"rule is niet " + std::string(storedText(LockRule::allAway)) + " of " +
                    std::string(storedText(LockRule::anyAway))});
}

TEST(PreferenceFaults, ANameThatNobodyKnowsIsNamedAndFakesNoLine) {
    EXPECT_EQ(faultsOf({{"awaydelay", 5.0}, {"x\ny", true}}),
              (Texts{"awaydelay is onbekend", "x\uFFFDy is onbekend"}));
}
