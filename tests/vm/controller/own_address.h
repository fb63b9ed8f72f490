// What a device calls itself on the air: always the same, or a private address that it changes.
#pragma once

#include <optional>
#include <random>
#include <variant>

#include "address.h"
#include "aes.h"
#include "time_point.h"

namespace controller {

/// Private addresses of which nobody else can tell whose they are. A key stands behind them, but
/// the device gives it to nobody.
struct Changing {};

/// Private addresses that whoever has this key knows again.
struct Resolvable {
    Key key{};
};

using Privacy = std::variant<std::monostate, Changing, Resolvable>;

/// A private address: its upper half is the random number, the lower what follows from that.
Address privateAddress(const Key& identityResolvingKey, unsigned random);

class OwnAddress {
public:
    /// With `every`, a private address changes by itself.
    OwnAddress(const Address& identity, const Privacy& privacy, std::optional<Duration> every,
               TimePoint now);

    const Address& identity() const { return identity_; }

    const Address& shown() const { return shown_; }

    bool isPrivate() const { return key_.has_value(); }

    /// To a new private address; without privacy there is no other.
    void change(TimePoint now);

    void changeIfDue(TimePoint now);

private:
    Address identity_;
    /// What the private addresses are made with.
    std::optional<Key> key_;
    std::optional<Duration> every_;
    TimePoint due_;
    std::mt19937 generator_;
    Address shown_;
};

} // namespace controller
