#include "own_address.h"

#include <algorithm>

#include "random_bytes.h"
#include "security_functions.h"

namespace controller {

Address privateAddress(const Key& identityResolvingKey, unsigned random) {
    // The two top bits of the upper half say what kind of address this is.
    const unsigned top = ((random >> 16U) & 0x3FU) | 0x40U;
    const AddressPart upper{static_cast<std::uint8_t>(random & 0xFFU),
                            static_cast<std::uint8_t>((random >> 8U) & 0xFFU),
                            static_cast<std::uint8_t>(top)};
    const AddressPart lower = addressHash(identityResolvingKey, upper);
    Address address{.type = AddressType::Random};
    std::copy(lower.begin(), lower.end(), address.bytes.begin());
    std::copy(upper.begin(), upper.end(), address.bytes.begin() + lower.size());
    return address;
}

OwnAddress::OwnAddress(const Address& identity, const Privacy& privacy,
                       std::optional<Duration> every, TimePoint now)
    : identity_(identity),
      every_(every),
      due_(now),
      generator_(generatorFor(identity)),
      shown_(identity) {
    if (const auto* resolvable = std::get_if<Resolvable>(&privacy)) key_ = resolvable->key;
    if (std::holds_alternative<Changing>(privacy)) key_ = randomKey(generator_);
    change(now);
}

void OwnAddress::change(TimePoint now) {
    if (!key_) return;
    shown_ = privateAddress(*key_, static_cast<unsigned>(generator_()));
    if (every_) due_ = now + *every_;
}

void OwnAddress::changeIfDue(TimePoint now) {
    if (every_ && now >= due_) change(now);
}

} // namespace controller
