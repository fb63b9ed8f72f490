// What the controller answers to each command of the kernel. A command unknown here is answered
// with "unknown command", and the list of supported commands is made from the same table, so the
// two cannot disagree.
#pragma once

#include "address.h"
#include "bytes.h"
#include "h4.h"
#include "scan.h"

namespace controller {

/// What commands read and change.
struct ControllerState {
    Address address;
    Scan scan;
};

/// The parameters of the Command Complete event; they start with the status.
Bytes answer(const Command& command, ControllerState& state);

} // namespace controller
