#include "history/linux/schema.h"

#include "history/linux/place.h"

#include <optional>
#include <string>
#include <utility>

namespace wegslot::history {
namespace {

// "WEGS", and what this program can read.
constexpr std::int64_t applicationId = 0x57454753;
constexpr std::int64_t version = 1;

// Instants in milliseconds. What is old goes by the clock on the wall.
constexpr const char* tables[] = {
    "CREATE TABLE minutes(id INTEGER PRIMARY KEY, run INTEGER NOT NULL, start INTEGER NOT NULL,"
    " wall INTEGER NOT NULL, judged BLOB NOT NULL, events BLOB NOT NULL, UNIQUE(run, start))",
    "CREATE INDEX minutes_by_wall ON minutes(wall)",
    "CREATE TABLE keys(minute INTEGER NOT NULL REFERENCES minutes(id) ON DELETE CASCADE,"
    " row INTEGER NOT NULL, content BLOB NOT NULL, UNIQUE(minute, row))",
    // What others than the one that runs add, in no minute so that none takes it with it.
    "CREATE TABLE opinions(run INTEGER NOT NULL, at INTEGER NOT NULL, wall INTEGER NOT NULL,"
    " what BLOB NOT NULL)",
};

[[noreturn]] void fail(Message words) { throw Fault{Fault::Kind::unusable, std::move(words)}; }

/// False for a file with nothing in it. What is anything else is a fault.
bool holdsHistory(Database& database) {
    database.run("BEGIN"); // it may be at work, so all of this is of one moment
    const auto id = database.number("PRAGMA application_id");
    const auto written = database.number("PRAGMA user_version");
    const auto parts = database.number("SELECT count(*) FROM sqlite_schema");
    database.run("COMMIT");
    if (id == 0 && written == 0 && parts == 0) return false;
    if (id != applicationId) fail(message("geen geschiedenis van Wegslot"));
    if (written > version) fail(message("van een nieuwere Wegslot"));
    if (written != version) fail(message("beschadigd"));
    return true;
}

void create(Database& database) {
    // Before there is anything in it. Twice as large as usual: of a key's minutes at twelve reports
    // a second a page holds three then, and one of the usual size would hold one.
    database.run("PRAGMA page_size = 8192");
    database.run("PRAGMA auto_vacuum = INCREMENTAL");
    database.run("PRAGMA journal_mode = WAL");
    Transaction whole(database);
    for (const char* const statement : tables)
        database.run(statement);
    database.run(("PRAGMA application_id = " + std::to_string(applicationId)).c_str());
    database.run(("PRAGMA user_version = " + std::to_string(version)).c_str());
    whole.commit();
}

void lookThrough(Database& database) {
    Rows check(database, "PRAGMA quick_check(1)");
    check.begin();
    if (!check.next() || check.bytes(0) != "ok") fail(message("beschadigd"));
}

} // namespace

Database openedToWrite(const std::filesystem::path& file, std::chrono::milliseconds patience) {
    const std::filesystem::path path = madeReady(file);
    auto database = openedAsItIs(path, patience);
    if (!database) {
        make(path, [patience](const std::filesystem::path& fresh) {
            Database begun(fresh, patience);
            create(begun);
            begun.trust();
        });
        database.emplace(path, patience);
    }
    lookThrough(*database);
    database->trust();
    // What is written goes over into the file after half a megabyte, and is no longer then.
    database->run("PRAGMA wal_autocheckpoint = 64");
    database->run("PRAGMA journal_size_limit = 524288");
    return *std::move(database);
}

std::optional<Database> openedAsItIs(const std::filesystem::path& file,
                                     std::chrono::milliseconds patience) {
    const auto path = existing(file);
    if (!path) return std::nullopt;
    try {
        Database database(*path, patience);
        if (!holdsHistory(database)) return std::nullopt;
        return database;
    } catch (const Fault&) {
        if (!existing(file)) return std::nullopt; // it was removed meanwhile
        throw;
    }
}

} // namespace wegslot::history
