// Keeps identities and keys together: an identity is there for a key, comes with it and goes with
// it.
#pragma once

#include "base/scheduler.h"
#include "identity/identity_store.h"
#include "model/settings.h"

#include <set>

namespace wegslot {

/// The key that `known` becomes: only listened to, for its owner would be asked to pair.
[[nodiscard]] KeyDevice pastedKey(const KnownIdentity& known);

class PastedKeys {
public:
    /// For how long an identity outlives its key in memory: longer than a removed key can be put
    /// back in the panel. In the store it goes at once.
    static constexpr Nanoseconds grace = std::chrono::seconds{10};

    enum class WithoutKey {
        forgotten, ///< the user has removed its key
        kept       ///< the keys are not known
    };

    /// Takes in what is kept; `orphans`: what becomes of an identity that has no key. All must
    /// outlive this.
    PastedKeys(Settings& settings, Identities& identities, IdentityStore& store,
               Scheduler& scheduler, WithoutKey orphans);

    PastedKeys(const PastedKeys&) = delete;
    PastedKeys& operator=(const PastedKeys&) = delete;

    /// Makes a key of each identity that somebody else has added to the store since.
    [[nodiscard]] std::optional<Failure> reread();

private:
    void keysChanged(const std::vector<KeyDevice>& keys);
    void learned(const Identities::Learned& learned);
    void keep(std::span<const Uuid> gone, std::span<const Uuid> there);
    void forgetOthers();

    Settings& settings_;
    Identities& identities_;
    IdentityStore& store_;
    Scheduler& scheduler_;
    std::set<Uuid> kept_; ///< ids of those in the store
    Subscription keys_;
    Subscription learning_;
    Timer forgetting_;
};

} // namespace wegslot
