#include "tests/properties/invariants.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

constexpr Nanoseconds identificationTimeout = std::chrono::seconds{8};

// The next identification starts so long after the one before, without asking again.
constexpr Nanoseconds identificationPause = std::chrono::milliseconds{300};

const KeyDevice* find(const std::vector<KeyDevice>& keys, const Uuid& id) {
    for (const KeyDevice& key : keys)
        if (key.id == id) return &key;
    return nullptr;
}

bool isListenOnly(const std::vector<KeyDevice>& keys, const Uuid& id) {
    const KeyDevice* const key = find(keys, id);
    return key != nullptr && key->isApple == false;
}

bool isActive(const std::vector<KeyDevice>& keys, const Uuid& id) {
    const KeyDevice* const key = find(keys, id);
    return key != nullptr && key->isApple != false;
}

bool keysGone(LockRule rule, const KeyStates& states) {
    const auto away = std::ranges::count(states, KeyState::away, &KeyStates::value_type::second);
    return rule == LockRule::anyAway ? away > 0 : away == std::ssize(states);
}

bool keysNear(LockRule rule, const KeyStates& states) {
    const auto near = std::ranges::count(states, KeyState::near, &KeyStates::value_type::second);
    return rule == LockRule::anyAway ? near == std::ssize(states) : near > 0;
}

// The keys and the radio were looked at before a phase like this was chosen.
bool isJudged(const Phase& phase) {
    return is<phase::Present>(phase) || is<phase::Leaving>(phase) || is<phase::Snoozed>(phase) ||
           is<phase::Paused>(phase) || is<phase::Warning>(phase);
}

std::string number(const Uuid& id) { return "device " + std::to_string(id.bytes[15]); }

} // namespace

void Invariants::begins(Actor actor, const Circumstances& circumstances) {
    actor_ = actor;
    circumstances_ = circumstances;
}

void Invariants::happened(const Effect& effect) {
    if (const auto* const states = std::get_if<effect::StatesSet>(&effect))
        states_ = states->states;
    if (const auto* const set = std::get_if<effect::PhaseSet>(&effect)) phaseBecomes(set->phase);
    if (const auto* const logged = std::get_if<effect::Logged>(&effect))
        if (logged->message.starts_with("Status: ")) {
            check(!statusLine_, onePhaseOneLine, logged->message);
            statusLine_ = logged->message;
        }
    if (std::holds_alternative<effect::LockRequested>(effect)) {
        check(actor_ != Actor::other, lockOnlyAsked);
        if (actor_ == Actor::tick) tickLocks();
    }
}

void Invariants::ends(const KeyStates& states, bool panelShows) {
    check(!statusLine_, onePhaseOneLine, "a line without its phase");
    check(!panelShows || is<phase::Warning>(phase_), panelOnlyInWarning, text(phase_));
    if (actor_ != Actor::tick) return;

    const bool allHave = std::ranges::all_of(
        keys_, [&states](const KeyDevice& key) { return states.contains(key.id); });
    check(allHave && states.size() == keys_.size(), statesOfTheKeys, text(states));
    if (isJudged(phase_) && keysNear(circumstances_.rule, states)) nearSinceArmed_ = true;
}

void Invariants::monitorGone(int panels) { check(panels == 0, panelGoesWithMonitor); }

void Invariants::tickLocks() {
    check(nearSinceArmed_, lockOnlyAfterNear);
    check(keysGone(circumstances_.rule, states_), lockOnlyWhenGone, text(states_));
    check(!circumstances_.keepsOpen, noLockWhilePaused);
    if (!circumstances_.warningEnabled) return;
    check(panelDeadline_ && circumstances_.now >= *panelDeadline_, lockOnlyAfterCountdown);
}

void Invariants::phaseBecomes(const Phase& phase) {
    check(phase != phase_, onePhaseOneLine, text(phase));
    const bool silent =
        is<phase::Present>(phase) || is<phase::Leaving>(phase) || is<phase::Warning>(phase);
    const std::string beginning = "Status: " + std::string(name(phase));
    const bool told = statusLine_ && statusLine_->starts_with(beginning);
    check(silent ? !statusLine_ : told, onePhaseOneLine, text(phase));
    statusLine_.reset();

    // At the lock itself the phase is `locked` already: what the countdown was is kept.
    const auto* const warning = std::get_if<phase::Warning>(&phase);
    if (warning != nullptr) panelDeadline_ = warning->deadline;
    if (warning == nullptr && !is<phase::Locked>(phase)) panelDeadline_.reset();
    if (is<phase::WaitingForReturn>(phase)) nearSinceArmed_ = false;
    phase_ = phase;
}

