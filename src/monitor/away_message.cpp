#include "monitor/away_message.h"

namespace wegslot {

Message awayMessage(const std::vector<KeyDevice>& keys, const KeyStates& states) {
    std::vector<Message> names;
    for (const KeyDevice& key : keys) {
        const auto state = states.find(key.id);
        if (state != states.end() && state->second == KeyState::away) names.push_back(key.name);
    }
    return awayMessage(names);
}

Message awayMessage(const std::vector<Message>& names) {
    if (names.empty()) return message("Je bent buiten bereik");
    if (names.size() == 1) return message("%1 is buiten bereik", names);
    if (names.size() == 2) return message("%1 en %2 zijn buiten bereik", names);

    Message all = names.front();
    for (std::size_t i = 1; i + 2 < names.size(); ++i)
        all = message("%1, %2", {all, names[i]});
    return message("%1, %2 en %3 zijn buiten bereik", {all, names[names.size() - 2], names.back()});
}

} // namespace wegslot
