// The real core on a world in virtual time that records what the core does, in order: what the
// monitor wrote, assigned, showed and asked for, and every call of the radio.
#pragma once

#include "base/virtual_time.h"
#include "core/app_model.h"
#include "log/log.h"
#include "stage/staged_central.h"
#include "stage/staged_platform.h"
#include "tests/properties/effect.h"

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace wegslot {

class Stage final : private LogDestination {
public:
    using CallListener = std::function<void(std::string_view operation, const Uuid& id)>;

    explicit Stage(TimePoint start);
    ~Stage() override;

    /// Makes settings and scanner.
    AppModel& makeModel();
    /// Makes the monitor and listens to it.
    void makeMonitor();
    /// The application ends.
    void endModel();

    [[nodiscard]] Settings& settings() { return model->settings(); }

    [[nodiscard]] Scanner& scanner() { return model->scanner(); }

    [[nodiscard]] Monitor& monitor() { return model->monitor(); }

    [[nodiscard]] AppModel::Surroundings surroundings();

    /// How long the scheduler has run. Sleep does not count.
    [[nodiscard]] Nanoseconds elapsed() const { return time.now() - start_ - slept_; }

    void sleep(Nanoseconds duration);

    void stepWallClock(Nanoseconds difference) {
        wallAhead_ += difference;
        time.stepWallClock(difference);
    }

    [[nodiscard]] Nanoseconds wallAhead() const { return wallAhead_; }

    VirtualTime time;
    MemoryStore store;
    StagedCentral central;
    StagedPlatform platform;
    StagedSession& session = platform.session;
    StagedActivity& activity = platform.activity;

    /// What happened since they were last taken.
    Effects effects;
    /// Told of each effect as it happens.
    std::function<void(const Effect&)> onEffect;
    /// Told of each call of the radio about a device.
    CallListener onCall;

    /// How many panels exist; 0 once the monitor has gone.
    int panels = 0;
    bool panelShows = false;
    /// The cancel action of the last panel shown. It outlives the monitor, as a panel's might.
    std::function<void()> cancel;

    std::optional<AppModel> model;

private:
    class Panel;

    void write(std::string_view message) override;
    void happened(Effect effect);

    TimePoint start_;
    Nanoseconds slept_{0};
    Nanoseconds wallAhead_{0};
    LogDestination* logBefore_;
    std::vector<Subscription> subscriptions_;
};

} // namespace wegslot
