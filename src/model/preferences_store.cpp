#include "model/preferences_store.h"

#include <utility>

namespace wegslot {

template <typename T>
std::optional<T> MemoryStore::find(std::string_view name) const {
    for (const Preferences* const layer : {&values_, &defaults_}) {
        const auto found = layer->find(name);
        if (found == layer->end()) continue;
        if (const T* const value = std::get_if<T>(&found->second)) return *value;
    }
    return std::nullopt;
}

bool MemoryStore::boolean(std::string_view name) const { return find<bool>(name).value_or(false); }

double MemoryStore::number(std::string_view name) const { return find<double>(name).value_or(0); }

std::optional<std::string> MemoryStore::text(std::string_view name) const {
    return find<std::string>(name);
}

std::optional<Data> MemoryStore::data(std::string_view name) const { return find<Data>(name); }

void MemoryStore::write(std::string_view name, PreferenceValue value) {
    values_.insert_or_assign(std::string(name), std::move(value));
}

} // namespace wegslot
