// The screen savers of the desktops on the session bus: which of them run, whether one is active,
// and how to ask one to lock. Asking never starts one.
#pragma once

#include "base/observable.h"
#include "base/scheduler.h"
#include "dbus/connection.h"
#include "platform/lock_sequence.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// How to talk to one desktop's screen saver.
struct ScreenSaverService {
    const char* name;
    const char* path;
    const char* interface;
    bool lockTakesMessage; ///< Lock(s) instead of Lock()
};

class ScreenSavers {
public:
    /// In order of preference. GNOME's own name comes by the shell's, which exists only where a
    /// lock is possible, and which is not started by asking.
    static constexpr std::array<ScreenSaverService, 7> services{{
        {"org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", false},
        {"org.kde.screensaver", "/ScreenSaver", "org.freedesktop.ScreenSaver", false},
        {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver", "org.cinnamon.ScreenSaver", true},
        {"org.mate.ScreenSaver", "/org/mate/ScreenSaver", "org.mate.ScreenSaver", false},
        {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver", "org.xfce.ScreenSaver", false},
        {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
         "org.freedesktop.ScreenSaver", false},
        {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", false},
    }};

    /// A screen saver that crashed is usually back within this time, with the screen as it was.
    static constexpr Nanoseconds nameLossGrace = std::chrono::seconds{2};

    ScreenSavers(dbus::Connection& sessionBus, Scheduler& scheduler);

    /// Whether the first of the running ones is active; nothing while none runs.
    [[nodiscard]] const Observable<std::optional<bool>>& active() const { return active_; }

    /// Whether the desktop is one that keeps logind's lock hint right (GNOME, Plasma).
    [[nodiscard]] const Observable<bool>& desktopSetsHint() const { return desktopSetsHint_; }

    /// The bus names of those that run.
    [[nodiscard]] std::vector<std::string> running() const;

    /// Asks the running ones in turn until one does not refuse.
    void lock(std::function<void()> refused);

private:
    struct Saver {
        std::optional<std::string> owner;
        std::optional<bool> active;
        Subscription reading;
        Timer loss;
    };

    void busChanged(dbus::Bus* bus);
    void ownerChanged(std::size_t index, const std::optional<std::string>& owner);
    void forget(std::size_t index);
    void setActive(std::size_t index, std::optional<bool> active);
    void askFrom(std::size_t index, std::function<void()> refused);
    void publish();

    Scheduler& scheduler_;
    dbus::Bus* bus_ = nullptr;
    std::array<Saver, services.size()> savers_;
    std::array<bool, 2> hintingDesktops_{};
    Observable<std::optional<bool>> active_;
    Observable<bool> desktopSetsHint_{false};
    Subscription asking_;
    std::vector<Subscription> signals_;
    Subscription connection_;
};

/// The second way to lock, for a session that logind does not know.
class ScreenSaverLock final : public ScreenLock {
public:
    explicit ScreenSaverLock(ScreenSavers& savers) : savers_(savers) {}
    void request(std::function<void()> refused) override { savers_.lock(std::move(refused)); }

private:
    ScreenSavers& savers_;
};

} // namespace wegslot
