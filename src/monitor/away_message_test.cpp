#include "monitor/away_message.h"

#include "tests/support/world.h"

using namespace wegslot;

namespace {

std::string messageFor(const std::vector<std::string>& names) {
    std::vector<KeyDevice> keys;
    KeyStates states;
    for (unsigned i = 0; i < names.size(); ++i) {
        keys.push_back(keyNamed(names[i], i));
        states.emplace(numbered(i), KeyState::away);
    }
    return awayMessage(keys, states).builtIn();
}

} // namespace

TEST(AwayMessage, NamesWhoIsAway) {
    EXPECT_EQ(messageFor({}), "Je bent buiten bereik");
    EXPECT_EQ(messageFor({"iPhone"}), "iPhone is buiten bereik");
    EXPECT_EQ(messageFor({"A", "B"}), "A en B zijn buiten bereik");
    EXPECT_EQ(messageFor({"A", "B", "C"}), "A, B en C zijn buiten bereik");
    EXPECT_EQ(messageFor({"A", "B", "C", "D"}), "A, B, C en D zijn buiten bereik");
}

TEST(AwayMessage, NamesOnlyWhoIsJudgedAwayInTheOrderOfTheList) {
    const std::vector keys{keyNamed("Z", 9), keyNamed("near", 1), keyNamed("leaving", 2),
                           keyNamed("onbekend", 3), keyNamed("A", 4)};
    const KeyStates states{{numbered(9), KeyState::away},
                           {numbered(1), KeyState::near},
                           {numbered(2), KeyState::leaving},
                           {numbered(4), KeyState::away}};
    EXPECT_EQ(awayMessage(keys, states), "Z en A zijn buiten bereik");
}
