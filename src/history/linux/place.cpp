#include "history/linux/place.h"

#include "base/system_error.h"
#include "files/linux/made_private.h"
#include "history/linux/database.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot::history {
namespace {

namespace fs = std::filesystem;

/// What SQLite makes of a name: the file, what has not come into it yet, and who is using that.
constexpr std::array<const char*, 3> endings{"", "-wal", "-shm"};

[[noreturn]] void fail(int error) { throw Fault{Fault::Kind::obstacle, systemError(error)}; }

/// Stands for a place and opens nothing: to close a file that was opened would end the locks that
/// SQLite holds on it in the same process.
class Place {
public:
    Place(const fs::path& path, int flags)
        : descriptor_(open(path.c_str(), O_PATH | O_CLOEXEC | flags)),
          error_(descriptor_ < 0 ? errno : 0) {}
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
        if (descriptor_ >= 0) close(descriptor_);
    }

    /// An error number.
    [[nodiscard]] int madePrivate(mode_t kind, mode_t rights) const {
        return error_ != 0 ? error_ : wegslot::madePrivate(descriptor_, kind, rights);
    }

private:
    int descriptor_;
    int error_;
};

fs::path withoutLinks(const fs::path& file) {
    std::error_code error;
    const fs::path folder = fs::canonical(file.parent_path(), error);
    if (error) fail(error.value());
    return folder / file.filename();
}

fs::path newOf(const fs::path& file) { return file.string() + ".new"; }

void removeFile(const fs::path& file) {
    for (const char* const ending : endings)
        if (unlink((file.string() + ending).c_str()) != 0 && errno != ENOENT) fail(errno);
}

} // namespace

fs::path madeReady(const fs::path& file) {
    std::error_code ignored; // opening it says what is wrong
    fs::create_directories(file.parent_path(), ignored);
    const Place folder(file.parent_path(), O_DIRECTORY);
    if (const int error = folder.madePrivate(S_IFDIR, folderOfOwner)) fail(error);
    fs::path real = withoutLinks(file);
    for (const char* const ending : endings) {
        const int error =
            Place(real.string() + ending, O_NOFOLLOW).madePrivate(S_IFREG, fileOfOwner);
        if (error != 0 && error != ENOENT) fail(error);
    }
    return real;
}

void make(const fs::path& file, const std::function<void(const fs::path&)>& fill) {
    const fs::path fresh = newOf(file);
    removeFile(fresh);
    const int made = open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, fileOfOwner);
    if (made < 0) fail(errno);
    close(made); // nobody else knows it yet, so nobody has a lock on it
    fill(fresh);
    removeFile(file); // what was beside another one would be taken for part of this one
    if (std::rename(fresh.c_str(), file.c_str()) != 0) fail(errno);
}

std::optional<fs::path> existing(const fs::path& file) {
    constexpr mode_t anyRights = 07777; // none are taken away
    const int error = Place(file, O_NOFOLLOW).madePrivate(S_IFREG, anyRights);
    if (error == ENOENT) return std::nullopt;
    if (error != 0) fail(error);
    return withoutLinks(file);
}

fs::path asideOf(const fs::path& file) { return file.string() + ".aside"; }

void setAside(const fs::path& file) {
    const std::string aside = asideOf(file).string();
    removeFile(aside);
    for (const char* const ending : endings)
        if (std::rename((file.string() + ending).c_str(), (aside + ending).c_str()) != 0 &&
            errno != ENOENT)
            fail(errno);
}

void removeAll(const fs::path& file) {
    for (const fs::path& one : {file, asideOf(file), newOf(file)})
        removeFile(one);
}

} // namespace wegslot::history
