// Whether others may bond with an adapter, as BlueZ keeps it: the one thing of all that coupling
// changes that does not go when our connection to the bus does.
#pragma once

#include "coupling/linux/pairable_note.h"
#include "dbus/connection.h"
#include "scanner/bluez/object_watch.h"

#include <functional>
#include <map>
#include <string>

namespace wegslot::coupling {

[[nodiscard]] dbus::Call pairableCall(const std::string& adapter, bool pairable);

/// Puts back what a note says that was left behind, by a program that was killed or because BlueZ
/// was gone by then. Has a connection of its own, which ends with it.
class PairableRepair final : private bluez::WatchListener {
public:
    /// How long an adapter that is away is waited for. At the next start it is tried again.
    static constexpr Nanoseconds patience = std::chrono::minutes{10};

    /// `done` is called once, from the loop, when there is nothing left to do or nobody waits any
    /// more. All must outlive this.
    PairableRepair(dbus::Connection::Open open, dbus::Connection::Attach attach,
                   Scheduler& scheduler, const PairableNote& note, std::function<void()> done);
    ~PairableRepair() override;

private:
    void surroundingsChanged() override;
    void deviceReported(std::string_view, const bluez::DeviceNews&) override {}
    void deviceRemoved(std::string_view, const Uuid&) override {}
    void linkEnded(std::string_view, std::string_view) override {}
    void gattChanged() override {}

    void look();
    void putBack(const std::string& path, const std::string& address);

    Scheduler& scheduler_;
    const PairableNote& note_;
    std::function<void()> done_;
    AddressResolver nobody_;
    dbus::Connection connection_;
    std::unique_ptr<bluez::ObjectWatch> watch_;
    dbus::Bus* bus_ = nullptr;
    std::map<std::string, Subscription> calls_; ///< by the adapter's address
    Timer look_;
    Timer end_;
    Subscription connected_;
};

} // namespace wegslot::coupling
