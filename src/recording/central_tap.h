// A central in front of another that lets somebody listen in: each report reaches the listener
// before it reaches the core. Stands there always, so that listening can begin at any time;
// while nobody does it costs one more call for each report.
#pragma once

#include "scanner/bluetooth_central.h"

namespace wegslot {

class CentralTap final : public BluetoothCentral, private CentralDelegate {
public:
    /// `central` must outlive this.
    explicit CentralTap(BluetoothCentral& central) : central_(central) {}

    /// Who listens from now on; null for nobody. May be called from within a report.
    void setListener(CentralDelegate* listener) { listener_ = listener; }

    void setDelegate(CentralDelegate* delegate) override {
        delegate_ = delegate;
        CentralDelegate* const own = this;
        central_.setDelegate(delegate == nullptr ? nullptr : own);
    }

    [[nodiscard]] CentralState state() const override { return central_.state(); }
    [[nodiscard]] std::optional<std::string> stateWords() const override {
        return central_.stateWords();
    }

    [[nodiscard]] CentralAuthorization authorization() const override {
        return central_.authorization();
    }

    void scan() override { central_.scan(); }

    void want(const Wanted& wanted) override { central_.want(wanted); }

    void catchUp() override {
        catchingUp_ = true;
        central_.catchUp();
        catchingUp_ = false;
    }

    /// Whether what is reported now came in before and was only now asked for.
    [[nodiscard]] bool isCatchingUp() const { return catchingUp_; }

    [[nodiscard]] bool changesAddress(const Uuid& id) const override {
        return central_.changesAddress(id);
    }

    [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>& ids) override {
        return central_.retrieve(ids);
    }

    [[nodiscard]] PeripheralState peripheralState(const Uuid& id) const override {
        return central_.peripheralState(id);
    }

    [[nodiscard]] std::optional<std::string> peripheralName(const Uuid& id) const override {
        return central_.peripheralName(id);
    }

    void connect(const Uuid& id) override { central_.connect(id); }

    void cancelConnection(const Uuid& id) override { central_.cancelConnection(id); }

    void readRSSI(const Uuid& id) override { central_.readRSSI(id); }

    void discoverServices(const Uuid& id, GattUuid service) override {
        central_.discoverServices(id, service);
    }

    void discoverCharacteristics(const Uuid& id, GattUuid service,
                                 GattUuid characteristic) override {
        central_.discoverCharacteristics(id, service, characteristic);
    }

    void readValue(const Uuid& id, GattUuid characteristic) override {
        central_.readValue(id, characteristic);
    }

private:
    /// Passes a report on to both, the listener first.
    template <typename... Parameters, typename... Arguments>
    void report(void (CentralDelegate::*told)(Parameters...), const Arguments&... what) {
        if (listener_ != nullptr) (listener_->*told)(what...);
        if (delegate_ != nullptr) (delegate_->*told)(what...);
    }

    void didUpdateState() override { report(&CentralDelegate::didUpdateState); }

    void didDiscover(const Advertisement& advertisement) override {
        report(&CentralDelegate::didDiscover, advertisement);
    }

    void didConnect(const Uuid& id) override { report(&CentralDelegate::didConnect, id); }

    void didFailToConnect(const Uuid& id) override {
        report(&CentralDelegate::didFailToConnect, id);
    }

    void didDisconnect(const Uuid& id, const std::optional<std::string>& reason) override {
        report(&CentralDelegate::didDisconnect, id, reason);
    }

    void didReadRSSI(const Uuid& id, std::optional<int> rssi) override {
        report(&CentralDelegate::didReadRSSI, id, rssi);
    }

    void didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) override {
        report(&CentralDelegate::didDiscoverServices, id, services);
    }

    void didDiscoverCharacteristics(const Uuid& id, GattUuid service,
                                    std::span<const GattUuid> characteristics) override {
        report(&CentralDelegate::didDiscoverCharacteristics, id, service, characteristics);
    }

    void didUpdateValue(const Uuid& id, GattUuid characteristic,
                        const std::optional<std::string_view>& value) override {
        report(&CentralDelegate::didUpdateValue, id, characteristic, value);
    }

    void didIdentify(const Uuid& from, const Uuid& to) override {
        report(&CentralDelegate::didIdentify, from, to);
    }

    BluetoothCentral& central_;
    CentralDelegate* listener_ = nullptr;
    CentralDelegate* delegate_ = nullptr;
    bool catchingUp_ = false;
};

} // namespace wegslot
