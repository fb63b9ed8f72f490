// The identities as a file of their own, apart from the preferences: who shows or copies those
// gives nothing away. Only its user can read it, or look into its folder.
#pragma once

#include "identity/identity_store.h"

#include <filesystem>
#include <memory_resource>

namespace wegslot {

class IdentitiesFile final : public IdentityStore {
public:
    /// What is read is kept in `memory`, which must outlive it.
    IdentitiesFile(std::filesystem::path file, std::pmr::memory_resource& memory);

    /// "wegslot/identities.json" under the user's folder for data.
    [[nodiscard]] static std::filesystem::path pathUnder(const std::filesystem::path& data);

    [[nodiscard]] Result<KnownIdentities> read() override;
    [[nodiscard]] std::optional<Failure> change(std::span<const Uuid> gone,
                                                std::span<const KnownIdentity> there) override;

private:
    [[nodiscard]] Failure trouble(const Message& what) const;
    [[nodiscard]] std::optional<Failure> write(const KnownIdentities& all) const;

    const std::filesystem::path file_;
    std::pmr::memory_resource& memory_;
};

} // namespace wegslot
