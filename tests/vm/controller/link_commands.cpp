#include "link_commands.h"

#include <algorithm>

namespace controller {

namespace {

LinkTerms readTerms(ByteView longestIntervalOn) {
    return {.interval = read16(longestIntervalOn, 0),
            .latency = read16(longestIntervalOn, 2),
            .timeout = read16(longestIntervalOn, 4)};
}

/// Carries out what the device at the other end of a link has a part in, and which ends with an
/// event about that link. The parameters start with its handle.
template <typename Follow>
Bytes onLink(ByteView parameters, ControllerState& state, Follow follow) {
    Link* link = state.links.find(read16(parameters, 0));
    if (link == nullptr) return done(Status::UnknownConnection);
    if (link->isHeard()) follow(*link);
    return done(Status::Success);
}

/// As done(status), for answers that repeat the handle.
Bytes aboutHandle(ByteView parameters, Status status) {
    Bytes bytes = done(status);
    append16(bytes, read16(parameters, 0));
    return bytes;
}

EncryptionKey readKey(ByteView randomOn) {
    EncryptionKey key;
    const auto afterRandom = randomOn.begin() + key.random.size();
    std::copy(randomOn.begin(), afterRandom, key.random.begin());
    key.diversifier = read16(randomOn, key.random.size());
    std::copy_n(afterRandom + 2, key.key.size(), key.key.begin());
    return key;
}

} // namespace

Bytes createConnection(ByteView parameters, ControllerState& state) {
    constexpr std::size_t filterPolicy = 4;
    constexpr std::size_t peerAddress = 5;
    constexpr std::size_t ownAddressType = 12;
    constexpr std::size_t longestInterval = 15;
    if (state.initiator.isOn()) return done(Status::CommandDisallowed);
    ConnectionRequest request{.wanted = std::nullopt,
                              .own = parameters[ownAddressType] == 0 ? state.address
                                                                     : state.randomAddress,
                              .terms = readTerms(parameters.subspan(longestInterval))};
    if (parameters[filterPolicy] == 0)
        request.wanted = readAddress(parameters.subspan(peerAddress));
    if (request.wanted && state.links.hasPeerAt(*request.wanted))
        return done(Status::ConnectionExists);
    state.initiator.start(request);
    return done(Status::Success);
}

Bytes cancelConnection(ByteView, ControllerState& state) {
    if (!state.initiator.isOn()) return done(Status::CommandDisallowed);
    const Address wanted = state.initiator.request().wanted.value_or(Address{});
    state.initiator.stop();
    // That is how a cancelled attempt ends.
    state.outbox.put(
        connectionComplete(Status::UnknownConnection, {.peer = wanted}, state.eventForm()));
    return done(Status::Success);
}

Bytes disconnect(ByteView parameters, ControllerState& state) {
    if (state.links.find(read16(parameters, 0)) == nullptr) return done(Status::UnknownConnection);
    state.links.close(read16(parameters, 0), static_cast<std::uint8_t>(Status::EndedByLocalHost));
    return done(Status::Success);
}

Bytes readRemoteVersion(ByteView parameters, ControllerState& state) {
    return onLink(parameters, state, [&](const Link& link) {
        state.outbox.put(remoteVersionComplete(link.handle()));
    });
}

Bytes readRemoteFeatures(ByteView parameters, ControllerState& state) {
    return onLink(parameters, state, [&](const Link& link) {
        state.outbox.put(remoteFeaturesComplete(link.handle()));
    });
}

Bytes updateConnection(ByteView parameters, ControllerState& state) {
    constexpr std::size_t longestInterval = 4;
    return onLink(parameters, state, [&](const Link& link) {
        const LinkTerms terms = readTerms(parameters.subspan(longestInterval));
        state.outbox.put(connectionUpdateComplete(link.handle(), terms));
    });
}

Bytes setDataLength(ByteView parameters, ControllerState& state) {
    Link* link = state.links.find(read16(parameters, 0));
    if (link == nullptr) return aboutHandle(parameters, Status::UnknownConnection);
    if (!link->isHeard()) return aboutHandle(parameters, Status::Success);
    link->lengthenPieces();
    state.outbox.put(dataLengthChange(link->handle()));
    return aboutHandle(parameters, Status::Success);
}

Bytes readRssi(ByteView parameters, ControllerState& state) {
    const Link* link = state.links.find(read16(parameters, 0));
    const Status status = link == nullptr ? Status::UnknownConnection : Status::Success;
    Bytes bytes = aboutHandle(parameters, status);
    append8(bytes, static_cast<std::uint8_t>(link == nullptr ? 0 : link->peer().linkRssi()));
    return bytes;
}

Bytes startEncryption(ByteView parameters, ControllerState& state) {
    return onLink(parameters, state, [&](Link& link) {
        const bool agreed = link.peer().agreesOn(readKey(parameters.subspan(2)));
        const Status status = agreed ? Status::Success : Status::KeyMissing;
        state.outbox.put(link.isEncrypted() ? encryptionKeyRefreshComplete(link.handle(), status)
                                            : encryptionChange(link.handle(), status));
        if (!agreed) return;
        link.setEncrypted();
        link.peer().encrypted();
    });
}

Bytes giveLongTermKey(ByteView parameters, ControllerState& state) {
    Link* link = state.links.find(read16(parameters, 0));
    if (link == nullptr) return aboutHandle(parameters, Status::UnknownConnection);
    const std::optional<Key> wanted = link->takeKeyAskedFor();
    if (!wanted) return aboutHandle(parameters, Status::CommandDisallowed);
    if (!std::equal(wanted->begin(), wanted->end(), parameters.begin() + 2)) {
        // Two keys make two ciphers: neither side understands the other any more.
        state.links.close(link->handle(), static_cast<std::uint8_t>(Status::IntegrityFailure));
        return aboutHandle(parameters, Status::Success);
    }
    state.outbox.put(link->isEncrypted()
                         ? encryptionKeyRefreshComplete(link->handle(), Status::Success)
                         : encryptionChange(link->handle(), Status::Success));
    link->setEncrypted();
    link->peer().encrypted();
    return aboutHandle(parameters, Status::Success);
}

Bytes refuseLongTermKey(ByteView parameters, ControllerState& state) {
    Link* link = state.links.find(read16(parameters, 0));
    if (link == nullptr) return aboutHandle(parameters, Status::UnknownConnection);
    if (!link->takeKeyAskedFor()) return aboutHandle(parameters, Status::CommandDisallowed);
    link->peer().encryptionRefused();
    return aboutHandle(parameters, Status::Success);
}

} // namespace controller
