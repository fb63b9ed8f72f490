// The clock of the machine. The judging time is the wall clock read once, plus the time since
// boot, which counts sleep and which nobody can set.
#pragma once

#include "base/clock.h"

namespace wegslot {

class SystemClock final : public Clock {
public:
    SystemClock();
    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] TimePoint wallClock() const override;

private:
    TimePoint bootedAt_;
};

} // namespace wegslot
