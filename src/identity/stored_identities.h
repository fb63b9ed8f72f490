// Identities as they are kept in a file: JSON, and the secrets in it never pass through a library
// that keeps copies of what it reads.
#pragma once

#include "identity/identities.h"

#include <memory_resource>
#include <string>

namespace wegslot {

/// Reads `text`, which is spoilt by it. A failure says where it is wrong. Nothing stands for none.
Result<KnownIdentities> decodeIdentities(std::pmr::string& text, std::pmr::memory_resource& memory);

[[nodiscard]] std::pmr::string encodeIdentities(const KnownIdentities& identities,
                                                std::pmr::memory_resource& memory);

} // namespace wegslot
