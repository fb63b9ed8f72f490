#include "coupling/linux/pairable_note.h"

#include "files/linux/file_content.h"
#include "files/linux/replace_file.h"
#include "log/log.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

#include <sys/types.h>

namespace wegslot::coupling {
namespace {

namespace fs = std::filesystem;

constexpr mode_t ownerOnly = 0600;

/// In bytes: more adapters than a computer has.
constexpr std::size_t largestNote = 1024;

/// "AA:BB:CC:DD:EE:FF".
bool isAddress(const std::string& text) {
    constexpr std::string_view shape = "xx:xx:xx:xx:xx:xx";
    const auto fits = [](char character, char kind) {
        const bool isDigit = (character >= '0' && character <= '9') ||
                             (character >= 'A' && character <= 'F') ||
                             (character >= 'a' && character <= 'f');
        return kind == ':' ? character == ':' : isDigit;
    };
    return text.size() == shape.size() && std::equal(text.begin(), text.end(), shape.begin(), fits);
}

std::optional<std::set<std::string>> parsed(const std::string& content) {
    std::set<std::string> addresses;
    std::istringstream stream(content);
    for (std::string line; std::getline(stream, line);) {
        if (!isAddress(line)) return std::nullopt;
        addresses.insert(line);
    }
    return addresses;
}

} // namespace

PairableNote::PairableNote(fs::path file) : file_(std::move(file)) {}

fs::path PairableNote::pathUnder(const fs::path& data) { return data / "wegslot" / "pairable"; }

std::set<std::string> PairableNote::adapters() const {
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(file_, ignored))) return {};
    const auto content = contentOf(file_, largestNote);
    auto addresses = content ? parsed(*content) : std::nullopt;
    if (addresses && !addresses->empty()) return *std::move(addresses);
    fs::remove(file_, ignored);
    Log::write("Notitie over koppelen onleesbaar en verwijderd: " + file_.string());
    return {};
}

int PairableNote::add(const std::string& address) const {
    auto addresses = adapters();
    return addresses.insert(address).second ? write(addresses) : 0;
}

void PairableNote::remove(const std::string& address) const {
    auto addresses = adapters();
    if (addresses.erase(address) == 0) return;
    std::error_code ignored;
    // What cannot be written stays, and is put back once more: it is as it was then, too.
    addresses.empty() ? static_cast<void>(fs::remove(file_, ignored))
                      : static_cast<void>(write(addresses));
}

int PairableNote::write(const std::set<std::string>& addresses) const {
    std::string content;
    for (const std::string& address : addresses)
        content += address + '\n';
    return replaceFile(file_, content, ownerOnly);
}

} // namespace wegslot::coupling
