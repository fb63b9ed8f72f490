// What the kernel knows of low-energy links and BlueZ does not tell: whether one stands, and how
// strong it is. A connection of BlueZ may be one of the other kind, with music on it.
#pragma once

#include "base/handle.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace wegslot::bluez {

/// Which links between an adapter and one address stand.
struct StandingLinks {
    bool lowEnergy = false;
    bool calledUs = false; ///< the low-energy one was opened by the other side
    bool classic = false;
    friend bool operator==(const StandingLinks&, const StandingLinks&) = default;
};

class Links {
public:
    using Answer = std::function<void(std::optional<int> rssi)>;

    Links() = default;
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;
    virtual ~Links() = default;

    /// Whether this process may read the strength of links on `adapter` ("/org/bluez/hci0").
    [[nodiscard]] virtual bool canRead(const std::string& adapter) = 0;

    /// Whether a low-energy link to `address` ("AA:BB:CC:DD:EE:FF", the identity) stands; nothing
    /// where the kernel does not say.
    [[nodiscard]] virtual std::optional<bool> isLinked(const std::string& adapter,
                                                       const std::string& address) = 0;

    /// Likewise of all its links.
    [[nodiscard]] virtual std::optional<StandingLinks> standing(const std::string& adapter,
                                                                const std::string& address) = 0;

    /// Reads the strength of the link to `address` in dBm and answers once, later, within a
    /// second or so; with nothing when there is no such link or no measurement. Ending the
    /// handle gives up the answer.
    [[nodiscard]] virtual Subscription read(const std::string& adapter, const std::string& address,
                                            Answer answer) = 0;

    /// Why the last link to `address` ended, as an error code of the Bluetooth Core Specification
    /// (5.4, volume 1, part F); nothing when that is not known. Told once for each link whose
    /// strength was read.
    [[nodiscard]] virtual std::optional<std::uint8_t> lossCode(const std::string& adapter,
                                                               const std::string& address) = 0;
};

} // namespace wegslot::bluez
