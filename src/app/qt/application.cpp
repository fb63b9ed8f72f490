#include "app/qt/application.h"

#include "app/app_model.h"
#include "app/demo.h"
#include "app/key_commands.h"
#include "app/linux/folders.h"
#include "app/linux/instance_lock.h"
#include "app/qt/check.h"
#include "app/qt/display.h"
#include "app/qt/qt_scheduler.h"
#include "app/qt/real_world.h"
#include "app/qt/status_icon.h"
#include "app/qt/termination.h"
#include "hud/hidden_hud.h"
#include "hud/joint_hud.h"
#include "hud/linux/warning_notification.h"
#include "hud/linux/warning_sound.h"
#include "hud/qt/qt_warning_hud.h"
#include "model/file_log.h"
#include "model/lock_command.h"
#include "model/log.h"
#include "model/preferences_file.h"
#include "platform/linux/system_clock.h"
#include "update/linux/desktop_control.h"
#include "update/linux/linux_installer.h"
#include "update/linux/own_bundle.h"
#include "update/qt/qt_background.h"
#include "update/qt/qt_http_client.h"

#include <QCoreApplication>
#include <QEvent>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

void printLine(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int complain(const std::string& message) {
    std::fprintf(stderr, "wegslot: %s\n", message.c_str());
    return EXIT_FAILURE;
}

/// Writes to the log file and, for who watches in a terminal, there too.
class TeeLog final : public LogDestination {
public:
    TeeLog(const fs::path& file, const Clock& clock)
        : file_(file, clock),
          before_(Log::setDestination(this)) {}
    ~TeeLog() override { Log::setDestination(before_); }

    void write(std::string_view message) override {
        file_.write(message);
        if (watched_) printLine(message);
    }

private:
    FileLog file_;
    const bool watched_ = isatty(STDOUT_FILENO) == 1;
    LogDestination* before_;
};

/// Tells who runs a command what would otherwise be in the log.
class ComplainingLog final : public LogDestination {
public:
    ComplainingLog() : before_(Log::setDestination(this)) {}
    ~ComplainingLog() override { Log::setDestination(before_); }

    void write(std::string_view message) override { complain(std::string(message)); }

private:
    LogDestination* before_;
};

LockCommand ownLockCommand(const PreferencesStore& preferences) {
    const auto words = lockCommand(preferences);
    if (words) return *words;
    Log::write(words.failure().message);
    return {};
}

/// For commands that watch the keys and warn nobody.
AppModel::Surroundings around(PreferencesStore& preferences, RealWorld& world) {
    return {preferences, world.central, world.platform,
            [] { return std::make_unique<HiddenHud>(); }};
}

std::unique_ptr<WarningHUD> panelWithSound(const Clock& clock, Scheduler& scheduler) {
    if (!hasDisplay(displayEnvironment())) return std::make_unique<HiddenHud>();
    JointHud::Parts parts;
    parts.push_back(std::make_unique<QtWarningHud>(clock, scheduler));
    parts.push_back(std::make_unique<WarningSound>());
    return std::make_unique<JointHud>(std::move(parts));
}

/// Where the panel may be covered by another window, or not be there at all, a notification too.
std::unique_ptr<WarningHUD> warning(RealWorld& world, const Clock& clock, Scheduler& scheduler) {
    auto panel = panelWithSound(clock, scheduler);
    if (placesWindows() || !hasDisplay(displayEnvironment())) return panel;
    JointHud::Parts parts;
    parts.push_back(std::move(panel));
    parts.push_back(std::make_unique<WarningNotification>(world.sessionBus));
    return std::make_unique<JointHud>(std::move(parts));
}

/// Where updates come from and go to.
struct RealUpdates {
    RealUpdates(OwnBundle bundle, dbus::Connection& session)
        : installer(bundle.folder, bundle.info.identifier, folders::temporary()),
          app(session, [] { QCoreApplication::quit(); }) {}

    QtHttpClient http;
    LinuxInstaller installer;
    DesktopControl app;
    QtBackground background; ///< last, for its work uses the others until it has gone

    [[nodiscard]] Updater::World world() { return {http, background, installer, app}; }
};

// Each command on the running loop.
struct Execute {
    Scheduler& scheduler;
    const Clock& clock;
    PreferencesStore& preferences;
    const BundleInfo& program;

    int operator()(const command::Run& run) const {
        RealWorld world(scheduler, clock, ownLockCommand(preferences));
        const auto bundle = bundleOf();
        std::optional<RealUpdates> updates;
        if (bundle) updates.emplace(*bundle, world.sessionBus);
        AppModel model({.preferences = preferences,
                        .central = world.central,
                        .platform = world.platform,
                        .makeHud = [this, &world] { return warning(world, clock, scheduler); },
                        .bundle = bundle ? bundle->info : program,
                        .updates = updates ? std::optional(updates->world()) : std::nullopt,
                        .updateNow = run.updateNow});
        const StatusIcon icon(world, model.monitor(), clock, scheduler,
                              {.open = [](const TrayClick&) {}, // there is no panel yet
                               .lock = [&model] { model.monitor().lockNow(); },
                               .quit = [] { QCoreApplication::quit(); }});
        return QCoreApplication::exec();
    }
    int operator()(const command::Demo&) const {
        const Demo demo(
            scheduler, clock, printLine, [] { QCoreApplication::quit(); },
            panelWithSound(clock, scheduler));
        return QCoreApplication::exec();
    }
    int operator()(const command::Devices& devices) const {
        RealWorld world(scheduler, clock, LockCommand{});
        AppModel model(around(preferences, world));
        const DeviceListing listing(model, scheduler, devices.others, printLine);
        return QCoreApplication::exec();
    }
    int operator()(const command::AddKey& command) const {
        RealWorld world(scheduler, clock, LockCommand{});
        AppModel model(around(preferences, world));
        const KeyAdder adder(model, scheduler, command.id, printLine,
                             [](KeyAdder::Outcome outcome) {
                                 const bool isKey = outcome == KeyAdder::Outcome::added ||
                                                    outcome == KeyAdder::Outcome::alreadyAKey;
                                 QCoreApplication::exit(isKey ? EXIT_SUCCESS : EXIT_FAILURE);
                             });
        return QCoreApplication::exec();
    }
    int operator()(const command::Keys&) const {
        printKeys(Settings(preferences), printLine);
        return EXIT_SUCCESS;
    }
    int operator()(const command::Check& options) const {
        const Settings settings(preferences);
        const auto own = lockCommand(preferences); // the check itself says if it is wrong
        RealWorld world(scheduler, clock, own ? *own : LockCommand{});
        const Check check(world, preferences, settings, scheduler, clock, folders::autostart(),
                          {.lock = options.lock, .json = options.json}, printLine, [](bool ok) {
                              QCoreApplication::exit(ok ? EXIT_SUCCESS : EXIT_FAILURE);
                          });
        return QCoreApplication::exec();
    }
    int operator()(const command::RemoveKey& command) const {
        Settings settings(preferences);
        return removeKey(settings, command.id, printLine) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    // Answered before there is a loop.
    int operator()(const auto&) const { return EXIT_SUCCESS; }
};

/// What was to be deleted by the event loop is so now that there is none any more.
int ended(int status) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return status;
}

} // namespace

