// How several keys combine into one verdict.
#pragma once

#include <optional>
#include <string_view>

namespace wegslot {

enum class LockRule {
    allAway, ///< lock only when all keys are away
    anyAway, ///< lock as soon as any key is away
};

/// The text under which a rule is stored.
[[nodiscard]] constexpr std::string_view storedText(LockRule rule) {
    switch (rule) {
    case LockRule::allAway:
        return "allAway";
    case LockRule::anyAway:
        return "anyAway";
    }
    return {};
}

/// Accepts exactly the stored texts, case included.
[[nodiscard]] constexpr std::optional<LockRule> lockRule(std::string_view text) {
    for (const LockRule rule : {LockRule::allAway, LockRule::anyAway})
        if (text == storedText(rule)) return rule;
    return std::nullopt;
}

} // namespace wegslot
