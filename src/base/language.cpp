#include "base/language.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace wegslot {
namespace {

bool isNone(std::string_view locale) {
    return locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.");
}

/// The one that decides: the first that is set.
std::string locale(const Variable& variable) {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (std::string value = variable(name); !value.empty()) return value;
    return {};
}

/// "de_AT.UTF-8@euro" is de_AT, and else de. What could lead out of a folder is no language.
void add(std::vector<std::string>& names, std::string_view locale) {
    const auto name = locale.substr(0, locale.find_first_of(".@"));
    const auto isOfNames = [](char letter) {
        return letter == '_' || (letter >= 'A' && letter <= 'Z') ||
               (letter >= 'a' && letter <= 'z');
    };
    if (name.empty() || !std::ranges::all_of(name, isOfNames)) return;
    for (const auto& tried : {name, name.substr(0, name.find('_'))})
        if (std::ranges::find(names, tried) == names.end()) names.emplace_back(tried);
}

} // namespace

std::vector<std::string> languages(const Variable& variable) {
    const std::string chosen = locale(variable);
    if (isNone(chosen)) return {};
    std::vector<std::string> names;
    const std::string wishes = variable("LANGUAGE");
    for (std::string_view rest = wishes; !rest.empty();) {
        const auto wish = rest.substr(0, rest.find(':'));
        if (!wish.empty() && isNone(wish)) return names; // as they stand is what comes next
        add(names, wish);
        rest.remove_prefix(std::min(rest.size(), wish.size() + 1));
    }
    add(names, chosen);
    add(names, "en");
    return names;
}

} // namespace wegslot
