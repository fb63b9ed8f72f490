// The user's own command for locking the screen, "lockCommand" in the preferences: a list of words,
// run without a shell. Edited by hand only, for sessions whose locker Wegslot does not know.
#pragma once

#include "base/result.h"
#include "model/preferences_store.h"

#include <string>
#include <vector>

namespace wegslot {

/// The words, the program first; none when there is no such preference. The failure says what is
/// wrong with it.
[[nodiscard]] Result<std::vector<std::string>> lockCommand(const PreferencesStore& store);

} // namespace wegslot
