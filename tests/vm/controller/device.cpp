#include "device.h"

#include "link.h"

namespace controller {

namespace {

/// A device has six intervals to show that it has heard of the link; the kernel asks for 50 ms.
constexpr std::chrono::milliseconds untilUnheardLinkIsLost{300};

std::optional<Duration> inTime(std::optional<double> seconds) {
    return seconds ? std::optional(fromSeconds(*seconds)) : std::nullopt;
}

PairingIdentity identityOf(const DeviceDescription& description) {
    PairingIdentity identity{.address = description.advertisement.address,
                             .resolvingKey = std::nullopt};
    const auto* resolvable = std::get_if<Resolvable>(&description.privacy);
    if (resolvable != nullptr && !description.keepsIdentity)
        identity.resolvingKey = resolvable->key;
    return identity;
}

} // namespace

Device::Device(const DeviceDescription& description, TimePoint now)
    : advertiser_(description.advertisement, fromSeconds(description.interval), now),
      address_(description.advertisement.address, description.privacy,
               inTime(description.addressInterval), now),
      profile_(description.profile),
      attributes_(tableOf(profile_), profile_.mtu),
      pairing_(identityOf(description), description.pairability, bond_),
      central_(identityOf(description), description.central, description.profile.mtu, bond_),
      linkRssi_(description.linkRssi),
      advertisesWhileLinked_(description.advertisesWhileLinked),
      isMute_(description.isMute) {
    if (description.startsSilent) advertiser_.silence();
}

bool Device::isAdvertising() const {
    return advertiser_.isLoud() && (link_ == nullptr || advertisesWhileLinked_);
}

std::optional<TimePoint> Device::due(bool isHeard) const {
    if (lossDue_) return lossDue_;
    return isHeard && isAdvertising() ? std::optional(advertiser_.due()) : std::nullopt;
}

void Device::actIfDue(TimePoint now, Controller& controller) {
    if (lossDue_ && now >= *lossDue_)
        controller.drop(*this, static_cast<std::uint8_t>(Status::FailedToBeEstablished));
    if (isAdvertising()) advertiseIfDue(now, controller);
}

void Device::advertiseIfDue(TimePoint now, Controller& controller) {
    address_.changeIfDue(now);
    advertiser_.setAddress(address_.shown());
    if (!advertiser_.advertiseIfDue(now, controller)) return;
    const bool isConnectable = advertiser_.advertisement().type == ReportType::Connectable;
    if (!isConnectable || link_ != nullptr) return;
    controller.offer(address_.shown(), *this, admission_);
    if (link_ != nullptr && !link_->isHeard()) lossDue_ = now + untilUnheardLinkIsLost;
}

void Device::setModel(const std::string& model) {
    profile_.model = model;
    attributes_.replaceTable(tableOf(profile_));
}

bool Device::say(ByteView bytes) {
    if (link_ == nullptr) return false;
    link_->send(Channel::Attributes, bytes);
    return true;
}

int Device::linkRssi() const { return linkRssi_.value_or(advertiser_.advertisement().rssi); }

void Device::linked(Link& link) {
    link_ = &link;
    ++timesLinked_;
    attributes_.linked();
    if (!isCentral()) pairing_.linked(link.ends().own, link.ends().peer);
}

void Device::unlinked() {
    link_ = nullptr;
    lossDue_.reset();
    pairing_.unlinked();
    central_.unlinked();
}

void Device::receive(const Frame& frame) {
    switch (Channel{frame.channel}) {
    case Channel::Attributes:
        return receiveAttribute(frame.payload);
    case Channel::Signalling:
        return answer(Channel::Signalling, answerSignal(frame.payload));
    case Channel::Security:
        if (isCentral()) return central_.receiveSecurity(frame.payload);
        return answer(Channel::Security, pairing_.receive(frame.payload));
    }
}

bool Device::isCentral() const {
    return link_ != nullptr && link_->ends().role == LinkRole::Peripheral;
}

void Device::receiveAttribute(ByteView bytes) {
    if (isCentral() && AttributeClient::isForClient(bytes)) return central_.receiveAttribute(bytes);
    ++timesAsked_;
    if (isMute_) return;
    const auto security = link_->isEncrypted() ? LinkSecurity::Encrypted : LinkSecurity::Plain;
    answer(Channel::Attributes, attributes_.answer(bytes, security));
}

void Device::answer(Channel channel, const std::optional<Bytes>& reply) {
    if (reply) link_->send(channel, *reply);
}

bool Device::agreesOn(const EncryptionKey& key) { return pairing_.agreesOn(key); }

void Device::encrypted() {
    if (isCentral()) return central_.encrypted();
    for (const Bytes& message : pairing_.encrypted())
        link_->send(Channel::Security, message);
}

void Device::encryptionRefused() { central_.encryptionRefused(); }

} // namespace controller
