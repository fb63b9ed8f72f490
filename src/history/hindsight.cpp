#include "history/hindsight.h"

#include "hud/hidden_hud.h"
#include "log/log.h"
#include "monitor/monitor.h"
#include "stage/staged_platform.h"
#include "trace/settings_values.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace wegslot::history {
namespace {

class RecalledClock final : public Clock {
public:
    explicit RecalledClock(TimePoint start) : now_(start) {}

    void set(TimePoint now) { now_ = std::max(now_, now); }

    [[nodiscard]] TimePoint now() const override { return now_; }
    [[nodiscard]] TimePoint wallClock() const override { return now_; }

private:
    TimePoint now_;
};

/// The monitor asks for one thing: to be called each second. It is, at the instants that were
/// lived.
class RecalledTicks final : public Scheduler {
public:
    void tick() const { tick_(); }

    [[nodiscard]] Timer after(Nanoseconds, std::function<void()>) override { return {}; }
    [[nodiscard]] Timer every(Nanoseconds, std::function<void()> action) override {
        tick_ = std::move(action);
        return {};
    }

private:
    std::function<void()> tick_;
};

class RecalledSignals final : public KeySignals {
public:
    explicit RecalledSignals(const Stretch& stretch) : stretch_(stretch) {}

    void recall(std::size_t instant) { instant_ = instant; }
    void setState(CentralState state) { state_ = state; }

    [[nodiscard]] bool isPoweredOn() const override { return state_ == CentralState::poweredOn; }
    [[nodiscard]] Message stateDescription() const override { return {}; }
    void refreshSnapshot() override {}

    [[nodiscard]] std::optional<TimePoint> lastSeen(const Uuid& id) const override {
        const auto* const heard = find(id);
        return heard == nullptr ? std::nullopt : std::optional(heard->last);
    }

    [[nodiscard]] std::optional<Dbm> smoothedRSSI(const Uuid& id, Seconds) const override {
        const auto* const heard = find(id);
        return heard == nullptr ? std::nullopt : heard->median;
    }

    void setWatchedIDs(std::set<Uuid>) override {}
    void setPassiveIDs(std::set<Uuid>) override {}
    void setIncludeOtherDevices(bool) override {}

private:
    [[nodiscard]] const Stretch::Heard* find(const Uuid& id) const {
        const auto key = stretch_.keys.find(rowOf(id).value_or(0));
        if (key == stretch_.keys.end()) return nullptr;
        const auto& heard = key->second.heard[instant_];
        return heard ? &*heard : nullptr;
    }

    const Stretch& stretch_;
    std::size_t instant_ = 0;
    CentralState state_ = CentralState::unknown;
};

Preferences changed(Preferences values, const Change* change) {
    if (change != nullptr) change->applyTo(values);
    return values;
}

/// How the world stood when the monitor was made.
struct Standing {
    Preferences settings;
    CentralState radio = CentralState::unknown;
    bool screenLocked = false;
    bool camera = false;
    std::optional<std::string> microphone;
    std::optional<TimePoint> input;

    void hear(const Event& event) {
        if (const auto* const change = event.as<trace::SettingsChange>())
            for (const auto& [name, value] : change->value)
                settings.insert_or_assign(name, value);
        if (const auto* const state = event.as<trace::RadioState>()) radio = state->state;
        if (const auto* const session = event.as<trace::Session>())
            screenLocked = session->value == SessionEvent::locked;
        if (const auto* const now = event.as<trace::Camera>()) camera = now->value;
        if (const auto* const now = event.as<trace::Microphone>()) microphone = now->value;
        if (event.as<trace::Input>() != nullptr) input = event.at;
    }
};

/// The screen as somebody who imagines thinks of it.
class ImaginedScreen {
public:
    ImaginedScreen(StagedSession& session, const Clock& clock, bool isLocked)
        : session_(session),
          clock_(clock),
          livedLocked_(isLocked),
          isLocked_(isLocked) {}

