// What a device has to say about itself once it is connected: which services, and what is in them.
#pragma once

#include <optional>
#include <string>

#include "attribute_table.h"

namespace controller {

enum class Battery : std::uint8_t {
    None,
    Open,
    /// Refused with "insufficient authentication" until the link is encrypted, as phones do.
    Protected
};

struct GattProfile {
    /// Of the Generic Access service.
    std::string name;
    /// Of the Device Information service; without it there is no such service. Any bytes.
    std::optional<std::string> model;
    Battery battery = Battery::None;
    /// Human Interface Device: a mouse with three buttons.
    bool isMouse = false;
    /// The longest packet it takes on the attribute channel.
    unsigned mtu = 247;
};

/// Every service keeps its handles whatever others there are: who has cached them finds no other
/// thing there later.
AttributeTable tableOf(const GattProfile& profile);

} // namespace controller
