#include "ui/removed_keys.h"

#include <algorithm>
#include <iterator>

namespace wegslot::panel {
namespace {

const Uuid& idOf(const KeyDevice& key) { return key.id; }

const Uuid& idOf(const ListedKey& listed) { return listed.key->id; }

/// Behind the last entry of `list` that is one of `before`.
template <typename List>
std::size_t placeBehind(const List& list, const std::vector<Uuid>& before) {
    std::size_t place = list.size();
    while (place > 0 && std::ranges::find(before, idOf(list[place - 1])) == before.end())
        --place;
    return place;
}

} // namespace

std::vector<ListedKey> listedKeys(std::span<const KeyDevice> keys,
                                  std::span<const RemovedKey> removed) {
    std::vector<ListedKey> listed;
    for (const KeyDevice& key : keys)
        listed.push_back({.key = &key});
    for (const RemovedKey& gone : removed) {
        const auto isIt = [&gone](const ListedKey& entry) { return idOf(entry) == gone.key.id; };
        if (std::ranges::any_of(listed, isIt)) continue;
        const auto place = static_cast<std::ptrdiff_t>(placeBehind(listed, gone.before));
        listed.insert(std::next(listed.begin(), place), {.key = &gone.key, .isRemoved = true});
    }
    return listed;
}

std::size_t placeAmong(std::span<const KeyDevice> keys, const RemovedKey& removed) {
    return placeBehind(keys, removed.before);
}

RemovedKey removedFrom(std::span<const ListedKey> listed, const KeyDevice& key) {
    RemovedKey removed{.key = key, .before = {}};
    for (const ListedKey& entry : listed) {
        if (idOf(entry) == key.id) break;
        removed.before.push_back(idOf(entry));
    }
    return removed;
}

} // namespace wegslot::panel
