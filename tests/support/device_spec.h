// What a device is to a radio near it, as a test tells it to a world of its own.
#pragma once

#include "base/time.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

struct DeviceSpec {
    enum class Identity {
        fixed,    ///< a fixed address, no bond
        bonded,   ///< a bond, and a fixed address
        rotating, ///< a bond that tells who hides behind its changing address
        changing, ///< a changing address that nothing resolves
    };
    enum class Connecting {
        accepts,
        refuses, ///< attempts are made and fail
        ignores, ///< its advertisements are not connectable
    };
    enum class Services {
        withModel,    ///< Device Information with a model number
        withoutModel, ///< others only
        mute,         ///< connected, it answers nothing
    };
    enum class Rhythm {
        steady,
        uneven, ///< half of its intervals are shorter, by anything
    };

    Identity identity = Identity::fixed;
    Connecting connecting = Connecting::accepts;
    Services services = Services::withModel;
    std::string model = "Model1,1";
    std::optional<std::string> name = {};
    std::vector<std::uint8_t> makerData = {};              ///< company id first; empty for none
    int rssi = -60;                                        ///< of its advertisements
    std::optional<int> linkRssi = -50;                     ///< nothing: the link's cannot be read
    Nanoseconds interval = std::chrono::milliseconds{200}; ///< of its advertisements
    Rhythm rhythm = Rhythm::steady;

    [[nodiscard]] bool isBonded() const {
        return identity == Identity::bonded || identity == Identity::rotating;
    }
};

} // namespace wegslot
