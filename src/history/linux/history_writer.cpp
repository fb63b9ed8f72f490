#include "history/linux/history_writer.h"

#include "history/linux/place.h"
#include "history/linux/schema.h"
#include "history/packed.h"
#include "log/log.h"

#include <utility>

namespace wegslot::history {
namespace {

namespace fs = std::filesystem;

/// Who adds an opinion is done in a moment.
constexpr std::chrono::seconds patienceToWrite{10};

TimePoint wallOf(const Minute& minute) { return minute.start + minute.wallOffset; }

} // namespace

HistoryWriter::HistoryWriter(fs::path file) : file_(std::move(file)) {}

std::optional<Fault> HistoryWriter::faultOf(const Step& step) {
    try {
        step();
        return std::nullopt;
    } catch (const Fault& fault) {
        database_.reset();
        return fault;
    }
}

void HistoryWriter::setDays(int days) {
    days_ = days;
    tidiesAgainAt_ = TimePoint::min();
    if (days_ <= 0) clear();
}

void HistoryWriter::clear() {
    database_.reset();
    tooOld_.reset();
    triesAgainAt_ = TimePoint::min();
    if (const auto fault = faultOf([this] { removeAll(file_); }))
        Log::write("Geschiedenis kan niet worden verwijderd: " + file_.string() + ": " +
                   fault->words.builtIn());
}

void HistoryWriter::keep(const Minute& minute) {
    if (days_ <= 0 || minute.start < triesAgainAt_) return;
    const Step writing = [&] { write(minute); };
    auto fault = faultOf(writing);
    if (fault && fault->kind == Fault::Kind::unusable)
        fault = faultOf([&] {
            beginAnew(*fault);
            writing();
        });
    if (fault) return giveUp(*fault, minute.start);

    if (trouble_) Log::write("Geschiedenis wordt weer bewaard: " + file_.string());
    trouble_.reset();
    if (minute.start < tidiesAgainAt_) return;
    tidiesAgainAt_ = later(minute.start, interval);
    const auto today = std::chrono::floor<std::chrono::days>(wallOf(minute));
    tooOld_ = millisecondsOf(today - std::chrono::days{days_});
}

void HistoryWriter::beginAnew(const Fault& fault) {
    setAside(file_);
    Log::write("Geschiedenis onbruikbaar en opzij gezet als " + asideOf(file_).string() + ": " +
               fault.words.builtIn());
}

void HistoryWriter::giveUp(const Fault& fault, TimePoint now) {
    triesAgainAt_ = later(now, interval);
    if (trouble_ == fault.words) return;
    trouble_ = fault.words;
    Log::write("Geschiedenis kan niet worden bewaard: " + file_.string() + ": " +
               fault.words.builtIn());
}

void HistoryWriter::write(const Minute& minute) {
    // Somebody may have moved or deleted it.
    if (database_ && database_->hasMoved()) database_.reset();
    if (!database_) database_ = openedToWrite(file_, patienceToWrite);
    Database& database = *database_;

    Transaction whole(database);
    const std::int64_t run =
        run_ ? *run_ : database.number("SELECT coalesce(max(run), 0) + 1 FROM minutes");
    const std::int64_t start = millisecondsOf(minute.start);
    database.run("DELETE FROM minutes WHERE run = ? AND start = ?", {run, start});
    const std::string judged = packed(minute.judged, minute.start);
    const std::string events = packed(minute.events, minute.start);
    database.run("INSERT INTO minutes(run, start, wall, judged, events) VALUES(?, ?, ?, ?, ?)",
                 {run, start, millisecondsOf(wallOf(minute)), judged, events});
    const std::int64_t id = database.lastInserted();
    for (const auto& [row, key] : minute.keys) {
        const std::string content = packed(key, minute.start);
        database.run("INSERT INTO keys(minute, row, content) VALUES(?, ?, ?)", {id, row, content});
    }
    whole.commit();
    run_ = run;
    database.rest();
}

bool HistoryWriter::removeOld() {
    if (!tooOld_ || !database_) return false;
    bool isDone = true;
    // What stands in the way is told when the next minute is kept.
    const auto ignored = faultOf([&] {
        Transaction some(*database_);
        database_->run("DELETE FROM opinions WHERE wall < ?", {*tooOld_});
        database_->run("DELETE FROM minutes WHERE id IN"
                       " (SELECT id FROM minutes WHERE wall < ? ORDER BY wall LIMIT 60)",
                       {*tooOld_});
        isDone = database_->changes() == 0;
        some.commit();
        database_->run("PRAGMA incremental_vacuum");
        database_->rest();
    });
    if (isDone || ignored) tooOld_.reset();
    return tooOld_.has_value();
}

} // namespace wegslot::history
