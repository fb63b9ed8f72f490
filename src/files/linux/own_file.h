// Opens a file that the user named, in a folder where others may have been first. A link found
// there may be a trap, set to have the user overwrite a file of their own.
#pragma once

#include <string>

#include <sys/types.h>

namespace wegslot {

/// As open(2) without its links' dangers: a link at the end of `path` is followed where it is the
/// user's own, and so is what it leads to. A descriptor, or -1 with the reason in errno; ELOOP for
/// a link of somebody else's.
[[nodiscard]] int openOwn(std::string path, int flags, mode_t mode);

} // namespace wegslot
