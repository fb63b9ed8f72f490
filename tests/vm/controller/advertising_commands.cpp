#include "advertising_commands.h"

#include <algorithm>

#include "link_commands.h"

namespace controller {

namespace {

/// What the older commands carry, padded to this length.
constexpr std::size_t longestOlderData = 31;
/// One extended command carries no more.
constexpr unsigned longestExtendedData = 251;

/// The last bit of a type of address says public or random; the one before it is about privacy,
/// which is left to the kernel.
AddressType addressType(unsigned given) {
    return (given & 1U) == 0 ? AddressType::Public : AddressType::Random;
}

Bytes takeOlder(ByteView parameters, Bytes& data) {
    const std::size_t length = parameters[0];
    if (length > longestOlderData) return done(Status::InvalidParameters);
    const ByteView given = parameters.subspan(1, length);
    data.assign(given.begin(), given.end());
    return done();
}

/// Data may come in several commands, each of which says which part of it that is.
Bytes takeExtended(ByteView parameters, ControllerState& state, Bytes AdvertisingSet::*member) {
    constexpr unsigned first = 1;
    constexpr unsigned whole = 3;
    constexpr unsigned unchanged = 4;
    constexpr std::size_t header = 4;
    AdvertisingSet* set = state.advertising.find(parameters[0]);
    if (set == nullptr) return done(Status::UnknownAdvertisingSet);
    const std::size_t length = parameters[3];
    if (parameters.size() < header + length) return done(Status::InvalidParameters);
    Bytes& data = set->*member;
    const unsigned part = parameters[1];
    if (part == first || part == whole) data.clear();
    if (part != unchanged) append(data, parameters.subspan(header, length));
    return done();
}

void switchOff(AdvertisingSet& set) {
    set.isOn = false;
    set.end.reset();
}

} // namespace

Bytes setAdvertisingParameters(ByteView parameters, ControllerState& state) {
    constexpr unsigned undirected = 0;
    constexpr unsigned scannable = 2;
    constexpr unsigned notConnectable = 3;
    AdvertisingSet& set = state.advertising.at(olderSet);
    if (set.isOn) return done(Status::CommandDisallowed);
    const unsigned type = parameters[4];
    set.isConnectable = type != scannable && type != notConnectable;
    set.isScannable = type == undirected || type == scannable;
    set.ownType = addressType(parameters[5]);
    return done();
}

Bytes setAdvertisingData(ByteView parameters, ControllerState& state) {
    return takeOlder(parameters, state.advertising.at(olderSet).data);
}

Bytes setScanResponseData(ByteView parameters, ControllerState& state) {
    return takeOlder(parameters, state.advertising.at(olderSet).response);
}

Bytes setAdvertisingEnable(ByteView parameters, ControllerState& state) {
    const bool isOn = parameters[0] != 0;
    if (isOn && state.advertisingAbility.refuses) return done(Status::CommandDisallowed);
    state.advertising.at(olderSet).isOn = isOn;
    return done();
}

Bytes setAdvertisingSetRandomAddress(ByteView parameters, ControllerState& state) {
    AdvertisingSet* set = state.advertising.find(parameters[0]);
    if (set == nullptr) return done(Status::UnknownAdvertisingSet);
    auto& bytes = set->randomAddress.bytes;
    std::copy_n(parameters.begin() + 1, bytes.size(), bytes.begin());
    return done();
}

Bytes setExtendedAdvertisingParameters(ByteView parameters, ControllerState& state) {
    constexpr unsigned connectable = 0x01;
    constexpr unsigned scannable = 0x02;
    constexpr std::size_t ownType = 10;
    constexpr std::uint8_t transmitPower = 0;
    const SetHandle handle = parameters[0];
    const bool isNew = state.advertising.find(handle) == nullptr;
    if (isNew && state.advertising.sets().size() >= state.advertisingAbility.sets)
        return done(Status::MemoryExceeded);
    AdvertisingSet& set = state.advertising.at(handle);
    if (set.isOn) return done(Status::CommandDisallowed);
    set.isConnectable = (parameters[1] & connectable) != 0;
    set.isScannable = (parameters[1] & scannable) != 0;
    set.ownType = addressType(parameters[ownType]);
    return {static_cast<std::uint8_t>(Status::Success), transmitPower};
}

Bytes setExtendedAdvertisingData(ByteView parameters, ControllerState& state) {
    return takeExtended(parameters, state, &AdvertisingSet::data);
}

Bytes setExtendedScanResponseData(ByteView parameters, ControllerState& state) {
    return takeExtended(parameters, state, &AdvertisingSet::response);
}

Bytes setExtendedAdvertisingEnable(ByteView parameters, ControllerState& state) {
    constexpr std::size_t header = 2;
    constexpr std::size_t entry = 4;
    const bool isOn = parameters[0] != 0;
    const std::size_t count = parameters[1];
    if (parameters.size() < header + count * entry) return done(Status::InvalidParameters);
    if (isOn && state.advertisingAbility.refuses) return done(Status::CommandDisallowed);
    if (!isOn && count == 0) {
        for (const auto& [handle, set] : state.advertising.sets())
            switchOff(state.advertising.at(handle));
        return done();
    }
    for (std::size_t at = header; at < header + count * entry; at += entry) {
        AdvertisingSet* set = state.advertising.find(parameters[at]);
        if (set == nullptr) return done(Status::UnknownAdvertisingSet);
        const unsigned centiseconds = read16(parameters, at + 1);
        switchOff(*set);
        set->isOn = isOn;
        set->duration = centiseconds == 0
                            ? std::nullopt
                            : std::optional<Duration>(std::chrono::milliseconds(10 * centiseconds));
    }
    return done();
}

Bytes readMaximumAdvertisingDataLength(ByteView, ControllerState&) {
    Bytes bytes = done();
    append16(bytes, longestExtendedData);
    return bytes;
}

Bytes readNumberOfAdvertisingSets(ByteView, ControllerState& state) {
    Bytes bytes = done();
    append8(bytes, state.advertisingAbility.sets);
    return bytes;
}

Bytes removeAdvertisingSet(ByteView parameters, ControllerState& state) {
    const AdvertisingSet* set = state.advertising.find(parameters[0]);
    if (set == nullptr) return done(Status::UnknownAdvertisingSet);
    if (set->isOn) return done(Status::CommandDisallowed);
    state.advertising.remove(parameters[0]);
    return done();
}

Bytes clearAdvertisingSets(ByteView, ControllerState& state) {
    if (state.advertising.isOn()) return done(Status::CommandDisallowed);
    state.advertising.clear();
    return done();
}

} // namespace controller
