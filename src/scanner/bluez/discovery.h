// Keeps BlueZ's discovery going on one adapter, with the filter under which every advertisement
// is signalled. Asks again when BlueZ says no, ever more rarely, until it is told to stop.
#pragma once

#include "base/scheduler.h"
#include "dbus/bus.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::bluez {

class Discovery {
public:
    /// Between attempts: doubled from the first to the longest. A daemon that was killed keeps
    /// saying "in progress" for some seconds; an adapter that refuses for good costs two calls
    /// a minute.
    static constexpr Nanoseconds firstRetry = std::chrono::seconds{1};
    static constexpr Nanoseconds longestRetry = std::chrono::seconds{30};

    /// `denied`: this user may not use the adapter at all.
    Discovery(dbus::Bus& bus, Scheduler& scheduler, std::string adapter,
              std::function<void()> denied);

    /// Starts it, or starts it anew.
    void start();

private:
    void setFilter(const std::vector<std::string>& understood);
    void startDiscovery();
    void call(const std::string& member, std::vector<dbus::Argument> arguments,
              std::function<void(const dbus::Message&)> answer);
    void retry(const std::string& error);

    dbus::Bus& bus_;
    Scheduler& scheduler_;
    std::string adapter_;
    std::function<void()> denied_;
    Nanoseconds nextRetry_ = firstRetry;
    Subscription pending_;
    Timer timer_;
};

} // namespace wegslot::bluez
