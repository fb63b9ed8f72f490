// A central that connects nobody: what is to be connected is only listened to. For looking on
// beside a Wegslot that may hold the connections.
#pragma once

#include "scanner/bluetooth_central.h"

namespace wegslot {

class ListeningCentral final : public BluetoothCentral {
public:
    explicit ListeningCentral(BluetoothCentral& central) : central_(central) {}

    void setDelegate(CentralDelegate* delegate) override { central_.setDelegate(delegate); }
    [[nodiscard]] CentralState state() const override { return central_.state(); }
    [[nodiscard]] std::optional<std::string> stateWords() const override {
        return central_.stateWords();
    }
    [[nodiscard]] CentralAuthorization authorization() const override {
        return central_.authorization();
    }
    void scan() override { central_.scan(); }
    void want(const Wanted& wanted) override {
        Wanted heard = wanted;
        heard.hear.merge(heard.connect);
        heard.connect.clear();
        central_.want(heard);
    }
    void catchUp() override { central_.catchUp(); }
    [[nodiscard]] bool changesAddress(const Uuid& id) const override {
        return central_.changesAddress(id);
    }
    /// None can be connected.
    [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>& /*ids*/) override { return {}; }
    [[nodiscard]] PeripheralState peripheralState(const Uuid& /*id*/) const override {
        return PeripheralState::disconnected;
    }
    [[nodiscard]] std::optional<std::string> peripheralName(const Uuid& id) const override {
        return central_.peripheralName(id);
    }
    void connect(const Uuid& /*id*/) override {}
    void cancelConnection(const Uuid& /*id*/) override {}
    void readRSSI(const Uuid& /*id*/) override {}
    void discoverServices(const Uuid& /*id*/, GattUuid /*service*/) override {}
    void discoverCharacteristics(const Uuid& /*id*/, GattUuid /*service*/,
                                 GattUuid /*characteristic*/) override {}
    void readValue(const Uuid& /*id*/, GattUuid /*characteristic*/) override {}

private:
    BluetoothCentral& central_;
};

} // namespace wegslot
