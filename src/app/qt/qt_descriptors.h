// File descriptors on Qt's event loop.
#pragma once

#include "base/descriptors.h"

namespace wegslot {

class QtDescriptors final : public Descriptors {
public:
    [[nodiscard]] Subscription onReadable(int descriptor, std::function<void()> action) override;
};

} // namespace wegslot