void Invariants::keysChange(const std::vector<KeyDevice>& keys) {
    keysBefore_ = std::exchange(keys_, keys);
    connectedInChange_.clear();
    for (const KeyDevice& key : keys)
        if (isActive(keys, key.id)) untold_.insert(key.id);
    if (identification_ && untold_.contains(identification_->id)) identification_.reset();
}

void Invariants::keysChanged() {
    for (const Uuid& id : connectedInChange_)
        check(isActive(keys_, id), nobodyStaysConnected, number(id));
    keysBefore_.reset();
}

void Invariants::discovery(bool active, Nanoseconds elapsed) {
    if (discovery_ && !active) discoveryEnded_ = elapsed;
    discovery_ = active;
}

void Invariants::called(std::string_view operation, const Uuid& id, Nanoseconds elapsed) {
    if (operation == "connect") connects(id, elapsed);
    if (operation == "discoverServices" && !untold_.contains(id))
        if (!identification_ || identification_->id != id) identifies(id, elapsed);
    if (operation == "cancel") cancels(id, elapsed);
}

void Invariants::connects(const Uuid& id, Nanoseconds elapsed) {
    if (keysBefore_) return connectsInChange(id);
    if (isActive(keys_, id)) return;
    // Whoever is not to be connected as a key may still be identified, once and briefly.
    const bool isKey = isListenOnly(keys_, id);
    check(!isKey || ofMaker_.contains(id), listenOnly, number(id));
    if (!untold_.contains(id)) identifies(id, elapsed);
}

// The core hears first which keys are only listened to and then which keys there are. In between
// a key that leaves the list, one that was only listened to included, counts as one to connect:
// it may be connected there, but has to be let go before the change is over.
void Invariants::connectsInChange(const Uuid& id) {
    check(!isListenOnly(keys_, id), listenOnly, number(id));
    check(find(keys_, id) != nullptr || find(*keysBefore_, id) != nullptr, nobodyStaysConnected,
          number(id));
    check(connectedInChange_.insert(id).second, nobodyStaysConnected, number(id) + " twice");
}

void Invariants::identifies(const Uuid& id, Nanoseconds elapsed) {
    const bool wanted = discovery_ || elapsed - discoveryEnded_ <= identificationPause;
    check(wanted && ofMaker_.contains(id), identifiesWhenAsked, number(id));
    check(!identification_, oneIdentification, number(id));
    check(!failed_.contains(id), failedOnlyOnce, number(id));
    identification_ = Identification{id, elapsed};
}

void Invariants::cancels(const Uuid& id, Nanoseconds elapsed) {
    connectedInChange_.erase(id);
    if (!identification_ || identification_->id != id) return;
    check(elapsed - identification_->begun == identificationTimeout, shortIdentification,
          number(id));
    identification_.reset();
    failed_.insert(id);
}

void Invariants::identificationEnds(const Uuid& id, bool succeeded) {
    if (!identification_ || identification_->id != id) return;
    identification_.reset();
    if (!succeeded) failed_.insert(id);
}

void Invariants::identityMoves(const Uuid& from, const Uuid& to) {
    if (failed_.erase(from) > 0) failed_.insert(to);
    if (ofMaker_.contains(from)) ofMaker_.insert(to);
    if (untold_.contains(from)) untold_.insert(to);
    if (!identification_) return;
    if (identification_->id == from) identification_->id = to;
    if (untold_.contains(identification_->id)) identification_.reset();
}

void Invariants::timePasses(Nanoseconds elapsed) {
    check(!identification_ || elapsed - identification_->begun <= identificationTimeout,
          shortIdentification, "still running");
}

void Invariants::check(bool holds, std::string_view name, const std::string& detail) {
    if (holds) return;
    broken_.push_back(std::string(name) + (detail.empty() ? "" : " (" + detail + ")"));
}

} // namespace wegslot
