#include "model/lock_command.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace wegslot {

Result<std::vector<std::string>> lockCommand(const PreferencesStore& store) {
    constexpr auto name = "lockCommand";
    using Words = std::vector<std::string>;
    const Failure wrong{message("lockCommand in de voorkeuren is geen lijst van woorden")};
    const auto data = store.data(name);
    if (!data) {
        // Of another type, it is wrong too, and not just absent.
        const bool other = store.text(name) || store.boolean(name) || store.number(name) != 0;
        return other ? Result<Words>(wrong) : Words{};
    }
    const auto list = nlohmann::json::parse(data->bytes, nullptr, false);
    const auto isText = [](const nlohmann::json& word) { return word.is_string(); };
    if (!list.is_array() || !std::ranges::all_of(list, isText)) return wrong;
    auto words = list.get<Words>();
    const bool cut = std::ranges::any_of(
        words, [](const std::string& word) { return word.find('\0') != std::string::npos; });
    if (cut || (!words.empty() && words.front().empty())) return wrong;
    return words;
}

} // namespace wegslot
