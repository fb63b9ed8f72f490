#include "attribute_server.h"

#include <algorithm>
#include <iterator>

namespace controller {

namespace {

constexpr std::uint8_t errorResponse = 0x01;
constexpr std::uint8_t mtuResponse = 0x03;
constexpr std::uint8_t informationResponse = 0x05;
constexpr std::uint8_t typeValueResponse = 0x07;
constexpr std::uint8_t typeResponse = 0x09;
constexpr std::uint8_t readResponse = 0x0B;
constexpr std::uint8_t blobResponse = 0x0D;
constexpr std::uint8_t groupTypeResponse = 0x11;
constexpr std::uint8_t writeResponse = 0x13;
constexpr std::uint8_t writeCommand = 0x52;

constexpr std::uint8_t confirmation = 0x1E;
constexpr std::uint8_t commandFlag = 0x40;
/// Entries of a list tell their length in one byte.
constexpr std::size_t longestEntry = 255;

/// The 16-bit number inside a 128-bit type, if it is one of those.
std::optional<std::uint16_t> shortType(ByteView type) {
    constexpr std::uint8_t base[] = {0xFB, 0x34, 0x9B, 0x5F, 0x80, 0x00,
                                     0x00, 0x80, 0x00, 0x10, 0x00, 0x00};
    if (type.size() == 2) return read16(type, 0);
    if (type.size() != 16 || !std::equal(std::begin(base), std::end(base), type.begin()))
        return std::nullopt;
    if (read16(type, 14) != 0) return std::nullopt;
    return read16(type, std::size(base));
}

} // namespace

enum class AttributeServer::Error : std::uint8_t {
    InvalidHandle = 0x01,
    ReadNotPermitted = 0x02,
    WriteNotPermitted = 0x03,
    InvalidRequest = 0x04,
    InsufficientAuthentication = 0x05,
    RequestNotSupported = 0x06,
    InvalidOffset = 0x07,
    AttributeNotFound = 0x0A,
    UnsupportedGroupType = 0x10
};

struct AttributeServer::Request {
    std::uint8_t code;
    /// Without the code.
    ByteView parameters;
    LinkSecurity security;

    AttributeHandle handle() const { return read16(parameters, 0); }

    HandleRange range() const {
        return {.first = read16(parameters, 0), .last = read16(parameters, 2)};
    }

