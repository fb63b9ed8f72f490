// The devices whose identity somebody pasted: finds out whose a private address is (Bluetooth Core
// Specification 5.4, volume 6, part B, 1.3.2.3), beside what the Bluetooth stack finds out by
// itself.
#pragma once

#include "base/observable.h"
#include "identity/identity_key.h"
#include "scanner/address_resolver.h"

#include <cstddef>
#include <memory_resource>
#include <string>
#include <vector>

namespace wegslot {

/// As it is kept.
struct KnownIdentity {
    IdentityKey key;
    std::string name; ///< the user's for the device
    /// The device's by its fixed address, once that is known. One that is bonded here as well is
    /// the same device under both.
    std::optional<Uuid> fixedId = {};

    [[nodiscard]] Uuid id() const { return fixedId ? *fixedId : key.deviceId(); }

    friend bool operator==(const KnownIdentity&, const KnownIdentity&) = default;
};

using KnownIdentities = std::pmr::vector<KnownIdentity>;

class Identities final : public AddressResolver {
public:
    /// More than anybody carries; each costs a new address one or two blocks of AES.
    static constexpr std::size_t most = 64;

    /// Keeps them in `memory`, which must outlive it.
    explicit Identities(std::pmr::memory_resource& memory);
    ~Identities() override;

    /// Takes `known` in the place of one with the same key, in either order.
    void put(const KnownIdentity& known);
    void remove(const Uuid& id);

    /// Null when there is none with this id.
    [[nodiscard]] const KnownIdentity* find(const Uuid& id) const;
    [[nodiscard]] std::vector<Uuid> ids() const;
    /// Those with `ids`, as they are kept, in the same memory.
    [[nodiscard]] KnownIdentities list(std::span<const Uuid> ids) const;

    [[nodiscard]] std::optional<Uuid> whose(std::string_view address) override;
    void learned(const Uuid& from, const Uuid& to) override;
    [[nodiscard]] Subscription onChange(std::function<void()> listener) override;

    /// Which device turned out to be which.
    struct Learned {
        Uuid from;
        Uuid to;
    };
    /// Told when the stack has; the identity has its new id then.
    [[nodiscard]] const Observable<Learned>& lastLearned() const { return lastLearned_; }

private:
    struct Entry;

    std::pmr::vector<Entry> entries_;
    Observable<int> changes_;
    Observable<Learned> lastLearned_;
};

} // namespace wegslot
