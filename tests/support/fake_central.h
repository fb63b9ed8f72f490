// A radio with devices around it, in virtual time: a closed loop. It listens when the real
// schedule has it listen, hears who advertises just then, and connects as the port promises. A
// test says which devices there are and what happens to them.
#pragma once

#include "base/delayed_calls.h"
#include "base/virtual_time.h"
#include "scanner/bluetooth_central.h"
#include "scanner/scan_schedule.h"
#include "tests/support/device_spec.h"
#include "tests/support/dice.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace wegslot {

class FakeCentral final : public BluetoothCentral, private ScanRadio {
public:
    /// Of one kind of hardware.
    struct Controller {
        /// Reports each device once a scan.
        bool filtersDuplicates = true;
        /// From the order to scan until it listens: for half of the scans this, for others less.
        Nanoseconds startUp = std::chrono::milliseconds{50};
        /// How long a connection takes to be made, in which nobody is heard.
        Nanoseconds attempt = std::chrono::milliseconds{300};
        /// For how long a report may wait until it is read together with others.
        Nanoseconds reading{};
    };

    /// The random delay of each advertisement (Bluetooth Core 5.4, volume 6, part B, 4.4.2.2.1).
    static constexpr Nanoseconds longestDelay = std::chrono::milliseconds{10};
    /// Of a link whose other end fell silent.
    static constexpr Nanoseconds supervision = std::chrono::milliseconds{420};
    static constexpr Nanoseconds answerTime = std::chrono::milliseconds{50};

    explicit FakeCentral(VirtualTime& time) : FakeCentral(time, Controller{}, 1) {}
    FakeCentral(VirtualTime& time, Controller controller, std::uint64_t seed);

    // What happens around the radio.

    void setPowered(bool powered);
    /// A device that advertises for the first time after `phase`.
    void add(const Uuid& id, DeviceSpec spec, Nanoseconds phase = {});
    /// It leaves, or its battery is empty: a connection to it is lost too.
    void silence(const Uuid& id);
    void speak(const Uuid& id);
    void dropLink(const Uuid& id, const std::optional<std::string>& reason);
    /// The stack learns that the device it called `from` is the one with the identity `to`.
    void bond(const Uuid& from, const Uuid& to);

    /// Told of each report when it comes in; the delegate is when it is read.
    std::function<void(const Uuid&)> onReport;

    [[nodiscard]] bool isScanning() const { return schedule_.isScanning(); }
    /// How often a connection was tried.
    [[nodiscard]] int attempts() const { return attempts_; }

    void setDelegate(CentralDelegate* delegate) override;
    [[nodiscard]] CentralState state() const override { return state_; }
    [[nodiscard]] CentralAuthorization authorization() const override {
        return CentralAuthorization::allowedAlways;
    }
    void scan() override;
    void want(const Wanted& wanted) override;
    void catchUp() override;
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
    struct Device {
        DeviceSpec spec;
        bool speaks = true;
        bool known = false;    ///< to the stack: bonded, or heard once
        bool reported = false; ///< in this scan
        Timer next;            ///< advertisement, or the end of a link that fell silent
    };

    struct Attempt {
        Uuid id;
        bool begun = false; ///< it waits for the scan to end
        Timer end;
    };

    void startScan() override;
    void restartScan() override;
    void stopScan() override;

    [[nodiscard]] const Device* known(const Uuid& id) const;
    [[nodiscard]] bool mayConnect(const Uuid& id, const DeviceSpec& spec) const;
    [[nodiscard]] bool listens() const;
    [[nodiscard]] Nanoseconds upTo(Nanoseconds longest);
    [[nodiscard]] Nanoseconds nextInterval(const DeviceSpec& spec);
    void advertiseAfter(const Uuid& id, Nanoseconds delay);
    void advertise(const Uuid& id);
    void read(const Uuid& id);
    void report(const Uuid& id, const DeviceSpec& spec);
    void listenForKeys();
    void refuseOrWait(const Uuid& id);
    void tryConnecting(const Uuid& id);
    void beginAttempt();
    void endAttempt();
    void giveUpAttempt();
    void lose(const Uuid& id, const std::optional<std::string>& reason);
    void answer(const Uuid& id, const std::function<void(const DeviceSpec&)>& tell);
    void later(std::function<void()> action) { delayed_.after({}, std::move(action)); }

    VirtualTime& time_;
    Controller controller_;
    Dice dice_;
    CentralDelegate* delegate_ = nullptr;
    CentralState state_ = CentralState::unknown;
    Wanted wanted_;
    std::map<Uuid, Device> devices_;
    std::map<Uuid, PeripheralState> standings_; ///< of those that are not disconnected
    std::set<Uuid> again_; ///< to be connected once the connection that ends has ended
    std::optional<TimePoint> listeningFrom_;
    std::vector<Uuid> unread_;
    Timer reading_;
    std::optional<Attempt> attempt_;
    int attempts_ = 0;
    ScanSchedule schedule_;
    DelayedCalls delayed_;
};

} // namespace wegslot
