// What a device does of its own accord on a link that it has made to us, as a phone does that its
// owner has told to connect: it encrypts the link if there is a bond, looks what is served, and
// pairs.
#pragma once

#include "attribute_client.h"
#include "initiated_pairing.h"
#include "l2cap.h"

namespace controller {

class Link;

struct CentralHabits {
    /// When it pairs; when it is asked to it always does.
    enum class Pairs : std::uint8_t {
        /// A value was refused that is open to encrypted links only.
        WhenRefused,
        /// Before it looks at anything.
        AtOnce,
        WhenAsked
    };

    Pairs pairs = Pairs::WhenRefused;
    PairingHabits pairing;
};

class Central {
public:
    Central(const PairingIdentity& identity, const CentralHabits& habits, unsigned mtu, Bond& bond);

    const AttributeClient& attributes() const { return attributes_; }

    const InitiatedPairing& pairing() const { return pairing_; }

    /// Whether we did not know the bond that it used on the present link, or the last.
    bool wasBondRefused() const { return wasBondRefused_; }

    /// The link, which lives until `unlinked`, can be used.
    void begin(Link& link);
    void unlinked();

    void receiveAttribute(ByteView answer);
    void receiveSecurity(ByteView message);

    /// Pairs, unless it does already.
    void pair();

    /// Asks what is served, or for what it was refused; not on a link that it has not.
    void look();

    /// False if its owner was asked nothing.
    bool answer(const OwnersAnswer& answer);

    void encrypted();
    void encryptionRefused();

private:
    void secure();
    void ask(const std::optional<Bytes>& question);
    void carryOut(const PairingMove& move);

    CentralHabits habits_;
    Bond& bond_;
    AttributeClient attributes_;
    InitiatedPairing pairing_;
    Link* link_ = nullptr;
    bool wasBondRefused_ = false;
};

} // namespace controller
