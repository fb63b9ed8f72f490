#include "platform/linux/media/desktop_entry_text.h"

#include <algorithm>

namespace wegslot {
namespace {

constexpr std::string_view blanks = " \t";
constexpr std::string_view wantedGroup = "[Desktop Entry]";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The line that begins at `start`, with its end.
std::string_view lineAt(std::string_view text, std::size_t start) {
    const auto end = text.find('\n', start);
    return text.substr(start, end == std::string_view::npos ? end : end + 1 - start);
}

/// In either way of ending a line.
std::string_view withoutEnd(std::string_view line) {
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

/// Where the group's first line begins.
std::optional<std::size_t> contentStart(std::string_view text) {
    std::size_t place = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    while (place < text.size()) {
        const auto line = lineAt(text, place);
        place += line.size();
        if (withoutBlanksAfter(withoutEnd(line)) == wantedGroup) return place;
    }
    return std::nullopt;
}

std::string fieldLine(const EntryChange& change) {
    return change.first + "=" + *change.second + "\n";
}

} // namespace

std::string_view withoutBlanksBefore(std::string_view text) {
    const auto start = text.find_first_not_of(blanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

std::string_view withoutBlanksAfter(std::string_view text) {
    return text.substr(0, text.find_last_not_of(blanks) + 1); // npos + 1 is 0
}

std::optional<EntryGroup> entryGroup(std::string_view text) {
    const auto start = contentStart(text);
    if (!start) return std::nullopt;
    EntryGroup group{.fields = {}, .end = *start};
    for (std::size_t place = *start; place < text.size();) {
        const auto whole = lineAt(text, place);
        place += whole.size();
        const auto line = withoutEnd(whole);
        if (line.starts_with('[')) break;
        const auto equals = line.find('=');
        if (equals == std::string_view::npos || line.starts_with('#')) continue;
        group.fields.push_back({.key = withoutBlanksAfter(line.substr(0, equals)),
                                .value = withoutBlanksBefore(line.substr(equals + 1)),
                                .line = whole});
        group.end = place;
    }
    return group;
}

std::string withFields(std::string_view text, const std::vector<EntryChange>& changes) {
    const auto group = entryGroup(text);
    if (!group) return std::string(text);
    std::string changed;
    std::size_t done = 0; // of the text
    std::vector<std::string_view> placed;
    for (const EntryField& field : group->fields) {
        const auto change = std::ranges::find(changes, field.key, &EntryChange::first);
        if (change == changes.end()) continue;
        const auto start = static_cast<std::size_t>(field.line.data() - text.data());
        changed += text.substr(done, start - done);
        done = start + field.line.size();
        // One that stands there twice would else be read differently by one and the other.
        const bool isFirst = std::ranges::find(placed, field.key) == placed.end();
        if (change->second && isFirst) changed += fieldLine(*change);
        placed.push_back(field.key);
    }
    changed += text.substr(done, group->end - done);
    for (const EntryChange& change : changes) {
        if (!change.second || std::ranges::find(placed, change.first) != placed.end()) continue;
        if (!changed.ends_with('\n')) changed += '\n';
        changed += fieldLine(change);
    }
    return changed.append(text.substr(group->end));
}

std::string execWord(std::string_view argument) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._+-:@,%";
    std::string word;
    for (const char character : argument) {
        switch (character) {
        case '%': // one alone stands for what is to be opened
            word += "%%";
            break;
        case '"':
        case '`':
        case '$':
            word.append(R"(\\)") += character;
            break;
        case '\\': // in the quotes, and both of those in the value
            word += R"(\\\\)";
            break;
        case '\n':
            word += R"(\n)";
            break;
        case '\r':
            word += R"(\r)";
            break;
        case '\t':
            word += R"(\t)";
            break;
        default:
            word += character;
        }
    }
    const bool isPlain = argument.find_first_not_of(plain) == std::string_view::npos;
    return isPlain && !argument.empty() ? word : '"' + word + '"';
}

} // namespace wegslot
