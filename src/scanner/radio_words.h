// What a person is told of the radio as a whole.
#pragma once

#include "base/translation.h"
#include "scanner/bluetooth_central.h"

namespace wegslot {

[[nodiscard]] Message radioWords(CentralState state);

/// Where nothing on this computer drives a radio.
[[nodiscard]] Message withoutRadioService();

/// While a phone bonds with this computer.
[[nodiscard]] Message lentRadio();

} // namespace wegslot
