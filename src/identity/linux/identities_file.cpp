#include "identity/linux/identities_file.h"

#include "base/system_error.h"
#include "files/linux/made_private.h"
#include "files/linux/replace_file.h"
#include "identity/linux/secret_text.h"
#include "identity/stored_identities.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

/// In bytes: as many as there may be, with long names.
constexpr std::size_t largestFile = 64 << 10U;

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }

    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] bool isOpen() const { return number_ >= 0; }

private:
    int number_;
};

bool isOneOf(std::span<const Uuid> ids, const Uuid& id) {
    return std::ranges::find(ids, id) != ids.end();
}

bool hasKey(std::span<const KnownIdentity> identities, const IdentityKey& key) {
    const Uuid device = key.deviceId();
    return std::ranges::any_of(
        identities, [&](const KnownIdentity& known) { return known.key.deviceId() == device; });
}

} // namespace

IdentitiesFile::IdentitiesFile(fs::path file, std::pmr::memory_resource& memory)
    : file_(std::move(file)),
      memory_(memory) {}

fs::path IdentitiesFile::pathUnder(const fs::path& data) {
    return data / "wegslot" / "identities.json";
}

Failure IdentitiesFile::trouble(const Message& what) const {
    return Failure{message("Identiteiten niet te gebruiken: %1: %2", {file_.string(), what})};
}

Result<KnownIdentities> IdentitiesFile::read() {
    const Descriptor file(open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen() && errno == ENOENT) return KnownIdentities(&memory_);
    if (!file.isOpen()) return trouble(systemError(errno));
    if (const int error = madePrivate(file.number(), S_IFREG, fileOfOwner))
        return trouble(systemError(error));
    auto text = secretText(file.number(), largestFile, memory_, [](auto) { return false; });
    if (!text) return trouble(systemError(errno));
    if (text->size() > largestFile) return trouble(message("groter dan 64 kB"));
    auto identities = decodeIdentities(*text, memory_);
    if (!identities) return trouble(identities.failure().message);
    return identities;
}

std::optional<Failure> IdentitiesFile::change(std::span<const Uuid> gone,
                                              std::span<const KnownIdentity> there) {
    std::error_code ignored; // opening it says what is wrong
    fs::create_directories(file_.parent_path(), ignored);
    const Descriptor folder(open(file_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) return trouble(systemError(errno));
    if (const int error = madePrivate(folder.number(), S_IFDIR, folderOfOwner))
        return trouble(systemError(error));
    // Two that each read, change and write would lose one of the changes. Not waited for: it takes
    // the other a moment, and whoever judges meanwhile must not stand still.
    if (flock(folder.number(), LOCK_EX | LOCK_NB) != 0) return trouble(systemError(errno));
    const auto kept = read();
    if (!kept) return kept.failure();
    KnownIdentities all(&memory_);
    for (const KnownIdentity& known : *kept)
        if (!isOneOf(gone, known.id()) && !hasKey(there, known.key)) all.push_back(known);
    all.insert(all.end(), there.begin(), there.end());
    if (all == *kept) return std::nullopt;
    if (all.size() > Identities::most)
        return trouble(message("meer dan %1 identiteiten", {std::to_string(Identities::most)}));
    return write(all);
}

std::optional<Failure> IdentitiesFile::write(const KnownIdentities& all) const {
    const int error = replaceFile(file_, encodeIdentities(all, memory_), fileOfOwner);
    return error == 0 ? std::nullopt : std::optional(trouble(systemError(error)));
}

} // namespace wegslot
