// The running application: the core in the real world, with its icon, its panel and its updates.
#pragma once

#include "app/linux/file_watch.h"
#include "app/qt/appearance.h"
#include "app/qt/coupling_assistant.h"
#include "app/qt/menu_panel.h"
#include "app/qt/real_updates.h"
#include "app/qt/real_world.h"
#include "app/qt/status_icon.h"
#include "base/linux/line_threads.h"
#include "control/linux/activation.h"
#include "control/linux/control_service.h"
#include "core/app_model.h"
#include "history/linux/kept_history.h"
#include "history/noted_activity.h"
#include "hud/linux/notice.h"
#include "identity/pasted_keys.h"
#include "model/linux/preferences_file.h"
#include "model/lock_command.h"
#include "model/remembered.h"
#include "model/switched_off.h"
#include "recording/recorder.h"
#include "ui/linux/autostart_item.h"
#include "ui/linux/desktop_opener.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

class RunningApplication {
public:
    struct Setting {
        Scheduler& scheduler;
        const Clock& clock;
        PreferencesFile& preferences;
        std::filesystem::path preferencesPath;
        std::filesystem::path log;
        Message lockTrouble; ///< why the lock of the preferences is another; empty if it is not
        BundleInfo program;  ///< what it is where no folder says so
        LineThreads& recordings;
        bool updateNow = false;
        std::optional<Recorder::Request> recording{}; ///< from the start on
    };

    explicit RunningApplication(const Setting& setting);

private:
    /// How long a bar of the desktop gets to show the icon.
    static constexpr Nanoseconds iconPatience = std::chrono::seconds{5};

    /// Records what reaches Wegslot from here on. `descriptor` is where to; it is taken over, and
    /// closed when the recording ends, or at once if it is refused: while there is another, and
    /// where it is neither file nor pipe.
    [[nodiscard]] std::optional<Failure> record(int descriptor, bool anonymous);
    void openInsight();
    void openLog();
    [[nodiscard]] std::optional<Failure> couple();
    [[nodiscard]] std::optional<Failure> addIdentity(const std::string& name,
                                                     std::string_view pasted);
    void openWithoutIcon();
    void phaseChanged(const Phase& next);
    void tellTroubles();
    void tellSwitchedOff();
    void takeLockCommand();

    Setting setting_;
    RealWorld world_;
    history::NotedActivity activity_;
    RealUpdates updates_;
    AppModel model_;
    PastedKeys pastedKeys_;
    Recorder recorder_; ///< at once after the model: it comes before whoever uses the monitor
    Remembered remembered_;
    history::KeptHistory history_;
    Appearance appearance_;
    AutostartItem loginItem_;
    SwitchedOff switchedOff_;
    DesktopOpener opener_;
    CouplingAssistant assistant_;
    MenuPanel panel_;
    /// Apart from the one with Wegslot's name: who may talk to that reaches no menu.
    dbus::Connection trayBus_;
    StatusIcon icon_;
    ClockTime clockTime_;
    ControlService control_;
    Activation activation_; ///< after what is to be found by its name
    Timer withoutIcon_;
    std::optional<Notice> lockNotice_;
    std::optional<Notice> preferencesNotice_;
    std::optional<Notice> notLockedNotice_;
    std::optional<Notice> switchedOffNotice_;
    Subscription lockFailures_;
    FileWatch preferencesWatch_;
    std::string lockCommandFault_;
    Subscription lockCommands_;
    Subscription preferencesFault_;
    Subscription switchingOn_;
};

} // namespace wegslot
