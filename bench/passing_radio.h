// A radio for benchmarks of what is behind it: costs nothing itself.
#pragma once

#include "scanner/bluetooth_central.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace wegslot::bench {

/// A radio that is on and hands on what it hears, and remembers nobody.
class PassingRadio final : public BluetoothCentral {
public:
    void turnOn() { delegate_->didUpdateState(); }
    void hear(const Advertisement& advertisement) { delegate_->didDiscover(advertisement); }

    void setDelegate(CentralDelegate* delegate) override { delegate_ = delegate; }
    [[nodiscard]] CentralState state() const override { return CentralState::poweredOn; }
    [[nodiscard]] CentralAuthorization authorization() const override {
        return CentralAuthorization::allowedAlways;
    }
    void scan() override {}
    void want(const Wanted&) override {}
    void catchUp() override {}
    [[nodiscard]] bool changesAddress(const Uuid&) const override { return false; }
    [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>&) override { return {}; }
    [[nodiscard]] PeripheralState peripheralState(const Uuid&) const override {
        return PeripheralState::disconnected;
    }
    [[nodiscard]] std::optional<std::string> peripheralName(const Uuid&) const override {
        return std::nullopt;
    }
    void connect(const Uuid&) override {}
    void cancelConnection(const Uuid&) override {}
    void readRSSI(const Uuid&) override {}
    void discoverServices(const Uuid&, GattUuid) override {}
    void discoverCharacteristics(const Uuid&, GattUuid, GattUuid) override {}
    void readValue(const Uuid&, GattUuid) override {}

private:
    CentralDelegate* delegate_ = nullptr;
};

} // namespace wegslot::bench
