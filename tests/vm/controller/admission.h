// What becomes of an attempt to connect to a device.
#pragma once

#include <variant>

#include "h4.h"

namespace controller {

/// The attempt succeeds.
struct Admit {
    bool operator==(const Admit&) const = default;
};

/// A link is made that the device never hears of, and lost after some intervals: what becomes of an
/// attempt when the device has just gone, or is not willing.
struct Ignore {
    bool operator==(const Ignore&) const = default;
};

/// The controller gives the attempt up with this status, any of the air's.
struct Fail {
    std::uint8_t status = static_cast<std::uint8_t>(Status::FailedToBeEstablished);

    bool operator==(const Fail&) const = default;
};

using Admission = std::variant<Admit, Ignore, Fail>;

} // namespace controller
