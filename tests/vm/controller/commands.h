// What the controller answers to each command of the kernel. A command unknown here is answered
// with "unknown command", and the list of supported commands is made from the same table, so the
// two cannot disagree.
#pragma once

#include "bytes.h"
#include "controller_state.h"
#include "h4.h"

namespace controller {

/// The event that answers the command; what follows from it waits in the outbox, if that is held.
Bytes answer(const Command& command, ControllerState& state);

} // namespace controller
