// The warning as a desktop notification with the cancel as its action, for desktops where no window
// of Wegslot is sure to be seen. It has no countdown; it comes and goes with the warning.
#pragma once

#include "dbus/connection.h"
#include "monitor/warning_hud.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace wegslot {

class WarningNotification final : public WarningHUD {
public:
    /// `session`: the bus of the user's session; must outlive this.
    explicit WarningNotification(dbus::Connection& session);
    ~WarningNotification() override;

    void show(TimePoint deadline, Seconds total, const Message& message,
              std::function<void()> onCancel) override;
    void hide() override;

private:
    struct Notification;

    void listen();
    void ask(const std::shared_ptr<Notification>& notification);
    void notify(const std::shared_ptr<Notification>& notification, bool asMarkup);
    void shown(const std::shared_ptr<Notification>& notification, std::uint32_t id);
    [[nodiscard]] bool isCurrent(std::optional<std::uint32_t> id) const;
    void close(std::uint32_t id);

    dbus::Bus* bus_ = nullptr;
    std::shared_ptr<Notification> current_;
    /// Hidden before the desktop said under which number they are shown.
    std::vector<std::shared_ptr<Notification>> leaving_;
    std::vector<Subscription> signals_;
    Subscription following_;
};

} // namespace wegslot
