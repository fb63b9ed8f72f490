// A device's part in a pairing that the other side asks for: the older way, without a question to
// the user ("just works"), and the keys that are kept from it.
#pragma once

#include <optional>
#include <random>
#include <vector>

#include "bond.h"
#include "pairing_messages.h"

namespace controller {

enum class Pairability : std::uint8_t { Pairs, Refuses };

class Pairing {
public:
    /// Keeps in `bond` what it agrees on.
    Pairing(const PairingIdentity& identity, Pairability pairability, Bond& bond);

    /// How often it was asked to pair: a phone shows its owner a question each time.
    unsigned timesAsked() const { return timesAsked_; }

    void linked(const Address& initiator, const Address& responder);

    /// Leaves a pairing that was under way unfinished.
    void unlinked() { stage_ = Stage::Idle; }

    /// The answer to a message of the other side, if it wants one.
    std::optional<Bytes> receive(ByteView received);

    /// Whether this is the key of the pairing under way, or that of the bond.
    bool agreesOn(const EncryptionKey& key) const;

    /// What is to be sent once the link is encrypted: after a pairing, the keys.
    std::vector<Bytes> encrypted();

private:
    enum class Stage : std::uint8_t { Idle, AwaitsConfirm, AwaitsRandom, AwaitsEncryption };

    Bytes respond(ByteView request);
    Bytes confirm(ByteView received);
    Bytes reveal(ByteView received);
    Bytes fail(PairingFailure why);

    PairingIdentity identity_;
    Pairability pairability_;
    Bond& bond_;
    std::mt19937 generator_;
    unsigned timesAsked_ = 0;

    Stage stage_ = Stage::Idle;
    PairingContext context_;
    Key othersConfirm_{};
    Key ownRandom_{};
    EncryptionKey shortTerm_;
};

} // namespace controller
