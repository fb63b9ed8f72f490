// The port to the facts about the screen: it is now locked, it is now unlocked. Facts, not
// requests: a request to lock is no event here.
#pragma once

#include "base/handle.h"

#include <functional>

namespace wegslot {

enum class SessionEvent { locked, unlocked };

class SessionEvents {
public:
    SessionEvents() = default;
    SessionEvents(const SessionEvents&) = delete;
    SessionEvents& operator=(const SessionEvents&) = delete;
    virtual ~SessionEvents() = default;

    /// Tells `listener` of each change from now on, on the core's thread and never from within
    /// this call. A session that is locked already is told as one change.
    [[nodiscard]] virtual Subscription observe(std::function<void(SessionEvent)> listener) = 0;
};

} // namespace wegslot
