// Identifiers that nobody has: random ones of version 4.
#pragma once

#include "base/uuid.h"

namespace wegslot {

[[nodiscard]] Uuid randomUuid();

} // namespace wegslot
