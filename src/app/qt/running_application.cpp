#include "app/qt/running_application.h"

#include "app/linux/folders.h"
#include "app/qt/display.h"
#include "app/qt/warning.h"
#include "base/text.h"
#include "control/phase_reason.h"
#include "log/log.h"
#include "model/lock_command.h"
#include "platform/linux/random_uuid.h"
#include "recording/linux/descriptor_sink.h"
#include "recording/linux/foreign_descriptor.h"
#include "ui/qt/local_clock_time.h"

#include <QCoreApplication>

#include <utility>

namespace wegslot {
namespace {

std::filesystem::path ownProgram() {
    std::error_code unknown;
    return std::filesystem::canonical("/proc/self/exe", unknown);
}

/// 1 and more, in 24 bits: nobody has so many keys that two are likely to be alike.
int randomNumber() {
    const Uuid id = randomUuid();
    return 1 + (id.bytes[0] * 256 + id.bytes[1]) * 256 + id.bytes[2];
}

void quit() { QCoreApplication::quit(); }

} // namespace

RunningApplication::RunningApplication(const Setting& setting)
    : setting_(setting),
      world_(setting.scheduler, setting.clock),
      activity_(world_.platform.activity),
      updates_(world_.sessionBus),
      model_([this] {
          return AppModel::Surroundings{
              .preferences = setting_.preferences,
              .central = world_.central,
              .platform = {setting_.clock, setting_.scheduler, world_.platform.session, activity_,
                           world_.platform.lock},
              .makeHud =
                  [this] { return warning(world_.sessionBus, setting_.clock, setting_.scheduler); },
              .bundle = updates_.program().value_or(setting_.program),
              .updates = updates_.world(),
              .updateNow = setting_.updateNow};
      }()),
      pastedKeys_(model_.settings(), world_.identities, world_.identitiesFile, setting.scheduler,
                  setting.preferences.fault().get() ? PastedKeys::WithoutKey::kept
                                                    : PastedKeys::WithoutKey::forgotten),
      recorder_(model_, world_.platform, randomUuid, setting.recording),
      remembered_(setting.preferences),
      history_({.settings = model_.settings(),
                .scanner = model_.scanner(),
                .monitor = model_.monitor(),
                .clock = setting_.clock,
                .session = world_.platform.session,
                .activity = activity_,
                .remembered = remembered_,
                .file = history::HistoryFile::pathUnder(folders::state()),
                .draw = randomNumber}),
      appearance_(world_.sessionBus),
      loginItem_(folders::autostart(), ownProgram(), folders::variable("XDG_CURRENT_DESKTOP"),
                 world_.processes),
      switchedOff_(model_.settings(), remembered_, setting.clock),
      opener_(world_.processes),
      assistant_(world_.couplingRadio, model_, appearance_, setting.clock, setting.scheduler,
                 [this](const std::string& name, std::string_view pasted) {
                     return addIdentity(name, pasted);
                 }),
      panel_({model_, appearance_, setting.clock, setting.scheduler, loginItem_, remembered_,
              [this] { openLog(); }, quit, [this] { assistant_.open(); }}),
      trayBus_(dbus::sessionBus(world_.forgeries), pump, setting.scheduler,
               dbus::Connection::Complaints::none),
      icon_(appearance_, trayBus_, model_.monitor(), setting.clock, setting.scheduler,
            {.open = [this](const TrayClick& click) { panel_.toggle(click); },
             .couple = [this] { assistant_.open(); },
             .insight = [this] { openInsight(); },
             .quit = quit}),
      clockTime_(localClockTime(setting.clock)),
      control_(world_.sessionBus,
               {model_.settings(), model_.scanner(), model_.monitor(), setting.clock, clockTime_},
               {.lock = [this] { model_.monitor().lockNow(); },
                .pause = [this](Seconds duration) { model_.monitor().pause(duration); },
                .resume = [this] { model_.monitor().resume(); },
                .updateNow = [this] { model_.updateNow(); },
                .record = [this](int file, bool anonymous) { return record(file, anonymous); },
                .stopRecording = [this] { recorder_.stop(); },
                .couple = [this] { return couple(); },
                .readIdentities = [this] { return pastedKeys_.reread(); }}),
      activation_(world_.sessionBus, [this](const std::string& token) { panel_.open(token); }),
      preferencesWatch_(world_.descriptors, setting.preferencesPath,
                        [this] { setting_.preferences.reread(); }) {
    // What was typed after they were read and before they were watched.
    setting_.preferences.reread();
    tellTroubles();
    world_.couplingRadio.putBack();
    if (!world_.secrets.isLocked())
        Log::write(
            "Identiteiten kunnen in het wisselgeheugen belanden (RLIMIT_MEMLOCK is te klein)");
    takeLockCommand();
    lockCommands_ = setting_.preferences.onChangeByOthers([this] { takeLockCommand(); });
    lockFailures_ =
        model_.monitor().phase().onChange([this](const Phase& next) { phaseChanged(next); });
    tellSwitchedOff();
    withoutIcon_ = setting.scheduler.after(iconPatience, [this] { openWithoutIcon(); });
}

std::optional<Failure> RunningApplication::record(int descriptor, bool anonymous) {
    if (recorder_.isRecording()) {
        closeElsewhere(descriptor);
        return Failure{message("er loopt al een opname")};
    }
    auto sink = descriptorSink(setting_.recordings, descriptor);
    if (!sink) return sink.failure();
    return recorder_.record({.sink = *std::move(sink), .anonymous = anonymous});
}

/// In the log alone nobody sees them who has just logged in.
void RunningApplication::tellTroubles() {
    if (!setting_.lockTrouble.isEmpty())
        lockNotice_.emplace(world_.sessionBus, translated("Wegslot kan niet alles bewaren"),
                            translated("%1. Wegslot bewaakt wel; maak dit bestand schrijfbaar en "
                                       "start Wegslot opnieuw.",
                                       {setting_.lockTrouble}));
    preferencesFault_ = setting_.preferences.fault().follow([this](const auto& fault) {
        preferencesNotice_.reset();
        if (fault)
            preferencesNotice_.emplace(world_.sessionBus,
                                       translated("Wegslot kan je voorkeuren niet lezen"),
                                       printable(fault->message.translated()));
    });
}

/// At login, as far as can be known: it is then that Wegslot starts. Whoever starts it by hand
/// while it is off wants to know that, too.
void RunningApplication::tellSwitchedOff() {
    if (!switchedOff_.isLong()) return;
    switchedOffNotice_.emplace(world_.sessionBus, translated("Wegslot staat uit"),
                               translated("Het staat al meer dan een dag uit, en lockt dus niet "
                                          "als je wegloopt. Je zet het weer aan in het paneel."));
    switchingOn_ = model_.settings().enabled.onChange([this](const bool& isOn) {
        if (isOn) switchedOffNotice_.reset();
    });
}

/// Who mends it does not wait for the next start with an open screen.
void RunningApplication::takeLockCommand() {
    const auto words = lockCommand(setting_.preferences);
    world_.lockerLock.setOwn(words ? *words : LockCommand{});
    const std::string fault = words ? "" : words.failure().message.builtIn();
    if (fault != std::exchange(lockCommandFault_, fault) && !fault.empty()) Log::write(fault);
}

std::optional<Failure> RunningApplication::couple() {
    if (!hasDisplay(displayEnvironment()))
        return Failure{message("er is geen scherm voor een venster")};
    assistant_.open();
    return std::nullopt;
}

std::optional<Failure> RunningApplication::addIdentity(const std::string& name,
                                                       std::string_view pasted) {
    if (name.empty()) return Failure{message("Geef het apparaat eerst een naam")};
    const auto identity = readIdentity(pasted);
    if (!identity) return identity.failure();
    const KnownIdentity known{.key = identity->key, .name = name, .fixedId = identity->id};
    if (auto failure = world_.identitiesFile.change({}, {&known, 1})) return failure;
    return pastedKeys_.reread();
}

/// A program of its own: what it draws and judges anew is in nobody's way here.
void RunningApplication::openInsight() {
    if (const auto failure = opener_.start({ownProgram().string(), "insight"}))
        Log::write("Inzicht openen mislukt: " + failure->message.builtIn());
}

void RunningApplication::openLog() {
    const auto failure = opener_.open(setting_.log);
    if (failure) Log::write("Logboek openen mislukt: " + failure->message.builtIn());
}

void RunningApplication::phaseChanged(const Phase& next) {
    const Monitor& monitor = model_.monitor();
    if (lockFailed(monitor.phase().get(), next, monitor.cause()))
        notLockedNotice_.emplace(
            world_.sessionBus, translated("Je Mac is niet gelockt"),
            translated("Wegslot vroeg om een lock, maar niets bevestigde dat hij er kwam. "
                       "Wat er mis is, zegt: wegslot --check --lock"));
}

/// Where nobody shows the icon, a new user would never see Wegslot.
void RunningApplication::openWithoutIcon() {
    const bool isNew = model_.settings().keys.get().empty() && !setting_.preferences.fault().get();
    if (isNew && !icon_.isShown() && hasDisplay(displayEnvironment())) panel_.open();
}

} // namespace wegslot
