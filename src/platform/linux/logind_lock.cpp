#include "platform/linux/logind_lock.h"

#include <utility>

namespace wegslot {

void LogindLock::request(std::function<void()> refused) {
    const auto& path = session_.path().get();
    if (!path || session_.bus() == nullptr) return refused();
    answer_ = session_.bus()->call({.destination = "org.freedesktop.login1",
                                    .path = *path,
                                    .interface = "org.freedesktop.login1.Session",
                                    .member = "Lock"},
                                   [refused = std::move(refused)](const dbus::Message& answer) {
                                       if (answer.error()) refused();
                                   });
}

} // namespace wegslot
