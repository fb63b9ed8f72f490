// What the contract of `BluetoothCentral` needs of a world: one central, devices around its radio,
// and time that passes, virtual or real. Three programs make one: over the fake central, over the
// BlueZ adapter with a bluetoothd that a test plays, and over the real one in a guest.
#pragma once

#include "scanner/bluetooth_central.h"
#include "tests/contract/told.h"
#include "tests/support/device_spec.h"

#include <functional>
#include <memory>

namespace wegslot {

class RadioWorld {
public:
    enum class Loss { timeout, byDevice };

    RadioWorld() = default;
    RadioWorld(const RadioWorld&) = delete;
    RadioWorld& operator=(const RadioWorld&) = delete;
    virtual ~RadioWorld() = default;

    /// Made, but nothing of it has been told; the radio is off. `told` is its delegate.
    [[nodiscard]] virtual BluetoothCentral& central() = 0;

    virtual void setPowered(bool powered) = 0;

    /// A device that does not advertise yet, and the id that it has for the stack. A bonded one
    /// has its bond when this returns.
    [[nodiscard]] virtual Uuid add(const DeviceSpec& spec) = 0;

    /// It advertises from now on, or no longer. Says nothing of a connection that stands.
    virtual void speak(const Uuid& id) = 0;
    virtual void silence(const Uuid& id) = 0;

    /// Its connection ends, and not by us.
    virtual void dropLink(const Uuid& id, Loss loss) = 0;

    /// A device that is bonded has another address from now on, and the same id.
    virtual void rotate(const Uuid& id) = 0;

    /// A device with a changing address, which advertises, is bonded with. Answers the id of its
    /// identity; when the central learns of it is another matter.
    [[nodiscard]] virtual Uuid bond(const Uuid& id) = 0;

    /// Passes time until `condition` holds; false when it does not within the world's patience.
    [[nodiscard]] virtual bool until(const std::function<bool()>& condition) = 0;

    /// Passes at least `duration`.
    virtual void pass(Nanoseconds duration) = 0;

    Told told;
};

/// Each program has its own.
[[nodiscard]] std::unique_ptr<RadioWorld> makeRadioWorld();

} // namespace wegslot
