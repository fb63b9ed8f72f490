#include "platform/linux/random_uuid.h"

#include <cstdlib>

#include <sys/random.h>

namespace wegslot {

Uuid randomUuid() {
    Uuid id;
    // So few bytes come whole, once the machine has started.
    if (getrandom(id.bytes.data(), id.bytes.size(), 0) != static_cast<ssize_t>(id.bytes.size()))
        std::abort();
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0FU) | 0x40U); // version
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3FU) | 0x80U); // variant
    return id;
}

} // namespace wegslot