    bool hasRange() const { return handle() != 0 && handle() <= range().last; }
};

struct AttributeServer::Reply {
    std::uint8_t code;
    /// How many bytes of parameters it has at least.
    std::uint8_t shortest;
    /// Whether the parameters start with a range of handles.
    bool isOverRange;
    Bytes (AttributeServer::*make)(const Request&);
};

AttributeServer::AttributeServer(AttributeTable table, unsigned mtu)
    : table_(std::move(table)),
      offeredMtu_(mtu) {}

std::optional<Bytes> AttributeServer::answer(ByteView request, LinkSecurity security) {
    static constexpr Reply replies[] = {
        {0x02, 2, false, &AttributeServer::exchangeMtu},
        {0x04, 4, true, &AttributeServer::findInformation},
        {0x06, 6, true, &AttributeServer::findByTypeValue},
        {0x08, 6, true, &AttributeServer::readByType},
        {0x0A, 2, false, &AttributeServer::read},
        {0x0C, 4, false, &AttributeServer::readBlob},
        {0x10, 6, true, &AttributeServer::readByGroupType},
        {0x12, 2, false, &AttributeServer::write},
    };
    if (request.empty()) return std::nullopt;
    const Request asked{.code = request[0], .parameters = request.subspan(1), .security = security};
    if (asked.code == confirmation) return std::nullopt;
    if (asked.code == writeCommand && asked.parameters.size() >= 2) write(asked);
    if ((asked.code & commandFlag) != 0) return std::nullopt;
    const auto* reply = std::find_if(std::begin(replies), std::end(replies),
                                     [&](const Reply& each) { return each.code == asked.code; });
    if (reply == std::end(replies)) return error(asked, Error::RequestNotSupported, 0);
    if (asked.parameters.size() < reply->shortest) return error(asked, Error::InvalidRequest, 0);
    if (reply->isOverRange && !asked.hasRange())
        return error(asked, Error::InvalidHandle, asked.handle());
    return (this->*reply->make)(asked);
}

Bytes AttributeServer::exchangeMtu(const Request& request) {
    const unsigned wanted = read16(request.parameters, 0);
    mtu_ = std::max(shortestMtu, std::min(wanted, offeredMtu_));
    Bytes reply{mtuResponse};
    append16(reply, offeredMtu_);
    return reply;
}

Bytes AttributeServer::findInformation(const Request& request) {
    constexpr std::size_t entry = 4;
    constexpr std::uint8_t shortTypes = 1;
    Bytes reply{informationResponse, shortTypes};
    for (const Attribute& attribute : table_.in(request.range())) {
        if (reply.size() + entry > mtu_) break;
        append16(reply, attribute.handle);
        append16(reply, attribute.type);
    }
    return reply.size() > 2 ? reply : error(request, Error::AttributeNotFound, request.handle());
}

Bytes AttributeServer::findByTypeValue(const Request& request) {
    constexpr std::size_t entry = 4;
    const std::uint16_t type = read16(request.parameters, 4);
    const ByteView value = request.parameters.subspan(6);
    Bytes reply{typeValueResponse};
    for (const Attribute& attribute : table_.in(request.range())) {
        if (attribute.type != type || !std::ranges::equal(attribute.value, value)) continue;
        if (reply.size() + entry > mtu_) break;
        append16(reply, attribute.handle);
        append16(reply, attribute.is(Declaration::PrimaryService)
                            ? table_.endOfService(attribute.handle)
                            : attribute.handle);
    }
    return reply.size() > 1 ? reply : error(request, Error::AttributeNotFound, request.handle());
}

Bytes AttributeServer::readByType(const Request& request) {
    const std::optional<std::uint16_t> type = shortType(request.parameters.subspan(4));
    Bytes reply{typeResponse, 0};
    const std::size_t room = mtu_ - reply.size();
    for (const Attribute& attribute : table_.in(request.range())) {
        if (attribute.type != type) continue;
        const bool isFirst = reply[1] == 0;
        const std::optional<Error> refusal = refusalToRead(attribute, request);
        if (refusal && isFirst) return error(request, *refusal, attribute.handle);
        const std::size_t length =
            2 + std::min({attribute.value.size(), room - 2, longestEntry - 2});
        if (isFirst) reply[1] = static_cast<std::uint8_t>(length);
        // All entries of one list are equally long.
        if (refusal || length != reply[1] || reply.size() + length > mtu_) break;
        append16(reply, attribute.handle);
        append(reply, ByteView(attribute.value).first(length - 2));
    }
    return reply[1] != 0 ? reply : error(request, Error::AttributeNotFound, request.handle());
}

Bytes AttributeServer::readByGroupType(const Request& request) {
    constexpr std::size_t entry = 6;
    const std::optional<std::uint16_t> type = shortType(request.parameters.subspan(4));
    if (type != static_cast<std::uint16_t>(Declaration::PrimaryService))
        return error(request, Error::UnsupportedGroupType, request.handle());
    Bytes reply{groupTypeResponse, entry};
    for (const Attribute& attribute : table_.in(request.range())) {
        if (!attribute.is(Declaration::PrimaryService)) continue;
        if (reply.size() + entry > mtu_) break;
        append16(reply, attribute.handle);
        append16(reply, table_.endOfService(attribute.handle));
        append(reply, attribute.value);
    }
    return reply.size() > 2 ? reply : error(request, Error::AttributeNotFound, request.handle());
}

Bytes AttributeServer::read(const Request& request) {
    Bytes reply = valueFrom(request, 0);
    if (reply.front() == blobResponse) reply.front() = readResponse;
    return reply;
}

Bytes AttributeServer::readBlob(const Request& request) {
    return valueFrom(request, read16(request.parameters, 2));
}

Bytes AttributeServer::valueFrom(const Request& request, unsigned offset) {
    const Attribute* attribute = table_.find(request.handle());
    if (attribute == nullptr) return error(request, Error::InvalidHandle, request.handle());
    if (const std::optional<Error> refusal = refusalToRead(*attribute, request))
        return error(request, *refusal, request.handle());
    if (offset > attribute->value.size())
        return error(request, Error::InvalidOffset, request.handle());
    const ByteView rest = ByteView(attribute->value).subspan(offset);
    Bytes reply{blobResponse};
    append(reply, rest.first(std::min<std::size_t>(rest.size(), mtu_ - 1)));
    return reply;
}

Bytes AttributeServer::write(const Request& request) {
    Attribute* attribute = table_.find(request.handle());
    if (attribute == nullptr) return error(request, Error::InvalidHandle, request.handle());
    if (attribute->writing == Writing::Never)
        return error(request, Error::WriteNotPermitted, request.handle());
    const ByteView value = request.parameters.subspan(2);
    attribute->value.assign(value.begin(), value.end());
    return {writeResponse};
}

std::optional<AttributeServer::Error> AttributeServer::refusalToRead(const Attribute& attribute,
                                                                     const Request& request) {
    switch (attribute.reading) {
    case Reading::Open:
        return std::nullopt;
    case Reading::WhenEncrypted:
        if (request.security == LinkSecurity::Encrypted) return std::nullopt;
        return Error::InsufficientAuthentication;
    case Reading::Never:
        return Error::ReadNotPermitted;
    }
    return std::nullopt;
}

Bytes AttributeServer::error(const Request& request, Error why, AttributeHandle handle) {
    Bytes reply{errorResponse, request.code};
    append16(reply, handle);
    append8(reply, static_cast<unsigned>(why));
    return reply;
}

} // namespace controller