    /// The monitor that judges anew asks for a lock.
    void lockAsked() {
        if (isLocked_ || (livedLockAsked_ && !livedLocked_)) return; // as lived
        confirmAt_ = later(clock_.now(), imaginedConfirmation);
    }

    void livedPhase(const PhaseEntered& entered) {
        const bool isLock = entered.name == "locked" && entered.cause != PhaseCause::screen;
        livedLockAsked_ = isLock || (livedLocked_ && livedLockAsked_);
        if (isLock) isOwn_ = false; // the lock came, sooner or later
    }

    void lived(SessionEvent event) {
        livedLocked_ = event == SessionEvent::locked;
        const bool lacks = !isLocked_ && !confirmAt_ && !monitorWaits_();
        if (livedLocked_ && livedLockAsked_ && lacks) return; // what it did not ask for
        if (!livedLocked_ && !isLocked_) return;
        confirmAt_.reset();
        tell(event);
    }

    void touched() {
        if (isLocked_ && isOwn_) tell(SessionEvent::unlocked);
    }

    void beforeTick() {
        if (!confirmAt_ || clock_.now() < *confirmAt_) return;
        confirmAt_.reset();
        isOwn_ = !livedLockAsked_;
        tell(SessionEvent::locked);
    }

    void afterTick(const KeyStates& states) {
        if (!isLocked_ || !isOwn_) return;
        for (const auto& [id, state] : states)
            if (state == KeyState::near) return tell(SessionEvent::unlocked);
    }

    /// Whether the monitor has asked for a lock and waits for it.
    void setWaiting(std::function<bool()> waits) { monitorWaits_ = std::move(waits); }

private:
    void tell(SessionEvent event) {
        isLocked_ = event == SessionEvent::locked;
        if (!isLocked_) isOwn_ = false;
        session_.tell(event);
    }

    StagedSession& session_;
    const Clock& clock_;
    std::function<bool()> monitorWaits_ = [] { return false; };
    bool livedLocked_;
    bool livedLockAsked_ = false; ///< and not yet undone
    bool isLocked_;
    bool isOwn_ = false; ///< locked, and nobody lived it
    std::optional<TimePoint> confirmAt_;
};

class Recalled {
public:
    Recalled(const Stretch& stretch, std::size_t from, const Change* change)
        : stretch_(stretch),
          change_(change),
          next_(from),
          clock_(beginning()),
          standing_(standing()),
          store_(changed(standing_.settings, change)),
          settings_(store_),
          signals_(stretch),
          platform_(clock_, ticks_, [this] { screen_.lockAsked(); }),
          screen_(platform_.session, clock_, standing_.screenLocked),
          monitor_(settings_, signals_, platform_.ports, std::make_unique<HiddenHud>()) {
        signals_.setState(standing_.radio);
        platform_.activity.setCamera(standing_.camera);
        platform_.activity.setMicrophone(standing_.microphone);
        if (standing_.input) platform_.activity.touchedAt(*standing_.input);
        if (standing_.screenLocked) platform_.session.tell(SessionEvent::locked);
        screen_.setWaiting([this] { return is<phase::Locked>(monitor_.phase().get()); });
        phases_ = monitor_.phase().onChange([this](const Phase& phase) {
            outcomes_.push_back({clock_.now(), phase, monitor_.cause()});
        });
    }

    std::vector<Outcome> until(std::size_t end) {
        while (next_ < end) {
            const std::size_t instant = next_++;
            performUntil(stretch_.instants[instant].at, instant);
            if (judgedByAction_ == instant) continue;
            clock_.set(stretch_.instants[instant].at);
            signals_.recall(instant);
            if (change_ != nullptr) screen_.beforeTick();
            ticks_.tick();
            if (change_ != nullptr) screen_.afterTick(monitor_.keyStates().get());
        }
        // What came after the last judgement.
        if (end == stretch_.instants.size()) performUntil(TimePoint::max(), end);
        return std::move(outcomes_);
    }

private:
    /// The beat of the ticks counts from when the monitor was made.
    [[nodiscard]] TimePoint beginning() const {
        if (next_ == 0 && !stretch_.events.empty()) return stretch_.events.front().at;
        return later(stretch_.instants.at(next_).at, -Monitor::tickInterval);
    }

