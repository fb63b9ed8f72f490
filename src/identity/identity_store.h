// The port to where identities are kept from one run to the next.
#pragma once

#include "identity/identities.h"

#include <span>

namespace wegslot {

class IdentityStore {
public:
    IdentityStore() = default;
    IdentityStore(const IdentityStore&) = delete;
    IdentityStore& operator=(const IdentityStore&) = delete;
    virtual ~IdentityStore() = default;

    /// All that are kept; none where nothing was ever kept.
    [[nodiscard]] virtual Result<KnownIdentities> read() = 0;

    /// Drops those with the ids `gone` and keeps `there`, in the place of those with their keys;
    /// what somebody else put there meanwhile stays. Why nothing was changed.
    [[nodiscard]] virtual std::optional<Failure> change(std::span<const Uuid> gone,
                                                        std::span<const KnownIdentity> there) = 0;
};

} // namespace wegslot
