#include "hud/linux/notice.h"

#include <utility>

namespace wegslot {
namespace {

constexpr auto notifications = "org.freedesktop.Notifications";
constexpr auto notificationsPath = "/org/freedesktop/Notifications";
constexpr std::uint8_t staying = 2; ///< its urgency: critical ones do not go by themselves
constexpr std::int32_t never = 0;

dbus::Call toDesktop(const char* member, std::vector<dbus::Argument> arguments) {
    return {.destination = notifications,
            .path = notificationsPath,
            .interface = notifications,
            .member = member,
            .arguments = std::move(arguments),
            .autoStart = true};
}

/// Some desktops take the text for markup, others do not: signs of it are left out for both.
std::string withoutMarkup(std::string text) {
    for (char& sign : text)
        if (sign == '<' || sign == '>' || sign == '&') sign = '_';
    return text;
}

} // namespace

Notice::Notice(dbus::Connection& session, std::string title, std::string text)
    : title_(std::move(title)),
      text_(withoutMarkup(std::move(text))) {
    following_ = session.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

Notice::~Notice() {
    if (bus_ != nullptr && id_) bus_->send(toDesktop("CloseNotification", {*id_}));
}

void Notice::busChanged(dbus::Bus* bus) {
    owner_ = {};
    answer_ = {};
    id_.reset();
    isAsking_ = false;
    isRefused_ = false;
    bus_ = bus;
    if (bus == nullptr) return;
    // At login who shows notifications may come after us, or come when the first one is asked for.
    owner_ = bus->followOwner(
        notifications, [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

void Notice::ownerChanged(const std::optional<std::string>& owner) {
    if (!owner) id_.reset();
    // Asking may start the one who shows them; where that failed once it is waited for.
    if (!id_ && !isAsking_ && (owner || !isRefused_)) show();
}

void Notice::show() {
    isAsking_ = true;
    const dbus::Dictionary hints{{"urgency", staying},
                                 {"desktop-entry", std::string("nl.wegslot.Wegslot")}};
    answer_ = bus_->call(toDesktop("Notify", {std::string("Wegslot"), std::uint32_t{0},
                                              std::string("nl.wegslot.Wegslot"), title_, text_,
                                              std::vector<std::string>{}, hints, never}),
                         [this](const dbus::Message& answer) {
                             isAsking_ = false;
                             isRefused_ = answer.error().has_value();
                             if (isRefused_) return;
                             if (const auto id = answer.read().integer();
                                 id && std::in_range<std::uint32_t>(*id))
                                 id_ = static_cast<std::uint32_t>(*id);
                         });
}

} // namespace wegslot
