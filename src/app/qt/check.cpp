#include "app/qt/check.h"

#include "app/linux/folders.h"
#include "coupling/bluez/obstacle.h"
#include "model/lock_command.h"
#include "model/preference_faults.h"
#include "ui/linux/autostart_item.h"

#include <algorithm>
#include <array>
#include <utility>

namespace wegslot {
namespace {

constexpr auto trayWatcher = "org.kde.StatusNotifierWatcher";

/// Programs that run a locker of their user's choice when logind asks for a lock.
constexpr std::array listeners{"swayidle", "xss-lock", "hypridle", "xscreensaver-systemd"};

} // namespace

Check::Check(RealWorld& world, const PreferencesFile& preferences, const Settings& settings,
             Scheduler& scheduler, const Clock& clock, std::vector<std::filesystem::path> autostart,
             Options options, PrintLine print, std::function<void(bool ok)> done)
    : world_(world),
      preferences_(preferences),
      settings_(settings),
      scheduler_(scheduler),
      clock_(clock),
      autostart_(std::move(autostart)),
      options_(options),
      print_(std::move(print)),
      done_(std::move(done)) {
    bus_ = world_.sessionBus.bus().follow([this](dbus::Bus* bus) {
        trayOwner_.reset();
        if (bus == nullptr) return;
        trayOwner_ = bus->followOwner(trayWatcher, [this](const std::optional<std::string>& owner) {
            tray_ = owner.has_value();
        });
    });
    gather(mostRounds);
}

void Check::gather(int rounds) {
    timer_ = scheduler_.after(gathering, [this, rounds] {
        if (world_.central.isAsking() && rounds > 1) return gather(rounds - 1);
        report();
    });
}

void Check::report() {
    findings_ = findings(facts());
    if (!options_.json)
        for (const std::string& line : reportLines(findings_))
            print_(line);
    if (options_.lock) return lock();
    if (options_.json) print_(reportJson(findings_, std::nullopt));
    done_(canLock(findings_));
}

void Check::lock() {
    if (world_.watcher.isLocked()) return proven({world_.watcher.witness(), LockProof::before});
    asked_ = clock_.now();
    session_ = world_.watcher.observe([this](SessionEvent event) {
        // The fact is being told; who says so is known right after.
        if (event == SessionEvent::locked)
            timer_ = scheduler_.after(Nanoseconds{0}, [this, at = clock_.now()] {
                proven({world_.watcher.witness(), at - asked_});
            });
    });
    timer_ = scheduler_.after(Monitor::confirmationTimeout, [this] {
        proven({std::nullopt, Monitor::confirmationTimeout});
    });
    world_.lock.lock();
}

void Check::proven(LockProof proof) {
    timer_.reset();
    print_(options_.json ? reportJson(findings_, proof) : proofLine(proof));
    done_(canLock(findings_) && proof.confirms());
}

CheckFacts Check::facts() {
    CheckFacts facts{
        .bluetooth = bluetooth(),
        .enabled = settings_.enabled.get(),
        .keys = {},
        .locking = locking(),
        .activity = activity(),
        .preferences = {.unreadable = std::nullopt, .faults = preferenceFaults(preferences_)},
        .tray = tray_,
        .autostart = hasAutostart()};
    if (const auto& fault = preferences_.fault().get())
        facts.preferences.unreadable = fault->message.translated();
    for (const KeyDevice& key : settings_.keys.get()) {
        facts.keys.push_back({.name = key.name, .changesAddress = std::nullopt});
        if (key.isPasted) facts.keys.back().hasIdentity = world_.identities.find(key.id) != nullptr;
        if (world_.central.knows(key.id))
            facts.keys.back().changesAddress = world_.central.changesAddress(key.id);
    }
    return facts;
}

CheckFacts::Bluetooth Check::bluetooth() {
    CheckFacts::Bluetooth facts{.daemon = world_.central.hasDaemon(),
                                .isAsked = world_.central.isAsking(),
                                .adapter = std::nullopt,
                                .state = world_.central.state(),
                                .readsLinks = false,
                                .obstacle = coupling::obstacle(world_.central.surroundings())};
    const auto& path = world_.central.adapter();
    if (!path) return facts;
    facts.adapter = path->substr(path->rfind('/') + 1);
    facts.readsLinks = world_.links.canRead(*path);
    return facts;
}

CheckFacts::Locking Check::locking() {
    const LockCommand command = world_.lockerLock.command();
    CheckFacts::Locking facts{.session = world_.session.path().get().has_value(),
                              .savers = world_.savers.running(),
                              .listeners = {},
                              .locker = command,
                              .lockerInstalled =
                                  !command.empty() && world_.processes.isInstalled(command.front()),
                              .wrongCommand = std::nullopt,
                              .hintKept = world_.savers.desktopSetsHint().get(),
                              .locked = world_.watcher.witness()};
    for (const char* const listener : listeners)
        if (!world_.processes.running({{.name = listener}}).empty())
            facts.listeners.emplace_back(listener);
    if (const auto own = lockCommand(preferences_); !own)
        facts.wrongCommand = own.failure().message.translated();
    return facts;
}

CheckFacts::Activity Check::activity() {
    CheckFacts::Activity facts;
    const auto first = [](const auto& sources) {
        const auto found =
            std::ranges::find_if(sources, [](const auto* source) { return source->isThere(); });
        return found == sources.end() ? nullptr : *found;
    };
    if (IdleSource* const source = first(world_.activity.idle())) {
        facts.idleSource = source->name();
        facts.idle = source->idleTime();
        facts.filmsHoldIdleUp = source->canBeHeldUp();
    }
    for (const CameraSource* const source : world_.activity.cameras())
        if (source->isThere()) facts.cameraSources.push_back(source->name());
    facts.cameraInUse = world_.activity.cameraInUse();
    if (MicrophoneSource* const source = first(world_.activity.microphones())) {
        facts.microphoneSource = source->name();
        const auto use = source->use();
        facts.microphoneAnswers = use.has_value();
        if (use) facts.microphoneUser = use->user;
    }
    return facts;
}

bool Check::hasAutostart() const {
    const std::filesystem::path none; // it is not to be changed
    return AutostartItem(autostart_, none, folders::variable("XDG_CURRENT_DESKTOP"),
                         world_.processes)
        .isEnabled();
}

} // namespace wegslot
