#include "history/linux/history_file.h"

#include "history/happening_text.h"
#include "history/linux/place.h"
#include "history/linux/schema.h"
#include "history/packed.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>
#include <utility>

namespace wegslot::history {
namespace {

namespace fs = std::filesystem;
using Milliseconds = std::chrono::milliseconds;

/// Who writes is done in a moment, or waits for a disk.
constexpr std::chrono::seconds patienceToRead{5};

/// By run and start.
using Minutes = std::map<std::pair<std::int64_t, TimePoint>, Minute>;

template <typename T>
T checked(Result<T> result) {
    if (!result) throw Fault{Fault::Kind::unusable, message("beschadigd")};
    return *std::move(result);
}

TimePoint instantOf(std::int64_t milliseconds) {
    // The minute in which an instant lies has to be one, too.
    constexpr std::int64_t last =
        std::chrono::floor<std::chrono::minutes>(TimePoint::max().time_since_epoch()) /
        Milliseconds{1};
    if (milliseconds < -last || milliseconds > last)
        throw Fault{Fault::Kind::unusable, message("beschadigd")};
    return TimePoint{Milliseconds{milliseconds}};
}

Nanoseconds between(TimePoint steady, TimePoint wall) {
    return instantOf(millisecondsOf(wall) - millisecondsOf(steady)).time_since_epoch();
}

/// The first millisecond that is not before it.
std::int64_t millisecondsFrom(TimePoint at) {
    return std::chrono::ceil<Milliseconds>(at.time_since_epoch()).count();
}

Row rowOf(std::int64_t number) {
    if (number < 1 || number > std::numeric_limits<Row>::max())
        throw Fault{Fault::Kind::unusable, message("beschadigd")};
    return static_cast<Row>(number);
}

void readMinutes(Database& database, TimePoint fromWall, TimePoint untilWall, Minutes& minutes) {
    Rows rows(database, "SELECT id, run, start, wall, judged, events FROM minutes"
                        " WHERE wall > ? AND wall < ?");
    Rows keys(database, "SELECT row, content FROM keys WHERE minute = ?");
    constexpr std::int64_t length = Minute::length / Milliseconds{1};
    for (rows.begin({millisecondsOf(fromWall) - length, millisecondsFrom(untilWall)});
         rows.next();) {
        Minute minute;
        minute.run = rows.number(1);
        minute.start = instantOf(rows.number(2));
        minute.wallOffset = between(minute.start, instantOf(rows.number(3)));
        minute.judged = checked(unpackedJudged(rows.bytes(4), minute.start));
        minute.events = checked(unpackedEvents(rows.bytes(5), minute.start));
        for (keys.begin({rows.number(0)}); keys.next();)
            minute.keys.emplace(rowOf(keys.number(0)),
                                checked(unpackedKey(keys.bytes(1), minute.start)));
        minutes.emplace(std::pair(minute.run, minute.start), std::move(minute));
    }
}

void readOpinions(Database& database, TimePoint fromWall, TimePoint untilWall, Minutes& minutes) {
    Rows rows(database, "SELECT run, at, wall, what FROM opinions"
                        " WHERE wall >= ? AND wall < ? ORDER BY at, rowid");
    for (rows.begin({millisecondsFrom(fromWall), millisecondsFrom(untilWall)}); rows.next();) {
        Event event{instantOf(rows.number(1)), checked(readHappening(rows.bytes(3)))};
        const TimePoint start = std::chrono::floor<std::chrono::minutes>(event.at);
        const auto [place, isNew] = minutes.try_emplace({rows.number(0), start});
        Minute& minute = place->second;
        if (isNew) {
            minute.run = rows.number(0);
            minute.start = start;
            minute.wallOffset = between(event.at, instantOf(rows.number(2)));
        }
        const auto behind = std::ranges::upper_bound(minute.events, event.at, {}, &Event::at);
        minute.events.insert(behind, std::move(event));
    }
}

} // namespace

Result<std::vector<Minute>> HistoryFile::read(const fs::path& file, TimePoint fromWall,
                                              TimePoint untilWall) {
    try {
        std::vector<Minute> all;
        auto database = openedAsItIs(file, patienceToRead);
        if (!database) return all;
        Minutes minutes;
        database->run("BEGIN"); // all of it as it is at one moment
        readMinutes(*database, fromWall, untilWall, minutes);
        readOpinions(*database, fromWall, untilWall, minutes);
        database->trust();
        for (auto& [place, minute] : minutes)
            all.push_back(std::move(minute));
        return all;
    } catch (const Fault& fault) {
        return Failure{message("Geschiedenis niet te lezen: %1: %2", {file.string(), fault.words})};
    }
}

Result<std::vector<Minute>> HistoryFile::readAll(const fs::path& file) {
    return read(file, TimePoint::min() + 2 * Minute::length, TimePoint::max() - 2 * Minute::length);
}

Result<std::optional<std::pair<TimePoint, TimePoint>>> HistoryFile::kept(const fs::path& file) {
    using Kept = std::optional<std::pair<TimePoint, TimePoint>>;
    try {
        auto database = openedAsItIs(file, patienceToRead);
        if (!database || database->number("SELECT count(*) FROM minutes") == 0) return Kept{};
        const auto first = instantOf(database->number("SELECT min(wall) FROM minutes"));
        const auto last = instantOf(database->number("SELECT max(wall) FROM minutes"));
        database->trust();
        return Kept{{first, last}};
    } catch (const Fault& fault) {
        return Failure{message("Geschiedenis niet te lezen: %1: %2", {file.string(), fault.words})};
    }
}

std::optional<Failure> HistoryFile::keepOpinion(const fs::path& file, std::int64_t run,
                                                const Event& opinion) {
    const auto failed = [&file](const Message& words) {
        return Failure{message("Geschiedenis niet aan te vullen: %1: %2", {file.string(), words})};
    };
    try {
        auto database = openedAsItIs(file, patienceToRead);
        if (!database) return failed(message("er is niets bewaard"));
        Transaction whole(*database);
        Rows last(*database,
                  "SELECT wall - start FROM minutes WHERE run = ? ORDER BY start DESC LIMIT 1");
        last.begin({run});
        if (!last.next()) return failed(message("er is niets bewaard"));
        const std::int64_t at = millisecondsOf(opinion.at);
        const std::int64_t ahead = millisecondsOf(instantOf(last.number(0)));
        const std::string what = written(opinion.what);
        database->run("INSERT INTO opinions(run, at, wall, what) VALUES(?, ?, ?, ?)",
                      {run, at, at + ahead, what});
        whole.commit();
        database->trust();
        return std::nullopt;
    } catch (const Fault& fault) {
        return failed(fault.words);
    }
}

std::optional<Failure> HistoryFile::remove(const fs::path& file) {
    try {
        removeAll(file);
        return std::nullopt;
    } catch (const Fault& fault) {
        return Failure{
            message("Geschiedenis niet te verwijderen: %1: %2", {file.string(), fault.words})};
    }
}

} // namespace wegslot::history
