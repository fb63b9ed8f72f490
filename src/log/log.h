// The event log: fire-and-forget lines about what Wegslot decided and why. This is the way in,
// callable from any thread; where the lines go is the destination's business (a file in the
// application, standard output in a replay, a list in a test).
#pragma once

#include "base/translation.h"

#include <string>
#include <string_view>

namespace wegslot {

/// Where messages go. `write` is called on the thread of the caller of `Log::write`, one call
/// at a time.
class LogDestination {
public:
    LogDestination() = default;
    LogDestination(const LogDestination&) = delete;
    LogDestination& operator=(const LogDestination&) = delete;
    virtual ~LogDestination() = default;

    virtual void write(std::string_view message) = 0;

    /// Called instead for what is not for the log alone: a person to whom it is said has it in
    /// their language.
    virtual void say(const Message& message) { write(message.builtIn()); }
};

class Log {
public:
    /// Hands `message` to the destination; without one it is lost. Never fails.
    static void write(std::string_view message);

    /// The same, of a text that has words for people.
    static void say(const Message& message);

    /// Sets where messages go from now on; null for nowhere. The destination must stay alive
    /// until another one is set. Returns the one before.
    static LogDestination* setDestination(LogDestination* destination);
};

/// While it lives, nothing that its own thread writes is logged: what is only imagined did not
/// happen.
class LogSilence {
public:
    LogSilence();
    ~LogSilence();

    LogSilence(const LogSilence&) = delete;
    LogSilence& operator=(const LogSilence&) = delete;

private:
    bool wasSilent_;
};

} // namespace wegslot
