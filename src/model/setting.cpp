#include "model/setting.h"

#include "model/key_codec.h"

#include <string>

namespace wegslot {
namespace {

struct Read {
    const PreferencesStore& store;
    std::string_view name;

    PreferenceValue operator()(bool) const { return store.boolean(name); }
    PreferenceValue operator()(double) const { return store.number(name); }
    PreferenceValue operator()(const std::string& like) const {
        return store.text(name).value_or(like);
    }
    PreferenceValue operator()(const Data& like) const { return store.data(name).value_or(like); }
};

} // namespace

PreferenceValue read(const PreferencesStore& store, std::string_view name,
                     const PreferenceValue& like) {
    return std::visit(Read{store, name}, like);
}

std::optional<PreferenceValue> stored(bool value) { return value; }

std::optional<PreferenceValue> stored(double value) { return value; }

std::optional<PreferenceValue> stored(Seconds value) { return value.count(); }

std::optional<PreferenceValue> stored(LockRule rule) { return std::string(storedText(rule)); }

std::optional<PreferenceValue> stored(const std::vector<KeyDevice>& keys) {
    auto list = encodeKeys(keys);
    if (!list) return std::nullopt;
    return Data{*std::move(list)};
}

std::optional<PreferenceValue> stored(const KeyRows& rows) { return Data{encodeRows(rows)}; }

template <>
std::optional<bool> meaning(const PreferenceValue& value) {
    const bool* const chosen = std::get_if<bool>(&value);
    return chosen == nullptr ? std::nullopt : std::optional(*chosen);
}

template <>
std::optional<double> meaning(const PreferenceValue& value) {
    const double* const number = std::get_if<double>(&value);
    return number == nullptr ? std::nullopt : std::optional(*number);
}

template <>
std::optional<Seconds> meaning(const PreferenceValue& value) {
    const auto number = meaning<double>(value);
    return number ? std::optional(Seconds{*number}) : std::nullopt;
}

template <>
std::optional<LockRule> meaning(const PreferenceValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text == nullptr ? std::nullopt : lockRule(*text);
}

template <>
std::optional<std::vector<KeyDevice>> meaning(const PreferenceValue& value) {
    const auto* const list = std::get_if<Data>(&value);
    return list == nullptr ? std::nullopt : decodeKeys(list->bytes);
}

template <>
std::optional<KeyRows> meaning(const PreferenceValue& value) {
    const auto* const rows = std::get_if<Data>(&value);
    return rows == nullptr ? std::nullopt : decodeRows(rows->bytes);
}

} // namespace wegslot
