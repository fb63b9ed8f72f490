#include "platform/linux/idle/idle_protocol.h"

#include <algorithm>
#include <utility>

#include <ext-idle-notify-v1-client.h>
#include <wayland-client.h>

namespace wegslot {
namespace {

/// The version whose second request looks at input alone, playing films or not.
constexpr std::uint32_t versionWithInput =
    EXT_IDLE_NOTIFIER_V1_GET_INPUT_IDLE_NOTIFICATION_SINCE_VERSION;

class ExtNotification final : public IdleNotification {
public:
    ExtNotification(ext_idle_notification_v1* proxy, IdleProtocol::Told told)
        : proxy_(proxy),
          told_(std::move(told)) {
        ext_idle_notification_v1_add_listener(proxy_, &listener, this);
    }
    ~ExtNotification() override { ext_idle_notification_v1_destroy(proxy_); }

private:
    static const ext_idle_notification_v1_listener listener;

    ext_idle_notification_v1* proxy_;
    IdleProtocol::Told told_;
};

const ext_idle_notification_v1_listener ExtNotification::listener{
    .idled = [](void* self,
                ext_idle_notification_v1*) { static_cast<ExtNotification*>(self)->told_.idle(); },
    .resumed =
        [](void* self, ext_idle_notification_v1*) {
            static_cast<ExtNotification*>(self)->told_.active();
        }};

class ExtIdleNotify final : public IdleProtocol {
public:
    explicit ExtIdleNotify(ext_idle_notifier_v1* proxy) : proxy_(proxy) {}
    ~ExtIdleNotify() override { ext_idle_notifier_v1_destroy(proxy_); }

    [[nodiscard]] std::unique_ptr<IdleNotification>
    watch(wl_seat* seat, std::chrono::milliseconds timeout, Told told) override {
        const auto ask = canBeHeldUp() ? ext_idle_notifier_v1_get_idle_notification
                                       : ext_idle_notifier_v1_get_input_idle_notification;
        auto* const notification = ask(proxy_, static_cast<std::uint32_t>(timeout.count()), seat);
        if (notification == nullptr) return nullptr;
        return std::make_unique<ExtNotification>(notification, std::move(told));
    }

    [[nodiscard]] bool canBeHeldUp() const override {
        return ext_idle_notifier_v1_get_version(proxy_) < versionWithInput;
    }

private:
    ext_idle_notifier_v1* proxy_;
};

std::unique_ptr<IdleProtocol> bindExtIdle(wl_registry* registry, std::uint32_t number,
                                          std::uint32_t version) {
    void* const proxy = wl_registry_bind(registry, number, &ext_idle_notifier_v1_interface,
                                         std::min(version, versionWithInput));
    if (proxy == nullptr) return nullptr;
    return std::make_unique<ExtIdleNotify>(static_cast<ext_idle_notifier_v1*>(proxy));
}

} // namespace

IdleProtocolKind extIdleNotify() {
    return {ext_idle_notifier_v1_interface.name, "ext-idle-notify-v1", bindExtIdle};
}

} // namespace wegslot
