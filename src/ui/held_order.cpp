#include "ui/held_order.h"

#include <unordered_set>

namespace wegslot {

std::vector<Uuid> heldOrder(const std::vector<Uuid>& shown, const std::vector<Uuid>& now) {
    const std::unordered_set<Uuid> places(shown.begin(), shown.end());
    std::vector<Uuid> order = shown;
    for (const Uuid& id : now)
        if (!places.contains(id)) order.push_back(id);
    return order;
}

} // namespace wegslot
