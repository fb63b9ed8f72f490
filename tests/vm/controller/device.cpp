#include "device.h"

#include "link.h"

namespace controller {

namespace {

/// A device has six intervals to show that it has heard of the link; the kernel asks for 50 ms.
constexpr std::chrono::milliseconds untilUnheardLinkIsLost{300};

std::optional<Duration> inTime(std::optional<double> seconds) {
    return seconds ? std::optional(fromSeconds(*seconds)) : std::nullopt;
}

Pairing::Identity identityOf(const DeviceDescription& description) {
    Pairing::Identity identity{.address = description.advertisement.address,
                               .resolvingKey = std::nullopt};
    if (const auto* resolvable = std::get_if<Resolvable>(&description.privacy))
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
      pairing_(identityOf(description), description.pairability),
      linkRssi_(description.linkRssi),
      advertisesWhileLinked_(description.advertisesWhileLinked),
      isMute_(description.isMute) {}

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
    pairing_.linked(link.ends().own, link.ends().peer);
}

void Device::unlinked() {
    link_ = nullptr;
    lossDue_.reset();
    pairing_.unlinked();
}

void Device::receive(const Frame& frame) {
    switch (Channel{frame.channel}) {
    case Channel::Attributes:
        return receiveAttribute(frame.payload);
    case Channel::Signalling:
        return answer(Channel::Signalling, answerSignal(frame.payload));
    case Channel::Security:
        return answer(Channel::Security, pairing_.receive(frame.payload));
    }
}

void Device::receiveAttribute(ByteView request) {
    ++timesAsked_;
    if (isMute_) return;
    const auto security = link_->isEncrypted() ? LinkSecurity::Encrypted : LinkSecurity::Plain;
    answer(Channel::Attributes, attributes_.answer(request, security));
}

void Device::answer(Channel channel, const std::optional<Bytes>& reply) {
    if (reply) link_->send(channel, *reply);
}

bool Device::agreesOn(const EncryptionKey& key) { return pairing_.agreesOn(key); }

void Device::encrypted() {
    for (const Bytes& message : pairing_.encrypted())
        link_->send(Channel::Security, message);
}

} // namespace controller
