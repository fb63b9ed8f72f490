// Where updates come from and go to: from the web into the folder that the running program came as.
// There are none for a program on its own, as distributions install it. A build without updates
// (WEGSLOT_UPDATES=OFF) takes another source for this class, and holds no network code.
#pragma once

#include "dbus/connection.h"
#include "update/bundle_info.h"
#include "update/updater.h"

#include <memory>
#include <optional>

namespace wegslot {

class RealUpdates {
public:
    explicit RealUpdates(dbus::Connection& session);
    RealUpdates(const RealUpdates&) = delete;
    RealUpdates& operator=(const RealUpdates&) = delete;
    ~RealUpdates();

    /// What the program is as its folder says; nothing where it has none.
    [[nodiscard]] std::optional<BundleInfo> program() const;

    /// Nothing where the program has no folder. Valid as long as this object.
    [[nodiscard]] std::optional<Updater::World> world();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace wegslot
