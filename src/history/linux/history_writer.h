// Writes the history, on a thread where it may wait for the disk. What it is handed says what time
// it is: it has no clock and does nothing by itself. What cannot be done the log says, once for
// each reason; nobody else is told.
#pragma once

#include "history/linux/database.h"
#include "history/minute.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace wegslot::history {

class HistoryWriter {
public:
    /// After a fault nothing is kept for so long, and what is too old is looked for as seldom.
    static constexpr std::chrono::hours interval{1};

    /// Nothing is done before it is handed something.
    explicit HistoryWriter(std::filesystem::path file);

    /// How many whole days before that of the last minute are kept; 0: none, nor any file.
    void setDays(int days);

    void keep(const Minute& minute);

    /// Removes some of what is too old; true while there may be more.
    bool removeOld();

    /// Removes all, and begins anew with the next minute.
    void clear();

private:
    using Step = std::function<void()>;

    void write(const Minute& minute);
    void beginAnew(const Fault& fault);
    void giveUp(const Fault& fault, TimePoint now);
    [[nodiscard]] std::optional<Fault> faultOf(const Step& step);

    const std::filesystem::path file_;
    int days_ = 0;
    std::optional<Database> database_;
    std::optional<std::int64_t> run_;
    TimePoint triesAgainAt_ = TimePoint::min();
    std::optional<Message> trouble_;
    TimePoint tidiesAgainAt_ = TimePoint::min();
    std::optional<std::int64_t> tooOld_; ///< what was before it; nothing when that is gone
};

} // namespace wegslot::history
