#include "model/key_codec.h"

#include "base/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

using Json = nlohmann::ordered_json;

// Whole numbers are written without a fraction, as a person would.
Json number(double value) {
    constexpr double exact = 9007199254740992.0; // 2^53
    if (value == std::trunc(value) && std::abs(value) < exact)
        return static_cast<std::int64_t>(value);
    return value;
}

bool isEncodable(const KeyDevice& key) {
    return std::isfinite(key.threshold.value) && isUtf8(key.name) && isUtf8(key.model.value_or(""));
}

Json encoded(const KeyDevice& key) {
    Json record;
    record["id"] = key.id.text();
    record["name"] = key.name;
    if (key.model) record["model"] = *key.model;
    if (key.isApple) record["isApple"] = *key.isApple;
    record["threshold"] = number(key.threshold.value);
    if (key.isPasted) record["isPasted"] = true;
    return record;
}

bool isNullOrMissing(const Json& record, const char* field) {
    return !record.contains(field) || record[field].is_null();
}

std::optional<KeyDevice> decoded(const Json& record) {
    if (!record.is_object()) return std::nullopt;
    const auto has = [&record](const char* field, auto check) {
        return record.contains(field) && check(record[field]);
    };
    const auto isString = [](const Json& value) { return value.is_string(); };
    const auto isNumber = [](const Json& value) { return value.is_number(); };
    const auto isBoolean = [](const Json& value) { return value.is_boolean(); };

    if (!has("id", isString) || !has("name", isString) || !has("threshold", isNumber))
        return std::nullopt;
    const auto id = Uuid::parse(record["id"].get_ref<const std::string&>());
    if (!id) return std::nullopt;

    KeyDevice key{.id = *id,
                  .name = record["name"].get<std::string>(),
                  .model = std::nullopt,
                  .isApple = std::nullopt,
                  .threshold = Dbm{record["threshold"].get<double>()}};
    if (!isNullOrMissing(record, "model")) {
        if (!has("model", isString)) return std::nullopt;
        key.model = record["model"].get<std::string>();
    }
    if (!isNullOrMissing(record, "isApple")) {
        if (!has("isApple", isBoolean)) return std::nullopt;
        key.isApple = record["isApple"].get<bool>();
    }
    if (!isNullOrMissing(record, "isPasted")) {
        if (!has("isPasted", isBoolean)) return std::nullopt;
        key.isPasted = record["isPasted"].get<bool>();
    }
    return key;
}

} // namespace

std::optional<std::string> encodeKeys(const std::vector<KeyDevice>& keys) {
    Json list = Json::array();
    for (const KeyDevice& key : keys) {
        if (!isEncodable(key)) return std::nullopt;
        list.push_back(encoded(key));
    }
    return list.dump();
}

std::optional<std::vector<KeyDevice>> decodeKeys(std::string_view json) {
    const Json list = Json::parse(json, nullptr, false);
    if (!list.is_array()) return std::nullopt; // what cannot be parsed is no array either

    std::vector<KeyDevice> keys;
    for (const Json& record : list) {
        const auto key = decoded(record);
        if (!key) return std::nullopt;
        const bool repeated = std::ranges::any_of(
            keys, [&key](const KeyDevice& other) { return other.id == key->id; });
        if (repeated) return std::nullopt;
        keys.push_back(*key);
    }
    return keys;
}

} // namespace wegslot
