// Gathers, minute by minute, what the judgement of the keys rests on and what comes of it. Wakes
// nobody: it looks when the monitor judges, and is told of what happens in between.
#pragma once

#include "history/history_store.h"
#include "history/noted_activity.h"
#include "monitor/monitor.h"
#include "platform/input_watch.h"
#include "scanner/scanner.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace wegslot::history {

class Keeper {
public:
    /// Everything must outlive the keeper.
    struct Surroundings {
        const Settings& settings;
        const Scanner& scanner;
        const Monitor& monitor;
        const Clock& clock;
        SessionEvents& session;
        NotedActivity& activity; ///< what the monitor asks
        std::function<Row(const Uuid& key)> rowOf;
        HistoryStore& store;
    };

    /// How often it tells anew how things stand, so that what is older can be forgotten.
    static constexpr Nanoseconds standingInterval = std::chrono::hours{1};

    /// How long it leaves a service alone that took `slowAnswer` or longer to tell of idle time:
    /// the judgement waits for it, and the history is not worth that each second.
    static constexpr Nanoseconds restraint = std::chrono::minutes{1};
    static constexpr Nanoseconds slowAnswer = std::chrono::milliseconds{50};

    /// To be made before the monitor judges for the first time; keeps nothing until it is told to.
    explicit Keeper(Surroundings surroundings);

    /// Hands over the minute so far.
    ~Keeper(); // NOLINT(bugprone-exception-escape)

    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;

    /// What was not kept meanwhile stays unknown.
    void setKeeping(bool keeps);

private:
    void followSettings();
    void judged(const KeyStates& states);
    void askForInput(TimePoint since);
    void phaseEntered(const Phase& next);
    void happened(Happening what);
    void happenedAt(TimePoint instant, Happening what);
    void answered(Happening what);
    [[nodiscard]] TimePoint beforeJudgement() const;
    [[nodiscard]] TimePoint afterJudgement() const;
    [[nodiscard]] TimePoint phaseInstant() const;
    void note(TimePoint at, Happening what);
    void beginMinute(TimePoint now);
    void tellStanding(TimePoint now);
    [[nodiscard]] PreferenceValue value(const auto& setting) const;
    [[nodiscard]] PreferenceValue value(const std::vector<KeyDevice>& keys) const;

    Surroundings around_;
    InputWatch inputs_;
    bool keeps_ = false;
    bool coreIsFresh_ = true; ///< nothing has been judged yet
    bool screenLocked_ = false;
    std::optional<Minute> minute_;
    TimePoint judgedAt_; ///< as it is kept
    TimePoint toldAt_;   ///< the last of what is kept
    TimePoint standingAt_;
    TimePoint asksAgainAt_; ///< for input
    std::map<Row, TimePoint> heardUntil_;
    std::vector<Subscription> subscriptions_;
};

} // namespace wegslot::history
