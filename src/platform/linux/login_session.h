// Finds the login session that Wegslot belongs to, as systemd-logind knows it, and keeps
// finding it while logind and sessions come and go.
#pragma once

#include "base/observable.h"
#include "dbus/connection.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot {

class LoginSession {
public:
    explicit LoginSession(dbus::Connection& systemBus);

    /// The canonical object path, under which signals come; nothing while there is none.
    [[nodiscard]] const Observable<std::optional<std::string>>& path() const { return path_; }

    /// The bus on which `path` is; null while there is none.
    [[nodiscard]] dbus::Bus* bus() const { return bus_; }

private:
    void busChanged(dbus::Bus* bus);
    void find();
    /// Asks in the way numbered `attempt`, and on failure in the next.
    void ask(std::size_t attempt);
    void found(std::optional<std::string> path);

    dbus::Bus* bus_ = nullptr;
    Observable<std::optional<std::string>> path_;
    Subscription answer_;
    std::vector<Subscription> signals_;
    Subscription connection_;
};

} // namespace wegslot
