#include "trace/settings_values.h"

#include <limits>
#include <utility>

namespace wegslot::trace {

PreferenceValue valueOf(const std::vector<KeyDevice>& keys) {
    if (auto list = stored(keys)) return *std::move(list);
    std::vector<KeyDevice> writable = keys;
    for (KeyDevice& key : writable)
        if (!(key.threshold.value < std::numeric_limits<double>::max()))
            key.threshold = Dbm{std::numeric_limits<double>::max()};
    return stored(writable).value_or(Data{"[]"});
}

Preferences valuesOf(const Settings& settings) {
    Preferences values;
    settings.visit(
        [&values](const auto& setting) { values.emplace(setting.name(), valueOf(setting.get())); });
    return values;
}

} // namespace wegslot::trace
