#include "identity/linux/locked_memory.h"

#include <cstring>
#include <new>

#include <sys/mman.h>

namespace wegslot {

void* LockedMemory::do_allocate(std::size_t bytes, std::size_t /*alignment*/) {
    // A page is aligned for anything.
    void* const block =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED) throw std::bad_alloc();
    locked_ = mlock(block, bytes) == 0 && locked_;
    madvise(block, bytes, MADV_DONTDUMP);
    return block;
}

void LockedMemory::do_deallocate(void* block, std::size_t bytes, std::size_t /*alignment*/) {
    explicit_bzero(block, bytes);
    munmap(block, bytes);
}

} // namespace wegslot
