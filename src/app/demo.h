// The application on a built-in radio and session: one departure and one return, played in real
// time, every phase and log line printed. Touches no radio and no file; the warning may be shown.
#pragma once

#include "app/key_commands.h"
#include "base/delayed_calls.h"
#include "core/app_model.h"
#include "log/log.h"
#include "monitor/warning_hud.h"
#include "stage/staged_central.h"
#include "stage/staged_platform.h"

#include <functional>
#include <memory>

namespace wegslot {

class Demo final : private LogDestination {
public:
    /// `done` is called once, at the end of the story.
    /// `hud` shows the warnings, which are printed too.
    Demo(Scheduler& scheduler, const Clock& clock, PrintLine print, std::function<void()> done,
         std::unique_ptr<WarningHUD> hud);
    ~Demo() override;

    /// What it plays on, for windows that show it.
    [[nodiscard]] AppModel& model() { return model_; }

private:
    void write(std::string_view message) override;
    void tell(std::string_view line);
    void at(double seconds, std::function<void()> action);
    void playSignal(double from, double to, int first, int last);

    const Clock& clock_;
    const TimePoint start_;
    PrintLine print_;
    MemoryStore store_;
    StagedCentral central_;
    StagedPlatform platform_;
    AppModel model_;
    LogDestination* logBefore_;
    Subscription phases_;
    DelayedCalls script_;
};

} // namespace wegslot
