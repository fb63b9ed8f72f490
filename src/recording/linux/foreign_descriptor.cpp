#include "recording/linux/foreign_descriptor.h"

#include <atomic>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// What the descriptor is of: without the flag its file's system would be asked.
struct statx factsOf(int descriptor) {
    struct statx facts {};
    if (statx(descriptor, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_TYPE | STATX_INO, &facts) !=
        0)
        facts.stx_mode = 0;
    return facts;
}

bool isSame(const struct statx& one, const struct statx& other) {
    return one.stx_ino == other.stx_ino && one.stx_dev_major == other.stx_dev_major &&
           one.stx_dev_minor == other.stx_dev_minor;
}

} // namespace

int takenOver(int given) {
    const int own = fcntl(given, F_DUPFD_CLOEXEC, 0);
    if (own < 0) return -1;
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (nothing < 0) {
        closeElsewhere(own);
        return -1;
    }
    // The number changes hands at once; only then is the old file let go, which may take for ever.
    const auto isRefused = std::make_shared<std::atomic<bool>>(false);
    std::thread([given, nothing, isRefused] {
        if (dup3(nothing, given, O_CLOEXEC) < 0) *isRefused = true;
    }).detach();
    while (!isSame(factsOf(given), factsOf(nothing))) {
        if (*isRefused) {
            closeElsewhere(own);
            close(nothing);
            return -1;
        }
        std::this_thread::yield();
    }
    close(nothing);
    return own;
}

void closeElsewhere(int descriptor) {
    std::thread([descriptor] { close(descriptor); }).detach();
}

bool isFileOrPipe(int descriptor) {
    const auto mode = factsOf(descriptor).stx_mode;
    return S_ISREG(mode) || S_ISFIFO(mode);
}

} // namespace wegslot
