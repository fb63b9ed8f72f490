// Reads the value of one event in a trace as what it tells: each field by its type. A fault ends
// it, as it does in `Fields`.
#pragma once

#include "trace/event.h"
#include "trace/json_tree.h"

#include <string_view>

namespace wegslot::trace {

[[nodiscard]] Event readEvent(std::string_view word, const JsonNode& node);

/// A value of the kind of `like`.
[[nodiscard]] PreferenceValue readPreference(const PreferenceValue& like, std::string_view name,
                                             const JsonNode& node);

} // namespace wegslot::trace
