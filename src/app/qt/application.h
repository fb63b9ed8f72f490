// Runs what the command line asked for on Qt's event loop, with the real world around the core.
// This is where the worlds are joined.
#pragma once

#include "app/arguments.h"
#include "update/bundle_info.h"

namespace wegslot {

/// Runs `command` (one that needs an event loop) to its end and answers the exit status. `program`:
/// what it is where no folder says so.
int runApplication(const Command& command, const BundleInfo& program, int& argc, char** argv);

} // namespace wegslot
