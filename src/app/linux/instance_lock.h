// Makes sure that one Wegslot at a time works with the preferences: a second one's next write
// would undo the first one's. The lock is the kernel's and ends with the process, however it
// ends.
#pragma once

#include "base/result.h"

#include <filesystem>
#include <utility>

namespace wegslot {

class InstanceLock {
public:
    /// Takes the lock of the preferences in `folder`, which is made when missing. Fails when
    /// another process has it, or when the folder cannot be used.
    static Result<InstanceLock> take(const std::filesystem::path& folder);

    InstanceLock(InstanceLock&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}
    InstanceLock& operator=(InstanceLock&&) = delete;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

private:
    explicit InstanceLock(int handle) : handle_(handle) {}
    int handle_;
};

} // namespace wegslot
