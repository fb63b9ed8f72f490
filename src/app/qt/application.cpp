#include "app/qt/application.h"

#include "app/coupling_terminal.h"
#include "app/demo.h"
#include "app/history_commands.h"
#include "app/identity_adder.h"
#include "app/key_commands.h"
#include "app/linux/folders.h"
#include "app/linux/instance_lock.h"
#include "app/linux/standard_input.h"
#include "app/local_time.h"
#include "app/qt/bus_pump.h"
#include "app/qt/check.h"
#include "app/qt/coupling_assistant.h"
#include "app/qt/demo_windows.h"
#include "app/qt/display.h"
#include "app/qt/insight.h"
#include "app/qt/qt_scheduler.h"
#include "app/qt/real_world.h"
#include "app/qt/running_application.h"
#include "app/qt/snapshot.h"
#include "app/qt/terminal.h"
#include "app/qt/termination.h"
#include "app/qt/warning.h"
#include "base/text.h"
#include "control/linux/activation.h"
#include "control/linux/control_client.h"
#include "core/app_model.h"
#include "dbus/forgeries.h"
#include "history/linux/history_file.h"
#include "hud/hidden_hud.h"
#include "identity/linux/asked_identity.h"
#include "log/linux/file_log.h"
#include "log/log.h"
#include "model/linux/preferences_file.h"
#include "model/lock_command.h"
#include "platform/linux/system_clock.h"
#include "recording/linux/descriptor_sink.h"
#include "stage/staged_platform.h"
#include "ui/linux/autostart_item.h"
#include "ui/qt/local_clock_time.h"

#include <QCoreApplication>
#include <QEvent>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

/// For commands that watch the keys and warn nobody.
AppModel::Surroundings around(PreferencesStore& preferences, RealWorld& world) {
    return {preferences, world.central, world.platform,
            [] { return std::make_unique<HiddenHud>(); }};
}

int playDemo(Scheduler& scheduler, const Clock& clock) {
    Demo demo(
        scheduler, clock, printLine, [] { QCoreApplication::quit(); },
        panelWithSound(clock, scheduler));
    if (!hasDisplay(displayEnvironment())) return QCoreApplication::exec();
    const DemoWindows windows(demo.model(), scheduler, clock);
    return QCoreApplication::exec();
}

// Each command on the running loop.
struct Execute {
    Scheduler& scheduler;
    const Clock& clock;
    PreferencesFile& preferences;
    const BundleInfo& program;
    std::filesystem::path preferencesPath{};
    Message lockTrouble{};                        ///< of a run
    LineThreads* recordings = nullptr;            ///< of a run
    std::optional<Recorder::Request> recording{}; ///< of a run, from its start on
    std::optional<KnownIdentity> pasted{};        ///< to be added

