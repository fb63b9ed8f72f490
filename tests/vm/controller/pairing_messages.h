// The messages of the security channel, as either side of a pairing sends them.
#pragma once

#include <optional>
#include <vector>

#include "peer.h"
#include "security_functions.h"

namespace controller {

enum class SecurityCode : std::uint8_t {
    PairingRequest = 0x01,
    PairingResponse = 0x02,
    PairingConfirm = 0x03,
    PairingRandom = 0x04,
    PairingFailed = 0x05,
    EncryptionInformation = 0x06,
    CentralIdentification = 0x07,
    IdentityInformation = 0x08,
    IdentityAddress = 0x09,
    SigningInformation = 0x0A,
    SecurityRequest = 0x0B,
    PublicKey = 0x0C,
    Proof = 0x0D
};

enum class PairingFailure : std::uint8_t {
    PasskeyEntry = 0x01,
    ConfirmValue = 0x04,
    NotSupported = 0x05,
    CommandNotSupported = 0x07,
    Unspecified = 0x08,
    InvalidParameters = 0x0A,
    Proof = 0x0B,
    NumericComparison = 0x0C
};

/// Where a request and a response have what.
inline constexpr std::size_t capabilitiesAt = 1;
inline constexpr std::size_t requirementsAt = 3;
inline constexpr std::size_t initiatorKeysAt = 5;
inline constexpr std::size_t responderKeysAt = 6;

/// Requirements.
inline constexpr unsigned bonding = 0x01;
inline constexpr unsigned bondingMask = 0x03;
inline constexpr unsigned protection = 0x04;
inline constexpr unsigned secureConnections = 0x08;

/// Keys, as both sides offer and ask for them.
inline constexpr unsigned encryptionKey = 0x01;
inline constexpr unsigned identityKey = 0x02;
inline constexpr unsigned signingKey = 0x04;

inline constexpr std::uint8_t longestKey = 16;
inline constexpr std::size_t keyMessageLength = 17;
inline constexpr std::size_t publicKeyMessageLength = 65;

/// What a device tells of itself at the end: who it is, if it hides that otherwise.
struct PairingIdentity {
    Address address;
    std::optional<Key> resolvingKey;
};

Bytes securityMessage(SecurityCode code, ByteView content);
Bytes failureMessage(PairingFailure why);

/// The caller has checked the length.
Key keyIn(ByteView message);

/// The key by which the other side encrypts its next link to the device.
std::vector<Bytes> encryptionKeyMessages(const EncryptionKey& key);

/// Only of a device that has a resolving key.
std::vector<Bytes> identityMessages(const PairingIdentity& identity);

} // namespace controller
