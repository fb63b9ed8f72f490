// The settings as a trace has them, which has to have every one.
#pragma once

#include "model/settings.h"

#include <vector>

namespace wegslot::trace {

[[nodiscard]] PreferenceValue valueOf(const auto& value) { return *stored(value); }

/// A list may hold what no stored one can: no signal reaches a threshold that is no number, so that
/// the largest stands for it.
[[nodiscard]] PreferenceValue valueOf(const std::vector<KeyDevice>& keys);

/// All of them, by name.
[[nodiscard]] Preferences valuesOf(const Settings& settings);

} // namespace wegslot::trace
