#include "app/linux/instance_lock.h"

#include "base/system_error.h"
#include "base/text.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace wegslot {

InstanceLock InstanceLock::take(const std::vector<std::filesystem::path>& folders) {
    InstanceLock lock;
    for (const auto& folder : folders) {
        lock.takeIn(folder);
        if (lock.outcome_ != Outcome::impossible) break;
    }
    return lock;
}

void InstanceLock::takeIn(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const auto file = folder / "lock";
    constexpr mode_t ownerOnly = 0600;
    const int handle = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
    if (handle >= 0 && flock(handle, LOCK_EX | LOCK_NB) == 0) {
        outcome_ = Outcome::held;
        handle_ = handle;
        return;
    }
    const int reason = errno;
    if (handle >= 0) close(handle);
    if (handle >= 0 && reason == EWOULDBLOCK)
        outcome_ = Outcome::heldByAnother;
    else if (trouble_.isEmpty())
        trouble_ = Message("%1: %2", {printable(file.string()), systemError(reason)});
}

InstanceLock::~InstanceLock() {
    if (handle_ >= 0) close(handle_);
}

} // namespace wegslot
