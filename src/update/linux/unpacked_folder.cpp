#include "update/linux/unpacked_folder.h"

#include "base/system_error.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// So that files can be written into it, whatever its own permissions will be.
constexpr mode_t whileUnpacking = S_IRWXU;

/// Of a folder that the archive does not mention itself; the process's mask takes from it.
constexpr mode_t unmentioned = 0777;

constexpr int plainFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

Message failureIn(const std::string& member, int error) {
    return Message("%1: %2", {member, systemError(error)});
}

} // namespace

UnpackedFolder::UnpackedFolder(const std::filesystem::path& folder)
    : root_(open(folder.c_str(), plainFolder)) {}

UnpackedFolder::~UnpackedFolder() {
    static_cast<void>(closeFile());
    if (root_ >= 0) close(root_);
}

std::optional<Message> UnpackedFolder::member(const ArchiveMember& member) {
    const auto failed = [this] { return failureIn(name_, errno); };
    if (!closeFile()) return failed();
    const auto& path = member.path;
    name_ = path.back();
    const int above = folderAt(std::span(path).first(path.size() - 1));
    if (above < 0) return failed();
    int error = 0;
    switch (member.kind) {
    case ArchiveMember::Kind::folder:
        // Something in it may have come before, and `finish` sees whether it is a folder.
        if (mkdirat(above, name_.c_str(), member.mode | whileUnpacking) == 0 || errno == EEXIST)
            folders_.emplace_back(path, member.mode);
        else
            error = errno;
        break;
    case ArchiveMember::Kind::link:
        if (symlinkat(member.target.c_str(), above, name_.c_str()) != 0) error = errno;
        break;
    case ArchiveMember::Kind::file:
        file_ = openat(above, name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                       member.mode);
        if (file_ < 0) error = errno;
        break;
    }
    close(above);
    errno = error;
    return error == 0 ? std::nullopt : std::optional(failed());
}

std::optional<Message> UnpackedFolder::content(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return failureIn(name_, errno);
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return std::nullopt;
}

std::optional<Message> UnpackedFolder::finish() {
    if (!closeFile()) return failureIn(name_, errno);
    // The innermost first: a folder may forbid to enter it.
    while (!folders_.empty()) {
        const auto [path, mode] = std::move(folders_.back());
        folders_.pop_back();
        const int folder = folderAt(path);
        struct stat status {};
        // What the process's mask took away stays away.
        const bool done = folder >= 0 && fstat(folder, &status) == 0 &&
                          fchmod(folder, status.st_mode & mode) == 0;
        const int error = errno;
        if (folder >= 0) close(folder);
        if (!done) return failureIn(path.back(), error);
    }
    return std::nullopt;
}

/// A descriptor of the folder, below the root, made where it is not there; -1 with errno when a
/// part of the path is something else, or a link.
int UnpackedFolder::folderAt(std::span<const std::string> path) const {
    int folder = openat(root_, ".", plainFolder);
    for (const std::string& part : path) {
        if (folder < 0) break;
        mkdirat(folder, part.c_str(), unmentioned);
        const int next = openat(folder, part.c_str(), plainFolder);
        const int error = errno;
        close(folder);
        errno = error;
        folder = next;
    }
    return folder;
}

bool UnpackedFolder::closeFile() {
    if (file_ < 0) return true;
    return close(std::exchange(file_, -1)) == 0;
}

} // namespace wegslot
