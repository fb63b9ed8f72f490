// The menu panel without a window: what it shows at the moment, and everything that a person can
// do in it. Keeps nothing but what is folded open and held. A view asks for the content, draws it,
// and hands each touch to one operation here.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "model/remembered.h"
#include "ui/login_item.h"
#include "ui/panel_content.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class PanelModel {
public:
    /// The updater as the panel needs it.
    struct Updates {
        const Observable<Updater::State>& state;
        std::string currentVersion;
        bool isConfigured = false;
        std::function<void()> check;   ///< not silently
        std::function<void()> install; ///< what is offered
    };

    /// What is not ours to do.
    struct Requests {
        std::function<void()> openLog;
        std::function<void()> quit;
        std::function<void()> couple; ///< a device with this computer
    };

    /// What the panel is about; everything must outlive it.
    struct Objects {
        Settings& settings;
        Scanner& scanner;
        Monitor& monitor;
        Updates updates;
        LoginItem& loginItem;
        Remembered& remembered;
        Requests requests;
        const Clock& clock;
        Scheduler& scheduler;
        ClockTime clockTime;
        const Observable<Scheme>& scheme;
    };

    /// `all`: for a picture of the panel, which shows more than a person finds at first.
    enum class Expand { asNeeded, all };

    /// `changed` tells that there is something to draw, from within the change: draw later.
    PanelModel(Objects objects, Expand expand, std::function<void()> changed);

    PanelModel(const PanelModel&) = delete;
    PanelModel& operator=(const PanelModel&) = delete;

    /// What is to be drawn now. While the lists are held it also notes who came.
    [[nodiscard]] PanelContent content();

    /// The panel comes on the screen: without keys the list of devices is open.
    void appear();
    void disappear();

    void openNearby(bool open);
    void openNameless(bool open);
    void openSettings(bool open);

    void set(panel::Choice choice, bool on);
    void step(panel::Delay delay, panel::Step step);
    /// What was typed in the place of a value; nothing if it is no number, or what was there.
    void enter(panel::Delay delay, std::string_view typed);
    void setRule(LockRule rule);

    /// Makes a listed device a key; nothing when it has gone or will have another address.
    void choose(const Uuid& id);

    /// What is offered with the first key that is chosen.
    void acceptLogin();
    void declineLogin();

    /// Opens what couples a device with this computer, so that it can be chosen.
    void couple() const { objects_.requests.couple(); }
    /// It is no key from here on. For a moment, unless the panel goes, it can be taken back.
    void removeKey(const Uuid& id);

    /// Makes a key that was just removed one again, as it was and where it stood.
    void putBack(const Uuid& id);

    /// The slider moved. It stays where it is until it is let go, though what is stored is whole.
    void moveThreshold(const Uuid& id, Dbm value);
    void releaseThreshold();

    /// Sets the threshold by the present signal, and says for a moment what it is then: it may be
    /// what it was. Nothing without a signal.
    void setFromHere(const Uuid& id);

    /// Somebody points at the lists of devices: every row stays in its place.
    void holdLists();
    void releaseLists();

    void checkForUpdates() { objects_.updates.check(); }

    void installUpdate() { objects_.updates.install(); }

    void lockNow() { objects_.monitor.lockNow(); }

    void pause(Seconds duration) { objects_.monitor.pause(duration); }

    void resume() { objects_.monitor.resume(); }

    void openLog() { objects_.requests.openLog(); }

    void quit() { objects_.requests.quit(); }

private:
    template <typename Source>
    void redrawOn(const Source& source);
    void setLaunchAtLogin(bool on);
    void offerLogin();
    void forgetRemoved(const Uuid& id);
    [[nodiscard]] const SeenDevice* find(const Uuid& id) const;

    Objects objects_;
    Expand expand_;
    std::function<void()> changed_;
    panel::Flags flags_;
    panel::NearbyPlaces shown_;        ///< who was listed last, and where
    std::map<Uuid, Timer> forgetting_; ///< of the removed keys
    Timer justSetEnds_;
    std::vector<Subscription> subscriptions_;
};

} // namespace wegslot
