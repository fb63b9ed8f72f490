// The contract over the BlueZ adapter, the real bluetoothd and a virtual controller, in real time.
// Runs in the guest, where WEGSLOT_RADIO names the controller's control socket and somebody stands
// by as a pairing agent.
#include "tests/contract/radio_world.h"

#include "app/qt/bus_pump.h"
#include "app/qt/qt_descriptors.h"
#include "app/qt/qt_scheduler.h"
#include "dbus/forgeries.h"
#include "platform/linux/system_clock.h"
#include "scanner/bluez/bluez_central.h"
#include "scanner/bluez/device_id.h"
#include "scanner/bluez/hci_links.h"
#include "tests/contract/bluez_daemon.h"
#include "tests/contract/control_line.h"

#include <QCoreApplication>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>

namespace wegslot {
namespace {

/// Under emulation everything takes several times as long, and BlueZ waits 40 s for some.
constexpr std::chrono::minutes patience{4}; // what takes longer hangs, emulated too

QCoreApplication& application() {
    static int argc = 1;
    static std::string name = "contract_guest";
    static std::array<char*, 2> argv{name.data(), nullptr};
    static QCoreApplication application(argc, argv.data());
    return application;
}

std::string hexadecimal(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    for (const auto byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", byte);
        text += digits.data();
    }
    return text;
}

class GuestWorld final : public RadioWorld {
public:
    GuestWorld() {
        daemon_.setPowered(false);
        told.follow(&central_);
    }
    ~GuestWorld() override {
        told.follow(nullptr);
        // What is still connected is let go before the next world begins.
        for (const auto& [id, device] : devices_) {
            central_.cancelConnection(id);
            control_.tell("silent " + device.name);
        }
        daemon_.setPowered(true);
        for (const auto& [id, device] : devices_)
            daemon_.removeDevice(device.identity);
    }

    [[nodiscard]] BluetoothCentral& central() override { return central_; }

    void setPowered(bool powered) override {
        daemon_.setPowered(powered);
        powered_ = powered;
    }

    [[nodiscard]] Uuid add(const DeviceSpec& spec) override {
        Device device = made(spec);
        control_.tell(instructionFor(device, spec));
        if (spec.isBonded()) pair(device);
        const Uuid id = spec.identity == DeviceSpec::Identity::changing
                            ? deviceId(control_.valueOf(device.name, "address"), "random")
                            : deviceId(device.identity, device.type);
        control_.tell("silent " + device.name);
        if (spec.connecting == DeviceSpec::Connecting::ignores)
            control_.tell("non-connectable " + device.name);
        if (spec.connecting == DeviceSpec::Connecting::refuses)
            control_.tell("refuse " + device.name);
        if (spec.services == DeviceSpec::Services::mute) control_.tell("mute " + device.name);
        devices_.emplace(id, std::move(device));
        return id;
    }

    void speak(const Uuid& id) override { control_.tell("loud " + devices_.at(id).name); }
    void silence(const Uuid& id) override { control_.tell("silent " + devices_.at(id).name); }

    void dropLink(const Uuid& id, Loss loss) override {
        const char* const reason = loss == Loss::timeout ? " 08" : " 13";
        control_.tell("drop " + devices_.at(id).name + reason);
    }

    void rotate(const Uuid& id) override { control_.tell("rotate " + devices_.at(id).name); }

    [[nodiscard]] Uuid bond(const Uuid& id) override {
        auto node = devices_.extract(id);
        pair(node.mapped());
        node.key() = deviceId(node.mapped().identity, node.mapped().type);
        return devices_.insert(std::move(node)).position->first;
    }

    [[nodiscard]] bool until(const std::function<bool()>& condition) override {
        const auto latest = std::chrono::steady_clock::now() + patience;
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= latest) return false;
            turn();
        }
        return true;
    }

    void pass(Nanoseconds duration) override {
        const auto end = std::chrono::steady_clock::now() + duration;
        while (std::chrono::steady_clock::now() < end)
            turn();
    }

private:
    struct Device {
        std::string name;
        std::string identity; ///< the address that stays
        std::string type;
        std::string resolvingKey; ///< of one that hides behind other addresses
    };

    /// A name and an address that no device of this process had before.
    static Device made(const DeviceSpec& spec) {
        static int count = 0;
        ++count;
        const bool hides = spec.identity == DeviceSpec::Identity::rotating ||
                           spec.identity == DeviceSpec::Identity::changing;
        std::array<char, 18> address{};
        std::snprintf(address.data(), address.size(), "%s:00:5E:00:%02X:%02X", hides ? "00" : "C0",
                      0x60 + count / 256, count % 256);
        std::array<char, 33> key{};
        std::snprintf(key.data(), key.size(), "%032X", 0x5EC0DE00U + static_cast<unsigned>(count));
        return {"device" + std::to_string(count), address.data(), hides ? "public" : "random",
                hides ? key.data() : ""};
    }

    static std::string instructionFor(const Device& device, const DeviceSpec& spec) {
        std::string line =
            "device " + device.name + " address=" + device.identity + " type=" + device.type +
            " rssi=" + std::to_string(spec.rssi) +
            " connectable interval=" + std::to_string(Seconds(spec.interval).count());
        if (spec.linkRssi) line += " link-rssi=" + std::to_string(*spec.linkRssi);
        if (spec.name) line += " name=" + *spec.name;
        if (!spec.makerData.empty()) line += " manufacturer=" + hexadecimal(spec.makerData);
        if (spec.services != DeviceSpec::Services::withoutModel) line += " model=" + spec.model;
        if (!device.resolvingKey.empty()) line += " irk=" + device.resolvingKey;
        return line;
    }

    /// Makes the bond over a moment in which the radio is on, which the central does not live in.
    void pair(const Device& device) {
        control_.tell("loud " + device.name);
        if (!powered_) daemon_.setPowered(true);
        daemon_.pair(control_.valueOf(device.name, "address"));
        if (!powered_) daemon_.setPowered(false);
    }

    void turn() {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    }

    QCoreApplication& application_ = application();
    ControlLine control_{std::getenv("WEGSLOT_RADIO")};
    BluezDaemon daemon_;
    bool powered_ = false;
    std::map<Uuid, Device> devices_;
    QtScheduler scheduler_;
    QtDescriptors descriptors_;
    SystemClock clock_;
    bluez::HciLinks links_{descriptors_, scheduler_};
    dbus::Forgeries forgeries_{clock_};
    dbus::Connection bus_{dbus::systemBus(forgeries_), pump, scheduler_};
    AddressResolver nobody_;
    BluezCentral central_{bus_, scheduler_, clock_, links_, nobody_};
};

} // namespace

std::unique_ptr<RadioWorld> makeRadioWorld() { return std::make_unique<GuestWorld>(); }

} // namespace wegslot
