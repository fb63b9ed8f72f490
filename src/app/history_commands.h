// What `wegslot why` and `wegslot history` print of what is kept.
#pragma once

#include "app/arguments.h"
#include "app/key_commands.h"
#include "history/explanation_text.h"
#include "history/minute.h"
#include "model/remembered.h"
#include "model/settings.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// The keys by their numbers in the history.
[[nodiscard]] std::map<history::Row, std::string> keyNames(const Settings& settings,
                                                           const Remembered& remembered);

/// Who reads in this place; a key without a name is one that was removed.
[[nodiscard]] history::Reader readerOf(std::map<history::Row, std::string> names);

/// Explains the last decisions, or the one that is nearest to a time; says so where there is none.
/// `at` is on the clock on the wall.
[[nodiscard]] Result<std::vector<std::string>> whyLines(const std::vector<history::Minute>& minutes,
                                                        const command::Why& asked,
                                                        std::optional<TimePoint> at,
                                                        const history::Reader& reader);

/// One line for each thing that is kept, in order: in words those that people ask about; for
/// programs all, levels and states of the keys included.
void printHistory(const std::vector<history::Minute>& minutes, const command::History& asked,
                  const history::Reader& reader, const PrintLine& print);

} // namespace wegslot
