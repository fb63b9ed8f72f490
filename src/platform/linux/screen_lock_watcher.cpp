#include "platform/linux/screen_lock_watcher.h"

#include <utility>

namespace wegslot {
namespace {

constexpr auto lockingService = "org.freedesktop.login1";
constexpr auto sessionInterface = "org.freedesktop.login1.Session";

} // namespace

ScreenLockWatcher::ScreenLockWatcher(LoginSession& session, ScreenSavers& savers,
                                     LockerWatch& lockers)
    : session_(session),
      lockers_(lockers),
      facts_([this](bool locked) { changed(locked); }) {
    path_ =
        session.path().onChange([this](const std::optional<std::string>& path) { follow(path); });
    active_ =
        savers.active().onChange([this](std::optional<bool> active) { facts_.setSaver(active); });
    desktop_ = savers.desktopSetsHint().onChange([this](bool sets) { facts_.trustHint(sets); });
    locker_ = lockers.locked().onChange([this](bool locked) { facts_.setLocker(locked); });
}

Subscription ScreenLockWatcher::expect(std::function<void()> confirmed) {
    auto seen = events_.onChange([confirmed = std::move(confirmed)](SessionEvent event) {
        if (event == SessionEvent::locked) confirmed();
    });
    lookCloser();
    return seen;
}

void ScreenLockWatcher::lookCloser() {
    if (!isLocked()) lockers_.expect();
}

void ScreenLockWatcher::changed(bool locked) {
    if (locked) lockers_.relax();
    events_.set(locked ? SessionEvent::locked : SessionEvent::unlocked);
}

void ScreenLockWatcher::follow(const std::optional<std::string>& path) {
    changes_.reset();
    requests_.reset();
    reading_.reset();
    // A session that cannot be found any more says nothing; what it said last may still hold.
    if (!path || session_.bus() == nullptr) return;
    changes_ = session_.bus()->onSignal(
        lockingService,
        {.interface = "org.freedesktop.DBus.Properties",
         .member = "PropertiesChanged",
         .path = *path,
         .arg0 = sessionInterface},
        [this, path = *path](const dbus::Message& message) {
            dbus::Reader reader = message.read();
            static_cast<void>(reader.text());
            std::optional<bool> hint;
            reader.properties([&hint](std::string_view name, dbus::Reader& value) {
                if (name == "LockedHint") hint = value.boolean();
            });
            if (hint) return facts_.setHint(hint);
            for (const std::string& name : reader.texts()) // invalidated: the value is not sent
                if (name == "LockedHint") readHint(path);
        });
    // Somebody asks for a lock, which is no fact; but a locker may come of it.
    requests_ = session_.bus()->onSignal(
        lockingService, {.interface = sessionInterface, .member = "Lock", .path = *path},
        [this](const dbus::Message&) { lookCloser(); });
    readHint(*path);
}

void ScreenLockWatcher::readHint(const std::string& path) {
    reading_ = session_.bus()->call(
        {.destination = lockingService,
         .path = path,
         .interface = "org.freedesktop.DBus.Properties",
         .member = "Get",
         .arguments = {std::string(sessionInterface), std::string("LockedHint")}},
        [this](const dbus::Message& answer) {
            std::optional<bool> hint;
            answer.read().variant([&hint](dbus::Reader& value) { hint = value.boolean(); });
            facts_.setHint(hint);
        });
}

} // namespace wegslot
