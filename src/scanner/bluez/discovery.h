// A discovery session of BlueZ on one adapter, with the filter under which every advertisement is
// signalled: started, restarted and ended as told, one call at a time. Asks again when BlueZ says
// no, ever more rarely.
#pragma once

#include "base/scheduler.h"
#include "dbus/bus.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::bluez {

class Discovery {
public:
    /// Between attempts at first: after a daemon was killed the kernel scans on, and the next one
    /// says "in progress" until that ends, 10.24 s after it began.
    static constexpr Nanoseconds firstRetry = std::chrono::seconds{1};
    static constexpr int quickRetries = 12;
    /// Then doubled, up to this: an adapter that refuses for good costs two calls a minute.
    static constexpr Nanoseconds longestRetry = std::chrono::seconds{30};

    /// Weaker than anything that is heard, so that either excludes nobody; a change from one to the
    /// other has the scan started anew.
    static constexpr std::int16_t firstStrength = -127;
    static constexpr std::int16_t otherStrength = -126;

    class Listener {
    public:
        Listener() = default;
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;
        virtual ~Listener() = default;

        /// The session began, or is about to end.
        virtual void discovering(bool discovering) = 0;
        /// This user may not use the adapter at all.
        virtual void discoveryDenied() = 0;
    };

    Discovery(dbus::Bus& bus, Scheduler& scheduler, std::string adapter, Listener& listener);

    /// Ends the session.
    ~Discovery();
    Discovery(const Discovery&) = delete;
    Discovery& operator=(const Discovery&) = delete;

    void start();
    void stop();

    /// Has the controller scan anew, so that it reports every device once more, without giving
    /// up the session. Nothing while there is none.
    void restart();

    /// Ends the session and begins another.
    void renew();

    [[nodiscard]] bool isOn() const { return state_ == State::on || state_ == State::rescanning; }

private:
    enum class State {
        off,
        beginning, ///< a call that leads to a session is under way
        on,
        rescanning, ///< on, and the other filter is being set
        ending,
        refused, ///< until `retry_`
    };
    /// What is to happen to the session, the stronger one where both are asked for. A session that
    /// begins fulfils either.
    enum class Wish { none, restart, renew };

    void proceed();
    void begin();
    void rescan();
    void end();
    void setFilter(State meanwhile, std::function<void(const dbus::Message&)> answer);
    void call(State meanwhile, const std::string& member, std::vector<dbus::Argument> arguments,
              std::function<void(const dbus::Message&)> answer);
    void settle(State state);
    void refused(const std::string& error);

    dbus::Bus& bus_;
    Scheduler& scheduler_;
    std::string adapter_;
    Listener& listener_;
    State state_ = State::off;
    bool wanted_ = false;
    Wish wish_ = Wish::none;
    std::int16_t strength_ = firstStrength; ///< of the two equivalent filters' the one that is set
    std::optional<std::vector<std::string>> understood_;
    int refusals_ = 0; ///< since it last began
    Nanoseconds nextRetry_ = firstRetry;
    Subscription answer_;
    Timer retry_;
};

} // namespace wegslot::bluez
