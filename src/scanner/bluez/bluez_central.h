// The Bluetooth stack of Linux as the scanner's port: bluetoothd over D-Bus. Finds the daemon
// and an adapter, says what state they are in, listens and connects as the scanner wants, and
// turns what BlueZ signals into the port's callbacks. Comes back by itself after the daemon, the
// adapter, the bus or the computer's sleep, and after a radio that went deaf.
#pragma once

#include "base/clock.h"
#include "base/delayed_calls.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "scanner/bluetooth_central.h"
#include "scanner/bluez/advertisement_monitor.h"
#include "scanner/bluez/central_state.h"
#include "scanner/bluez/connections.h"
#include "scanner/bluez/discovery.h"
#include "scanner/bluez/gatt_client.h"
#include "scanner/bluez/hearing.h"
#include "scanner/bluez/links.h"
#include "scanner/bluez/object_watch.h"
#include "scanner/bluez/teller.h"
#include "scanner/scan_schedule.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace wegslot {

class BluezCentral final : public BluetoothCentral,
                           private ScanRadio,
                           private bluez::WatchListener,
                           private bluez::Discovery::Listener,
                           private bluez::ConnectionListener {
public:
    /// How long a new connection to the bus may take before the radio counts as gone meanwhile.
    static constexpr Nanoseconds renewal = std::chrono::seconds{5};

    /// How long the radio is lent at most. A phone has two minutes to find this computer, a minute
    /// for the code and one to bond; then the same once more, without the two minutes.
    static constexpr Nanoseconds longestLoan = std::chrono::minutes{6};

    /// The bus should be the central's own: a deaf radio is also treated by leaving it. All must
    /// outlive the central.
    BluezCentral(dbus::Connection& systemBus, Scheduler& scheduler, const Clock& clock,
                 bluez::Links& links, AddressResolver& resolver);

    void setDelegate(CentralDelegate* delegate) override { tell_.setDelegate(delegate); }
    [[nodiscard]] CentralState state() const override {
        return reported_ ? reported_->state : CentralState::unknown;
    }
    /// Whether bluetoothd runs and lets this user talk to it.
    [[nodiscard]] bool hasDaemon() const { return surroundings_.daemon == bluez::Daemon::ready; }
    /// Whether bluetoothd is still being asked what there is.
    [[nodiscard]] bool isAsking() const {
        return bus_ != nullptr && (surroundings_.daemon == bluez::Daemon::unknown ||
                                   surroundings_.daemon == bluez::Daemon::loading);
    }
    /// Gives the radio away until the handle ends, which must be before the central does, or for
    /// `longestLoan`: meanwhile nothing is listened for and nothing is connected, and the state
    /// says so. Links that stand are left alone. A later loan takes the place of one before.
    [[nodiscard]] Handle lend();

    /// The object path of the adapter in use.
    [[nodiscard]] const std::optional<std::string>& adapter() const { return adapter_; }
    [[nodiscard]] const bluez::Surroundings& surroundings() const { return surroundings_; }
    /// Whoever may log in may use BlueZ; a refusal shows in the state.
    [[nodiscard]] CentralAuthorization authorization() const override {
        return CentralAuthorization::allowedAlways;
    }
    [[nodiscard]] std::optional<Message> stateWords() const override {
        return bluez::wordsIn(surroundings_);
    }
    void scan() override;
    void want(const Wanted& wanted) override;
    void catchUp() override;
    /// Whether the adapter in use has heard the device, or is bonded with it.
    [[nodiscard]] bool knows(const Uuid& id) const { return find(id) != nullptr; }
    [[nodiscard]] bool changesAddress(const Uuid& id) const override;
    /// All of them: what was not heard yet is connected when it is.
    [[nodiscard]] std::vector<Uuid> retrieve(const std::set<Uuid>& ids) override;
    [[nodiscard]] PeripheralState peripheralState(const Uuid& id) const override;
    [[nodiscard]] std::optional<std::string> peripheralName(const Uuid& id) const override;
    void connect(const Uuid& id) override { connections_.connect(id); }
    void cancelConnection(const Uuid& id) override;
    void readRSSI(const Uuid& id) override;
    void discoverServices(const Uuid& id, GattUuid service) override;
    void discoverCharacteristics(const Uuid& id, GattUuid service,
                                 GattUuid characteristic) override;
    void readValue(const Uuid& id, GattUuid characteristic) override;

private:
    void surroundingsChanged() override;
    void deviceReported(std::string_view path, const bluez::DeviceNews& news) override;
    void deviceRemoved(std::string_view path, const Uuid& id) override;
    void linkEnded(std::string_view path, std::string_view name) override;
    void gattChanged() override { gatt_.gattChanged(); }

    void startScan() override;
    void restartScan() override;
    void stopScan() override;
    void discovering(bool discovering) override;
    void discoveryDenied() override;

    void resolveAnew();
    void moved(const Uuid& from, const Uuid& to);
    void linkLost(const Uuid& id) override;
    void radioNeeded() override;
    void radioReleased() override { schedule_.resume(); }

    /// What there is to report: a state, and whose it is.
    struct Radio {
        CentralState state;
        std::optional<std::string> adapter;

        [[nodiscard]] bool isOn() const { return state == CentralState::poweredOn; }

        /// Whether what listens and what is connected may go on.
        [[nodiscard]] bool goesOnAfter(const std::optional<Radio>& before) const {
            return isOn() && before && adapter == before->adapter;
        }

        [[nodiscard]] bool isNewsAfter(const std::optional<Radio>& before) const {
            return !before || state != before->state || (isOn() && adapter != before->adapter);
        }
    };

    void busChanged(dbus::Bus* bus);
    void evaluate();
    void report(CentralState state);
    [[nodiscard]] bool isUndecided(CentralState state) const;
    void giveUpRadio();
    void takeBack();
    [[nodiscard]] bluez::Connections::LinksThen linksThen() const;
    void takeRadio();
    void dropRadio();
    [[nodiscard]] bool canScan() const;
    void awaitGrace();
    void listenForKeys();
    void monitorAdvertisements(bool wanted);
    void treatDeafness();
    void wokeUp();
    void strengthRead(const Uuid& id, std::optional<int> rssi);
    [[nodiscard]] const bluez::Device* find(const Uuid& id) const;

    dbus::Connection& systemBus_;
    Scheduler& scheduler_;
    const Clock& clock_;
    bluez::Links& links_;
    AddressResolver& resolver_;
    bluez::Teller tell_;
    dbus::Bus* bus_ = nullptr;
    std::unique_ptr<bluez::ObjectWatch> watch_;
    std::unique_ptr<bluez::Discovery> discovery_;
    std::unique_ptr<bluez::AdvertisementMonitor> monitor_; ///< while there is anything to hear
    bluez::Connections connections_;
    bluez::GattClient gatt_;
    ScanSchedule schedule_;
    bluez::Hearing hearing_;
    Wanted wanted_;
    bluez::Surroundings surroundings_;
    int loans_ = 0; ///< so far; the last may be going
    bool discoveryDenied_ = false;
    bool toldUnreadable_ = false;           ///< that links' strengths cannot be read
    bool scanWanted_ = false;               ///< the scanner asked for it since the radio came on
    std::optional<std::string> adapter_;    ///< path of the chosen one
    std::optional<Radio> reported_;         ///< last
    std::map<Uuid, Subscription> readings_; ///< of connections' strengths, under way
    std::set<Uuid> measured_;               ///< whose last reading gave one
    DelayedCalls delayed_;
    Timer evaluation_;
    Timer grace_;
    Timer deafness_;
    Timer loan_;    ///< held while the radio is lent
    Timer renewal_; ///< held while a new connection to the bus is being made
    Subscription sleep_;
    Subscription identities_;
    Subscription connection_;
};

} // namespace wegslot
