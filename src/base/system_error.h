// What the system says of an error, for people and for the log.
#pragma once

#include "base/translation.h"

namespace wegslot {

/// `number`: as in errno. Built in are the C library's own words, whatever its locale.
[[nodiscard]] Message systemError(int number);

} // namespace wegslot
