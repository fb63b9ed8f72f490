// The key list as it is stored: a JSON array of records. Absent optional fields are left out.
#pragma once

#include "model/key_device.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

/// Nothing when a threshold is not a number or a text is not UTF-8: JSON has no way to say it.
[[nodiscard]] std::optional<std::string> encodeKeys(const std::vector<KeyDevice>& keys);

/// Nothing when any record is incomplete or wrongly typed, or when two have the same id:
/// half a list of keys would lock, or not lock, without anybody knowing why. Fields that are
/// not known are passed over.
[[nodiscard]] std::optional<std::vector<KeyDevice>> decodeKeys(std::string_view json);

} // namespace wegslot
