// The port to a Bluetooth stack in the central role, in the scanner's words. An adapter keeps a
// state per peripheral and calls its delegate on the core's thread, never from within one of
// the operations below but `catchUp`.
#pragma once

#include "base/translation.h"
#include "base/uuid.h"
#include "scanner/advertisement.h"

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

/// What the radio can do at the moment. The numbers appear in the log.
enum class CentralState {
    unknown = 0,
    resetting = 1,
    unsupported = 2,
    unauthorized = 3,
    poweredOff = 4,
    poweredOn = 5,
};

/// Whether this user may use the radio at all.
enum class CentralAuthorization { notDetermined, restricted, denied, allowedAlways };

enum class PeripheralState { disconnected, connecting, connected, disconnecting };

/// An assigned number of 16 or 32 bits for a GATT service or characteristic.
enum class GattUuid : std::uint32_t {};

/// What the scanner needs of the radio at the moment, for an adapter that must ration it. Callbacks
/// come for any device all the same.
struct Wanted {
    bool list = false;      ///< everything nearby, now: a person looks at the list of devices
    std::set<Uuid> connect; ///< devices to hold a connection to; to be heard until it stands
    std::set<Uuid> hear;    ///< devices to be heard, never connected

    friend bool operator==(const Wanted&, const Wanted&) = default;
};

/// What the stack reports. Callbacks may come for any peripheral, also one that nobody asked
/// about or that is no longer known.
class CentralDelegate {
public:
    CentralDelegate() = default;
    CentralDelegate(const CentralDelegate&) = delete;
    CentralDelegate& operator=(const CentralDelegate&) = delete;
    virtual ~CentralDelegate() = default;

    /// The state was reported, for the first time or anew; it need not differ.
    virtual void didUpdateState() = 0;
    virtual void didDiscover(const Advertisement& advertisement) = 0;
    virtual void didConnect(const Uuid& id) = 0;
    virtual void didFailToConnect(const Uuid& id) = 0;
    /// `reason`: the stack's description, when it gives one.
    virtual void didDisconnect(const Uuid& id, const std::optional<std::string>& reason) = 0;
    /// `rssi`: dBm of the connection, or nothing when the reading failed.
    virtual void didReadRSSI(const Uuid& id, std::optional<int> rssi) = 0;
    /// Empty lists also stand for a failed discovery.
    virtual void didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) = 0;
    virtual void didDiscoverCharacteristics(const Uuid& id, GattUuid service,
                                            std::span<const GattUuid> characteristics) = 0;
    /// `value`: nothing when the reading failed.
    virtual void didUpdateValue(const Uuid& id, GattUuid characteristic,
                                const std::optional<std::string_view>& value) = 0;
    /// The stack learned that the device it called `from` is the one with the identity `to`.
    virtual void didIdentify(const Uuid& from, const Uuid& to) = 0;
};

class BluetoothCentral {
public:
    BluetoothCentral() = default;
    BluetoothCentral(const BluetoothCentral&) = delete;
    BluetoothCentral& operator=(const BluetoothCentral&) = delete;
    virtual ~BluetoothCentral() = default;

    /// Who is told from now on; null for nobody. Reporting begins with the state.
    virtual void setDelegate(CentralDelegate* delegate) = 0;

    [[nodiscard]] virtual CentralState state() const = 0;
    [[nodiscard]] virtual CentralAuthorization authorization() const = 0;

    /// What an adapter can say of its state to a person, in Dutch, better than the number can;
    /// nothing where the usual words do.
    [[nodiscard]] virtual std::optional<Message> stateWords() const { return std::nullopt; }

    /// Reports every advertisement of every device, repeated ones too, until the state leaves
    /// powered on.
    virtual void scan() = 0;

    /// What is wanted from now on. Holds through every change of the state.
    virtual void want(const Wanted& wanted) = 0;

    /// Tells the delegate now what has come in: for who is about to judge. An adapter may let what
    /// comes in wait a little, so as to handle it together.
    virtual void catchUp() = 0;

    /// Whether the device hides behind an address that changes and that the stack cannot resolve:
    /// it will soon be a stranger. False for a device that the stack does not know.
    [[nodiscard]] virtual bool changesAddress(const Uuid& id) const = 0;

    /// Which of `ids` the stack can be asked to connect, heard or not, in ascending order.
    [[nodiscard]] virtual std::vector<Uuid> retrieve(const std::set<Uuid>& ids) = 0;

    /// `disconnected` for a peripheral that the stack does not know.
    [[nodiscard]] virtual PeripheralState peripheralState(const Uuid& id) const = 0;

    /// The name as the stack keeps it; nothing when it has none.
    [[nodiscard]] virtual std::optional<std::string> peripheralName(const Uuid& id) const = 0;

    /// Has no time-out: answered by `didConnect` or `didFailToConnect`, perhaps much later.
    virtual void connect(const Uuid& id) = 0;

    /// Ends a connection or gives up a pending one.
    virtual void cancelConnection(const Uuid& id) = 0;

    virtual void readRSSI(const Uuid& id) = 0;
    virtual void discoverServices(const Uuid& id, GattUuid service) = 0;
    virtual void discoverCharacteristics(const Uuid& id, GattUuid service,
                                         GattUuid characteristic) = 0;
    virtual void readValue(const Uuid& id, GattUuid characteristic) = 0;
};

} // namespace wegslot
