// One nearby device as the scanner knows it: the entry of the published list, and what a key
// record is made from.
#pragma once

#include "base/time.h"
#include "base/translation.h"
#include "base/uuid.h"
#include "scanner/dbm.h"

#include <cstdint>
#include <optional>
#include <string>

namespace wegslot {

struct SeenDevice {
    Uuid id;
    TimePoint lastSeen;                         ///< when the last accepted sample arrived
    std::optional<std::uint8_t> continuityType; ///< see Advertisement::continuityType
    std::optional<Dbm> rssi;                    ///< smoothed; absent without recent samples
    std::optional<std::string> name;            ///< as advertised or kept by the stack
    std::optional<std::string> model;           ///< model number, read over GATT

    [[nodiscard]] bool isApple() const;

    /// The name; else the product family of the model; else what kind of device it is.
    [[nodiscard]] Message displayName() const;

    friend bool operator==(const SeenDevice&, const SeenDevice&) = default;
};

} // namespace wegslot
