// Why a phase was entered, as others are told: a code, which stays what it is whatever the words
// and the language, and the names that belong to it. What comes from a running Wegslot is of any
// version and may be anybody's invention, so that what is not known here has no words.
#pragma once

#include "base/translation.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::control {

struct Reason {
    /// More keys than anybody has; the sentence is read by a person.
    static constexpr std::size_t mostArguments = 64;
    /// In bytes; the name of a device has 248 at most.
    static constexpr std::size_t longestArgument = 1000;

    std::string code;                   ///< "keysAway"; empty where there is none
    std::vector<std::string> arguments; ///< names, whatever characters

    friend bool operator==(const Reason&, const Reason&) = default;
};

/// Nothing for a code that is not known or does not go with such arguments.
[[nodiscard]] std::optional<Message> words(const Reason& reason);

/// The one of which these are the words; without a code if there is none.
[[nodiscard]] Reason reasonOf(const Message& words);

} // namespace wegslot::control
