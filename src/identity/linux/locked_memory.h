// Memory for secrets: never written to swap space or into a core dump, and overwritten before it is
// given back.
#pragma once

#include <cstddef>
#include <memory_resource>

namespace wegslot {

/// Gives whole pages of the system's, for a few things that live long.
class LockedMemory final : public std::pmr::memory_resource {
public:
    /// Whether the system kept all of it out of swap space so far: a user may lock so much
    /// (RLIMIT_MEMLOCK) and no more. What is too much is given all the same.
    [[nodiscard]] bool isLocked() const { return locked_; }

private:
    void* do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override;
    [[nodiscard]] bool do_is_equal(const memory_resource& other) const noexcept override {
        return this == &other;
    }

    bool locked_ = true;
};

} // namespace wegslot
