// The last way to lock: a locker program, the user's own or else one that is installed. Starts
// none while one runs.
#pragma once

#include "platform/lock_sequence.h"
#include "platform/locker_programs.h"
#include "platform/locker_watch.h"

#include <utility>

namespace wegslot {

class LockerLock final : public ScreenLock {
public:
    /// `own`: the user's command, without words for the first installed one that fits `display`.
    LockerLock(Processes& processes, LockerWatch& watch, LockCommand own, DisplayKind display)
        : processes_(processes),
          watch_(watch),
          own_(std::move(own)),
          display_(display) {}

    /// Another command from now on; a locker that runs goes on, and is followed to its end.
    void setOwn(LockCommand own);

    /// Refuses when there is no program to start, or it cannot be started, which is logged.
    void request(std::function<void()> refused) override;

    /// What would be started now; no words for nothing.
    [[nodiscard]] LockCommand command() const;

private:
    Processes& processes_;
    LockerWatch& watch_;
    LockCommand own_;
    DisplayKind display_;
};

} // namespace wegslot
