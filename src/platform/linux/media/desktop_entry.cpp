#include "platform/linux/media/desktop_entry.h"

#include "base/translation.h"
#include "platform/linux/media/desktop_entry_text.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

constexpr std::string_view separators = " \t";

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
        } else if (!quoted && separators.find(character) != std::string_view::npos) {
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

std::vector<std::string> listed(std::string_view value) {
    std::vector<std::string> names;
    while (!value.empty()) {
        const auto end = std::min(value.find(';'), value.size());
        const auto name = withoutBlanksAfter(withoutBlanksBefore(value.substr(0, end)));
        if (!name.empty()) names.push_back(unescaped(name));
        value.remove_prefix(std::min(end + 1, value.size()));
    }
    return names;
}

struct Names {
    /// Of a name in the user's language.
    std::string key;
    std::string translated = {};
    std::string untranslated = {};
};

void takeField(std::string_view key, std::string_view value, DesktopEntry& entry, Names& names) {
    if (key == names.key) names.translated = unescaped(value);
    if (key == "Name") names.untranslated = unescaped(value);
    if (key == "Exec") entry.executable = firstWord(unescaped(value));
    if (key == "TryExec") entry.neededExecutable = unescaped(withoutBlanksAfter(value));
    if (key == "StartupWMClass") entry.windowClass = unescaped(value);
    if (key == "Hidden") entry.hidden = withoutBlanksAfter(value) == "true";
    if (key == "Type") entry.type = withoutBlanksAfter(value);
    if (key == "X-GNOME-Autostart-enabled")
        entry.startsAtLogin = withoutBlanksAfter(value) != "false";
    if (key == "OnlyShowIn") entry.onlyShowIn = listed(value);
    if (key == "NotShowIn") entry.notShowIn = listed(value);
}

} // namespace

std::optional<DesktopEntry> readDesktopEntry(std::string_view text) {
    const auto group = entryGroup(text);
    if (!group) return std::nullopt;
    DesktopEntry entry;
    // Translators: the code of your language, as applications have their names under: Name[nl]
    Names names{.key = "Name[" + translated("nl") + "]"};
    for (const EntryField& field : group->fields)
        takeField(field.key, field.value, entry, names);
    entry.name = std::move(names.translated.empty() ? names.untranslated : names.translated);
    entry.program = baseName(entry.executable);
    return entry;
}

} // namespace wegslot
