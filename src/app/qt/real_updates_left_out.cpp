// For builds that something else updates: a package manager.

#include "app/qt/real_updates.h"

namespace wegslot {

struct RealUpdates::Parts {};

RealUpdates::RealUpdates(dbus::Connection&) {}

RealUpdates::~RealUpdates() = default;

std::optional<BundleInfo> RealUpdates::program() const { return std::nullopt; }

std::optional<Updater::World> RealUpdates::world() { return std::nullopt; }

} // namespace wegslot
