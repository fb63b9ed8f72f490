// The running application and its desktop's file manager, for an update.
#pragma once

#include "dbus/connection.h"
#include "update/app_control.h"

#include <functional>
#include <utility>

namespace wegslot {

class DesktopControl final : public AppControl {
public:
    DesktopControl(dbus::Connection& session, std::function<void()> quit)
        : session_(session),
          quit_(std::move(quit)) {}

    void terminate() override { quit_(); }

    /// By the file manager that the desktop starts for it.
    void reveal(const std::string& path) override;

private:
    dbus::Connection& session_;
    std::function<void()> quit_;
};

} // namespace wegslot
