#include "model/key_rows.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>

namespace wegslot {

std::string encodeRows(const KeyRows& rows) {
    nlohmann::json object = nlohmann::json::object();
    for (const auto& [id, row] : rows)
        object[id.text()] = row;
    return object.dump();
}

std::optional<KeyRows> decodeRows(std::string_view json) {
    const auto object = nlohmann::json::parse(json, nullptr, false);
    if (!object.is_object()) return std::nullopt;
    KeyRows rows;
    std::set<int> taken;
    for (const auto& [text, row] : object.items()) {
        const auto id = Uuid::parse(text);
        if (!id || !row.is_number_integer()) return std::nullopt;
        const auto number = row.get<std::int64_t>();
        if (number < 1 || number > std::numeric_limits<int>::max()) return std::nullopt;
        if (!taken.insert(static_cast<int>(number)).second) return std::nullopt;
        rows.emplace(*id, static_cast<int>(number));
    }
    return rows;
}

int freshRow(const KeyRows& rows, const std::function<int()>& draw) {
    int row = draw();
    while (std::ranges::any_of(rows, [&row](const auto& taken) { return taken.second == row; }))
        row = draw();
    return row;
}

} // namespace wegslot
