#include "history/linux/database.h"

#include "base/system_error.h"

#include <cerrno>
#include <string>

#include <sqlite3.h>

namespace wegslot::history {
namespace {

/// `error`: as in errno, since the call began.
Fault faultOf(sqlite3* connection, int code, int error = 0) {
    constexpr int kindOfError = 0xFF; // above it stands what the library did at that moment
    const auto obstacle = [](Message words) {
        return Fault{Fault::Kind::obstacle, std::move(words)};
    };
    switch (code & kindOfError) {
    case SQLITE_ERROR: // a table that is missing
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return {Fault::Kind::unusable, message("beschadigd")};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return obstacle(message("een ander programma is ermee bezig"));
    case SQLITE_FULL:
        return obstacle(systemError(ENOSPC));
    case SQLITE_READONLY:
        return obstacle(systemError(EROFS));
    default:
        break;
    }
    // The library knows the system's reason for what it could not open. Of what it could not read
    // or write it has none, so that of the last call that failed meanwhile has to do.
    const bool isOfDisk = (code & kindOfError) == SQLITE_IOERR;
    int number = connection == nullptr ? 0 : sqlite3_system_errno(connection);
    if (number == 0 && isOfDisk) number = error;
    if (number != 0) return obstacle(systemError(number));
    return obstacle(
        quoted(sqlite3_errstr(code), message("fout %1 van SQLite", {std::to_string(code)})));
}

void expect(sqlite3* connection, int code) {
    if (code != SQLITE_OK) throw faultOf(connection, code);
}

struct Bind {
    sqlite3_stmt* statement;
    int place;

    int operator()(std::int64_t number) const {
        return sqlite3_bind_int64(statement, place, number);
    }
    int operator()(std::string_view bytes) const {
        // Without an address it would be no value at all.
        return sqlite3_bind_blob64(statement, place, bytes.empty() ? "" : bytes.data(),
                                   bytes.size(), SQLITE_STATIC);
    }
};

} // namespace

void Database::Close::operator()(sqlite3* connection) const { sqlite3_close(connection); }

void Rows::End::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Database::Database(const std::filesystem::path& file, std::chrono::milliseconds patience) {
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2(file.c_str(), &connection,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX |
                                         SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_NOFOLLOW,
                                     nullptr);
    connection_.reset(connection);
    expect(connection, code);
    sqlite3_extended_result_codes(connection, 1);
    sqlite3_busy_timeout(connection, static_cast<int>(patience.count()));
    sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    // Small: it is used for a moment once a minute.
    sqlite3_db_config(connection, SQLITE_DBCONFIG_LOOKASIDE, nullptr, 0, 0);
    run("PRAGMA cache_size = -64"); // in kB
    run("PRAGMA foreign_keys = ON");
    run("PRAGMA trusted_schema = OFF"); // nothing in a file runs by itself
    run("PRAGMA synchronous = FULL");   // what was committed stands, whatever happens to the power
}

void Database::run(const char* sql, const std::vector<Value>& values) {
    Rows rows(*this, sql);
    rows.begin(values);
    while (rows.next()) {
    }
}

std::int64_t Database::number(const char* sql, const std::vector<Value>& values) {
    Rows rows(*this, sql);
    rows.begin(values);
    return rows.next() ? rows.number(0) : 0;
}

std::int64_t Database::changes() const { return sqlite3_changes64(connection_.get()); }

std::int64_t Database::lastInserted() const { return sqlite3_last_insert_rowid(connection_.get()); }

void Database::trust() {
    sqlite3_db_config(connection_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

bool Database::hasMoved() const {
    int moved = 0;
    sqlite3_file_control(connection_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void Database::rest() { sqlite3_db_release_memory(connection_.get()); }

Rows::Rows(Database& database, const char* sql) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    sqlite3* const connection = database.connection_.get();
    expect(connection, sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr));
    statement_.reset(statement);
}

void Rows::begin(const std::vector<Value>& values) {
    sqlite3_reset(statement_.get()); // what went wrong in it was told by the step
    int place = 0;
    for (const Value& value : values)
        expect(database_.connection_.get(), std::visit(Bind{statement_.get(), ++place}, value));
}

bool Rows::next() {
    errno = 0;
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) throw faultOf(database_.connection_.get(), code, errno);
    return false;
}

std::int64_t Rows::number(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

std::string_view Rows::bytes(int column) const {
    const auto* const bytes =
        static_cast<const char*>(sqlite3_column_blob(statement_.get(), column));
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return bytes == nullptr ? std::string_view()
                            : std::string_view(bytes, static_cast<std::size_t>(size));
}

// At once the one that writes: a transaction that read first would fail where another one wrote
// meanwhile.
Transaction::Transaction(Database& database) : database_(database) {
    database_.run("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
    sqlite3* const connection = database_.connection_.get();
    if (sqlite3_get_autocommit(connection) == 0)
        sqlite3_exec(connection, "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() { database_.run("COMMIT"); }

} // namespace wegslot::history
