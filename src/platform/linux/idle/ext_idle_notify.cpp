#include "platform/linux/idle/idle_protocol.h"

#include <algorithm>
#include <utility>

#include <ext-idle-notify-v1-client.h>
#include <wayland-client.h>

namespace wegslot {
namespace {

/// The request of version 2 that looks at input alone, playing films or not. Its number is used,
/// because the description that this is built with may be of version 1 and lack its name.
constexpr std::uint32_t getInputIdleNotification = 2;
constexpr std::uint32_t versionWithInput = 2;

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
        const auto milliseconds = static_cast<std::uint32_t>(timeout.count());
        const auto notification =
            ext_idle_notifier_v1_get_version(proxy_) < versionWithInput
                ? ext_idle_notifier_v1_get_idle_notification(proxy_, milliseconds, seat)
                : inputNotification(milliseconds, seat);
        if (notification == nullptr) return nullptr;
        return std::make_unique<ExtNotification>(notification, std::move(told));
    }

private:
    [[nodiscard]] ext_idle_notification_v1* inputNotification(std::uint32_t milliseconds,
                                                              wl_seat* seat) {
        auto* const notifier = reinterpret_cast<wl_proxy*>(proxy_); // as the generated code does
        return reinterpret_cast<ext_idle_notification_v1*>(wl_proxy_marshal_flags(
            notifier, getInputIdleNotification, &ext_idle_notification_v1_interface,
            wl_proxy_get_version(notifier), 0, nullptr, milliseconds, seat));
    }

    ext_idle_notifier_v1* proxy_;
};

std::unique_ptr<IdleProtocol> bindExtIdle(wl_registry* registry, std::uint32_t number,
                                          std::uint32_t version) {
    const auto known = static_cast<std::uint32_t>(ext_idle_notifier_v1_interface.version);
    void* const proxy = wl_registry_bind(registry, number, &ext_idle_notifier_v1_interface,
                                         std::min({version, known, versionWithInput}));
    if (proxy == nullptr) return nullptr;
    return std::make_unique<ExtIdleNotify>(static_cast<ext_idle_notifier_v1*>(proxy));
}

} // namespace

IdleProtocolKind extIdleNotify() {
    return {ext_idle_notifier_v1_interface.name, "ext-idle-notify-v1", bindExtIdle};
}

} // namespace wegslot
