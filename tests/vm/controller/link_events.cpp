#include "link_events.h"

#include "abilities.h"

namespace controller {

namespace {

constexpr std::uint8_t disconnectionCompleteEvent = 0x05;
constexpr std::uint8_t encryptionChangeEvent = 0x08;
constexpr std::uint8_t remoteVersionEvent = 0x0C;
constexpr std::uint8_t hardwareErrorEvent = 0x10;
constexpr std::uint8_t completedPacketsEvent = 0x13;
constexpr std::uint8_t keyRefreshEvent = 0x30;

constexpr std::uint8_t connectionCompleteSubevent = 0x01;
constexpr std::uint8_t connectionUpdateSubevent = 0x03;
constexpr std::uint8_t remoteFeaturesSubevent = 0x04;
constexpr std::uint8_t longTermKeyRequestSubevent = 0x05;
constexpr std::uint8_t dataLengthChangeSubevent = 0x07;
constexpr std::uint8_t enhancedConnectionCompleteSubevent = 0x0A;
constexpr std::uint8_t advertisingSetTerminatedSubevent = 0x12;

Bytes about(LinkHandle handle, Status status = Status::Success) {
    Bytes parameters;
    append8(parameters, static_cast<unsigned>(status));
    append16(parameters, handle);
    return parameters;
}

void appendTerms(Bytes& to, const LinkTerms& terms) {
    append16(to, terms.interval);
    append16(to, terms.latency);
    append16(to, terms.timeout);
}

} // namespace

Bytes connectionComplete(Status status, const NewLink& link, EventForm form) {
    const bool isEnhanced = form == EventForm::Enhanced;
    Bytes parameters = about(link.handle, status);
    append8(parameters, static_cast<unsigned>(link.role));
    append8(parameters, static_cast<unsigned>(link.peer.type));
    append(parameters, link.peer.bytes);
    // The private addresses that the controller itself makes for either side: it makes none.
    if (isEnhanced) append(parameters, Bytes(2 * link.peer.bytes.size(), 0));
    appendTerms(parameters, link.terms);
    append8(parameters, 0); // clock accuracy
    return lowEnergyEvent(
        isEnhanced ? enhancedConnectionCompleteSubevent : connectionCompleteSubevent, parameters);
}

Bytes advertisingSetTerminated(Status status, std::uint8_t set, LinkHandle handle) {
    Bytes parameters;
    append8(parameters, static_cast<unsigned>(status));
    append8(parameters, set);
    append16(parameters, handle);
    append8(parameters, 0); // how many times it was sent, which only counts where that was limited
    return lowEnergyEvent(advertisingSetTerminatedSubevent, parameters);
}

Bytes longTermKeyRequest(LinkHandle handle, ByteView random, unsigned diversifier) {
    Bytes parameters;
    append16(parameters, handle);
    append(parameters, random);
    append16(parameters, diversifier);
    return lowEnergyEvent(longTermKeyRequestSubevent, parameters);
}

Bytes disconnectionComplete(LinkHandle handle, std::uint8_t reason) {
    Bytes parameters = about(handle);
    append8(parameters, reason);
    return event(disconnectionCompleteEvent, parameters);
}

Bytes connectionUpdateComplete(LinkHandle handle, const LinkTerms& terms) {
    Bytes parameters = about(handle);
    appendTerms(parameters, terms);
    return lowEnergyEvent(connectionUpdateSubevent, parameters);
}

Bytes remoteFeaturesComplete(LinkHandle handle) {
    Bytes parameters = about(handle);
    append(parameters, lowEnergyFeatureMask);
    return lowEnergyEvent(remoteFeaturesSubevent, parameters);
}

Bytes remoteVersionComplete(LinkHandle handle) {
    Bytes parameters = about(handle);
    append8(parameters, bluetooth50);
    append16(parameters, manufacturerForTests);
    append16(parameters, 0); // subversion
    return event(remoteVersionEvent, parameters);
}

Bytes dataLengthChange(LinkHandle handle) {
    Bytes parameters;
    append16(parameters, handle);
    for (int direction = 0; direction < 2; ++direction) {
        append16(parameters, maximumDataOctets);
        append16(parameters, maximumDataMicroseconds);
    }
    return lowEnergyEvent(dataLengthChangeSubevent, parameters);
}

Bytes encryptionChange(LinkHandle handle, Status status) {
    Bytes parameters = about(handle, status);
    append8(parameters, status == Status::Success ? 1 : 0);
    return event(encryptionChangeEvent, parameters);
}

Bytes encryptionKeyRefreshComplete(LinkHandle handle, Status status) {
    return event(keyRefreshEvent, about(handle, status));
}

Bytes onePacketCompleted(LinkHandle handle) {
    Bytes parameters;
    append8(parameters, 1); // of one link
    append16(parameters, handle);
    append16(parameters, 1);
    return event(completedPacketsEvent, parameters);
}

Bytes hardwareError(std::uint8_t code) { return event(hardwareErrorEvent, Bytes{code}); }

} // namespace controller
