// A key: a Bluetooth device whose presence keeps the computer unlocked.
#pragma once

#include "base/uuid.h"
#include "scanner/dbm.h"

#include <optional>
#include <string>

namespace wegslot {

struct KeyDevice {
    Uuid id;
    std::string name;                 ///< as shown when the key was added
    std::optional<std::string> model; ///< model number, when it was known then
    std::optional<bool> isApple;      ///< false: listened to only, never connected
    Dbm threshold;                    ///< below it the key counts as away

    friend bool operator==(const KeyDevice&, const KeyDevice&) = default;
};

} // namespace wegslot
