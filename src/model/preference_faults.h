// What is wrong with preferences that somebody typed. Each such value reads as its default, or as
// none, without a word; here are the words.
#pragma once

#include "base/translation.h"
#include "model/preferences_store.h"

#include <string>
#include <vector>

namespace wegslot {

struct PreferenceFault {
    std::string name; ///< as it was typed
    Message text;     ///< fit for a line
    friend bool operator==(const PreferenceFault&, const PreferenceFault&) = default;
};

/// Of a store whose defaults have been registered, in the order of the names.
[[nodiscard]] std::vector<PreferenceFault> preferenceFaults(const MemoryStore& store);

} // namespace wegslot
