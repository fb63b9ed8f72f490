// Since when the user has had Wegslot switched off: who did it for an afternoon forgets it, and
// nothing shows it but an icon that few look at.
#pragma once

#include "base/clock.h"
#include "model/remembered.h"
#include "model/settings.h"

namespace wegslot {

class SwitchedOff {
public:
    /// Off for longer, it may have been forgotten.
    static constexpr Nanoseconds longEnough = std::chrono::hours{24};

    /// Notes from here on when it is switched; who finds it off and nothing noted begins now. All
    /// must outlive this.
    SwitchedOff(const Settings& settings, Remembered& remembered, const Clock& clock);

    /// Whether it is off, and has been for more than `longEnough`.
    [[nodiscard]] bool isLong() const;

private:
    void note(bool isOn);

    Remembered& remembered_;
    const Clock& clock_;
    Subscription switching_;
};

} // namespace wegslot
