#include "platform/linux/media/desktop_entry.h"

#include <utility>

namespace wegslot {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view wantedGroup = "[Desktop Entry]";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutBlanksBefore(std::string_view text) {
    const auto start = text.find_first_not_of(blanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

std::string_view withoutBlanksAfter(std::string_view text) {
    return text.substr(0, text.find_last_not_of(blanks) + 1); // npos + 1 is 0
}

/// Takes the first line off `text`, in either way of ending one.
std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    auto line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

std::optional<char> meantBy(char escaped) {
    switch (escaped) {
    case 's':
        return ' ';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case '\\':
        return '\\';
    default:
        return std::nullopt;
    }
}

std::string unescaped(std::string_view value) {
    std::string plain;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool escape = value[i] == '\\' && i + 1 < value.size();
        const auto meant = escape ? meantBy(value[i + 1]) : std::nullopt;
        plain += meant.value_or(value[i]);
        if (meant) ++i;
    }
    return plain;
}

/// The first word of a command line, as the standard has them quoted.
std::string firstWord(std::string_view command) {
    constexpr std::string_view escapable = "\"`$\\";
    command = withoutBlanksBefore(command);
    std::string word;
    bool quoted = false;
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char character = command[i];
        const bool escape = quoted && character == '\\' && i + 1 < command.size() &&
                            escapable.find(command[i + 1]) != std::string_view::npos;
        if (escape) {
            word += command[++i];
        } else if (character == '"') {
            quoted = !quoted;
        } else if (!quoted && blanks.find(character) != std::string_view::npos) {
            break;
        } else {
            word += character;
        }
    }
    return word;
}

std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1); // npos + 1 is 0
}

struct Names {
    std::string dutch;
    std::string untranslated;
};

void takeField(std::string_view key, std::string_view value, DesktopEntry& entry, Names& names) {
    if (key == "Name[nl]") names.dutch = unescaped(value);
    if (key == "Name") names.untranslated = unescaped(value);
    if (key == "Exec") entry.program = baseName(firstWord(unescaped(value)));
    if (key == "StartupWMClass") entry.windowClass = unescaped(value);
    if (key == "Hidden") entry.hidden = withoutBlanksAfter(value) == "true";
}

} // namespace

std::optional<DesktopEntry> readDesktopEntry(std::string_view text) {
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    bool found = false;
    while (!text.empty() && !found)
        found = withoutBlanksAfter(takeLine(text)) == wantedGroup;
    if (!found) return std::nullopt;

    DesktopEntry entry;
    Names names;
    while (!text.empty()) {
        const auto line = takeLine(text);
        if (line.starts_with('[')) break;
        const auto equals = line.find('=');
        if (equals == std::string_view::npos || line.starts_with('#')) continue;
        takeField(withoutBlanksAfter(line.substr(0, equals)),
                  withoutBlanksBefore(line.substr(equals + 1)), entry, names);
    }
    entry.name = std::move(names.dutch.empty() ? names.untranslated : names.dutch);
    return entry;
}

} // namespace wegslot
