// Where updates come from and go to: from the web into the folder that the running program belongs
// to. A program without such a folder, as distributions install it, gets no updates. With
// WEGSLOT_UPDATES=OFF another source implements this class, and the build holds no network code.
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
