// A service that a test plays on a bus: owns a name, answers calls as it is told to, says
// whatever it is told to say, well formed or not. Has its own connection, as a daemon would.
#pragma once

#include "base/handle.h"
#include "tests/support/bus_loop.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct sd_bus_message;

namespace wegslot {

class LookAlike {
public:
    /// Appends the arguments of a message.
    using Append = std::function<void(sd_bus_message*)>;
    /// Decides what a call is answered with; see `reply`, `fail` and `keepSilent`.
    using Handler = std::function<void(LookAlike&, sd_bus_message* call)>;

    LookAlike(BusLoop& loop, std::string name);
    LookAlike(const LookAlike&) = delete;
    LookAlike& operator=(const LookAlike&) = delete;
    ~LookAlike();

    /// What answers "interface.member"; calls of others are answered as unknown.
    void on(const std::string& method, Handler handler) { handlers_[method] = std::move(handler); }

    void reply(sd_bus_message* call, const Append& append = {});
    void fail(sd_bus_message* call, const std::string& error);

    void signal(const std::string& path, const std::string& interface, const std::string& member,
                const Append& append = {});

    /// The calls that came in, as "member".
    [[nodiscard]] long calls(const std::string& member) const;

    /// All of them, in their order.
    [[nodiscard]] const std::vector<std::string>& calls() const { return calls_; }

    /// Its own connection, for calls of its own; another one after `appear`.
    [[nodiscard]] dbus::Bus& bus() const;

    /// Leaves the bus, as a daemon that was killed; and comes back under a new unique name.
    void vanish();
    void appear();

private:
    static int received(sd_bus_message* message, void* self, void* error);

    BusLoop& loop_;
    std::string name_;
    std::map<std::string, Handler> handlers_;
    std::vector<std::string> calls_;
    struct Presence;
    std::unique_ptr<Presence> presence_;
};

} // namespace wegslot
