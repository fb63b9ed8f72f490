// The world around the core as somebody stages it: the demo, a trace that is replayed, a test. The
// screen, the user's hands, the camera and microphone, the lock and the warning panel, each of
// which keeps what it was told and reports what it was asked.
#pragma once

#include "base/clock.h"
#include "base/observable.h"
#include "monitor/monitor.h"
#include "monitor/warning_hud.h"
#include "platform/activity_detector.h"
#include "platform/lock_controller.h"
#include "platform/session_events.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace wegslot {

class StagedSession final : public SessionEvents {
public:
    void tell(SessionEvent event) { events_.set(event); }

    [[nodiscard]] Subscription observe(std::function<void(SessionEvent)> listener) override {
        return events_.onChange(std::move(listener));
    }

private:
    Observable<SessionEvent> events_;
};

class StagedActivity final : public ActivityDetector {
public:
    explicit StagedActivity(const Clock& clock) : clock_(clock) {}

    /// The user touches keyboard or mouse now; before the first touch the idle time is unknown.
    void touch() { touchedAt(clock_.now()); }

    void touchedAt(TimePoint at) { lastInput_ = at; }

    void setCamera(bool inUse) { camera_ = inUse; }

    void setMicrophone(std::optional<std::string> user) { microphone_ = std::move(user); }

    [[nodiscard]] Seconds idleSeconds() override {
        return lastInput_ ? Seconds{clock_.now() - *lastInput_} : unknownIdle;
    }

    [[nodiscard]] bool cameraInUse() override { return camera_; }

    [[nodiscard]] std::optional<std::string> microphoneUser() override { return microphone_; }

private:
    const Clock& clock_;
    std::optional<TimePoint> lastInput_;
    bool camera_ = false;
    std::optional<std::string> microphone_;
};

/// Calls a listener for each request.
class StagedLock final : public LockController {
public:
    explicit StagedLock(std::function<void()> listener) : listener_(std::move(listener)) {}

    void lock() override { listener_(); }

private:
    std::function<void()> listener_;
};

/// All that a monitor needs, on the clock that it is given.
struct StagedPlatform {
    StagedPlatform(
        const Clock& clock, Scheduler& scheduler, std::function<void()> onLock = [] {})
        : activity(clock),
          lock(std::move(onLock)),
          ports{clock, scheduler, session, activity, lock} {}

    StagedPlatform(const StagedPlatform&) = delete;
    StagedPlatform& operator=(const StagedPlatform&) = delete;

    StagedSession session;
    StagedActivity activity;
    StagedLock lock;
    Monitor::Platform ports;
};

/// What a warning panel shows.
struct Warning {
    TimePoint deadline;
    Seconds total;
    std::string message;
    std::function<void()> onCancel;
};

/// Calls a listener when a panel appears (with it) and when one that was showing goes (with
/// null).
class StagedHud final : public WarningHUD {
public:
    using Listener = std::function<void(const Warning*)>;

    explicit StagedHud(Listener listener) : listener_(std::move(listener)) {}

    void show(TimePoint deadline, Seconds total, const Message& message,
              std::function<void()> onCancel) override {
        const Warning warning{deadline, total, message.builtIn(), std::move(onCancel)};
        showing_ = true;
        listener_(&warning);
    }

    void hide() override {
        if (std::exchange(showing_, false)) listener_(nullptr);
    }

private:
    Listener listener_;
    bool showing_ = false;
};

} // namespace wegslot
