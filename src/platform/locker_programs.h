// The locker programs that are known by name, for sessions whose desktop has no lock of its own:
// which one to start, and which processes show that the screen is locked.
#pragma once

#include "platform/processes.h"

#include <string>
#include <vector>

namespace wegslot {

enum class DisplayKind { none, wayland, x11 };

/// The program and its arguments; without words, none.
using LockCommand = std::vector<std::string>;

/// The first locker that fits the display and is installed. No words where none is, or no display.
[[nodiscard]] LockCommand installedLocker(const Processes& processes, DisplayKind display);

/// What a locker looks like among the processes: every known one, and the user's own command.
[[nodiscard]] std::vector<ProcessPattern> lockerPatterns(const LockCommand& own);

} // namespace wegslot
