#include "scanner/log_name.h"

#include "base/text.h"

#include <algorithm>
#include <cstddef>

namespace wegslot {
namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool beginsAField(std::string_view text) {
    const auto end = std::ranges::find_if_not(text, isLetter);
    return end != text.begin() && end != text.end() && *end == '=';
}

/// The bytes of the separator that `text` begins with: a blank of any kind.
std::size_t separatorOf(std::string_view text) {
    for (std::size_t length = 1; length <= 3 && length <= text.size(); ++length)
        if (trimmed(text.substr(0, length)).empty()) return length;
    return 0;
}

} // namespace

std::string nameForLog(std::string_view name) {
    const std::string shown = printable(name);
    std::string safe;
    for (std::string_view rest = shown; !rest.empty();) {
        const std::size_t separator = separatorOf(rest);
        if (separator > 0 && beginsAField(rest.substr(separator))) {
            safe += "\uFFFD";
            rest.remove_prefix(separator);
            continue;
        }
        safe += rest.front();
        rest.remove_prefix(1);
    }
    return safe;
}

} // namespace wegslot
