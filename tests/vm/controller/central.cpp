#include "central.h"

#include "link.h"

namespace controller {

Central::Central(const PairingIdentity& identity, const CentralHabits& habits, unsigned mtu,
                 Bond& bond)
    : habits_(habits),
      bond_(bond),
      attributes_(mtu),
      pairing_(identity, habits.pairing, bond) {}

void Central::begin(Link& link) {
    link_ = &link;
    wasBondRefused_ = false;
    if (bond_.asCentral) return link.askForKey(*bond_.asCentral);
    if (habits_.pairs == CentralHabits::Pairs::AtOnce) return pair();
    look();
}

void Central::unlinked() {
    link_ = nullptr;
    attributes_.unlinked();
    pairing_.abandon();
}

void Central::receiveAttribute(ByteView answer) {
    const bool wasRefused = attributes_.isRefused();
    ask(attributes_.receive(answer));
    const bool isNews = attributes_.isRefused() && !wasRefused;
    if (isNews && habits_.pairs == CentralHabits::Pairs::WhenRefused) secure();
}

void Central::receiveSecurity(ByteView message) {
    const bool isRequest =
        !message.empty() && SecurityCode{message[0]} == SecurityCode::SecurityRequest;
    if (isRequest) return secure();
    carryOut(pairing_.receive(message));
}

void Central::pair() {
    if (link_ == nullptr || pairing_.isUnderWay()) return;
    carryOut(pairing_.start(link_->ends().peer, link_->ends().own));
}

void Central::look() {
    ask(attributes_.hasStarted() ? attributes_.askAgain() : attributes_.start());
}

bool Central::answer(const OwnersAnswer& answer) {
    if (!pairing_.question()) return false;
    carryOut(pairing_.answer(answer));
    return true;
}

void Central::encrypted() {
    if (!pairing_.isUnderWay()) return look();
    carryOut(pairing_.encrypted());
}

void Central::encryptionRefused() {
    wasBondRefused_ = true;
    look();
}

/// With the bond, or a new one.
void Central::secure() {
    if (bond_.asCentral && !wasBondRefused_ && !link_->isEncrypted())
        return link_->askForKey(*bond_.asCentral);
    pair();
}

void Central::ask(const std::optional<Bytes>& question) {
    if (question) link_->send(Channel::Attributes, *question);
}

void Central::carryOut(const PairingMove& move) {
    for (const Bytes& message : move.messages)
        link_->send(Channel::Security, message);
    if (move.encryptWith) link_->askForKey(*move.encryptWith);
    if (move.isEnd) look();
}

} // namespace controller
