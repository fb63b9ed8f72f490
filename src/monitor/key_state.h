// What one key is judged to be. There is no "unknown": a key without data is away.
#pragma once

#include "base/uuid.h"

#include <map>
#include <string_view>

namespace wegslot {

enum class KeyState {
    near,    ///< heard, and at or above its threshold
    leaving, ///< heard, but weak for less than the away delay
    away,    ///< never heard, silent too long, or weak too long
};

using KeyStates = std::map<Uuid, KeyState>;

[[nodiscard]] constexpr std::string_view name(KeyState state) {
    switch (state) {
    case KeyState::near:
        return "near";
    case KeyState::leaving:
        return "leaving";
    case KeyState::away:
        return "away";
    }
    return {};
}

} // namespace wegslot
