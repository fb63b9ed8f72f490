// The one seam between Wegslot and sd-bus: a connection to a bus, calls that are answered later,
// and signals, each taken only from who owns its source's name. Knows no event loop; whoever
// owns one watches `fd` for `events` until `deadline` and calls `process`.
#pragma once

#include "base/handle.h"
#include "base/result.h"
#include "base/time.h"
#include "dbus/message.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

struct sd_bus;

namespace wegslot::dbus {

class Forgeries;

/// A value whose type goes with it.
using Value = std::variant<bool, std::uint8_t, std::int16_t, std::string>;
struct Variant {
    Value value;
};
using Dictionary = std::vector<std::pair<std::string, Value>>;
struct ObjectPath {
    std::string text;
};
/// A file that the other side may use as well; the caller keeps it open until the call is sent.
struct FileDescriptor {
    int number;
};
/// One argument of a call.
using Argument = std::variant<bool, std::int32_t, std::uint32_t, std::string, ObjectPath,
                              FileDescriptor, std::vector<std::string>, Variant, Dictionary>;

struct Call {
    static constexpr auto noLimit = std::chrono::microseconds::max();

    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
    std::vector<Argument> arguments = {};
    /// Never starts a service that is not running: activation is for the desktop to decide.
    bool autoStart = false;
    std::chrono::microseconds timeout = std::chrono::seconds{25};
};

/// Which signals of a sender are meant; what is left empty may be anything.
struct SignalMatch {
    std::string interface = {};
    std::string member = {};
    std::string path = {};
    std::string pathNamespace = {};
    std::string arg0 = {};
    std::string arg1 = {};
};

class Bus {
public:
    using Listener = std::function<void(const Message&)>;

    /// Whether open files may come and go with messages. To close one that somebody sent may take
    /// for ever, so only who needs them has them.
    enum class Files { none, allowed };

    /// Connects to the system bus or the session's, as the environment names them. `forgeries`,
    /// which outlives the bus, is told of signals that were not their source's. No files come over
    /// the system bus.
    static Result<std::unique_ptr<Bus>> openSystem(Forgeries& forgeries);
    static Result<std::unique_ptr<Bus>> openSession(Forgeries& forgeries,
                                                    Files files = Files::none);

    Bus(sd_bus* bus, Forgeries& forgeries) : bus_(bus), forgeries_(forgeries) {}
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus();

    /// Sends `call`; `answer` gets the reply or the error, also when time runs out and when the
    /// call cannot be formed (a name that is none, a text that is not UTF-8). The call is
    /// forgotten, though not taken back, when the handle ends. Nobody answers once the connection
    /// is lost.
    [[nodiscard]] Subscription call(const Call& call, Listener answer);

    /// Sends `call` and waits for the answer, no longer than its timeout: for whoever cannot go on
    /// without it. `answer` runs before this returns, and does not when there is an error or no
    /// answer in time, nor while the connection is still being made. What else comes in meanwhile
    /// is handled later, in the order of its coming.
    void ask(const Call& call, const Listener& answer);

    /// Sends `call` without wanting an answer.
    void send(const Call& call);

    /// Calls `listener` for each such signal of `sender`: a name, of which only the owner of the
    /// moment is heard, or the unique name of a connection. No signal counts before the bus has
    /// said who the owner is.
    [[nodiscard]] Subscription onSignal(const std::string& sender, const SignalMatch& match,
                                        Listener listener);

    /// Tells who owns `name`: once soon, then at each change; nothing when nobody does.
    [[nodiscard]] Subscription
    followOwner(const std::string& name,
                std::function<void(const std::optional<std::string>&)> listener);

    /// The name that the bus has given to this connection; empty while it is still being made.
    [[nodiscard]] std::string uniqueName() const;

    /// The bus as its library knows it; for this seam only.
    [[nodiscard]] sd_bus* native() const { return bus_; }

    // For the event loop.

    [[nodiscard]] int fd() const;
    /// The poll(2) events to wait for.
    [[nodiscard]] short events() const;
    /// When to call `process` at the latest, on CLOCK_MONOTONIC; nothing for never.
    [[nodiscard]] std::optional<std::chrono::microseconds> deadline() const;

    /// Handles what has come in, `most` messages at most, and tells how many: if that is `most`
    /// there may be more. None for ever once the connection is lost; see `isOpen`.
    int process(int most = atOnce);

    /// So many that a loop that drives other things too comes back to them soon.
    static constexpr int atOnce = 256;

    [[nodiscard]] bool isOpen() const;

private:
    struct Source;

    [[nodiscard]] std::shared_ptr<const Source> source(const std::string& name);

    sd_bus* bus_;
    Forgeries& forgeries_;
    std::map<std::string, std::weak_ptr<const Source>> sources_;
};

} // namespace wegslot::dbus
