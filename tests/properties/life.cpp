#include "tests/properties/life.h"

#include "tests/support/world.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

using namespace std::chrono_literals;

// Enough to see what led to a fault.
constexpr std::size_t toldLines = 120;

constexpr Nanoseconds tickInterval = 1s;

std::string seconds(Nanoseconds elapsed) {
    return std::to_string(static_cast<double>(elapsed.count()) / 1e9);
}

std::string firstWords(const Effect& effect) {
    if (const auto* const set = std::get_if<effect::PhaseSet>(&effect))
        return "phase " + std::string(name(set->phase));
    if (const auto* const logged = std::get_if<effect::Logged>(&effect))
        return "log " + logged->message.substr(0, logged->message.find_first_of(" :")) +
               (logged->message.ends_with("pauze") ? " geannuleerd" : "");
    if (std::holds_alternative<effect::LockRequested>(effect)) return "lock";
    return {};
}

} // namespace

Life::Life(std::uint64_t seed, Telling telling, Scope scope)
    : dice_(seed),
      telling_(telling),
      scope_(scope),
      stage_(World::start +
             Nanoseconds{scope == Scope::traceable ? 0 : dice_.below(1'000'000'000)}) {
    stage_.onEffect = [this](const Effect& effect) {
        invariants_.happened(effect);
        if (const auto words = firstWords(effect); !words.empty()) ++tally_[words];
        if (std::holds_alternative<effect::LockRequested>(effect) && dice_.chance(75))
            agenda_.emplace(stage_.elapsed() + dice_.between(50, 6000) * 1ms,
                            Answer{"screenLocks", Uuid{}});
    };
    stage_.onCall = [this](std::string_view operation, const Uuid& id) {
        if (telling_ == Telling::yes)
            told("    radio " + std::string(operation) + " " + std::to_string(id.bytes[15]));
        ++tally_["radio " + std::string(operation)];
        invariants_.called(operation, id, stage_.elapsed());
        expectAnswer(operation, id);
    };
    settleIn();
}

void Life::run() {
    while (faults_.empty() && step()) {
    }
    if (faults_.empty()) end();
}

bool Life::step() {
    const Nanoseconds at = nextEventAt();
    if (at > end_ || !faults_.empty()) return false;
    passTo(at);
    if (!faults_.empty()) return false;
    if (!agenda_.empty() && agenda_.begin()->first <= at) {
        const Answer due = agenda_.begin()->second;
        agenda_.erase(agenda_.begin());
        answer(due);
        return true;
    }
    happen();
    switch (dice_.between(0, 19)) {
    case 0: // at the same instant
        break;
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
    case 6: // on the beat of the ticks, so that the bounds of the rules are met exactly
        nextEvent_ = monitorMade_ + (ticks_ + 1) * tickInterval;
        break;
    case 7:
    case 8:
    case 9:
    case 10:
    case 11:
        nextEvent_ = at + dice_.between(1, 10) * 100ms;
        break;
    default:
        nextEvent_ = at + Nanoseconds{dice_.below(700'000'000)};
    }
    if (scope_ == Scope::traceable) nextEvent_ -= nextEvent_ % 1ms;
    return true;
}

void Life::end() {
    stage_.effects.clear();
    stage_.endModel();
    keysSubscription_.reset();
    ended_ = true;
    invariants_.monitorGone(stage_.panels);
    if (stage_.time.pending() != 0) fault("calls are armed after the model has gone");

    // The world does not know that the application ended.
    if (stage_.cancel) stage_.cancel();
    for (const Device& device : devices_) {
        stage_.central.advertise({.id = device.id, .rssi = -50});
        stage_.central.connected(device.id);
        stage_.central.rssiRead(device.id, -50);
        stage_.central.disconnected(device.id);
    }
    stage_.central.setState(CentralState::poweredOn);
    stage_.session.tell(SessionEvent::locked);
    stage_.session.tell(SessionEvent::unlocked);
    stage_.time.advance(1h);
    if (stage_.cancel) stage_.cancel();
    if (!stage_.effects.empty()) fault("after the end: " + text(stage_.effects.front()));
    if (!invariants_.broken().empty()) fault(invariants_.broken().front());
}

Nanoseconds Life::nextEventAt() {
    return agenda_.empty() ? nextEvent_ : std::min(nextEvent_, agenda_.begin()->first);
}

void Life::passTo(Nanoseconds elapsed) {
    for (;;) {
        const Nanoseconds due = monitorMade_ + (ticks_ + 1) * tickInterval;
        if (due > elapsed) break;
        tick();
        if (!faults_.empty()) return;
    }
    stage_.time.advance(elapsed - stage_.elapsed());
    invariants_.timePasses(stage_.elapsed());
}

void Life::tick() {
    ++ticks_;
    if (telling_ == Telling::yes) told("tick " + std::to_string(ticks_));
    const Nanoseconds gap = monitorMade_ + ticks_ * tickInterval - stage_.elapsed();
    // The tick comes first of all that is due at its instant but for the poll of the radio,
    // which changes nothing that it looks at.
    stage_.time.advance(gap - 1ns);
    compare(
        Invariants::Actor::tick, [this] { stage_.time.advance(1ns); },
        [](oracle::State state, const oracle::Inputs& now) {
            return oracle::tick(std::move(state), now);
        });
    compareLists();
}

void Life::compare(Invariants::Actor actor, const std::function<void()>& act,
                   const Expectation& expected) {
    const Effects effects = acted(actor, act);
    oracle::Outcome outcome = expected(std::move(state_), inputs());
    state_ = std::move(outcome.state);
    match(effects, outcome.effects);
}

void Life::undisturbed(const std::function<void()>& act) {
    match(acted(Invariants::Actor::other, act), {});
}

Effects Life::acted(Invariants::Actor actor, const std::function<void()>& act) {
    invariants_.begins(actor, circumstances());
    act();
    if (actor == Invariants::Actor::tick) radio_.refresh(stage_.time.now());
    invariants_.ends(stage_.monitor().keyStates().get(), stage_.panelShows);
    invariants_.begins(Invariants::Actor::other, {});
    // Whatever happens from here until the next event is found at that event.
    return std::exchange(stage_.effects, {});
}

void Life::match(const Effects& effects, const Effects& expected) {
    if (telling_ == Telling::yes)
        for (const Effect& effect : effects)
            if (!std::holds_alternative<effect::StatesSet>(effect)) told("    " + text(effect));
    if (!invariants_.broken().empty()) return fault(invariants_.broken().front());
    if (effects != expected) {
        std::string both = "the core and the oracle differ\n  core:";
        for (const Effect& effect : effects)
            both += "\n    " + text(effect);
        both += "\n  oracle:";
        for (const Effect& effect : expected)
            both += "\n    " + text(effect);
        return fault(both);
    }
    const Monitor& monitor = stage_.monitor();
    if (monitor.phase().get() != state_.phase) return fault("the phases differ");
    if (monitor.keyStates().get() != state_.keyStates) return fault("the key states differ");
    if (monitor.snoozeIsManual().get() != state_.snoozeIsManual)
        return fault("the snooze is manual for one of them only");
}

void Life::compareLists() {
    std::vector<oracle::PlainRadio::Listed> published;
    for (const SeenDevice& device : stage_.scanner().snapshot().get()) {
        published.push_back({device.id, std::nullopt, device.lastSeen});
        if (device.rssi) published.back().strength = device.rssi->value;
    }
    if (published != radio_.list(stage_.time.now())) fault("the lists of nearby devices differ");
}

void Life::readChoices() {
    const Settings& settings = stage_.settings();
    choices_ = {.enabled = settings.enabled.get(),
                .keys = settings.keys.get(),
                .rule = settings.rule.get(),
                .awayDelay = settings.awayDelay.get(),
                .lostTimeout = settings.lostTimeout.get(),
                .warningEnabled = settings.warningEnabled.get(),
                .warningSeconds = settings.warningSeconds.get(),
                .pauseDuringMeetings = settings.pauseDuringMeetings.get(),
                .pauseWhileActive = settings.pauseWhileActive.get()};
    radio_.includesOthers = settings.showOtherDevices.get();
    radio_.watched.clear();
    for (const KeyDevice& key : choices_.keys)
        radio_.watched.insert(key.id);
}

oracle::Inputs Life::inputs() const {
    const TimePoint now = stage_.time.now();
    oracle::Inputs inputs{.now = now,
                          .wallAhead = stage_.wallAhead(),
                          .choices = choices_,
                          .radioOn = radioState_ == CentralState::poweredOn,
                          .radioText = radioText(),
                          .idle = ActivityDetector::unknownIdle,
                          .camera = camera_,
                          .microphone = microphone_};
    for (const KeyDevice& key : choices_.keys)
        inputs.heard.push_back({radio_.lastSeen(key.id), radio_.strength(key.id, 5s, now)});
    if (lastInput_) inputs.idle = now - *lastInput_;
    return inputs;
}

Invariants::Circumstances Life::circumstances() const {
    // A tick is at most one nanosecond ahead.
    const TimePoint now = stage_.time.now();
    const bool touched = lastInput_ && now + 1ns - *lastInput_ < 10s;
    return {.now = now + 1ns,
            .rule = choices_.rule,
            .warningEnabled = choices_.warningEnabled,
            .keepsOpen = (choices_.pauseWhileActive && touched) ||
                         (choices_.pauseDuringMeetings && (camera_ || microphone_))};
}

std::string Life::radioText() const {
    constexpr auto noAccess = "Geef Wegslot Bluetooth-toegang in Systeeminstellingen";
    if (authorization_ == CentralAuthorization::restricted) return noAccess;
    if (authorization_ == CentralAuthorization::denied) return noAccess;
    if (radioState_ == CentralState::unsupported) return "Bluetooth LE wordt niet ondersteund";
    if (radioState_ == CentralState::unauthorized) return noAccess;
    if (radioState_ == CentralState::poweredOff) return "Bluetooth staat uit";
    if (radioState_ == CentralState::poweredOn) return "Bluetooth staat aan";
    return "Bluetooth wordt gestart";
}

void Life::fault(const std::string& what) {
    faults_.push_back("at " + seconds(stage_.elapsed()) + " s: " + what);
}

void Life::tell(const std::string& what) {
    if (telling_ == Telling::yes) told(seconds(stage_.elapsed()) + " " + what);
}

void Life::told(std::string line) {
    told_.push_back(std::move(line));
    if (told_.size() > toldLines) told_.pop_front();
}

} // namespace wegslot
