// The port to who knows devices behind their private addresses that the Bluetooth stack does not
// know. Asked once for each address that a device is told to have, never for what it sends.
#pragma once

#include "base/handle.h"
#include "base/uuid.h"

#include <functional>
#include <optional>
#include <string_view>

namespace wegslot {

/// As it is, nobody is known.
class AddressResolver {
public:
    AddressResolver() = default;
    AddressResolver(const AddressResolver&) = delete;
    AddressResolver& operator=(const AddressResolver&) = delete;
    virtual ~AddressResolver() = default;

    /// The device that has the random address `address` ("AA:BB:CC:DD:EE:FF") at the moment;
    /// nothing when it is not known.
    [[nodiscard]] virtual std::optional<Uuid> whose(std::string_view /*address*/) {
        return std::nullopt;
    }

    /// The stack found out that the device `from` is, by its fixed address, the device `to`.
    virtual void learned(const Uuid& /*from*/, const Uuid& /*to*/) {}

    /// Tells `listener` when others are known than before.
    [[nodiscard]] virtual Subscription
    onChange(std::function<void()> /*listener*/) { // NOLINT(performance-unnecessary-value-param)
        return {};
    }
};

} // namespace wegslot
