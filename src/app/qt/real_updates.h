// Where updates come from and go to.
#pragma once

#include "app/linux/folders.h"
#include "update/linux/desktop_control.h"
#include "update/linux/linux_installer.h"
#include "update/linux/own_bundle.h"
#include "update/qt/qt_background.h"
#include "update/qt/qt_http_client.h"
#include "update/updater.h"

#include <QCoreApplication>

namespace wegslot {

struct RealUpdates {
    RealUpdates(const OwnBundle& bundle, dbus::Connection& session)
        : installer(bundle.folder, bundle.info.identifier, folders::temporary()),
          app(session, [] { QCoreApplication::quit(); }) {}

    QtHttpClient http;
    LinuxInstaller installer;
    DesktopControl app;
    QtBackground background; ///< last, for its work uses the others until it has gone

    [[nodiscard]] Updater::World world() { return {http, background, installer, app}; }
};

} // namespace wegslot
