#include "platform/linux/media/application_names.h"

#include "base/text.h"
#include "files/linux/file_content.h"
#include "platform/linux/media/desktop_entry.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view suffix = ".desktop";

struct EntryFile {
    std::string id; ///< its path below applications/, with dashes for slashes and no suffix
    fs::path path;
};

std::vector<EntryFile> entryFilesIn(const fs::path& folder, std::size_t most) {
    constexpr auto options = fs::directory_options::skip_permission_denied |
                             fs::directory_options::follow_directory_symlink;
    std::vector<EntryFile> files;
    std::error_code error;
    fs::recursive_directory_iterator place(folder, options, error);
    const fs::recursive_directory_iterator end;
    while (!error && place != end && files.size() < most) {
        if (place.depth() >= ApplicationNames::deepestFolder) place.disable_recursion_pending();
        auto id = place->path().lexically_relative(folder).generic_string();
        if (id.ends_with(suffix)) {
            id.resize(id.size() - suffix.size());
            std::ranges::replace(id, '/', '-');
            files.push_back({std::move(id), place->path()});
        }
        place.increment(error);
    }
    // The file system's own order is none.
    std::ranges::sort(files, {}, &EntryFile::id);
    return files;
}

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

std::string withoutAppSuffixes(std::string_view name) {
    constexpr std::string_view unwanted = ".app";
    std::string kept;
    while (true) {
        const auto place = name.find(unwanted);
        kept += name.substr(0, place);
        if (place == std::string_view::npos) return kept;
        name.remove_prefix(place + unwanted.size());
    }
}

using FileChoice = std::function<bool(const EntryFile&)>;
using EntryChoice = std::function<bool(const DesktopEntry&)>;

/// The first entry of both choices. One that is hidden takes those of the same id in later folders
/// with it; one that cannot be read does not.
std::optional<DesktopEntry> find(const std::vector<EntryFile>& files, const FileChoice& mayBe,
                                 const EntryChoice& isWanted) {
    std::set<std::string_view> decided;
    for (const auto& file : files) {
        if (decided.contains(file.id) || !mayBe(file)) continue;
        const auto content = contentOf(file.path, ApplicationNames::largestEntry);
        auto entry = content ? readDesktopEntry(*content) : std::nullopt;
        if (!entry) continue;
        decided.insert(file.id);
        if (!entry->hidden && isWanted(*entry)) return entry;
    }
    return std::nullopt;
}

} // namespace

std::vector<fs::path> ApplicationNames::dataFolders(const fs::path& home,
                                                    const std::string& dataHome,
                                                    const std::string& dataDirs) {
    std::vector<fs::path> folders;
    folders.push_back(fs::path(dataHome).is_absolute() ? fs::path(dataHome)
                                                       : home / ".local" / "share");
    std::istringstream list(dataDirs.empty() ? "/usr/local/share:/usr/share" : dataDirs);
    for (std::string folder; std::getline(list, folder, ':');)
        if (fs::path(folder).is_absolute()) folders.emplace_back(folder);
    return folders;
}

std::string ApplicationNames::nameOf(const std::string& identifier) const {
    if (identifier.empty()) return {};
    std::vector<EntryFile> files;
    for (const auto& folder : dataFolders_)
        std::ranges::move(entryFilesIn(folder / "applications", mostEntries - files.size()),
                          std::back_inserter(files));

    const auto wanted = lowerCase(identifier);
    auto entry = find(
        files, [&](const EntryFile& file) { return file.id == identifier; },
        [](const DesktopEntry&) { return true; });
    if (!entry)
        entry = find(
            files, [](const EntryFile&) { return true; },
            [&](const DesktopEntry& candidate) {
                return lowerCase(candidate.program) == wanted ||
                       lowerCase(candidate.windowClass) == wanted;
            });

    const auto name = entry ? withoutAppSuffixes(printable(entry->name)) : std::string();
    return trimmed(name).empty() ? printable(identifier) : name;
}

} // namespace wegslot
