// One random life of the whole core in virtual time: devices that come and go, a user who walks,
// types and changes settings, a radio that answers or does not. The seed decides everything.
// After every event and every tick the core is compared with the oracle.
#pragma once

#include "tests/properties/invariants.h"
#include "tests/properties/oracle.h"
#include "tests/properties/plain_radio.h"
#include "tests/properties/stage.h"
#include "tests/support/dice.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class Life {
public:
    enum class Telling { no, yes };

    /// What may happen: anything, or what a trace can tell of. A trace counts in milliseconds and
    /// knows no sleep and nobody who sets the clock on the wall.
    enum class Scope { anything, traceable };

    explicit Life(std::uint64_t seed, Telling telling = Telling::no, Scope scope = Scope::anything);

    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    /// Lives until its end or its first fault.
    void run();

    /// The next event with all that comes before it. False at the end of the life.
    bool step();

    /// The application ends and the world goes on for a while.
    void end();

    /// What was found wrong; empty for a good life.
    [[nodiscard]] const std::vector<std::string>& faults() const { return faults_; }

    /// The last events and what came of them, when they were to be told.
    [[nodiscard]] const std::deque<std::string>& told() const { return told_; }

    /// How often each thing happened: phases entered and lines logged, by their first words.
    [[nodiscard]] const std::map<std::string, int>& tally() const { return tally_; }

    [[nodiscard]] Stage& stage() { return stage_; }

private:
    enum class Mood { atDesk, leaving, away, returning };

    struct Device {
        Uuid id;
        std::string name;
        std::optional<std::uint8_t> type;
        bool carried = false; ///< goes where the user goes
        int offset = 0;       ///< dB weaker than the place it is at
        Nanoseconds silentUntil{0};
    };

    /// Something that will come of what the core did.
    struct Answer {
        std::string_view operation;
        Uuid id;
    };

    struct Kind {
        std::string_view name;
        unsigned weight;
        void (Life::*happens)();
    };

    using Expectation = std::function<oracle::Outcome(oracle::State, const oracle::Inputs&)>;

    // Time and comparison: life.cpp.
    void settleIn();
    [[nodiscard]] Nanoseconds nextEventAt();
    void passTo(Nanoseconds elapsed);
    void tick();
    /// `act` on the core ought to have the outcome that `expected` gives for the inputs of now.
    void compare(Invariants::Actor actor, const std::function<void()>& act,
                 const Expectation& expected);
    /// `act` ought to have no effect that the monitor's world can see.
    void undisturbed(const std::function<void()>& act);
    /// What came of `act`.
    [[nodiscard]] Effects acted(Invariants::Actor actor, const std::function<void()>& act);
    void match(const Effects& effects, const Effects& expected);
    void compareLists();
    void readChoices();
    [[nodiscard]] oracle::Inputs inputs() const;
    [[nodiscard]] Invariants::Circumstances circumstances() const;
    [[nodiscard]] std::string radioText() const;
    void fault(const std::string& what);
    void tell(const std::string& what);
    void told(std::string line);

    // What may happen: life_events.cpp.
    void happen();
    void live();
    void hear();
    void hearKey();
    void hearDevice(Device& device);
    void signalRead();
    void radioChanges();
    void setRadio(CentralState state, CentralAuthorization authorization);
    void screenLocks();
    void screenUnlocks();
    void touch();
    void camera();
    void microphone();
    void pause();
    void resume();
    void panelCancelled();
    void cancelWarning();
    void lockNow();
    void ask();
    void wallClockSteps();
    void sleeps();

    // What the user may choose: life_settings.cpp.
    void enabledAssigned();
    void keysReplaced();
    void keyAdded();
    void keyRemoved();
    void thresholdAssigned();
    void ruleAssigned();
    void delayAssigned();
    void timeoutAssigned();
    void warningAssigned();
    void warningSecondsAssigned();
    void meetingsAssigned();
    void activityAssigned();
    void othersAssigned();
    void discoverySwitched();
    void changeKeys(const std::function<void()>& change);
    [[nodiscard]] std::vector<KeyDevice> randomKeys();
    [[nodiscard]] Seconds randomDuration(double usual);

    // What the radio answers: life_radio.cpp.
    void expectAnswer(std::string_view operation, const Uuid& id);
    void answer(const Answer& answer);
    void answerConnect(const Uuid& id);
    void answerServices(const Uuid& id);
    void answerCharacteristics(const Uuid& id);
    void answerValue(const Uuid& id);
    /// The connection failed or was lost: a key has to be connected again.
    void reportLoss(const Uuid& id, const std::function<void()>& report);
    void unaskedReport();
    void identityLearned();
    [[nodiscard]] bool isForsaken(const Uuid& id);
    void expectKeysConnected();
    void expectRenewed(const Uuid& id);
    [[nodiscard]] Device& someDevice();
    [[nodiscard]] Device& deviceOf(const Uuid& id);
    [[nodiscard]] int strengthOf(const Device& device);

    Dice dice_;
    Telling telling_;
    Scope scope_;
    Stage stage_;
    Invariants invariants_;
    oracle::State state_;
    oracle::Choices choices_;
    oracle::PlainRadio radio_;
    CentralState radioState_ = CentralState::unknown;
    CentralAuthorization authorization_ = CentralAuthorization::allowedAlways;
    bool camera_ = false;
    std::optional<std::string> microphone_;
    std::optional<TimePoint> lastInput_;

    std::vector<Device> devices_;
    std::vector<Kind> kinds_;
    Mood mood_ = Mood::atDesk;
    Nanoseconds moodUntil_{0};
    double place_ = -50; ///< dBm of a device where the user is
    Nanoseconds end_{0};
    Nanoseconds monitorMade_{0};
    std::int64_t ticks_ = 0;
    std::multimap<Nanoseconds, Answer> agenda_;
    Nanoseconds nextEvent_{0};
    std::map<Uuid, Nanoseconds> lostAt_;
    bool ended_ = false;

    std::vector<std::string> faults_;
    std::deque<std::string> told_;
    std::map<std::string, int> tally_;
    Subscription keysSubscription_;
};

} // namespace wegslot
