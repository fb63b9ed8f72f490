// The contract over the BlueZ adapter and a bluetoothd that lives on a private bus, in virtual
// time.
#include "tests/contract/radio_world.h"

#include "scanner/bluez/bluez_central.h"
#include "scanner/bluez/device_id.h"
#include "tests/support/captured_log.h"
#include "tests/support/living_bluez.h"

namespace wegslot {
namespace {

class LookAlikeWorld final : public RadioWorld {
public:
    LookAlikeWorld() { told.follow(&central_); }
    ~LookAlikeWorld() override { told.follow(nullptr); }

    [[nodiscard]] BluetoothCentral& central() override { return central_; }

    void setPowered(bool powered) override {
        loop_.settle();
        living_.setPowered(powered);
    }

    [[nodiscard]] Uuid add(const DeviceSpec& spec) override { return keep(living_.add(spec)); }

    void speak(const Uuid& id) override { living_.speak(numbers_.at(id)); }
    void silence(const Uuid& id) override { living_.silence(numbers_.at(id)); }

    void dropLink(const Uuid& id, Loss loss) override {
        living_.dropLink(numbers_.at(id), loss == Loss::timeout ? 0x08 : 0x13);
    }

    /// The daemon shows the identity, whatever the address is.
    void rotate(const Uuid&) override {}

    [[nodiscard]] Uuid bond(const Uuid& id) override {
        const LivingBluez::Number number = numbers_.at(id);
        living_.bond(number);
        return keep(number);
    }

    [[nodiscard]] bool until(const std::function<bool()>& condition) override {
        const TimePoint latest = loop_.time.now() + std::chrono::minutes{2};
        loop_.settle();
        while (!condition()) {
            if (loop_.time.now() >= latest) return false;
            loop_.pass(step);
        }
        return true;
    }

    void pass(Nanoseconds duration) override {
        for (; duration > Nanoseconds{0}; duration -= step)
            loop_.pass(step);
    }

private:
    static constexpr Nanoseconds step = std::chrono::milliseconds{50};

    Uuid keep(LivingBluez::Number number) {
        const Uuid id = deviceId(living_.address(number), living_.addressType(number));
        numbers_[id] = number;
        return id;
    }

    CapturedLog log_;
    BusLoop loop_;
    LookAlikeLinks links_{loop_.time};
    LivingBluez living_{loop_, links_};
    dbus::Connection systemBus_{loop_.opener(), loop_.attacher(), loop_.time};
    AddressResolver nobody_;
    BluezCentral central_{systemBus_, loop_.time, loop_.time, links_, nobody_};
    std::map<Uuid, LivingBluez::Number> numbers_;
};

} // namespace

std::unique_ptr<RadioWorld> makeRadioWorld() { return std::make_unique<LookAlikeWorld>(); }

} // namespace wegslot
