// The Bluetooth stack of Linux as the scanner's port: bluetoothd over D-Bus. Finds the daemon
// and an adapter, says what state they are in, keeps discovery going while the scanner wants
// it, and turns what BlueZ signals into advertisements. Comes back by itself after the daemon,
// the adapter or the bus has gone.
#pragma once

#include "base/delayed_calls.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "scanner/bluetooth_central.h"
#include "scanner/bluez/central_state.h"
#include "scanner/bluez/discovery.h"
#include "scanner/bluez/object_watch.h"

#include <memory>
#include <optional>
#include <string>

namespace wegslot {

class BluezCentral final : public BluetoothCentral, private bluez::WatchListener {
public:
    /// Both must outlive the central.
    BluezCentral(dbus::Connection& systemBus, Scheduler& scheduler);

    void setDelegate(CentralDelegate* delegate) override { delegate_ = delegate; }
    [[nodiscard]] CentralState state() const override {
        return reported_.value_or(CentralState::unknown);
    }
    /// Whoever may log in may use BlueZ; a refusal shows in the state.
    [[nodiscard]] CentralAuthorization authorization() const override {
        return CentralAuthorization::allowedAlways;
    }
    void scan() override;
    void want(const Wanted& wanted) override;
    [[nodiscard]] bool changesAddress(const Uuid& id) const override;
    [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>& ids) override;
    [[nodiscard]] PeripheralState peripheralState(const Uuid& id) const override;
    [[nodiscard]] std::optional<std::string> peripheralName(const Uuid& id) const override;

    // This adapter listens; it does not connect yet. Every attempt is answered as failed.

    void connect(const Uuid& id) override;
    void cancelConnection(const Uuid& id) override;
    void readRSSI(const Uuid& id) override;
    void discoverServices(const Uuid& id, GattUuid service) override;
    void discoverCharacteristics(const Uuid& id, GattUuid service,
                                 GattUuid characteristic) override;
    void readValue(const Uuid& id, GattUuid characteristic) override;

private:
    void surroundingsChanged() override;
    void deviceReported(std::string_view path, const bluez::DeviceNews& news) override;

    void busChanged(dbus::Bus* bus);
    void evaluate();
    void report(CentralState state);
    [[nodiscard]] bool canScan() const;
    void awaitGrace();
    [[nodiscard]] bool isOnAdapter(std::string_view path) const;
    [[nodiscard]] const bluez::Device* find(const Uuid& id) const;
    /// Calls the delegate from the loop, not from within an operation.
    void later(std::function<void(CentralDelegate&)> tell);

    Scheduler& scheduler_;
    CentralDelegate* delegate_ = nullptr;
    dbus::Bus* bus_ = nullptr;
    std::unique_ptr<bluez::ObjectWatch> watch_;
    std::unique_ptr<bluez::Discovery> discovery_;
    bluez::Surroundings surroundings_;
    bool discoveryDenied_ = false;
    bool scanWanted_ = false;            ///< the scanner asked for it since the radio came on
    std::optional<std::string> adapter_; ///< path of the chosen one
    std::optional<CentralState> reported_;
    std::optional<std::string> reportedAdapter_;
    DelayedCalls delayed_;
    Timer evaluation_;
    Timer grace_;
    Subscription connection_;
};

} // namespace wegslot
