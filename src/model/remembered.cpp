#include "model/remembered.h"

#include <variant>

namespace wegslot {

Remembered::Remembered(PreferencesStore& store) : list_{store} {
    for (const AnySetting& any : list_.all)
        std::visit([](auto* note) { note->reread(); }, any);
}

void Remembered::addDefaults(Preferences& defaults) {
    MemoryStore nowhere;
    const Remembered specimen(nowhere);
    for (const AnySetting& any : specimen.list_.all)
        std::visit(
            [&defaults](const auto* note) { defaults.emplace(note->name(), note->byDefault()); },
            any);
}

} // namespace wegslot
