// Keys that were removed a moment ago and can be taken back: where they stood among those that are
// left. They are keys no more: only the panel still knows them.
#pragma once

#include "base/time.h"
#include "model/key_device.h"

#include <span>
#include <vector>

namespace wegslot::panel {

/// For how long a removed key can be taken back.
inline constexpr Nanoseconds putBackTime = std::chrono::seconds{8};

struct RemovedKey {
    KeyDevice key;
    std::vector<Uuid> before; ///< the keys that stood before it, removed ones among them
};

struct ListedKey {
    const KeyDevice* key;
    bool isRemoved = false;
};

/// The keys with the removed ones in their old places. Who is a key again is listed as that.
[[nodiscard]] std::vector<ListedKey> listedKeys(std::span<const KeyDevice> keys,
                                                std::span<const RemovedKey> removed);

/// Where `removed` belongs among `keys`: behind the last of those that it stood behind.
[[nodiscard]] std::size_t placeAmong(std::span<const KeyDevice> keys, const RemovedKey& removed);

/// `key` as it is to be remembered, removed from a list that showed as `listed`.
[[nodiscard]] RemovedKey removedFrom(std::span<const ListedKey> listed, const KeyDevice& key);

} // namespace wegslot::panel
