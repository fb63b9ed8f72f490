// The port through which an adapter learns that a file descriptor is readable, on the one thread
// that everything runs on. Not for buses, which are driven as a whole.
#pragma once

#include "base/handle.h"

#include <functional>

namespace wegslot {

class Descriptors {
public:
    Descriptors() = default;
    Descriptors(const Descriptors&) = delete;
    Descriptors& operator=(const Descriptors&) = delete;
    virtual ~Descriptors() = default;

    /// Calls `action` from the loop whenever `descriptor` has something to read, or has failed,
    /// until the handle ends. It must stay open until then. `action` may end its own handle.
    [[nodiscard]] virtual Subscription onReadable(int descriptor, std::function<void()> action) = 0;
};

} // namespace wegslot
