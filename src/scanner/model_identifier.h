// Reads the model number of nearby devices, one at a time, while somebody is choosing keys: the
// strongest first, each until it succeeds or fails once, eight seconds at most.
#pragma once

#include "base/clock.h"
#include "base/delayed_calls.h"
#include "base/observable.h"
#include "base/scheduler.h"
#include "scanner/bluetooth_central.h"
#include "scanner/device_table.h"
#include "scanner/key_connections.h"

#include <optional>
#include <unordered_set>

namespace wegslot {

class ModelIdentifier {
public:
    /// GATT assigned numbers (Bluetooth SIG): Device Information, Model Number String.
    static constexpr GattUuid deviceInfoService{0x180A};
    static constexpr GattUuid modelCharacteristic{0x2A24};

    /// A candidate was heard less than this long ago.
    static constexpr Nanoseconds recency = std::chrono::seconds{5};
    /// A candidate is stronger than this: in the room, so that the exchange is short.
    static constexpr Dbm signalFloor{-70.0};
    static constexpr Nanoseconds timeout = std::chrono::seconds{8};
    /// Between two devices, so that the radio can end the first connection.
    static constexpr Nanoseconds pause = std::chrono::milliseconds{300};

    ModelIdentifier(BluetoothCentral& central, Scheduler& scheduler, const Clock& clock,
                    const Observable<CentralState>& state, DeviceTable& devices,
                    KeyConnections& connections)
        : central_(central),
          scheduler_(scheduler),
          clock_(clock),
          state_(state),
          devices_(devices),
          connections_(connections),
          delayed_(scheduler) {}

    /// Whether identification is wanted. Ending it lets a running one finish.
    void setDiscoveryActive(bool active);

    [[nodiscard]] bool discoveryActive() const { return discoveryActive_; }

    /// The device being identified.
    [[nodiscard]] const std::optional<Uuid>& identifying() const { return identifying_; }

    /// Starts on the best candidate if there is one and nothing is running. The caller has
    /// made sure that discovery is active.
    void identifyNext();

    void didConnect(const Uuid& id);

    /// The connection failed or was lost.
    void didLose(const Uuid& id) { finish(id, Outcome::failed); }

    void didDiscoverServices(const Uuid& id, std::span<const GattUuid> services);
    void didDiscoverCharacteristics(const Uuid& id, std::span<const GattUuid> characteristics);
    void didUpdateValue(const Uuid& id, GattUuid characteristic,
                        const std::optional<std::string_view>& value);

    /// `from` turned out to be `to`: a failure and a running identification move there.
    void move(const Uuid& from, const Uuid& to);

private:
    enum class Outcome { succeeded, failed };

    [[nodiscard]] std::optional<Uuid> bestCandidate() const;
    void store(const Uuid& id, std::string_view model);
    void finish(const Uuid& id, Outcome outcome);

    BluetoothCentral& central_;
    Scheduler& scheduler_;
    const Clock& clock_;
    const Observable<CentralState>& state_;
    DeviceTable& devices_;
    KeyConnections& connections_;
    bool discoveryActive_ = false;
    std::optional<Uuid> identifying_;
    std::unordered_set<Uuid> failed_;
    Timer timer_;
    DelayedCalls delayed_;
};

} // namespace wegslot
