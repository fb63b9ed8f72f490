// The history as a file, for this user alone. A thread of its own writes: it sleeps until it is
// handed something, and whoever hands it something never waits. Whatever goes wrong with the disk,
// the log says so and the history has a gap.
#pragma once

#include "base/linux/line_threads.h"
#include "base/result.h"
#include "history/history_store.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace wegslot::history {

class HistoryFile final : public HistoryStore {
public:
    static constexpr int mostDays = 30;

    /// So many minutes wait for a disk; of more the oldest goes.
    static constexpr std::size_t capacity = 10;

    /// `days` as in `setDays`. The folder is made when there is something to keep.
    HistoryFile(std::filesystem::path file, int days);

    /// Waits until all is written, for a second at most; a disk that hangs is left behind.
    ~HistoryFile() override;

    /// "wegslot/history.db" under the user's folder for state.
    [[nodiscard]] static std::filesystem::path pathUnder(const std::filesystem::path& state);

    /// Removes all that was kept there, also while another process keeps it, which begins anew.
    [[nodiscard]] static std::optional<Failure> remove(const std::filesystem::path& file);

    /// All that one of these keeps is one run: one more than the highest that the file had, instead
    /// of what the minute says. Instants are kept to the millisecond, rounded down.
    void keep(Minute minute) override;

    /// Keeps whole days, as many as there are before that of the last minute, 0 to 30 (by the clock
    /// on the wall, in UTC). 0 keeps nothing and removes what there is.
    void setDays(int days);

    /// Removes all that was kept, and begins anew.
    void clear();

    /// What was kept of the minutes that touch the time from `fromWall` until before `untilWall`
    /// by the clock on the wall, in order of run, then time; with the opinions of that time, each
    /// in its minute, which may hold nothing else. Nothing kept is no failure. May be called
    /// anywhere, in another process too; waits for the disk.
    [[nodiscard]] static Result<std::vector<Minute>> read(const std::filesystem::path& file,
                                                          TimePoint fromWall, TimePoint untilWall);

    /// All of it.
    [[nodiscard]] static Result<std::vector<Minute>> readAll(const std::filesystem::path& file);

    /// The first and the last instant of what is kept, by the clock on the wall; nothing where
    /// nothing is.
    [[nodiscard]] static Result<std::optional<std::pair<TimePoint, TimePoint>>>
    kept(const std::filesystem::path& file);

    /// Adds to a run what is said of it, now or later: its instant is that of the run's own clock.
    /// Otherwise as `read`. Where nothing of the run was kept, a failure.
    [[nodiscard]] static std::optional<Failure> keepOpinion(const std::filesystem::path& file,
                                                            std::int64_t run, const Event& opinion);

private:
    struct Orders;

    void wake();

    std::shared_ptr<Orders> orders_;
    LineThreads threads_;
    LineQueue bell_; ///< a line, whatever it says, has the thread look for orders
};

} // namespace wegslot::history
