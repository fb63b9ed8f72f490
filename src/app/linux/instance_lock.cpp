#include "app/linux/instance_lock.h"

#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace wegslot {

Result<InstanceLock> InstanceLock::take(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const auto file = folder / "lock";
    constexpr mode_t ownerOnly = 0600;
    const int handle = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
    if (handle < 0) return Failure{file.string() + ": " + std::strerror(errno)};
    if (flock(handle, LOCK_EX | LOCK_NB) == 0) return InstanceLock{handle};
    const int reason = errno;
    close(handle);
    if (reason == EWOULDBLOCK) return Failure{"Wegslot draait al; stop het eerst"};
    return Failure{file.string() + ": " + std::strerror(reason)};
}

InstanceLock::~InstanceLock() {
    if (handle_ >= 0) close(handle_);
}

} // namespace wegslot
