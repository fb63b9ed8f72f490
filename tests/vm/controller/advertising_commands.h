// The commands by which the kernel advertises, the older ones and the extended. Each gives the
// parameters of its Command Complete event.
#pragma once

#include "bytes.h"
#include "controller_state.h"

namespace controller {

Bytes setAdvertisingParameters(ByteView parameters, ControllerState& state);
Bytes setAdvertisingData(ByteView parameters, ControllerState& state);
Bytes setScanResponseData(ByteView parameters, ControllerState& state);
Bytes setAdvertisingEnable(ByteView parameters, ControllerState& state);

Bytes setAdvertisingSetRandomAddress(ByteView parameters, ControllerState& state);
Bytes setExtendedAdvertisingParameters(ByteView parameters, ControllerState& state);
Bytes setExtendedAdvertisingData(ByteView parameters, ControllerState& state);
Bytes setExtendedScanResponseData(ByteView parameters, ControllerState& state);
Bytes setExtendedAdvertisingEnable(ByteView parameters, ControllerState& state);
Bytes readMaximumAdvertisingDataLength(ByteView parameters, ControllerState& state);
Bytes readNumberOfAdvertisingSets(ByteView parameters, ControllerState& state);
Bytes removeAdvertisingSet(ByteView parameters, ControllerState& state);
Bytes clearAdvertisingSets(ByteView parameters, ControllerState& state);

} // namespace controller
