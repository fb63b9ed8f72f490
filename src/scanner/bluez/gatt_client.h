// Reads single values of connected devices through BlueZ, which has found the services by itself:
// waits until it has, then looks them up. Every question is answered once, unless the device
// stays silent or the question is dropped.
#pragma once

#include "base/delayed_calls.h"
#include "base/scheduler.h"
#include "dbus/bus.h"
#include "scanner/bluetooth_central.h"
#include "scanner/bluez/object_watch.h"
#include "scanner/bluez/teller.h"

#include <map>
#include <optional>
#include <string>

namespace wegslot::bluez {

class GattClient {
public:
    /// BlueZ may say that the services are known before it has announced the last of them.
    static constexpr Nanoseconds announcements = std::chrono::seconds{1};

    /// Tells through `tell`, and never from within an operation of the client.
    GattClient(const Teller& tell, Scheduler& scheduler);

    /// The radio to work with; both must stay until `clearRadio`.
    void setRadio(dbus::Bus& bus, const ObjectWatch& watch, std::string adapter);
    void clearRadio();

    void discoverServices(const Uuid& id, GattUuid service);
    void discoverCharacteristics(const Uuid& id, GattUuid service, GattUuid characteristic);
    void readValue(const Uuid& id, GattUuid characteristic);

    /// The device was lost or is not wanted any more: what was asked of it stays unanswered.
    void drop(const Uuid& id) { questions_.erase(id); }

    /// Something was learned of the device, or of the services of any.
    void changed(const Uuid& id);
    void gattChanged();

private:
    struct Radio {
        dbus::Bus& bus;
        const ObjectWatch& watch;
        std::string adapter;
    };

    /// One at a time of a device: each begins where the one before was answered.
    struct Question {
        GattUuid service{};
        std::optional<GattUuid> characteristic; ///< with one: which the service has
        bool mayBeLate = true;
        Timer timer;
        Subscription answer;
    };

    [[nodiscard]] const std::string* path(const Uuid& id) const;
    void ask(const Uuid& id, Question question);
    void look(const Uuid& id);
    void answer(const Uuid& id, std::span<const GattUuid> found);

    const Teller& tell_;
    Scheduler& scheduler_;
    std::optional<Radio> radio_;
    std::map<Uuid, Question> questions_;
    DelayedCalls delayed_;
};

} // namespace wegslot::bluez
