// A delegate that writes down what it is told, and asks for a scan whenever the radio is on, as
// the scanner does.
#pragma once

#include "scanner/bluetooth_central.h"

#include <map>
#include <string>
#include <vector>

namespace wegslot {

class Told final : public CentralDelegate {
public:
    /// What was heard of a device last, and how often it was heard.
    struct Heard {
        int times = 0;
        int rssi = 0;
        std::optional<std::string> name;
        std::vector<std::uint8_t> makerData;
    };

    Told() = default;
    ~Told() override { follow(nullptr); }

    /// Becomes the delegate of `central`, and of none before.
    void follow(BluetoothCentral* central);

    /// Of the device, without its advertisements: "connected", "failed", "lost", "rssi -50",
    /// "services 180A", "characteristics 2A24", "value Model1,1", "identified".
    [[nodiscard]] std::vector<std::string> of(const Uuid& id) const;

    [[nodiscard]] Heard heard(const Uuid& id) const;

    /// How often it was told of anything.
    [[nodiscard]] std::size_t calls() const { return calls_; }

    /// Whether it asks for a scan.
    bool scans = true;

    std::vector<CentralState> states;
    /// Whether an advertisement or an answer came before the first state.
    bool somethingBeforeState = false;
    std::vector<std::optional<std::string>> lossReasons;
    std::vector<std::pair<Uuid, Uuid>> identities;

private:
    void didUpdateState() override;
    void didDiscover(const Advertisement& advertisement) override;
    void didConnect(const Uuid& id) override;
    void didFailToConnect(const Uuid& id) override;
    void didDisconnect(const Uuid& id, const std::optional<std::string>& reason) override;
    void didReadRSSI(const Uuid& id, std::optional<int> rssi) override;
    void didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) override;
    void didDiscoverCharacteristics(const Uuid& id, GattUuid service,
                                    std::span<const GattUuid> characteristics) override;
    void didUpdateValue(const Uuid& id, GattUuid characteristic,
                        const std::optional<std::string_view>& value) override;
    void didIdentify(const Uuid& from, const Uuid& to) override;

    void called();
    void note(const Uuid& id, std::string what);
    /// Empty when the device is in `state`, as it has to be by the time it is told.
    [[nodiscard]] std::string unless(PeripheralState state, const Uuid& id) const;

    BluetoothCentral* central_ = nullptr;
    std::size_t calls_ = 0;
    std::map<Uuid, std::vector<std::string>> notes_;
    std::map<Uuid, Heard> heard_;
};

} // namespace wegslot
