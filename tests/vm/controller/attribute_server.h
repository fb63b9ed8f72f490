// Answers what the other side asks on the attribute channel: finding, reading and writing. It sends
// nothing of its own accord.
#pragma once

#include <optional>

#include "attribute_table.h"

namespace controller {

enum class LinkSecurity : std::uint8_t { Plain, Encrypted };

class AttributeServer {
public:
    /// The longest packet that it offers to take.
    AttributeServer(AttributeTable table, unsigned mtu);

    /// What is served changes under the feet of who is connected.
    void replaceTable(AttributeTable table) { table_ = std::move(table); }

    /// A new link starts with short packets.
    void linked() { mtu_ = shortestMtu; }

    /// Nothing to what wants no answer.
    std::optional<Bytes> answer(ByteView request, LinkSecurity security);

private:
    enum class Error : std::uint8_t;
    struct Request;
    struct Reply;

    static constexpr unsigned shortestMtu = 23;

    Bytes exchangeMtu(const Request& request);
    Bytes findInformation(const Request& request);
    Bytes findByTypeValue(const Request& request);
    Bytes readByType(const Request& request);
    Bytes read(const Request& request);
    Bytes readBlob(const Request& request);
    Bytes readByGroupType(const Request& request);
    Bytes write(const Request& request);

    Bytes valueFrom(const Request& request, unsigned offset);
    static std::optional<Error> refusalToRead(const Attribute& attribute, const Request& request);
    static Bytes error(const Request& request, Error why, AttributeHandle handle);

    AttributeTable table_;
    unsigned offeredMtu_;
    unsigned mtu_ = shortestMtu;
};

} // namespace controller
