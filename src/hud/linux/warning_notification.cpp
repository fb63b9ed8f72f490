#include "hud/linux/warning_notification.h"

#include "hud/linux/notifications.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace wegslot {
namespace {

constexpr auto cancelAction = "ik-ben-er-nog";

/// Names of devices are anybody's; in a text with markup their signs must stay signs.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char sign : text) {
        if (sign == '&')
            result += "&amp;";
        else if (sign == '<')
            result += "&lt;";
        else if (sign == '>')
            result += "&gt;";
        else
            result += sign;
    }
    return result;
}

} // namespace

struct WarningNotification::Notification {
    std::string message;
    std::function<void()> onCancel;
    bool asked = false;              ///< whether the desktop was asked to show it
    std::optional<std::uint32_t> id; ///< once the desktop has said
    Subscription answer;             ///< to the question that is out
};

WarningNotification::WarningNotification(dbus::Connection& session) {
    following_ = session.bus().follow([this](dbus::Bus* bus) {
        // With the bus went who showed it, or at least who would tell us.
        signals_.clear();
        leaving_.clear();
        current_.reset();
        bus_ = bus;
        if (bus_ != nullptr) listen();
    });
}

WarningNotification::~WarningNotification() { hide(); }

void WarningNotification::listen() {
    const auto listenTo = [this](const char* member, dbus::Bus::Listener listener) {
        signals_.push_back(bus_->onSignal(
            notifications::service,
            {.interface = notifications::service, .member = member, .path = notifications::path},
            std::move(listener)));
    };
    listenTo("ActionInvoked", [this](const dbus::Message& signal) {
        dbus::Reader reader = signal.read();
        const auto id = notifications::idIn(reader);
        if (!isCurrent(id) || reader.text() != cancelAction) return;
        // A copy: the call may end this notification.
        if (const auto onCancel = current_->onCancel) onCancel();
    });
    listenTo("NotificationClosed", [this](const dbus::Message& signal) {
        // A new one may get its number.
        if (isCurrent(notifications::idIn(signal.read()))) current_.reset();
    });
}

void WarningNotification::show(TimePoint, Seconds, const Message& message,
                               std::function<void()> onCancel) {
    hide();
    if (bus_ == nullptr) return;
    current_ = std::make_shared<Notification>();
    current_->message = message.translated();
    current_->onCancel = std::move(onCancel);
    ask(current_);
}

void WarningNotification::ask(const std::shared_ptr<Notification>& notification) {
    notification->answer = bus_->call(
        notifications::callTo("GetCapabilities", {}),
        [this, held = std::weak_ptr(notification)](const dbus::Message& answer) {
            const auto asked = held.lock();
            if (!asked || asked != current_ || answer.error()) return;
            const auto capabilities = answer.read().texts();
            notify(asked, std::ranges::find(capabilities, "body-markup") != capabilities.end());
        });
}

void WarningNotification::notify(const std::shared_ptr<Notification>& notification, bool asMarkup) {
    const std::string& message = notification->message;
    notification->asked = true;
    notification->answer = bus_->call(
        notifications::notify({.title = translated("Je Mac lockt zo"),
                               .text = asMarkup ? escaped(message) : message,
                               .actions = {cancelAction, translated("Ik ben er nog")},
                               .hints = {{"transient", true}, // in no list of what was missed
                                         {"suppress-sound", true}}}), // the warning has its own
        [this, held = std::weak_ptr(notification)](const dbus::Message& answer) {
            if (const auto asked = held.lock())
                shown(asked, answer.error() ? 0 : notifications::idIn(answer.read()).value_or(0));
        });
}

void WarningNotification::shown(const std::shared_ptr<Notification>& notification,
                                std::uint32_t id) {
    const bool isWanted = notification == current_;
    if (isWanted && id != 0) {
        current_->id = id;
        return;
    }
    if (isWanted) current_.reset();
    if (id != 0) close(id);
    std::erase(leaving_, notification);
}

void WarningNotification::hide() {
    const auto notification = std::exchange(current_, nullptr);
    if (!notification || bus_ == nullptr) return;
    notification->onCancel = nullptr;
    if (notification->id) return close(*notification->id);
    if (notification->asked) leaving_.push_back(notification);
}

bool WarningNotification::isCurrent(std::optional<std::uint32_t> id) const {
    return id && current_ && current_->id == id;
}

void WarningNotification::close(std::uint32_t id) { bus_->send(notifications::close(id)); }

} // namespace wegslot
