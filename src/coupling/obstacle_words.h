// What a person is told of an obstacle to coupling, and what can be done about it.
#pragma once

#include "base/translation.h"
#include "coupling/coupling_radio.h"

namespace wegslot::coupling {

[[nodiscard]] Message words(const Trouble& trouble);

} // namespace wegslot::coupling
