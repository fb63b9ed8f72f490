// A device's part in a pairing that it asks for itself, as the central of a link: a phone's. In the
// older way and with secure connections; nothing is asked, or the owner compares six digits, or
// types those that the other side shows.
#pragma once

#include <optional>
#include <random>
#include <vector>

#include "bond.h"
#include "pairing_messages.h"

namespace controller {

/// What an owner can do, in the numbers of the air.
enum class OwnerAbility : std::uint8_t {
    /// Look, and say yes or no.
    Answers = 1,
    Nothing = 3,
    /// Look, and type: what phones say.
    Types = 4
};

struct PairingHabits {
    OwnerAbility owner = OwnerAbility::Types;
    /// Knows the older way only.
    bool isOlder = false;
    /// The owner is asked where nothing is to be compared, too.
    bool asksAlways = false;
};

/// What the owner is asked.
struct OwnersQuestion {
    enum class Kind : std::uint8_t {
        Consent,
        /// Whether these digits are on the other screen as well.
        Compare,
        /// For the digits that are on the other screen.
        Type
    };

    Kind kind = Kind::Consent;
    unsigned digits = 0;

    bool operator==(const OwnersQuestion&) const = default;
};

struct OwnersAnswer {
    bool consents = true;
    unsigned digits = 0;
};

/// What the device does next: it says this, and then wants the link encrypted.
struct PairingMove {
    std::vector<Bytes> messages;
    std::optional<EncryptionKey> encryptWith;
    /// That was all: what had to wait for it may go on.
    bool isEnd = false;
};

class InitiatedPairing {
public:
    /// Keeps in `bond` what is agreed on.
    InitiatedPairing(const PairingIdentity& identity, const PairingHabits& habits, Bond& bond);

    bool isUnderWay() const { return stage_ != Stage::Idle; }

    /// Why the last one failed, whoever said so, as on the air.
    std::optional<std::uint8_t> failure() const { return failure_; }

    /// How many have come to their end.
    unsigned timesDone() const { return timesDone_; }

    const std::optional<OwnersQuestion>& question() const { return question_; }

    /// Not while one is under way.
    PairingMove start(const Address& own, const Address& others);

    /// To what the other side says.
    PairingMove receive(ByteView message);

    /// Only where there is a question.
    PairingMove answer(const OwnersAnswer& answer);

    /// The link is encrypted with the key that was wanted.
    PairingMove encrypted();

    /// Leaves one that is under way unfinished.
    void abandon();

private:
    enum class Stage : std::uint8_t {
        Idle,
        AwaitsResponse,
        AwaitsPublicKey,
        AwaitsCommitment,
        AwaitsOwner,
        AwaitsConfirm,
        AwaitsRandom,
        AwaitsProof,
        AwaitsEncryption,
        AwaitsKeys
    };

    bool isSecure() const;
    std::optional<OwnersQuestion::Kind> whatToAsk() const;
    PairingMove takeResponse(ByteView message);
    PairingMove takePublicKey(ByteView message);
    PairingMove takeCommitment(ByteView message);
    PairingMove takeRandom(ByteView message);
    PairingMove takeRandomSecurely(const Key& random);
    PairingMove takeProof(ByteView message);
    PairingMove takeKey(ByteView message);

    /// To the owner, or past.
    PairingMove ask();
    PairingMove confirm();
    PairingMove prove();
    PairingMove end();
    PairingMove fail(PairingFailure why);

    PairingIdentity identity_;
    PairingHabits habits_;
    Bond& bond_;
    std::mt19937 generator_;
    std::optional<std::uint8_t> failure_;
    unsigned timesDone_ = 0;
    std::optional<OwnersQuestion> question_;

    Stage stage_ = Stage::Idle;
    PairingContext context_;
    Exchange exchange_;
    CurveNumber secret_{};
    PublicKey ownPublic_;
    PublicKey othersPublic_;
    /// What the other side is bound to.
    Key commitment_{};
    Key temporary_{};
    PairingKeys keys_;
    /// The keys that are still to come from the other side, as in the response, and those that
    /// came.
    unsigned keysToCome_ = 0;
    EncryptionKey othersKey_;
};

} // namespace controller