    Standing standing() {
        Standing found;
        for (; event_ < stretch_.events.size() && stretch_.events[event_].at <= clock_.now();
             ++event_)
            found.hear(stretch_.events[event_]);
        return found;
    }

    void performUntil(TimePoint at, std::size_t instant) {
        for (; event_ < stretch_.events.size() && stretch_.events[event_].at <= at; ++event_) {
            const Event& event = stretch_.events[event_];
            clock_.set(event.at);
            // Who asks for a pause or its end has the keys judged at once.
            if (event.at == at) signals_.recall(instant);
            if (const auto* const told = std::get_if<trace::Event>(&event.what))
                std::visit([this, instant, at](const auto& what) { perform(what, instant, at); },
                           *told);
            if (const auto* const entered = event.phase()) screen_.livedPhase(*entered);
        }
    }

    void perform(const auto& /*other*/, std::size_t, TimePoint) {}

    void perform(const trace::SettingsChange& event, std::size_t, TimePoint) {
        settings_.assign(changed(event.value, change_));
    }

    void perform(const trace::RadioState& event, std::size_t, TimePoint) {
        signals_.setState(event.state);
    }

    void perform(const trace::Session& event, std::size_t, TimePoint) {
        if (change_ == nullptr) return platform_.session.tell(event.value);
        screen_.lived(event.value);
    }

    void perform(const trace::Input&, std::size_t, TimePoint) {
        platform_.activity.touch();
        if (change_ != nullptr) screen_.touched();
    }

    void perform(const trace::Camera& event, std::size_t, TimePoint) {
        platform_.activity.setCamera(event.value);
    }

    void perform(const trace::Microphone& event, std::size_t, TimePoint) {
        platform_.activity.setMicrophone(event.value);
    }

    void perform(const trace::Action& event, std::size_t instant, TimePoint at) {
        const bool judges = std::holds_alternative<action::Pause>(event.value) ||
                            std::holds_alternative<action::Resume>(event.value);
        if (judges && clock_.now() == at) judgedByAction_ = instant;
        monitor_.ask(event.value);
    }

    const Stretch& stretch_;
    const Change* change_;
    std::size_t next_;
    std::size_t event_ = 0;
    std::optional<std::size_t> judgedByAction_;
    LogSilence silence_;
    RecalledClock clock_;
    Standing standing_;
    MemoryStore store_;
    Settings settings_;
    RecalledSignals signals_;
    RecalledTicks ticks_;
    StagedPlatform platform_;
    ImaginedScreen screen_;
    Monitor monitor_;
    std::vector<Outcome> outcomes_;
    Subscription phases_;
};

} // namespace

void Change::applyTo(Preferences& values) const {
    const auto found = values.find(setting);
    if (found == values.end()) return;
    if (setting != "keys") {
        found->second = value;
        return;
    }
    auto keys = meaning<std::vector<KeyDevice>>(found->second).value_or(std::vector<KeyDevice>{});
    for (KeyDevice& device : keys)
        if (device.id == idOf(key)) device.threshold = Dbm{std::get<double>(value)};
    found->second = trace::valueOf(keys);
}

std::vector<Outcome> judgedAnew(const Stretch& stretch, std::size_t from, std::size_t until,
                                const Change* change) {
    if (from >= stretch.instants.size()) return {};
    return Recalled(stretch, from, change).until(std::min(until, stretch.instants.size()));
}

} // namespace wegslot::history
