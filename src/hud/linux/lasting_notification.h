// A notification of the desktop that stays until its user closes it: for what they must know though
// nobody was looking. A later one takes the place of the one before.
#pragma once

#include "dbus/connection.h"

#include <cstdint>
#include <string>

namespace wegslot {

class LastingNotification {
public:
    /// `session`: the bus of the user's session; must outlive this.
    explicit LastingNotification(dbus::Connection& session);
    LastingNotification(const LastingNotification&) = delete;
    LastingNotification& operator=(const LastingNotification&) = delete;

    /// Shows it now, or as soon as there is a bus.
    void tell(std::string title, std::string text);

private:
    void show();

    dbus::Bus* bus_ = nullptr;
    std::string title_; ///< of what is still to be shown; empty for nothing
    std::string text_;
    std::uint32_t shown_ = 0; ///< the desktop's number for the last; 0 for none
    Subscription showing_;
    Subscription following_;
};

} // namespace wegslot