    int operator()(const command::Run& run) const {
        const RunningApplication application({.scheduler = scheduler,
                                              .clock = clock,
                                              .preferences = preferences,
                                              .preferencesPath = preferencesPath,
                                              .log = FileLog::pathUnder(folders::home()),
                                              .lockTrouble = lockTrouble,
                                              .program = program,
                                              .recordings = *recordings,
                                              .updateNow = run.updateNow,
                                              .recording = recording});
        return QCoreApplication::exec();
    }
    int operator()(const command::Snapshot& picture) const {
        RealWorld world(scheduler, clock);
        world.readIdentities();
        StagedLock lock([] {}); // nothing is locked for a picture
        AppModel model({.preferences = preferences,
                        .central = world.central,
                        .platform = {clock, scheduler, world.watcher, world.activity, lock},
                        .makeHud = [] { return std::make_unique<HiddenHud>(); },
                        .bundle = program,
                        .connecting = Connecting::never});
        const Appearance appearance(world.sessionBus);
        AutostartItem loginItem(folders::autostart(), {}, folders::variable("XDG_CURRENT_DESKTOP"),
                                world.processes);
        Remembered remembered(preferences);
        const Snapshot snapshot(
            {model, appearance, clock, scheduler, loginItem, remembered, [] {}, [] {}, [] {}},
            picture.path, picture.tall, [] { QCoreApplication::quit(); });
        return QCoreApplication::exec();
    }
    int operator()(const command::Devices& devices) const {
        RealWorld world(scheduler, clock);
        world.readIdentities();
        AppModel model(around(preferences, world));
        GoingOn output;
        const DeviceListing listing(model, scheduler, devices.others, output.printer());
        return QCoreApplication::exec();
    }
    int operator()(const command::AddKey& command) const {
        RealWorld world(scheduler, clock);
        AppModel model(around(preferences, world));
        const KeyAdder adder(
            model, scheduler, command.id, [this] { return preferences.flush(); },
            [](KeyAdder::Outcome outcome, const Message& message) {
                const bool isKey = outcome == KeyAdder::Outcome::added ||
                                   outcome == KeyAdder::Outcome::alreadyAKey;
                QCoreApplication::exit(said(isKey ? Result<std::string>(message.translated())
                                                  : Result<std::string>(Failure{message})));
            });
        return QCoreApplication::exec();
    }
    int operator()(const command::AddIdentity&) const {
        RealWorld world(scheduler, clock);
        AppModel model(around(preferences, world));
        const IdentityAdder adder(
            model, world.identities, world.identitiesFile, scheduler, *pasted,
            [this] { return preferences.flush(); }, printLine,
            [](const Result<std::string>& outcome) { QCoreApplication::exit(said(outcome)); });
        return QCoreApplication::exec();
    }
    int operator()(const command::Couple& command) const {
        RealWorld world(scheduler, clock);
        world.readIdentities();
        AppModel model(around(preferences, world));
        coupling::Coupling coupling(couplingWorld(world.couplingRadio, model, clock, scheduler));
        if (command.kind) coupling.choose(*command.kind);
        bool isKey = false;
        CouplingTerminal terminal(coupling, clock, printLine, [&](bool key) {
            isKey = key;
            QCoreApplication::quit();
        });
        const StandardInput typed(
            world.descriptors, [&](std::string_view line) { terminal.typed(line); },
            [&] { coupling.act(coupling::Action::close); });
        const int status = QCoreApplication::exec();
        putBack(coupling, scheduler);
        if (const auto failure = preferences.flush())
            return complain(failure->message.translated());
        return status == EXIT_SUCCESS && isKey ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    int operator()(const command::Keys&) const {
        if (const auto& fault = preferences.fault().get())
            return complain(fault->message.translated());
        printKeys(Settings(preferences), printLine);
        return EXIT_SUCCESS;
    }
    int operator()(const command::Check& options) const {
        const Settings settings(preferences);
        const auto own = lockCommand(preferences); // the check itself says if it is wrong
        RealWorld world(scheduler, clock);
        world.readIdentities();
        if (own) world.lockerLock.setOwn(*own);
        const Check check(world, preferences, settings, scheduler, clock, folders::autostart(),
                          {.lock = options.lock, .json = options.json}, printLine, [](bool ok) {
                              QCoreApplication::exit(ok ? EXIT_SUCCESS : EXIT_FAILURE);
                          });
        return QCoreApplication::exec();
    }
    /// A time that somebody typed, or none.
    [[nodiscard]] Result<std::optional<TimePoint>> asked(const std::string& typed,
                                                         const char* option) const {
        if (typed.empty()) return std::optional<TimePoint>();
        const auto time = typedTime(typed, clock.wallClock());
        if (!time) return Failure{message("%1: geen tijd: %2", {option, typed})};
        return time;
    }
    [[nodiscard]] static fs::path historyFile() {
        return history::HistoryFile::pathUnder(folders::state());
    }
    [[nodiscard]] std::map<history::Row, std::string> names() const {
        return keyNames(Settings(preferences), Remembered(preferences));
    }
    int operator()(const command::RemoveKey& command) const {
        Settings settings(preferences);
        LockedMemory secrets;
        Identities identities(secrets);
        IdentitiesFile file(IdentitiesFile::pathUnder(folders::data()), secrets);
        const PastedKeys pasted(settings, identities, file, scheduler,
                                PastedKeys::WithoutKey::kept);
        return said(removeKey(settings, command.id, [this] { return preferences.flush(); }));
    }
    int operator()(const command::Why& why) const {
        const auto at = asked(why.at, "--at");
        if (!at) return complain(at.failure().message.translated());
        const auto minutes = history::HistoryFile::readAll(historyFile());
        if (!minutes) return complain(minutes.failure().message.translated());
        const auto lines = whyLines(*minutes, why, *at, readerOf(names()));
        if (!lines) return complain(lines.failure().message.translated());
        for (const std::string& line : *lines)
            printLine(line);
        return EXIT_SUCCESS;
    }
    int operator()(const command::History& history) const {
        if (history.clear) {
            const auto failure = history::HistoryFile::remove(historyFile());
            return failure ? complain(failure->message.translated()) : EXIT_SUCCESS;
        }
        const auto since = asked(history.since, "--since");
        if (!since) return complain(since.failure().message.translated());
        const TimePoint now = clock.wallClock();
        const TimePoint aDayAgo = later(now, -std::chrono::hours{24});
        const auto minutes = history::HistoryFile::read(historyFile(), since->value_or(aDayAgo),
                                                        later(now, std::chrono::hours{24}));
        if (!minutes) return complain(minutes.failure().message.translated());
        printHistory(*minutes, history, readerOf(names()), printLine);
        return EXIT_SUCCESS;
    }
    int operator()(const command::Insight&) const {
        if (!hasDisplay(displayEnvironment()))
            return complain(translated("er is geen scherm voor een venster"));
        const ComplainingLog complaints;
        const Insight window(scheduler, clock, historyFile(), names());
        return QCoreApplication::exec();
    }
    // Answered before there is a loop.
    int operator()(const auto&) const { return EXIT_SUCCESS; }
};

/// What was to be deleted by the event loop is so now that there is none any more.
int ended(int status) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return status;
}

