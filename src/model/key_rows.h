// Which number each key has in the history, which itself tells nobody's name or address. Kept with
// the keys.
#pragma once

#include "base/uuid.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// 1 and more; no two alike.
using KeyRows = std::map<Uuid, int>;

/// As a JSON object of numbers by id.
[[nodiscard]] std::string encodeRows(const KeyRows& rows);

/// Nothing for anything else.
[[nodiscard]] std::optional<KeyRows> decodeRows(std::string_view json);

/// A number that `rows` has not; `draw` gives numbers of 1 and more.
[[nodiscard]] int freshRow(const KeyRows& rows, const std::function<int()>& draw);

} // namespace wegslot
