#include "identity/identities.h"

#include "base/text.h"

#include <nettle/aes.h>

#include <algorithm>
#include <array>
#include <utility>

namespace wegslot {
namespace {

/// A resolvable address: three random octets, and what the identity makes of them.
struct PrivateAddress {
    std::array<std::uint8_t, 3> random;
    std::array<std::uint8_t, 3> hash;

    friend bool operator==(const PrivateAddress&, const PrivateAddress&) = default;
};

/// Nothing for an address of another kind, and for what is none.
std::optional<PrivateAddress> privateAddress(std::string_view text) {
    constexpr std::size_t length = 17;
    if (text.size() != length) return std::nullopt;
    std::array<std::uint8_t, 6> octets{};
    for (std::size_t i = 0; i < length; ++i) {
        if (i % 3 == 2) {
            if (text[i] != ':') return std::nullopt;
            continue;
        }
        const char sign = text[i];
        const bool isLower = sign >= 'a' && sign <= 'f';
        const auto digit = hexadecimalDigits.find(isLower ? static_cast<char>(sign - 32) : sign);
        if (digit == std::string_view::npos) return std::nullopt;
        std::uint8_t& octet = octets[i / 3];
        octet = static_cast<std::uint8_t>(std::size_t{octet} << 4U | digit);
    }
    // The two highest bits tell the kinds of random addresses apart: 01 for these.
    if (octets[0] >> 6U != 1) return std::nullopt;
    return PrivateAddress{{octets[0], octets[1], octets[2]}, {octets[3], octets[4], octets[5]}};
}

} // namespace

struct Identities::Entry {
    /// The key in one of its two orders, ready to encrypt.
    struct Order {
        aes128_ctx cipher{};
        std::optional<PrivateAddress> explained = {}; ///< the last that it resolved

        explicit Order(const IdentityKey& key) {
            aes128_set_encrypt_key(&cipher, key.bytes.data());
        }
        Order(const Order&) = default;
        Order& operator=(const Order&) = default;
        ~Order() { wipe(cipher); }

        [[nodiscard]] bool explains(const PrivateAddress& address) const {
            std::array<std::uint8_t, AES_BLOCK_SIZE> padded{};
            std::array<std::uint8_t, AES_BLOCK_SIZE> block{};
            std::ranges::copy(address.random, padded.end() - 3);
            aes128_encrypt(&cipher, block.size(), block.data(), padded.data());
            return std::equal(address.hash.begin(), address.hash.end(), block.end() - 3);
        }
    };

    explicit Entry(const KnownIdentity& identity)
        : known(identity),
          orders{Order(identity.key), Order(identity.key.reversed())} {}

    /// One address in 2^24 fits a key by accident, so an order counts as the right one only when it
    /// has explained two; until then both are tried.
    [[nodiscard]] bool explains(const PrivateAddress& address) {
        for (std::size_t i = 0; i < orders.size(); ++i) {
            if (proven.value_or(i) != i || !orders[i].explains(address)) continue;
            if (orders[i].explained.value_or(address) != address) proven = i;
            orders[i].explained = address;
            return true;
        }
        return false;
    }

    KnownIdentity known;
    std::array<Order, 2> orders;
    std::optional<std::size_t> proven;
};

Identities::Identities(std::pmr::memory_resource& memory) : entries_(&memory) {}

Identities::~Identities() = default;

void Identities::put(const KnownIdentity& known) {
    const Uuid device = known.key.deviceId();
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return entry.known.key.deviceId() == device; });
    if (found != entries_.end() && found->known == known) return;
    if (found == entries_.end()) {
        entries_.emplace_back(known);
    } else {
        *found = Entry(known);
    }
    changes_.set(0);
}

void Identities::remove(const Uuid& id) {
    if (std::erase_if(entries_, [&](const Entry& entry) { return entry.known.id() == id; }) > 0)
        changes_.set(0);
}

const KnownIdentity* Identities::find(const Uuid& id) const {
    const auto found =
        std::ranges::find_if(entries_, [&](const Entry& entry) { return entry.known.id() == id; });
    return found == entries_.end() ? nullptr : &found->known;
}

std::vector<Uuid> Identities::ids() const {
    std::vector<Uuid> ids;
    for (const Entry& entry : entries_)
        ids.push_back(entry.known.id());
    return ids;
}

KnownIdentities Identities::list(std::span<const Uuid> ids) const {
    KnownIdentities list(entries_.get_allocator().resource());
    for (const Uuid& id : ids)
        if (const KnownIdentity* const known = find(id)) list.push_back(*known);
    return list;
}

std::optional<Uuid> Identities::whose(std::string_view address) {
    if (entries_.empty()) return std::nullopt;
    const auto asked = privateAddress(address);
    if (!asked) return std::nullopt;
    const auto found =
        std::ranges::find_if(entries_, [&](Entry& entry) { return entry.explains(*asked); });
    return found == entries_.end() ? std::nullopt : std::optional(found->known.id());
}

void Identities::learned(const Uuid& from, const Uuid& to) {
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return entry.known.id() == from; });
    if (found == entries_.end()) return;
    found->known.fixedId = to;
    lastLearned_.set({from, to});
}

Subscription Identities::onChange(std::function<void()> listener) {
    return changes_.onChange([act = std::move(listener)](int) { act(); });
}

} // namespace wegslot
