#include "files/linux/own_file.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

bool isOwnLink(const fs::path& link) {
    struct stat facts {};
    return lstat(link.c_str(), &facts) == 0 && S_ISLNK(facts.st_mode) && facts.st_uid == geteuid();
}

/// Links to what a process holds open name no files; whose they are the kernel answers for.
bool isOfProcess(const fs::path& link) {
    struct statfs facts {};
    return statfs(link.parent_path().c_str(), &facts) == 0 && facts.f_type == PROC_SUPER_MAGIC;
}

} // namespace

int openOwn(std::string path, int flags, mode_t mode) {
    constexpr int mostLinks = 16;
    for (int links = 0; links < mostLinks; ++links) {
        const int descriptor = open(path.c_str(), flags | O_NOFOLLOW, mode);
        // With O_EXCL a link is what exists already.
        if (descriptor >= 0 || (errno != ELOOP && errno != EEXIST)) return descriptor;
        const int reason = errno;
        if (!isOwnLink(path)) {
            errno = reason;
            return -1;
        }
        if (isOfProcess(path)) return open(path.c_str(), flags, mode);
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error) break;
        path = fs::path(path).parent_path() / target; // an absolute one takes the whole place
    }
    errno = ELOOP;
    return -1;
}

} // namespace wegslot
