#include "pairing_messages.h"

#include <algorithm>

namespace controller {

Bytes securityMessage(SecurityCode code, ByteView content) {
    Bytes bytes{static_cast<std::uint8_t>(code)};
    append(bytes, content);
    return bytes;
}

Bytes failureMessage(PairingFailure why) {
    return securityMessage(SecurityCode::PairingFailed, Bytes{static_cast<std::uint8_t>(why)});
}

Key keyIn(ByteView message) {
    Key key{};
    std::copy_n(message.begin() + 1, key.size(), key.begin());
    return key;
}

std::vector<Bytes> encryptionKeyMessages(const EncryptionKey& key) {
    Bytes identification;
    append16(identification, key.diversifier);
    append(identification, key.random);
    return {securityMessage(SecurityCode::EncryptionInformation, key.key),
            securityMessage(SecurityCode::CentralIdentification, identification)};
}

std::vector<Bytes> identityMessages(const PairingIdentity& identity) {
    Bytes address{static_cast<std::uint8_t>(identity.address.type)};
    append(address, identity.address.bytes);
    return {securityMessage(SecurityCode::IdentityInformation, *identity.resolvingKey),
            securityMessage(SecurityCode::IdentityAddress, address)};
}

} // namespace controller
