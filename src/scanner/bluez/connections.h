// Connections to devices as the port promises them: a request has no time-out and stays until it
// is answered or cancelled; success, failure and loss are told once each. BlueZ has no such
// request, so it is kept here and tried when the device is heard. Nothing is connected that could
// take a headset's audio or make a stranger's phone ask to pair, and no link that another program
// opened is ever closed.
#pragma once

#include "base/clock.h"
#include "base/delayed_calls.h"
#include "base/scheduler.h"
#include "dbus/bus.h"
#include "scanner/bluetooth_central.h"
#include "scanner/bluez/links.h"
#include "scanner/bluez/object_tree.h"
#include "scanner/bluez/teller.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace wegslot::bluez {

/// Who has to do something about it. The delegate is told by `Connections` itself, and neither from
/// within `connect`, `cancel`, `radioIsFree` or `arrangeRadio`, but for the radio.
class ConnectionListener {
public:
    ConnectionListener() = default;
    ConnectionListener(const ConnectionListener&) = delete;
    ConnectionListener& operator=(const ConnectionListener&) = delete;
    virtual ~ConnectionListener() = default;

    /// The delegate is told next.
    virtual void linkLost(const Uuid& id) = 0;

    /// A device was heard that is to be connected, as soon as `radioIsFree`; and that is over.
    virtual void radioNeeded() = 0;
    virtual void radioReleased() = 0;
};

class Connections {
public:
    /// BlueZ waits 40 s for a device to be heard and some more to read its services.
    static constexpr std::chrono::microseconds patience = std::chrono::seconds{90};

    /// Between two attempts at a device that fails: doubled from the first to the longest, so
    /// that a device that refuses leaves the radio to the others.
    static constexpr Nanoseconds firstSpacing = std::chrono::seconds{2};
    static constexpr Nanoseconds longestSpacing = std::chrono::seconds{15};

    /// How often a link of either kind is looked at again where BlueZ tells of both as one.
    static constexpr Nanoseconds lookInterval = std::chrono::seconds{5};

    /// After BlueZ has answered that a link is closed, its property says so within this.
    static constexpr Nanoseconds closing = std::chrono::seconds{1};

    Connections(const Teller& tell, ConnectionListener& listener, Links& links,
                Scheduler& scheduler, const Clock& clock);
    ~Connections();
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;

    /// The radio to work with: a bus with BlueZ, its objects and the adapter's path. They must
    /// stay until `clearRadio`.
    void setRadio(dbus::Bus& bus, const ObjectTree& objects, std::string adapter);

    /// What becomes of links when the radio goes.
    enum class LinksThen {
        forgotten, ///< they go with it
        kept,      ///< they stand: only our way to BlueZ is another
    };

    /// The radio went. What was connected is lost; requests stay.
    void clearRadio(LinksThen links);

    /// Gives up the attempts that are ours, and ends our links unless they are `kept`: somebody
    /// else uses the adapter from now on, or we another.
    void leave(LinksThen links);

    /// Devices that may be connected without a bond, if their address is fixed: somebody chose
    /// them as keys.
    void setKeys(std::set<Uuid> keys) { keys_ = std::move(keys); }

    void connect(const Uuid& id);
    void cancel(const Uuid& id);
    [[nodiscard]] PeripheralState state(const Uuid& id) const;

    // What is learned of devices.

    void heard(const Uuid& id);
    /// No scan is running: who waits for the radio is connected now. Most controllers cannot do
    /// both at a time.
    void radioIsFree();
    /// Says anew whether the radio is needed.
    void arrangeRadio();
    void changed(const Uuid& id);
    void moved(const Uuid& from, const Uuid& to);
    /// `name`: BlueZ's for the reason. Its `Connected` changes right after.
    void linkEnded(const Uuid& id, std::string_view name);

private:
    enum class Stage {
        waiting,    ///< to be heard
        heard,      ///< and waiting for the radio
        attempting, ///< BlueZ was asked
        verifying,  ///< BlueZ answered, and is asked whether there is a link
        connected,
        closing, ///< BlueZ was asked to end it
    };

    struct Connection {
        Stage stage = Stage::waiting;
        bool again = false; ///< asked for anew while it closes
        std::optional<std::string> reason;
        Subscription answer;
    };

    struct Failures {
        int count = 0;
        TimePoint notBefore;
    };

    using Found = std::map<Uuid, Connection>::iterator;

    struct Radio {
        dbus::Bus& bus;
        const ObjectTree& objects;
        std::string adapter;
    };

    [[nodiscard]] const Device* device(const Uuid& id) const;
    [[nodiscard]] bool mayConnect(const Uuid& id, const Device& device) const;
    [[nodiscard]] bool isLinked(const Device& device) const;
    [[nodiscard]] std::optional<std::string> lossReason(const Uuid& id,
                                                        const Connection& connection) const;
    [[nodiscard]] bool canAttempt(const Uuid& id, const Device& device) const;

    void consider(const Uuid& id);
    void lookAtBoth();
    void attempt(const Uuid& id);
    void attempted(const Uuid& id, const std::optional<std::string>& error);
    void verified(const Uuid& id, bool connected);
    void succeed(Found connection);
    void closed(const Uuid& id, bool refused);
    void lookAgainAt(const Device& device);
    void fail(Found connection);
    void lose(Found connection);
    void tellLost(const Uuid& id, const std::optional<std::string>& reason);
    void close(const Uuid& id, const Device& device);
    Subscription call(const Uuid& id, const Device& device, const std::string& member,
                      std::function<void(const dbus::Message&)> answer);

    const Teller& tell_;
    ConnectionListener& listener_;
    Links& links_;
    Scheduler& scheduler_;
    const Clock& clock_;
    std::optional<Radio> radio_;
    std::set<Uuid> keys_;
    std::map<Uuid, Connection> connections_;
    std::map<Uuid, Failures> failures_;
    std::set<Uuid> ours_; ///< whose link we opened, or try to: ours to close
    DelayedCalls delayed_;
    Timer lookAgain_;
};

} // namespace wegslot::bluez
