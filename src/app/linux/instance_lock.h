// Ensures that only one Wegslot at a time works with the preferences: a second one would undo the
// first one's changes. The lock is the kernel's and ends with the process, however that ends.
#pragma once

#include "base/translation.h"

#include <filesystem>
#include <utility>
#include <vector>

namespace wegslot {

class InstanceLock {
public:
    enum class Outcome {
        held,
        heldByAnother,
        impossible ///< no folder can be used, so nobody has it
    };

    /// Takes the lock in the first of `folders` that can be used: a missing one is made. Everybody
    /// must name the same.
    static InstanceLock take(const std::vector<std::filesystem::path>& folders);

    [[nodiscard]] Outcome outcome() const { return outcome_; }

    /// Why the first folder, that of the preferences, could not be used; empty where it could.
    [[nodiscard]] const Message& trouble() const { return trouble_; }

    InstanceLock(InstanceLock&& other) noexcept
        : outcome_(other.outcome_),
          trouble_(std::move(other.trouble_)),
          handle_(std::exchange(other.handle_, -1)) {}
    InstanceLock& operator=(InstanceLock&&) = delete;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

private:
    InstanceLock() = default;
    void takeIn(const std::filesystem::path& folder);

    Outcome outcome_ = Outcome::impossible;
    Message trouble_;
    int handle_ = -1;
};

} // namespace wegslot
