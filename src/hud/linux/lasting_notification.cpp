#include "hud/linux/lasting_notification.h"

#include <utility>
#include <vector>

namespace wegslot {

LastingNotification::LastingNotification(dbus::Connection& session) {
    following_ = session.bus().follow([this](dbus::Bus* bus) {
        showing_.reset();
        shown_ = 0;
        bus_ = bus;
        if (bus_ != nullptr && !title_.empty()) show();
    });
}

void LastingNotification::tell(std::string title, std::string text) {
    title_ = std::move(title);
    text_ = std::move(text);
    if (bus_ != nullptr) show();
}

void LastingNotification::show() {
    // Those that are critical stay on every desktop; a time-out of 0 alone is not always kept.
    constexpr std::uint8_t critical = 2;
    constexpr std::int32_t never = 0;
    const dbus::Dictionary hints{{"urgency", critical},
                                 {"desktop-entry", std::string("nl.wegslot.Wegslot")}};
    showing_ = bus_->call(
        {.destination = "org.freedesktop.Notifications",
         .path = "/org/freedesktop/Notifications",
         .interface = "org.freedesktop.Notifications",
         .member = "Notify",
         .arguments = {std::string("Wegslot"), shown_, std::string("nl.wegslot.Wegslot"),
                       std::exchange(title_, {}), std::exchange(text_, {}),
                       std::vector<std::string>{}, hints, never},
         .autoStart = true}, // those of small desktops are started by the first notification
        [this](const dbus::Message& answer) {
            const auto number = answer.read().integer();
            shown_ = number && std::in_range<std::uint32_t>(*number)
                         ? static_cast<std::uint32_t>(*number)
                         : 0;
        });
}

} // namespace wegslot
