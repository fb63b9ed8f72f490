#include "commands.h"

#include <algorithm>
#include <random>

namespace controller {

namespace {

constexpr unsigned bluetooth50 = 9;
constexpr unsigned manufacturerForTests = 0xFFFF;
constexpr unsigned aclPacketLength = 251;
constexpr unsigned aclPackets = 8;
constexpr unsigned acceptListSize = 16;
constexpr unsigned defaultDataOctets = 27;
constexpr unsigned defaultDataMicroseconds = 328;
constexpr unsigned maximumDataOctets = 251;
constexpr unsigned maximumDataMicroseconds = 2120;
constexpr std::size_t commandMaskLength = 64;

Bytes done(Status status = Status::Success) { return Bytes{static_cast<std::uint8_t>(status)}; }

Bytes accepted(ByteView, ControllerState&) { return done(); }

Bytes reset(ByteView, ControllerState& state) {
    state.scan.reset();
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
    append16(bytes, aclPacketLength);
    append8(bytes, 0); // no voice
    append16(bytes, aclPackets);
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
    append16(bytes, aclPacketLength);
    append8(bytes, aclPackets);
    return bytes;
}

Bytes lowEnergyFeatures(ByteView, ControllerState&) {
    // Encryption and long data packets; no extended advertising, so that the kernel scans in the
    // older way.
    return {0, 0x21, 0, 0, 0, 0, 0, 0, 0};
}

Bytes lowEnergyStates(ByteView, ControllerState&) {
    // Every combination of scanning, advertising and connections.
    return {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x03, 0, 0};
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
    state.scan.clearAcceptList();
    return done();
}

Bytes addToAcceptList(ByteView parameters, ControllerState& state) {
    state.scan.accept(readAddress(parameters));
    return done();
}

Bytes removeFromAcceptList(ByteView parameters, ControllerState& state) {
    state.scan.acceptNoMore(readAddress(parameters));
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

struct KnownCommand {
    std::uint16_t opcode;
    /// Where the mask of supported commands has it.
    std::uint8_t octet;
    std::uint8_t bit;
    std::uint8_t parameterLength;
    Bytes (*answer)(ByteView, ControllerState&);
};

constexpr KnownCommand knownCommands[] = {
    {0x0C01, 5, 6, 8, accepted}, // Set Event Mask
    {0x0C03, 5, 7, 0, reset},
    {0x1001, 14, 3, 0, localVersion},
    {0x1002, 14, 4, 0, supportedCommands},
    {0x1003, 14, 5, 0, localFeatures},
    {0x1005, 14, 7, 0, bufferSize},
    {0x1009, 15, 1, 0, ownAddress},
    {0x2001, 25, 0, 8, accepted}, // LE Set Event Mask
    {0x2002, 25, 1, 0, lowEnergyBufferSize},
    {0x2003, 25, 2, 0, lowEnergyFeatures},
    {0x2005, 25, 4, 6, accepted},  // LE Set Random Address
    {0x2006, 25, 5, 15, accepted}, // LE Set Advertising Parameters: nobody is there to hear us
    {0x2007, 25, 6, 0, advertisingPower},
    {0x2008, 25, 7, 32, accepted}, // LE Set Advertising Data
    {0x2009, 26, 0, 32, accepted}, // LE Set Scan Response Data
    {0x200A, 26, 1, 1, accepted},  // LE Set Advertising Enable
    {0x200B, 26, 2, 7, setScanParameters},
    {0x200C, 26, 3, 2, setScanEnable},
    {0x200F, 26, 6, 0, readAcceptListSize},
    {0x2010, 26, 7, 0, clearAcceptList},
    {0x2011, 27, 0, 7, addToAcceptList},
    {0x2012, 27, 1, 7, removeFromAcceptList},
    {0x2018, 27, 7, 0, randomNumber},
    {0x201C, 28, 3, 0, lowEnergyStates},
    {0x2023, 33, 7, 0, defaultDataLength},
    {0x2024, 34, 0, 4, accepted}, // LE Write Suggested Default Data Length
    {0x202F, 35, 3, 0, maximumDataLength},
};

Bytes supportedCommands(ByteView, ControllerState&) {
    Bytes mask(commandMaskLength, 0);
    for (const KnownCommand& known : knownCommands)
        mask[known.octet] |= static_cast<std::uint8_t>(1U << known.bit);
    Bytes bytes = done();
    append(bytes, mask);
    return bytes;
}

} // namespace

Bytes answer(const Command& command, ControllerState& state) {
    const auto* known =
        std::find_if(std::begin(knownCommands), std::end(knownCommands),
                     [&](const KnownCommand& each) { return each.opcode == command.opcode; });
    if (known == std::end(knownCommands)) return done(Status::UnknownCommand);
    if (command.parameters.size() < known->parameterLength) return done(Status::InvalidParameters);
    return known->answer(command.parameters, state);
}

} // namespace controller
