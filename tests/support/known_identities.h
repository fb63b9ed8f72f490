// Identities for tests, in ordinary memory.
#pragma once

#include "identity/identity_store.h"

#include <algorithm>
#include <initializer_list>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace wegslot {

inline std::pmr::memory_resource& ordinaryMemory() { return *std::pmr::new_delete_resource(); }

inline IdentityKey keyOf(std::string_view digits) { return *IdentityKey::fromHexadecimal(digits); }

/// Of the sample data of the Bluetooth Core Specification 5.4, volume 3, part H, appendix D.7: it
/// explains the address 70:81:94:0D:FB:AA.
inline constexpr auto phonesKey = "ec0234a357c8ad05341010a60a397d9b";
inline constexpr auto watchsKey = "00112233445566778899aabbccddeeff";

inline KnownIdentity phonesIdentity(std::string name = "Telefoon") {
    return {.key = keyOf(phonesKey), .name = std::move(name)};
}

inline KnownIdentity watchsIdentity() { return {.key = keyOf(watchsKey), .name = "Horloge"}; }

inline KnownIdentities identitiesOf(std::initializer_list<KnownIdentity> list) {
    return {list, &ordinaryMemory()};
}

/// Where identities are kept, for as long as it lives.
class MemoryIdentities final : public IdentityStore {
public:
    [[nodiscard]] Result<KnownIdentities> read() override {
        if (fault) return *fault;
        return kept;
    }
    [[nodiscard]] std::optional<Failure> change(std::span<const Uuid> gone,
                                                std::span<const KnownIdentity> there) override {
        if (fault) return fault;
        std::erase_if(kept, [&](const KnownIdentity& known) {
            const bool isReplaced =
                std::ranges::find(there, known.key, &KnownIdentity::key) != there.end();
            return isReplaced || std::ranges::find(gone, known.id()) != gone.end();
        });
        kept.insert(kept.end(), there.begin(), there.end());
        return std::nullopt;
    }

    KnownIdentities kept{&ordinaryMemory()};
    std::optional<Failure> fault;
};

} // namespace wegslot
