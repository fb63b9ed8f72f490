#include "platform/linux/idle/idle_protocol.h"

#include <utility>

#include <org-kde-kwin-idle-client.h>
#include <wayland-client.h>

namespace wegslot {
namespace {

class KwinNotification final : public IdleNotification {
public:
    KwinNotification(org_kde_kwin_idle_timeout* proxy, IdleProtocol::Told told)
        : proxy_(proxy),
          told_(std::move(told)) {
        org_kde_kwin_idle_timeout_add_listener(proxy_, &listener, this);
    }
    ~KwinNotification() override { org_kde_kwin_idle_timeout_release(proxy_); }

private:
    static const org_kde_kwin_idle_timeout_listener listener;

    org_kde_kwin_idle_timeout* proxy_;
    IdleProtocol::Told told_;
};

const org_kde_kwin_idle_timeout_listener KwinNotification::listener{
    .idle = [](void* self,
               org_kde_kwin_idle_timeout*) { static_cast<KwinNotification*>(self)->told_.idle(); },
    .resumed =
        [](void* self, org_kde_kwin_idle_timeout*) {
            static_cast<KwinNotification*>(self)->told_.active();
        }};

class KwinIdle final : public IdleProtocol {
public:
    explicit KwinIdle(org_kde_kwin_idle* proxy) : proxy_(proxy) {}
    ~KwinIdle() override { org_kde_kwin_idle_destroy(proxy_); }

    [[nodiscard]] std::unique_ptr<IdleNotification>
    watch(wl_seat* seat, std::chrono::milliseconds timeout, Told told) override {
        const auto notification = org_kde_kwin_idle_get_idle_timeout(
            proxy_, seat, static_cast<std::uint32_t>(timeout.count()));
        if (notification == nullptr) return nullptr;
        return std::make_unique<KwinNotification>(notification, std::move(told));
    }

    [[nodiscard]] bool canBeHeldUp() const override { return true; }

private:
    org_kde_kwin_idle* proxy_;
};

std::unique_ptr<IdleProtocol> bindKwinIdle(wl_registry* registry, std::uint32_t number,
                                           std::uint32_t) {
    void* const proxy = wl_registry_bind(registry, number, &org_kde_kwin_idle_interface, 1);
    if (proxy == nullptr) return nullptr;
    return std::make_unique<KwinIdle>(static_cast<org_kde_kwin_idle*>(proxy));
}

} // namespace

IdleProtocolKind kwinIdle() {
    return {org_kde_kwin_idle_interface.name, "org_kde_kwin_idle", bindKwinIdle};
}

} // namespace wegslot
