// The history of a running Wegslot: keeps for as long as the user wants, and knows which number
// each key has in it.
#pragma once

#include "history/keeper.h"
#include "history/linux/history_file.h"
#include "model/remembered.h"

#include <filesystem>
#include <functional>

namespace wegslot::history {

/// What somebody typed, as days that can be kept; what is no number counts as the usual.
[[nodiscard]] int daysToKeep(double typed);

class KeptHistory {
public:
    /// Everything must outlive it.
    struct Surroundings {
        const Settings& settings;
        const Scanner& scanner;
        const Monitor& monitor;
        const Clock& clock;
        SessionEvents& session;
        NotedActivity& activity;
        Remembered& remembered;
        std::filesystem::path file;
        std::function<int()> draw; ///< gives numbers of 1 and more, none twice but by chance
    };

    /// As the keeper: before the monitor judges for the first time.
    explicit KeptHistory(Surroundings surroundings);

private:
    [[nodiscard]] Row rowOf(const Uuid& key);
    void forgetRemovedKeys();

    Surroundings around_;
    HistoryFile file_;
    Keeper keeper_;
    Subscription days_;
};

} // namespace wegslot::history
