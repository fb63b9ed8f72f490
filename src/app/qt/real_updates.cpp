#include "app/qt/real_updates.h"

#include "app/linux/folders.h"
#include "base/qt/qt_background.h"
#include "update/linux/desktop_control.h"
#include "update/linux/linux_installer.h"
#include "update/linux/own_bundle.h"
#include "update/qt/curl_http_client.h"

#include <QCoreApplication>

#include <utility>

namespace wegslot {

struct RealUpdates::Parts {
    Parts(OwnBundle ownBundle, dbus::Connection& session)
        : bundle(std::move(ownBundle)),
          installer(bundle.folder, bundle.info.identifier, folders::temporary()),
          app(session, [] { QCoreApplication::quit(); }) {}

    OwnBundle bundle;
    CurlHttpClient http;
    LinuxInstaller installer;
    DesktopControl app;
    QtBackground background; ///< last, for its work uses the others until it has gone
};

RealUpdates::RealUpdates(dbus::Connection& session) {
    if (auto bundle = bundleOf()) parts_ = std::make_unique<Parts>(*std::move(bundle), session);
}

RealUpdates::~RealUpdates() = default;

std::optional<BundleInfo> RealUpdates::program() const {
    return parts_ ? std::optional(parts_->bundle.info) : std::nullopt;
}

std::optional<Updater::World> RealUpdates::world() {
    if (!parts_) return std::nullopt;
    return Updater::World{parts_->http, parts_->background, parts_->installer, parts_->app};
}

} // namespace wegslot