/// Whether a Wegslot that runs already has come forward.
bool showsItself(Scheduler& scheduler, const Clock& clock) {
    dbus::Forgeries forgeries(clock);
    dbus::Connection sessionBus(dbus::sessionBus(forgeries), pump, scheduler,
                                dbus::Connection::Complaints::none);
    bool isShown = false;
    const ActivationRequest request(sessionBus, scheduler,
                                    folders::variable("XDG_ACTIVATION_TOKEN"), [&](bool taken) {
                                        isShown = taken;
                                        QCoreApplication::quit();
                                    });
    QCoreApplication::exec();
    return isShown;
}

/// Asks a Wegslot that runs already; the exit status. `absence`: what it means that none is found.
int ask(control::Request request, const Clock& clock, Scheduler& scheduler,
        const ControlClient::Failed& absence = ControlClient::absent()) {
    dbus::Forgeries forgeries(clock);
    const auto bus = dbus::Bus::openSession(forgeries, dbus::Bus::Files::allowed);
    if (!bus) {
        complain(Message("%1 (%2)", {absence.message, bus.failure().message}).translated());
        return absence.status;
    }
    const Handle driving = pump(**bus, [] { QCoreApplication::exit(EXIT_FAILURE); });
    GoingOn output;
    const ControlClient client(
        **bus, clock, wallClockTime(), scheduler, std::move(request),
        {.print = output.printer(),
         .complain = [](std::string_view line) { complain(std::string(line)); },
         .end = [](int status) { QCoreApplication::exit(status); }},
        absence);
    return QCoreApplication::exec();
}

Result<int> fileOf(const command::Recording& recording) {
    return recordingFile(recording.path, recording.force ? Existing::replaced : Existing::kept);
}

control::Request handedOver(const KnownIdentity& pasted, IdentitiesFile& file) {
    return control::request::AddIdentity{.keep = [&]() -> Result<Uuid> {
                                             if (const auto failure = file.change({}, {&pasted, 1}))
                                                 return *failure;
                                             return pasted.id();
                                         },
                                         .takeBack =
                                             [&] {
                                                 const Uuid id = pasted.id();
                                                 static_cast<void>(file.change({&id, 1}, {}));
                                             }};
}

/// What is asked of the Wegslot that runs already instead of doing it here, if anything.
std::optional<control::Request> handedOver(const Command& command) {
    // A second scan would take the radio's time from the guard's.
    if (const auto* const devices = std::get_if<command::Devices>(&command))
        return control::request::Devices{.others = devices->others};
    if (std::holds_alternative<command::Couple>(command)) return control::request::Couple{};
    const auto* const run = std::get_if<command::Run>(&command);
    if (run == nullptr) return std::nullopt;
    if (run->updateNow) return control::request::UpdateNow{};
    if (!run->recording) return std::nullopt;
    return control::request::Record{
        .open = [recording = *run->recording] { return fileOf(recording); },
        .anonymous = run->recording->anonymous};
}

Message alreadyRuns() { return message("Wegslot draait al; stop het eerst"); }

/// That of the preferences, and where that cannot be used the one that ends with the session.
std::vector<fs::path> lockFolders(const fs::path& preferences) {
    std::vector<fs::path> places{preferences.parent_path()};
    const std::string runtime = folders::variable("XDG_RUNTIME_DIR");
    if (runtime.starts_with('/')) places.push_back(fs::path(runtime) / "wegslot");
    return places;
}

/// The application object that the command needs: for a picture there need be no screen.
std::unique_ptr<QCoreApplication> applicationFor(const Command& command, int& argc, char** argv) {
    if (std::holds_alternative<command::Run>(command) ||
        std::holds_alternative<command::Insight>(command) ||
        std::holds_alternative<command::Demo>(command))
        return windowedApplication(argc, argv);
    if (std::holds_alternative<command::Snapshot>(command))
        return screenlessApplication(argc, argv);
    return plainApplication(argc, argv);
}

} // namespace

