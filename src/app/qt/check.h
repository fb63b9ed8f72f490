// `wegslot --check`: examines this machine through the adapters themselves, reports what it found
// and, if asked to, really locks and reports what confirmed it. Changes nothing else, and may run
// beside a running Wegslot.
#pragma once

#include "app/check_report.h"
#include "app/key_commands.h"
#include "app/qt/real_world.h"
#include "base/clock.h"
#include "base/scheduler.h"
#include "model/linux/preferences_file.h"
#include "model/settings.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace wegslot {

class Check {
public:
    struct Options {
        bool lock = false;
        bool json = false;
    };

    /// How long services get to answer before what is known is said. All of them were seen to
    /// answer within a tenth of it.
    static constexpr Nanoseconds gathering = std::chrono::seconds{1};

    /// How often bluetoothd gets that time while it has not answered: without it nothing true can
    /// be said, and on a busy virtual machine it was seen not to answer in the first.
    static constexpr int mostRounds = 15;

    /// `autostart`: the folders where autostart entries are. `done` is called once, from the
    /// scheduler, with whether everything works that locking takes. All must outlive this.
    Check(RealWorld& world, const PreferencesFile& preferences, const Settings& settings,
          Scheduler& scheduler, const Clock& clock, std::vector<std::filesystem::path> autostart,
          Options options, PrintLine print, std::function<void(bool ok)> done);

private:
    void gather(int rounds);
    void report();
    void lock();
    void proven(LockProof proof);
    [[nodiscard]] CheckFacts facts();
    [[nodiscard]] CheckFacts::Bluetooth bluetooth();
    [[nodiscard]] CheckFacts::Locking locking();
    [[nodiscard]] CheckFacts::Activity activity();
    [[nodiscard]] bool hasAutostart() const;

    RealWorld& world_;
    const PreferencesFile& preferences_;
    const Settings& settings_;
    Scheduler& scheduler_;
    const Clock& clock_;
    std::vector<std::filesystem::path> autostart_;
    Options options_;
    PrintLine print_;
    std::function<void(bool)> done_;
    std::vector<Finding> findings_;
    bool tray_ = false;
    TimePoint asked_;
    Subscription trayOwner_;
    Subscription bus_;
    Subscription session_;
    Timer timer_;
};

} // namespace wegslot
