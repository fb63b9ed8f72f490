// Choosing keys from the command line: lists devices and keys, adds and removes keys. Uses the
// application's settings and scanner, but judges nothing.
#pragma once

#include "base/result.h"
#include "base/scheduler.h"
#include "core/app_model.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// Prints one line, without its line feed.
using PrintLine = std::function<void(std::string_view)>;

/// Has the changed settings written at once; why they could not be.
using Keep = std::function<std::optional<Failure>()>;

/// Prints the published list once a second, and the state of the radio when it is not on. While
/// it does, models are identified as for anybody who looks at the list.
class DeviceListing {
public:
    DeviceListing(AppModel& model, Scheduler& scheduler, bool others, PrintLine print);

private:
    void refresh();

    Scanner& scanner_;
    PrintLine print_;
    Timer timer_;
};

/// Waits for a device to be heard and makes it a key, unless it will soon have another address.
class KeyAdder {
public:
    /// A phone in a pocket may advertise only every few seconds, and one that sleeps not for ten.
    static constexpr Nanoseconds patience = std::chrono::seconds{30};

    enum class Outcome { added, alreadyAKey, notHeard, refused, notKept };

    /// What came of it, and what is to be said of it.
    using Done = std::function<void(Outcome outcome, const Message& message)>;

    /// `done` is called once, from the scheduler.
    KeyAdder(AppModel& model, Scheduler& scheduler, const Uuid& id, Keep keep, Done done);

private:
    void look();
    void finish(Outcome outcome, const Message& message);

    AppModel& model_;
    Uuid id_;
    Keep keep_;
    Done done_;
    Timer looking_;
    Timer patience_;
};

/// Prints the keys, or that there are none.
void printKeys(const Settings& settings, const PrintLine& print);

/// Removes a key, for good; what is to be said of it.
[[nodiscard]] Result<std::string> removeKey(Settings& settings, const Uuid& id, const Keep& keep);

} // namespace wegslot
