#include "identity/linux/asked_identity.h"

#include "base/system_error.h"
#include "base/text.h"
#include "identity/linux/secret_text.h"

#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace wegslot {

Result<KnownIdentity> askedIdentity(const std::string& name, const std::optional<Uuid>& sameAs,
                                    std::pmr::memory_resource& memory) {
    if (isatty(STDIN_FILENO) == 1)
        std::fprintf(stderr, "%s\n",
                     translated("Plak de identiteit (IRK) van %1 en druk op Enter; ze wordt niet "
                                "getoond",
                                {printable(name)})
                         .c_str());
    const auto isEnough = [](std::string_view text) {
        return static_cast<bool>(readIdentity(text)) || text == "\n";
    };
    const auto text = pastedText(STDIN_FILENO, longestPasted, memory, isEnough);
    if (!text) return Failure{message("standaardinvoer niet te lezen: %1", {systemError(errno)})};
    const auto pasted = readIdentity(*text);
    if (!pasted) return pasted.failure();
    return KnownIdentity{.key = pasted->key, .name = name, .fixedId = sameAs ? sameAs : pasted->id};
}

} // namespace wegslot
