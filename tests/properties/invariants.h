// What must hold in every life, whatever the oracle says. It is told of each thing as it happens
// and keeps what it found broken, by name.
#pragma once

#include "model/key_device.h"
#include "model/lock_rule.h"
#include "tests/properties/effect.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class Invariants {
public:
    /// The names of what is checked.
    static constexpr std::string_view lockOnlyAfterNear =
        "the tick locks only after the keys were near since it was last armed";
    static constexpr std::string_view lockOnlyWhenGone =
        "the tick locks only when the keys are gone";
    static constexpr std::string_view lockOnlyAfterCountdown =
        "the tick locks only at the end of the countdown, if one is wanted";
    static constexpr std::string_view noLockWhilePaused =
        "the tick does not lock while something keeps the screen open";
    static constexpr std::string_view lockOnlyAsked = "only a tick or a person asks for a lock";
    static constexpr std::string_view panelOnlyInWarning = "the panel shows only in a warning";
    static constexpr std::string_view panelGoesWithMonitor = "no panel outlives its monitor";
    static constexpr std::string_view onePhaseOneLine =
        "a phase is assigned when it differs, and told once unless it comes in silence";
    static constexpr std::string_view statesOfTheKeys = "after a tick exactly the keys have states";
    static constexpr std::string_view identifiesWhenAsked =
        "only devices of the maker are identified, and only while that is wanted";
    static constexpr std::string_view oneIdentification = "one device is identified at a time";
    static constexpr std::string_view shortIdentification =
        "an identification ends with a report or after 8 s";
    static constexpr std::string_view failedOnlyOnce = "a device that failed is not tried again";
    static constexpr std::string_view listenOnly =
        "a key that is only listened to is not connected";
    static constexpr std::string_view nobodyStaysConnected =
        "who is no key any more is let go within the change of the list";

    /// Who acts when something happens.
    enum class Actor { tick, person, other };

    /// What a lock depends on, as it is while the event lasts.
    struct Circumstances {
        TimePoint now;
        LockRule rule = LockRule::allAway;
        bool warningEnabled = true;
        bool keepsOpen = false; ///< input, a camera or a microphone that counts
    };

    void begins(Actor actor, const Circumstances& circumstances);
    void happened(const Effect& effect);
    /// The event that began is over.
    void ends(const KeyStates& states, bool panelShows);
    void monitorGone(int panels);

    /// The list of keys is about to be `keys`: the core is told in between.
    void keysChange(const std::vector<KeyDevice>& keys);
    void keysChanged();

    /// The device has advertised itself as one of the maker's.
    void heardOfMaker(const Uuid& id) { ofMaker_.insert(id); }

    /// Identification is wanted or not, from now on.
    void discovery(bool active, Nanoseconds elapsed);
    /// The core called the radio about a device.
    void called(std::string_view operation, const Uuid& id, Nanoseconds elapsed);
    /// A report that ends an identification of `id`, if there is one, is about to come.
    void identificationEnds(const Uuid& id, bool succeeded);
    /// `from` is about to turn out to be `to`.
    void identityMoves(const Uuid& from, const Uuid& to);
    void timePasses(Nanoseconds elapsed);

    /// The names of what did not hold, each with what is known of it.
    [[nodiscard]] const std::vector<std::string>& broken() const { return broken_; }

private:
    struct Identification {
        Uuid id;
        Nanoseconds begun{0};
    };

    void check(bool holds, std::string_view name, const std::string& detail = {});
    void tickLocks();
    void phaseBecomes(const Phase& phase);
    void connects(const Uuid& id, Nanoseconds elapsed);
    void connectsInChange(const Uuid& id);
    void identifies(const Uuid& id, Nanoseconds elapsed);
    void cancels(const Uuid& id, Nanoseconds elapsed);

    std::vector<std::string> broken_;

    Actor actor_ = Actor::other;
    Circumstances circumstances_;
    Phase phase_ = phase::WaitingForReturn{};
    KeyStates states_;
    bool nearSinceArmed_ = false;
    std::optional<TimePoint> panelDeadline_; ///< of the countdown that runs
    std::optional<std::string> statusLine_;  ///< told, its phase not assigned yet

    std::vector<KeyDevice> keys_;
    std::optional<std::vector<KeyDevice>> keysBefore_; ///< while the list changes
    std::set<Uuid> connectedInChange_;

    /// Keys that may be connected at any time, now or before: their identification looks like
    /// any other connection.
    std::set<Uuid> untold_;
    std::set<Uuid> ofMaker_;
    bool discovery_ = false;
    Nanoseconds discoveryEnded_{-std::chrono::hours{1}};
    std::optional<Identification> identification_;
    std::set<Uuid> failed_;
};

} // namespace wegslot
