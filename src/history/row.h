// A key as the history knows it: by a number. What is kept tells nobody's name or address; which
// number is whose stands with the keys themselves.
#pragma once

#include "base/uuid.h"

#include <optional>

namespace wegslot::history {

/// 1 and more.
using Row = int;

/// An id that stands for the row wherever the core wants one.
[[nodiscard]] constexpr Uuid idOf(Row row) {
    Uuid id;
    for (std::size_t place = id.bytes.size(); row > 0 && place > 0; row /= 256)
        id.bytes[--place] = static_cast<std::uint8_t>(row % 256);
    return id;
}

/// Nothing for an id that stands for none.
[[nodiscard]] constexpr std::optional<Row> rowOf(const Uuid& id) {
    Row row = 0;
    for (std::size_t place = 12; place < id.bytes.size(); ++place)
        row = row * 256 + id.bytes[place];
    return row > 0 && idOf(row) == id ? std::optional(row) : std::nullopt;
}

} // namespace wegslot::history
