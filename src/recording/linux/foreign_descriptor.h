// File descriptors handed over by somebody else. Even closing one asks the system that its file is
// on, which may be a program of theirs that does not answer; nobody in a hurry closes one.
#pragma once

namespace wegslot {

/// The file of `given` under a number of our own, or -1. `given` stays open and stands for nothing
/// any more, so that who owns it may close it.
[[nodiscard]] int takenOver(int given);

/// Closes `descriptor` without waiting.
void closeElsewhere(int descriptor);

/// Whether it is a file or a pipe, as this computer knows it: the file's own system is not asked.
[[nodiscard]] bool isFileOrPipe(int descriptor);

} // namespace wegslot
