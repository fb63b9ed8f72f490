// What changed when settings changed, in words.
#pragma once

#include "base/translation.h"
#include "base/uuid.h"
#include "model/preferences_store.h"

#include <functional>
#include <string>
#include <vector>

namespace wegslot::insight {

/// The name of a key as the history writes it, by its id.
using NameOf = std::function<Message(const Uuid& id)>;

/// One text for each change, in the order of the names. A setting that was not known `before` did
/// not change, and one that nothing is judged by is passed over.
[[nodiscard]] std::vector<Message> changesOf(const Preferences& before, const Preferences& after,
                                             const NameOf& nameOf);

} // namespace wegslot::insight
