#include "ui/linux/autostart_item.h"

#include "base/system_error.h"
#include "base/text.h"
#include "files/linux/file_content.h"
#include "files/linux/replace_file.h"
#include "platform/linux/media/desktop_entry_text.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

bool isThere(const fs::path& file) {
    std::error_code ignored;
    return fs::exists(file, ignored);
}

/// In bytes: many times as large as any entry.
constexpr std::size_t largestEntry = 1 << 20U;

/// Signs that desktops do not read in a program's path as the standard has them written there.
constexpr std::string_view misread = "%\\";

std::string ownEntry(const fs::path& program) {
    return "[Desktop Entry]\nType=Application\nName=Wegslot\nExec=" + execWord(program.string()) +
           "\n";
}

Failure failureAt(const fs::path& file, const Message& reason) {
    return {Message("%1: %2", {printable(file.string()), reason})};
}

std::optional<Failure> write(const fs::path& file, const std::string& text) {
    constexpr mode_t readableByAll = 0644;
    const int error = replaceFile(file, text, readableByAll);
    return error == 0 ? std::nullopt : std::optional(failureAt(file, systemError(error)));
}

} // namespace

AutostartItem::AutostartItem(std::vector<fs::path> folders, fs::path program, std::string desktops,
                             const Processes& processes)
    : folders_(std::move(folders)),
      program_(std::move(program)),
      desktops_(std::move(desktops)),
      processes_(processes) {}

bool AutostartItem::isEnabled() const {
    for (const fs::path& folder : folders_) {
        if (!isThere(folder / fileName)) continue;
        // The first one counts, also when it says that there is to be none.
        const auto text = contentOf(folder / fileName, largestEntry);
        const auto entry = text ? readDesktopEntry(*text) : std::nullopt;
        return entry && isStarted(*entry);
    }
    return false;
}

std::optional<Failure> AutostartItem::setEnabled(bool enabled) {
    std::string before;
    if (isThere(ownFile())) {
        auto text = contentOf(ownFile(), largestEntry);
        if (!text) return failureAt(ownFile(), message("niet te lezen"));
        before = *std::move(text);
    }
    return enabled ? switchOn(before) : switchOff(before);
}

std::optional<Failure> AutostartItem::switchOn(const std::string& before) const {
    const std::string path = program_.string();
    if (!processes_.isInstalled(path) || !isUtf8(path) ||
        path.find_first_of(misread) != std::string::npos)
        return failureAt(program_, message("niet te starten door het bureaublad"));
    const std::string text = switchedOn(before);
    return text == before ? std::nullopt : write(ownFile(), text);
}

std::optional<Failure> AutostartItem::switchOff(const std::string& before) const {
    const bool isReadable = readDesktopEntry(before).has_value();
    if (hasSharedEntry() || (isReadable && !isOwn(before))) {
        const std::string text =
            withFields(isReadable ? before : ownEntry(program_), {{"Hidden", "true"}});
        return text == before ? std::nullopt : write(ownFile(), text);
    }
    if (!isReadable) return std::nullopt; // none, or one that starts nothing
    std::error_code error;
    fs::remove(ownFile(), error);
    return error ? std::optional(failureAt(ownFile(), systemError(error.value()))) : std::nullopt;
}

std::string AutostartItem::switchedOn(const std::string& text) const {
    const auto entry = readDesktopEntry(text);
    if (!entry) return ownEntry(program_);
    std::vector<EntryChange> changes;
    if (entry->type != "Application") changes.emplace_back("Type", "Application");
    if (entry->name.empty()) changes.emplace_back("Name", "Wegslot");
    if (!startsThisProgram(*entry)) changes.emplace_back("Exec", execWord(program_.string()));
    if (entry->hidden) changes.emplace_back("Hidden", std::nullopt);
    if (!entry->startsAtLogin) changes.emplace_back("X-GNOME-Autostart-enabled", "true");
    if (!entry->neededExecutable.empty() && !processes_.isInstalled(entry->neededExecutable))
        changes.emplace_back("TryExec", std::nullopt);
    if (!isShown(*entry)) {
        changes.emplace_back("OnlyShowIn", std::nullopt);
        changes.emplace_back("NotShowIn", std::nullopt);
    }
    return withFields(text, changes);
}

bool AutostartItem::isStarted(const DesktopEntry& entry) const {
    if (entry.type != "Application" || entry.hidden || !entry.startsAtLogin) return false;
    if (!isShown(entry) || !processes_.isInstalled(entry.executable)) return false;
    return entry.neededExecutable.empty() || processes_.isInstalled(entry.neededExecutable);
}

/// A desktop may have several names, the first the most its own.
bool AutostartItem::isShown(const DesktopEntry& entry) const {
    std::string_view names = desktops_;
    while (!names.empty()) {
        const auto name = names.substr(0, names.find(':'));
        names.remove_prefix(std::min(name.size() + 1, names.size()));
        if (entry.onlyShowIn &&
            std::ranges::find(*entry.onlyShowIn, name) != entry.onlyShowIn->end())
            return true;
        if (std::ranges::find(entry.notShowIn, name) != entry.notShowIn.end()) return false;
    }
    return !entry.onlyShowIn;
}

bool AutostartItem::startsThisProgram(const DesktopEntry& entry) const {
    // One without its folder is for the desktop to look up, and finds who knows what.
    std::error_code different;
    return entry.executable.starts_with('/') &&
           (entry.executable == program_.string() ||
            fs::equivalent(entry.executable, program_, different));
}

/// Whether nobody else has written in it; a Wegslot that stood elsewhere is not somebody else.
bool AutostartItem::isOwn(const std::string& text) const {
    const std::string own = ownEntry(program_);
    return withFields(text, {{"Exec", execWord(program_.string())}}) == own;
}

bool AutostartItem::hasSharedEntry() const {
    return std::ranges::any_of(folders_, [this](const fs::path& folder) {
        return folder != folders_.front() && isThere(folder / fileName);
    });
}

} // namespace wegslot
