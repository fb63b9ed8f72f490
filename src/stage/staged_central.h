// A Bluetooth stack that does only what it is told: an open loop. It keeps a state and a name
// per peripheral, reports what it is fed, and names each call of the core to a listener. The
// demo feeds it by a script, the replay from a trace, tests by hand.
#pragma once

#include "scanner/bluetooth_central.h"

#include <functional>
#include <unordered_map>

namespace wegslot {

class StagedCentral final : public BluetoothCentral {
public:
    /// The name of the operation, and the peripheral unless it is about none.
    using CallListener = std::function<void(std::string_view operation, const Uuid* id)>;

    void onCall(CallListener listener) { listener_ = std::move(listener); }

    void setState(CentralState state, std::optional<CentralAuthorization> authorization = {});

    /// The stack knows a peripheral without having heard it.
    void know(const Uuid& id, const std::optional<std::string>& name = {});

    /// Whether the peripheral's address changes.
    void setChanging(const Uuid& id, bool changing) { peripherals_[id].changing = changing; }

    /// What the core wanted last.
    [[nodiscard]] const Wanted& wanted() const { return wanted_; }

    /// Heard: known from now on, and reported. The advertisement's `peripheralName` renames
    /// the peripheral; without one it is reported with the name it has.
    void advertise(Advertisement advertisement);

    void connected(const Uuid& id);
    void connectFailed(const Uuid& id);
    void disconnected(const Uuid& id, const std::optional<std::string>& reason = {});
    void rssiRead(const Uuid& id, std::optional<int> rssi);
    void services(const Uuid& id, std::span<const GattUuid> services);
    void characteristics(const Uuid& id, GattUuid service,
                         std::span<const GattUuid> characteristics);
    /// `name` renames the peripheral first.
    void value(const Uuid& id, GattUuid characteristic,
               const std::optional<std::string_view>& value,
               const std::optional<std::string>& name = {});
    void identify(const Uuid& from, const Uuid& to);

    void setDelegate(CentralDelegate* delegate) override { delegate_ = delegate; }

    [[nodiscard]] CentralState state() const override { return state_; }

    [[nodiscard]] CentralAuthorization authorization() const override { return authorization_; }

    void scan() override;

    void want(const Wanted& wanted) override { wanted_ = wanted; }
    void catchUp() override {}

    [[nodiscard]] bool changesAddress(const Uuid& id) const override;
    [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>& ids) override;
    [[nodiscard]] PeripheralState peripheralState(const Uuid& id) const override;
    [[nodiscard]] std::optional<std::string> peripheralName(const Uuid& id) const override;
    void connect(const Uuid& id) override;
    void cancelConnection(const Uuid& id) override;
    void readRSSI(const Uuid& id) override;
    void discoverServices(const Uuid& id, GattUuid service) override;
    void discoverCharacteristics(const Uuid& id, GattUuid service,
                                 GattUuid characteristic) override;
    void readValue(const Uuid& id, GattUuid characteristic) override;

private:
    struct Peripheral {
        bool known = false;
        bool changing = false;
        PeripheralState state = PeripheralState::disconnected;
        std::optional<std::string> name;
    };

    void called(std::string_view operation, const Uuid* id = nullptr) const;

    CentralDelegate* delegate_ = nullptr;
    CallListener listener_;
    CentralState state_ = CentralState::unknown;
    CentralAuthorization authorization_ = CentralAuthorization::allowedAlways;
    Wanted wanted_;
    std::unordered_map<Uuid, Peripheral> peripherals_;
};

} // namespace wegslot