int runApplication(const Command& command, const BundleInfo& program, int& argc, char** argv) {
    const Termination termination;
    const auto application = applicationFor(command, argc, argv);
    // Qt takes over the user's locale; numbers in files and on buses know only the point.
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setApplicationName("wegslot");
    const auto watching = termination.watch();
    QtScheduler scheduler;
    const SystemClock clock;

    if (std::holds_alternative<command::Demo>(command)) {
        return ended(playDemo(scheduler, clock));
    }

    if (const auto* const asked = std::get_if<command::Ask>(&command))
        return ended(ask(asked->request, clock, scheduler));

    const fs::path preferencesPath = PreferencesFile::pathUnder(folders::configuration());
    // These look on, beside a Wegslot that runs.
    if (std::holds_alternative<command::Check>(command) ||
        std::holds_alternative<command::Keys>(command) ||
        std::holds_alternative<command::Why>(command) ||
        std::holds_alternative<command::History>(command) ||
        std::holds_alternative<command::Insight>(command) ||
        std::holds_alternative<command::Snapshot>(command)) {
        std::optional<ComplainingLog> complaints;
        if (std::holds_alternative<command::Check>(command)) complaints.emplace();
        PreferencesFile preferences(preferencesPath, scheduler, PreferencesFile::Access::readOnly);
        return ended(std::visit(Execute{scheduler, clock, preferences, program}, command));
    }
    LockedMemory secrets;
    IdentitiesFile identities(IdentitiesFile::pathUnder(folders::data()), secrets);
    std::optional<KnownIdentity> pasted;
    if (const auto* const add = std::get_if<command::AddIdentity>(&command)) {
        const auto asked = askedIdentity(add->name, add->sameAs, secrets);
        if (!asked) return complain(asked.failure().message.translated());
        pasted = *asked;
    }
    const auto* const run = std::get_if<command::Run>(&command);
    const auto lock = InstanceLock::take(lockFolders(preferencesPath));
    if (lock.outcome() == InstanceLock::Outcome::heldByAnother) {
        if (run != nullptr && run->updateNow && run->recording)
            return complain(translated("Wegslot draait al: vraag --update-now en --record apart"));
        auto request = pasted ? handedOver(*pasted, identities) : handedOver(command);
        if (request)
            return ended(ask(*std::move(request), clock, scheduler, {alreadyRuns(), EXIT_FAILURE}));
        if (run == nullptr) return complain(alreadyRuns().translated());
        return showsItself(scheduler, clock) ? EXIT_SUCCESS : complain(alreadyRuns().translated());
    }
    if (lock.outcome() == InstanceLock::Outcome::impossible) {
        if (run == nullptr) return complain(lock.trouble().translated());
        // A guard that does not start is worse than two; its name on the bus is the lock then.
        if (showsItself(scheduler, clock)) return EXIT_SUCCESS;
    }

    LineThreads recordings;
    std::optional<Recorder::Request> recording;
    if (run != nullptr && run->recording) {
        const auto file = fileOf(*run->recording);
        if (!file) return complain(file.failure().message.translated());
        auto sink = descriptorSink(recordings, *file);
        if (!sink) return complain(sink.failure().message.translated());
        recording = {.sink = *std::move(sink), .anonymous = run->recording->anonymous};
    }
    std::unique_ptr<TeeLog> log;
    if (run != nullptr) {
        const fs::path logPath = FileLog::pathUnder(folders::home());
        std::error_code ignored;
        fs::create_directories(logPath.parent_path(), ignored);
        log = std::make_unique<TeeLog>(logPath, clock);
    }
    if (run != nullptr && !lock.trouble().isEmpty())
        Log::write("Slot op de voorkeuren niet te openen: " + lock.trouble().builtIn());
    const bool looks = std::holds_alternative<command::Devices>(command);
    PreferencesFile preferences(preferencesPath, scheduler,
                                looks ? PreferencesFile::Access::readOnly
                                      : PreferencesFile::Access::whole);
    const bool writes = std::holds_alternative<command::AddKey>(command) ||
                        std::holds_alternative<command::RemoveKey>(command) ||
                        std::holds_alternative<command::Couple>(command) || pasted;
    if (const auto& fault = preferences.fault().get(); fault && writes)
        return complain(fault->message.translated());
    return ended(std::visit(Execute{scheduler, clock, preferences, program, preferencesPath,
                                    lock.trouble(), &recordings, std::move(recording), pasted},
                            command));
}

} // namespace wegslot
