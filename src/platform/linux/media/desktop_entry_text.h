// The text of a desktop entry: finds its fields and changes some of them, leaving everything else
// exactly as it was written. What the fields mean is decided elsewhere.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace wegslot {

/// Points into the text.
struct EntryField {
    std::string_view key;
    std::string_view value; ///< as it stands there: escapes and blanks after it included
    std::string_view line;  ///< all of it, with its end
};

/// The group "Desktop Entry", the one that counts.
struct EntryGroup {
    std::vector<EntryField> fields;
    std::size_t end; ///< of its last field, where another one may follow
};

/// Nothing when the text has no such group.
[[nodiscard]] std::optional<EntryGroup> entryGroup(std::string_view text);

/// A field's key, and its value as it is to stand there; none to take the field away.
using EntryChange = std::pair<std::string, std::optional<std::string>>;

/// `text` with these fields of the group changed: each where it stood, new ones at the end. A text
/// without the group stays as it is.
[[nodiscard]] std::string withFields(std::string_view text,
                                     const std::vector<EntryChange>& changes);

/// One argument of a program as it is to stand in Exec, quoted where it must be.
[[nodiscard]] std::string execWord(std::string_view argument);

[[nodiscard]] std::string_view withoutBlanksBefore(std::string_view text);
[[nodiscard]] std::string_view withoutBlanksAfter(std::string_view text);

} // namespace wegslot
