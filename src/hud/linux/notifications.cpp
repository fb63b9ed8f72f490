#include "hud/linux/notifications.h"

#include "base/application_id.h"

#include <utility>

namespace wegslot::notifications {

dbus::Call callTo(const char* member, std::vector<dbus::Argument> arguments) {
    return {.destination = service,
            .path = path,
            .interface = service,
            .member = member,
            .arguments = std::move(arguments),
            .autoStart = true}; // those of small desktops are started by the first notification
}

dbus::Call notify(const Content& content) {
    constexpr std::uint8_t critical = 2;
    constexpr std::int32_t untilClosed = 0;
    const std::string application = applicationId;
    dbus::Dictionary hints{{"urgency", critical}, {"desktop-entry", application}};
    hints.insert(hints.end(), content.hints.begin(), content.hints.end());
    return callTo("Notify", {std::string("Wegslot"), std::uint32_t{0}, application, content.title,
                             content.text, content.actions, hints, untilClosed});
}

dbus::Call close(std::uint32_t id) { return callTo("CloseNotification", {id}); }

std::optional<std::uint32_t> idIn(dbus::Reader reader) {
    const auto number = reader.integer();
    if (!number || !std::in_range<std::uint32_t>(*number)) return std::nullopt;
    return static_cast<std::uint32_t>(*number);
}

} // namespace wegslot::notifications
