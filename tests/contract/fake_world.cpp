// The contract over the fake central, in virtual time.
#include "tests/contract/radio_world.h"

#include "tests/support/fake_central.h"
#include "tests/support/world.h"

namespace wegslot {
namespace {

class FakeWorld final : public RadioWorld {
public:
    FakeWorld() { told.follow(&central_); }
    ~FakeWorld() override { told.follow(nullptr); }

    [[nodiscard]] BluetoothCentral& central() override { return central_; }

    void setPowered(bool powered) override { central_.setPowered(powered); }

    [[nodiscard]] Uuid add(const DeviceSpec& spec) override {
        const Uuid id = numbered(0x100 + devices_++);
        central_.add(id, spec);
        central_.silence(id);
        return id;
    }

    void speak(const Uuid& id) override { central_.speak(id); }
    void silence(const Uuid& id) override { central_.silence(id); }

    void dropLink(const Uuid& id, Loss loss) override {
        central_.dropLink(id, loss == Loss::timeout ? "timeout" : "by the device");
    }

    /// Behind a bond the address is nobody's business, as in the port.
    void rotate(const Uuid&) override {}

    [[nodiscard]] Uuid bond(const Uuid& id) override {
        const Uuid identity = numbered(0x100 + devices_++);
        central_.bond(id, identity);
        return identity;
    }

    [[nodiscard]] bool until(const std::function<bool()>& condition) override {
        const TimePoint latest = time_.now() + std::chrono::minutes{2};
        while (!condition()) {
            if (time_.now() >= latest) return false;
            time_.advance(std::chrono::milliseconds{10});
        }
        return true;
    }

    void pass(Nanoseconds duration) override { time_.advance(duration); }

private:
    VirtualTime time_{World::start};
    FakeCentral central_{time_};
    unsigned devices_ = 0;
};

} // namespace

std::unique_ptr<RadioWorld> makeRadioWorld() { return std::make_unique<FakeWorld>(); }

} // namespace wegslot
