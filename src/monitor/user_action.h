// What a person can ask of the monitor, as a value: for those who want to know that it was asked,
// whichever way it came.
#pragma once

#include "base/time.h"

#include <variant>

namespace wegslot {

namespace action {

struct LockNow {};

struct Pause {
    Seconds duration;
};

struct Resume {};

struct CancelWarning {};

} // namespace action

using UserAction =
    std::variant<action::LockNow, action::Pause, action::Resume, action::CancelWarning>;

} // namespace wegslot
