#include "files/linux/made_private.h"

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// Why something is not of the kind that is wanted.
int otherKind(mode_t mode, mode_t wanted) {
    if (S_ISLNK(mode)) return ELOOP;
    if (wanted == S_IFDIR) return ENOTDIR;
    return S_ISDIR(mode) ? EISDIR : EINVAL;
}

} // namespace

int madePrivate(int descriptor, mode_t kind, mode_t rights) {
    constexpr mode_t everything = 07777;
    struct stat facts {};
    if (fstat(descriptor, &facts) != 0) return errno;
    if ((facts.st_mode & S_IFMT) != kind) return otherKind(facts.st_mode, kind);
    if (facts.st_uid != geteuid()) return EPERM;
    if ((facts.st_mode & everything & ~rights) == 0) return 0;
    // By the name that stands for the descriptor: fchmod refuses one that is a mere place.
    const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
    return chmod(name.c_str(), rights) == 0 ? 0 : errno;
}

} // namespace wegslot
