// Makes a folder or a file one of its user's alone.
#pragma once

#include <sys/types.h>

namespace wegslot {

inline constexpr mode_t fileOfOwner = 0600;
inline constexpr mode_t folderOfOwner = 0700;

/// Takes away the rights beyond `rights` of what `descriptor` stands for, which may be a mere place
/// (O_PATH). Answers an error number, 0 for none: what is not of the `kind` (S_IFREG, S_IFDIR) or
/// not this user's stays as it is.
[[nodiscard]] int madePrivate(int descriptor, mode_t kind, mode_t rights);

} // namespace wegslot