int runApplication(const Command& command, const BundleInfo& program, int& argc, char** argv) {
    const Termination termination;
    const bool hasWindows = std::holds_alternative<command::Run>(command) ||
                            std::holds_alternative<command::Demo>(command);
    const auto application = hasWindows ? windowedApplication(argc, argv)
                                        : std::make_unique<QCoreApplication>(argc, argv);
    // Qt takes over the user's locale; numbers in files and on buses know only the point.
    std::setlocale(LC_NUMERIC, "C");
    QCoreApplication::setApplicationName("wegslot");
    const auto watching = termination.watch();
    QtScheduler scheduler;
    const SystemClock clock;

    if (std::holds_alternative<command::Demo>(command)) {
        MemoryStore nothing;
        return ended(Execute{scheduler, clock, nothing, program}(command::Demo{}));
    }

    const fs::path preferencesPath = PreferencesFile::pathUnder(folders::configuration());
    if (std::holds_alternative<command::Check>(command)) {
        const ComplainingLog complaints;
        PreferencesFile preferences(preferencesPath, scheduler, PreferencesFile::Access::readOnly);
        return Execute{scheduler, clock, preferences, program}(std::get<command::Check>(command));
    }
    const auto lock = InstanceLock::take(preferencesPath.parent_path());
    if (!lock) return complain(lock.failure().message);

    std::unique_ptr<TeeLog> log;
    if (std::holds_alternative<command::Run>(command)) {
        const fs::path logPath = FileLog::pathUnder(folders::home());
        std::error_code ignored;
        fs::create_directories(logPath.parent_path(), ignored);
        log = std::make_unique<TeeLog>(logPath, clock);
    }
    PreferencesFile preferences(preferencesPath, scheduler);
    return ended(std::visit(Execute{scheduler, clock, preferences, program}, command));
}

} // namespace wegslot
