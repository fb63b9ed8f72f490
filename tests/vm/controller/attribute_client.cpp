#include "attribute_client.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace controller {

namespace {

constexpr std::uint8_t errorAnswer = 0x01;
constexpr std::uint8_t mtuQuestion = 0x02;
constexpr std::uint8_t mtuAnswer = 0x03;
constexpr std::uint8_t typeQuestion = 0x08;
constexpr std::uint8_t typeAnswer = 0x09;
constexpr std::uint8_t readQuestion = 0x0A;
constexpr std::uint8_t readAnswer = 0x0B;
constexpr std::uint8_t groupTypeQuestion = 0x10;
constexpr std::uint8_t groupTypeAnswer = 0x11;
/// Answers to writes, notifications and indications, too.
constexpr std::uint8_t forClients[] = {0x01, 0x03, 0x05, 0x07, 0x09, 0x0B,
                                       0x0D, 0x0F, 0x11, 0x13, 0x1B, 0x1D};

constexpr std::uint16_t heartRate = 0x180D;
constexpr std::uint16_t bodySensorLocation = 0x2A38;
constexpr AttributeHandle lastAttribute = 0xFFFF;

/// Refusals that pairing is meant to end: no authentication, no encryption, too short a key.
constexpr std::uint8_t curedByPairing[] = {0x05, 0x0F, 0x0C};

constexpr std::size_t listHeader = 2;
constexpr std::size_t shortServiceEntry = 6;
constexpr std::size_t longServiceEntry = 20;
constexpr std::size_t shortCharacteristicEntry = 7;
constexpr std::size_t longCharacteristicEntry = 21;

template <std::size_t count>
bool isAmong(const std::uint8_t (&codes)[count], std::uint8_t code) {
    return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

Bytes overRange(std::uint8_t question, unsigned first, unsigned last, Declaration type) {
    Bytes bytes{question};
    append16(bytes, first);
    append16(bytes, last);
    append16(bytes, static_cast<unsigned>(type));
    return bytes;
}

/// The entries of a list, all as long as it says. None of an odd length.
std::vector<ByteView> entriesOf(ByteView answer, std::size_t shortLength, std::size_t longLength) {
    std::vector<ByteView> entries;
    const std::size_t length = answer.size() < listHeader ? 0 : answer[1];
    if (length != shortLength && length != longLength) return entries;
    for (std::size_t at = listHeader; at + length <= answer.size(); at += length)
        entries.push_back(answer.subspan(at, length));
    return entries;
}

} // namespace

bool AttributeClient::isForClient(ByteView bytes) {
    return !bytes.empty() && isAmong(forClients, bytes[0]);
}

Bytes AttributeClient::start() {
    services_.clear();
    heartRate_ = {};
    value_ = 0;
    isRefused_ = false;
    sensorLocation_.reset();
    hasStarted_ = true;
    step_ = Step::Mtu;
    Bytes question{mtuQuestion};
    append16(question, offeredMtu_);
    return question;
}

std::optional<Bytes> AttributeClient::receive(ByteView answer) {
    if (answer.empty()) return std::nullopt;
    if (answer[0] == errorAnswer) return takeError(answer);
    if (answer[0] == mtuAnswer && step_ == Step::Mtu) return askForServices(1);
    if (answer[0] == groupTypeAnswer && step_ == Step::Services) return takeServices(answer);
    if (answer[0] == typeAnswer && step_ == Step::Characteristics)
        return takeCharacteristics(answer);
    if (answer[0] == readAnswer && step_ == Step::Value) {
        step_ = Step::None;
        isRefused_ = false;
        sensorLocation_ = Bytes(std::next(answer.begin()), answer.end());
    }
    return std::nullopt;
}

std::optional<Bytes> AttributeClient::askAgain() {
    const bool isIdle = step_ == Step::None && !sensorLocation_;
    return isIdle ? readValue() : std::nullopt;
}

Bytes AttributeClient::askForServices(unsigned first) {
    step_ = Step::Services;
    return overRange(groupTypeQuestion, first, lastAttribute, Declaration::PrimaryService);
}

Bytes AttributeClient::askForCharacteristics(unsigned first) {
    step_ = Step::Characteristics;
    return overRange(typeQuestion, first, heartRate_.last, Declaration::Characteristic);
}

std::optional<Bytes> AttributeClient::takeServices(ByteView answer) {
    AttributeHandle last = lastAttribute;
    for (const ByteView entry : entriesOf(answer, shortServiceEntry, longServiceEntry)) {
        last = read16(entry, 2);
        if (entry.size() != shortServiceEntry) continue;
        services_.push_back(read16(entry, 4));
        if (services_.back() == heartRate) heartRate_ = {read16(entry, 0), last};
    }
    if (last != lastAttribute) return askForServices(last + 1U);
    step_ = Step::None;
    return heartRate_.first == 0 ? std::nullopt
                                 : std::optional(askForCharacteristics(heartRate_.first));
}

std::optional<Bytes> AttributeClient::takeCharacteristics(ByteView answer) {
    AttributeHandle last = lastAttribute;
    for (const ByteView entry :
         entriesOf(answer, shortCharacteristicEntry, longCharacteristicEntry)) {
        last = read16(entry, 3);
        if (entry.size() == shortCharacteristicEntry && read16(entry, 5) == bodySensorLocation)
            value_ = last;
    }
    return last < heartRate_.last ? std::optional(askForCharacteristics(last + 1U)) : readValue();
}

std::optional<Bytes> AttributeClient::readValue() {
    step_ = Step::None;
    if (value_ == 0) return std::nullopt;
    step_ = Step::Value;
    Bytes question{readQuestion};
    append16(question, value_);
    return question;
}

/// An error ends a list, or refuses what was asked.
std::optional<Bytes> AttributeClient::takeError(ByteView answer) {
    constexpr std::size_t codeAt = 4;
    const std::uint8_t code = answer.size() > codeAt ? answer[codeAt] : std::uint8_t{0};
    switch (std::exchange(step_, Step::None)) {
    case Step::Mtu:
        return askForServices(1);
    case Step::Services:
        if (heartRate_.first == 0) return std::nullopt;
        return askForCharacteristics(heartRate_.first);
    case Step::Characteristics:
        return readValue();
    case Step::Value:
        isRefused_ = isAmong(curedByPairing, code);
        return std::nullopt;
    case Step::None:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace controller
