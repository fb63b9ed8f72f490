// The port through which long work, such as hashing and unpacking, leaves the main thread.
#pragma once

#include "base/handle.h"

#include <functional>

namespace wegslot {

class Background {
public:
    Background() = default;
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;
    virtual ~Background() = default;

    /// Runs `work` on another thread and then, on this one, `done`, unless the handle has ended.
    /// Work that has begun is finished all the same, so it keeps what it uses.
    [[nodiscard]] virtual Handle run(std::function<void()> work, std::function<void()> done) = 0;
};

} // namespace wegslot
