// Keeps a list still under somebody's pointer: rows that are shown keep their places, and newcomers
// go behind them. For lists whose order would otherwise follow what is learned from the air.
#pragma once

#include "base/uuid.h"

#include <vector>

namespace wegslot {

/// The ids of `shown` in their places, also those that have gone, then those that are only in
/// `now`, in their order there. Each id stands once in each list.
[[nodiscard]] std::vector<Uuid> heldOrder(const std::vector<Uuid>& shown,
                                          const std::vector<Uuid>& now);

} // namespace wegslot
