#include "commands.h"

#include <algorithm>
#include <random>

#include "abilities.h"
#include "advertising_commands.h"
#include "link_commands.h"

namespace controller {

namespace {

constexpr std::size_t commandMaskLength = 64;

Bytes accepted(ByteView, ControllerState&) { return done(); }

Bytes reset(ByteView, ControllerState& state) {
    state.reset();
    return done();
}

Bytes localVersion(ByteView, ControllerState&) {
    Bytes bytes = done();
    append8(bytes, bluetooth50);
    append16(bytes, 0); // revision
    append8(bytes, bluetooth50);
    append16(bytes, manufacturerForTests);
    append16(bytes, 0); // subversion
    return bytes;
}

Bytes localFeatures(ByteView, ControllerState&) {
    // Low Energy, and nothing but that: the classic radio is declared absent.
    return {0, 0, 0, 0, 0, 0x60, 0, 0, 0};
}

Bytes bufferSize(ByteView, ControllerState&) {
    Bytes bytes = done();
    append16(bytes, dataPacketLength);
    append8(bytes, 0); // no voice
    append16(bytes, dataPackets);
    append16(bytes, 0);
    return bytes;
}

Bytes ownAddress(ByteView, ControllerState& state) {
    Bytes bytes = done();
    append(bytes, state.address.bytes);
    return bytes;
}

Bytes lowEnergyBufferSize(ByteView, ControllerState&) {
    Bytes bytes = done();
    append16(bytes, dataPacketLength);
    append8(bytes, dataPackets);
    return bytes;
}

Bytes lowEnergyFeatures(ByteView, ControllerState& state) {
    std::array<std::uint8_t, 8> mask = lowEnergyFeatureMask;
    if (state.hasExtendedAdvertising()) mask[1] |= extendedAdvertisingFeature;
    Bytes bytes = done();
    append(bytes, mask);
    return bytes;
}

Bytes lowEnergyStates(ByteView, ControllerState&) {
    // Every combination of scanning, advertising and connections.
    return {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x03, 0, 0};
}

Bytes setRandomAddress(ByteView parameters, ControllerState& state) {
    std::copy_n(parameters.begin(), state.randomAddress.bytes.size(),
                state.randomAddress.bytes.begin());
    return done();
}

Bytes advertisingPower(ByteView, ControllerState&) { return {0, 0}; }

Bytes setScanParameters(ByteView parameters, ControllerState& state) {
    if (state.scan.isOn()) return done(Status::CommandDisallowed);
    const bool listOnly = (parameters[6] & 1U) != 0;
    state.scan.setParameters(parameters[0] == 1 ? ScanKind::Active : ScanKind::Passive,
                             listOnly ? ScanFilterPolicy::AcceptListOnly
                                      : ScanFilterPolicy::Everyone);
    return done();
}

Bytes setScanEnable(ByteView parameters, ControllerState& state) {
    if (parameters[0] == 0) {
        state.scan.stop();
        return done();
    }
    state.scan.start(parameters[1] != 0);
    return done();
}

Bytes readAcceptListSize(ByteView, ControllerState&) { return {0, acceptListSize}; }

Bytes clearAcceptList(ByteView, ControllerState& state) {
    state.acceptList.clear();
    return done();
}

Bytes addToAcceptList(ByteView parameters, ControllerState& state) {
    state.acceptList.insert(readAddress(parameters));
    return done();
}

Bytes removeFromAcceptList(ByteView parameters, ControllerState& state) {
    state.acceptList.erase(readAddress(parameters));
    return done();
}

Bytes randomNumber(ByteView, ControllerState&) {
    // The same numbers in every run: nothing secret hangs on them.
    static std::mt19937_64 generator{1};
    Bytes bytes = done();
    std::uint64_t number = generator();
    for (int count = 0; count < 8; ++count, number >>= 8U)
        append8(bytes, static_cast<unsigned>(number & 0xFFU));
    return bytes;
}

Bytes defaultDataLength(ByteView, ControllerState&) {
    Bytes bytes = done();
    append16(bytes, defaultDataOctets);
    append16(bytes, defaultDataMicroseconds);
    return bytes;
}

Bytes maximumDataLength(ByteView, ControllerState&) {
    Bytes bytes = done();
    for (int direction = 0; direction < 2; ++direction) {
        append16(bytes, maximumDataOctets);
        append16(bytes, maximumDataMicroseconds);
    }
    return bytes;
}

Bytes supportedCommands(ByteView, ControllerState&);

/// Whether a command's answer is its result, or just says that the result will come.
enum class Answer : std::uint8_t { Now, Later };

struct KnownCommand {
    std::uint16_t opcode;
    /// Where the mask of supported commands has it.
    std::uint8_t octet;
    std::uint8_t bit;
    std::uint8_t parameterLength;
    Answer answer;
    Bytes (*carryOut)(ByteView, ControllerState&);
};

constexpr auto now = Answer::Now;
constexpr auto later = Answer::Later;

constexpr KnownCommand knownCommands[] = {
    {0x0406, 0, 5, 3, later, disconnect},
    {0x041D, 2, 7, 2, later, readRemoteVersion},
    {0x0C01, 5, 6, 8, now, accepted}, // Set Event Mask
    {0x0C03, 5, 7, 0, now, reset},
    {0x1001, 14, 3, 0, now, localVersion},
    {0x1002, 14, 4, 0, now, supportedCommands},
    {0x1003, 14, 5, 0, now, localFeatures},
    {0x1005, 14, 7, 0, now, bufferSize},
    {0x1009, 15, 1, 0, now, ownAddress},
    {0x1405, 15, 5, 2, now, readRssi},
    {0x2001, 25, 0, 8, now, accepted}, // LE Set Event Mask
    {0x2002, 25, 1, 0, now, lowEnergyBufferSize},
    {0x2003, 25, 2, 0, now, lowEnergyFeatures},
    {0x2005, 25, 4, 6, now, setRandomAddress},
    {0x2006, 25, 5, 15, now, setAdvertisingParameters},
    {0x2007, 25, 6, 0, now, advertisingPower},
    {0x2008, 25, 7, 32, now, setAdvertisingData},
    {0x2009, 26, 0, 32, now, setScanResponseData},
    {0x200A, 26, 1, 1, now, setAdvertisingEnable},
    {0x200B, 26, 2, 7, now, setScanParameters},
    {0x200C, 26, 3, 2, now, setScanEnable},
    {0x200D, 26, 4, 25, later, createConnection},
    {0x200E, 26, 5, 0, now, cancelConnection},
    {0x200F, 26, 6, 0, now, readAcceptListSize},
    {0x2010, 26, 7, 0, now, clearAcceptList},
    {0x2011, 27, 0, 7, now, addToAcceptList},
    {0x2012, 27, 1, 7, now, removeFromAcceptList},
    {0x2013, 27, 2, 14, later, updateConnection},
    {0x2016, 27, 5, 2, later, readRemoteFeatures},
    {0x2018, 27, 7, 0, now, randomNumber},
    {0x2019, 28, 0, 28, later, startEncryption},
    {0x201A, 28, 1, 18, now, giveLongTermKey},
    {0x201B, 28, 2, 2, now, refuseLongTermKey},
    {0x201C, 28, 3, 0, now, lowEnergyStates},
    {0x2022, 33, 6, 6, now, setDataLength},
    {0x2023, 33, 7, 0, now, defaultDataLength},
    {0x2024, 34, 0, 4, now, accepted}, // LE Write Suggested Default Data Length
    {0x202F, 35, 3, 0, now, maximumDataLength},
};

constexpr KnownCommand extendedAdvertisingCommands[] = {
    {0x2035, 36, 1, 7, now, setAdvertisingSetRandomAddress},
    {0x2036, 36, 2, 25, now, setExtendedAdvertisingParameters},
    {0x2037, 36, 3, 4, now, setExtendedAdvertisingData},
    {0x2038, 36, 4, 4, now, setExtendedScanResponseData},
    {0x2039, 36, 5, 2, now, setExtendedAdvertisingEnable},
    {0x203A, 36, 6, 0, now, readMaximumAdvertisingDataLength},
    {0x203B, 36, 7, 0, now, readNumberOfAdvertisingSets},
    {0x203C, 37, 0, 1, now, removeAdvertisingSet},
    {0x203D, 37, 1, 0, now, clearAdvertisingSets},
};

/// Those that the controller has now.
std::vector<KnownCommand> commandsOf(const ControllerState& state) {
    std::vector<KnownCommand> known(std::begin(knownCommands), std::end(knownCommands));
    if (state.hasExtendedAdvertising())
        known.insert(known.end(), std::begin(extendedAdvertisingCommands),
                     std::end(extendedAdvertisingCommands));
    return known;
}

Bytes supportedCommands(ByteView, ControllerState& state) {
    Bytes mask(commandMaskLength, 0);
    for (const KnownCommand& known : commandsOf(state))
        mask[known.octet] |= static_cast<std::uint8_t>(1U << known.bit);
    Bytes bytes = done();
    append(bytes, mask);
    return bytes;
}

} // namespace

Bytes answer(const Command& command, ControllerState& state) {
    const std::vector<KnownCommand> all = commandsOf(state);
    const auto known = std::find_if(all.begin(), all.end(), [&](const KnownCommand& each) {
        return each.opcode == command.opcode;
    });
    if (known == all.end()) return commandComplete(command.opcode, done(Status::UnknownCommand));
    const Bytes result = command.parameters.size() < known->parameterLength
                             ? done(Status::InvalidParameters)
                             : known->carryOut(command.parameters, state);
    if (known->answer == Answer::Now) return commandComplete(command.opcode, result);
    return commandStatus(command.opcode, Status{result.front()});
}

} // namespace controller
