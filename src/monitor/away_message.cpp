#include "monitor/away_message.h"

namespace wegslot {

std::string awayMessage(const std::vector<KeyDevice>& keys, const KeyStates& states) {
    std::vector<std::string> names;
    for (const KeyDevice& key : keys) {
        const auto state = states.find(key.id);
        if (state != states.end() && state->second == KeyState::away) names.push_back(key.name);
    }
    if (names.empty()) return "Je bent buiten bereik";
    if (names.size() == 1) return names.front() + " is buiten bereik";

    std::string list = names.front();
    for (std::size_t i = 1; i + 1 < names.size(); ++i)
        list += ", " + names[i];
    return list + " en " + names.back() + " zijn buiten bereik";
}

} // namespace wegslot
