// The one object that talks to the Bluetooth stack. It decides which advertisements count,
// keeps the devices they came from, and conducts the parts that connect keys and identify
// models. Whoever judges asks it when a device was heard last and how strongly.
#pragma once

#include "base/clock.h"
#include "base/observable.h"
#include "base/scheduler.h"
#include "scanner/bluetooth_central.h"
#include "scanner/device_table.h"
#include "scanner/key_connections.h"
#include "scanner/key_signals.h"
#include "scanner/model_identifier.h"

#include <set>
#include <string>
#include <unordered_set>
#include <vector>

namespace wegslot {

class Scanner final : public CentralDelegate, public KeySignals {
public:
    /// A first sighting is logged from this strength on: about the same room.
    static constexpr int loggedFrom = DeviceTable::nearFrom;

    /// The central tells it from here on.
    Scanner(BluetoothCentral& central, Scheduler& scheduler, const Clock& clock,
            Connecting connecting = Connecting::allowed);
    ~Scanner() override;

    /// The last state that the stack reported.
    [[nodiscard]] const Observable<CentralState>& state() const { return state_; }

    [[nodiscard]] bool isPoweredOn() const override {
        return state_.get() == CentralState::poweredOn;
    }

    [[nodiscard]] Message stateDescription() const override;

    /// The nearby devices, strongest first, as of the last `refreshSnapshot`.
    [[nodiscard]] const Observable<std::vector<SeenDevice>>& snapshot() const { return snapshot_; }

    /// Also forgets who has been silent too long and publishes the list anew.
    void refreshSnapshot() override;

    /// Whether what is told now came in before and was only now asked for.
    [[nodiscard]] bool isCatchingUp() const { return catchingUp_; }

    [[nodiscard]] std::optional<TimePoint> lastSeen(const Uuid& id) const override;

    [[nodiscard]] std::optional<Dbm> smoothedRSSI(const Uuid& id,
                                                  Seconds window = Seconds{5.0}) const override;

    /// The samples of a key that came after `since`, oldest first, as far as they are still kept.
    [[nodiscard]] std::vector<SignalHistory::Sample> samplesSince(const Uuid& id,
                                                                  TimePoint since) const;

    [[nodiscard]] const std::set<Uuid>& watchedIDs() const { return connections_.watched(); }

    void setWatchedIDs(std::set<Uuid> ids) override;

    [[nodiscard]] const std::set<Uuid>& passiveIDs() const { return connections_.passive(); }

    void setPassiveIDs(std::set<Uuid> ids) override;

    /// Listens to a device as if it were a key, all the time, while somebody tries how it is heard:
    /// until the handle ends. One at a time.
    [[nodiscard]] Subscription tryOut(const Uuid& id);

    [[nodiscard]] bool includeOtherDevices() const { return includeOtherDevices_; }

    void setIncludeOtherDevices(bool include) override { includeOtherDevices_ = include; }

    /// Whether somebody looks at the list of nearby devices: their models are identified then.
    [[nodiscard]] bool discoveryActive() const { return identifier_.discoveryActive(); }

    /// Tells `discovery` before it does anything.
    void setDiscoveryActive(bool active);

    [[nodiscard]] const Observable<bool>& discovery() const { return discovery_; }

    /// Whether the device will soon have another address, so that it is of no use as a key.
    [[nodiscard]] bool changesAddress(const Uuid& id) const { return central_.changesAddress(id); }

    /// Whether the device's signal comes over a connection, not from what it sends to everybody.
    [[nodiscard]] bool hearsOverConnection(const Uuid& id) const {
        return connections_.tellsStrength(id);
    }

    /// "Telefoon (0F2C41A7)": a device in a log line, fit for it whatever it calls itself.
    [[nodiscard]] std::string label(const Uuid& id) const;

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

    void keysChanged();
    void want();
    [[nodiscard]] bool isWanted(const Advertisement& advertisement) const;
    void release(const std::vector<Uuid>& forgotten);
    void makeRoom(const Uuid& newest);
    void logFirstSight(DeviceTable::Record& device, int rssi);

    BluetoothCentral& central_;
    const Clock& clock_;
    Observable<CentralState> state_{CentralState::unknown};
    Observable<std::vector<SeenDevice>> snapshot_;
    Observable<bool> discovery_{false};
    DeviceTable devices_;
    std::unordered_set<Uuid> loggedDevices_; ///< also those that are forgotten
    bool includeOtherDevices_ = false;
    std::optional<Uuid> trial_;
    bool catchingUp_ = false;
    KeyConnections connections_;
    ModelIdentifier identifier_;
    Timer rssiTimer_;
};

} // namespace wegslot
