// A named device near the controller: what it advertises, and how it behaves when it is connected.
#pragma once

#include <optional>
#include <string>

#include "advertiser.h"
#include "attribute_server.h"
#include "central.h"
#include "gatt_profile.h"
#include "own_address.h"
#include "pairing.h"

namespace controller {

/// All there is to know of a device when it is put on the air.
struct DeviceDescription {
    /// Its address is the device's identity, which it shows only if it has no privacy.
    Advertisement advertisement;
    double interval = 0.3;
    Privacy privacy;
    std::optional<double> addressInterval;
    GattProfile profile;
    Pairability pairability = Pairability::Pairs;
    /// Nothing for that of its advertisements.
    std::optional<int> linkRssi;
    /// Most devices fall silent when they are connected.
    bool advertisesWhileLinked = false;
    /// Takes the connection and never answers on the attribute channel.
    bool isMute = false;
    /// Pairs without saying who it is.
    bool keepsIdentity = false;
    /// Does not advertise before it is told to.
    bool startsSilent = false;
    /// For links that it makes itself.
    CentralHabits central;
};

class Device final : public Peer {
public:
    Device(const DeviceDescription& description, TimePoint now);

    Advertiser& advertiser() { return advertiser_; }

    const Advertiser& advertiser() const { return advertiser_; }

    OwnAddress& address() { return address_; }

    const OwnAddress& address() const { return address_; }

    const Pairing& pairing() const { return pairing_; }

    /// Its part in links that it makes itself.
    Central& central() { return central_; }

    const Central& central() const { return central_; }

    bool isBonded() const { return bond_.isKept(); }

    /// As when its owner removes the other side from its list.
    void forgetBond() { bond_.forget(); }

    const Link* link() const { return link_; }

    /// Whether it has made the link that it has.
    bool isCentral() const;

    unsigned timesLinked() const { return timesLinked_; }

    /// How much it was asked on the attribute channel, answered or not.
    unsigned timesAsked() const { return timesAsked_; }

    /// Whether it is on the air, when it is its turn.
    bool isAdvertising() const;

    /// When it does something next of its own accord; nothing while it waits to be spoken to.
    /// Advertisements count only if somebody listens.
    std::optional<TimePoint> due(bool isHeard) const;

    /// Advertises, if it is time, and takes the connection if somebody waits for it.
    void actIfDue(TimePoint now, Controller& controller);

    void setAdmission(const Admission& admission) { admission_ = admission; }

    void setLinkRssi(int rssi) { linkRssi_ = rssi; }

    void setMute(bool isMute) { isMute_ = isMute; }

    void setModel(const std::string& model);

    /// Any bytes on the attribute channel. False without a link.
    bool say(ByteView bytes);

    int linkRssi() const override;
    void linked(Link& link) override;
    void unlinked() override;
    void receive(const Frame& frame) override;
    bool agreesOn(const EncryptionKey& key) override;
    void encrypted() override;
    void encryptionRefused() override;

private:
    void advertiseIfDue(TimePoint now, Controller& controller);
    void answer(Channel channel, const std::optional<Bytes>& reply);
    void receiveAttribute(ByteView bytes);

    Advertiser advertiser_;
    OwnAddress address_;
    GattProfile profile_;
    AttributeServer attributes_;
    Bond bond_;
    Pairing pairing_;
    Central central_;
    Admission admission_;
    std::optional<int> linkRssi_;
    bool advertisesWhileLinked_;
    bool isMute_;
    Link* link_ = nullptr;
    /// When a link that was never heard of is lost.
    std::optional<TimePoint> lossDue_;
    unsigned timesLinked_ = 0;
    unsigned timesAsked_ = 0;
};

} // namespace controller
