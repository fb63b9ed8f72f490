// The commands that make, use and end links. Each gives the parameters of its Command Complete
// event, or just the status where the result comes in an event of its own.
#pragma once

#include "bytes.h"
#include "controller_state.h"

namespace controller {

/// The parameters of an event that says no more than how it went.
inline Bytes done(Status status = Status::Success) {
    return Bytes{static_cast<std::uint8_t>(status)};
}

Bytes createConnection(ByteView parameters, ControllerState& state);
Bytes cancelConnection(ByteView parameters, ControllerState& state);
Bytes disconnect(ByteView parameters, ControllerState& state);
Bytes readRemoteVersion(ByteView parameters, ControllerState& state);
Bytes readRemoteFeatures(ByteView parameters, ControllerState& state);
Bytes updateConnection(ByteView parameters, ControllerState& state);
Bytes setDataLength(ByteView parameters, ControllerState& state);
Bytes readRssi(ByteView parameters, ControllerState& state);
Bytes startEncryption(ByteView parameters, ControllerState& state);
Bytes giveLongTermKey(ByteView parameters, ControllerState& state);
Bytes refuseLongTermKey(ByteView parameters, ControllerState& state);

} // namespace controller
