// Asks a person, or a pipe, for an identity.
#pragma once

#include "identity/identities.h"

#include <memory_resource>
#include <optional>
#include <string>

namespace wegslot {

/// Reads one from standard input; a terminal is told what to do, on standard error. `sameAs`: what
/// the device is by its fixed address, said apart; where both say so, that counts. What came in is
/// kept in `memory` until it is understood.
[[nodiscard]] Result<KnownIdentity> askedIdentity(const std::string& name,
                                                  const std::optional<Uuid>& sameAs,
                                                  std::pmr::memory_resource& memory);

} // namespace wegslot
