// SQLite, as far as the history needs it. What goes wrong is thrown as a `Fault`, which those who
// are called from outside this folder catch. One thread at a time uses a connection.
#pragma once

#include "base/translation.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace wegslot::history {

struct Fault {
    enum class Kind {
        obstacle, ///< it cannot be used now: no room, no rights, a disk that fails
        unusable, ///< it is no history that can be read, nor will it become one
    };
    Kind kind;
    Message words;
};

/// Bytes must stay where they are until the statement has ended.
using Value = std::variant<std::int64_t, std::string_view>;

class Database {
public:
    /// A file that there is, with nothing in it for a database that begins. A symbolic link is
    /// refused, in its folders too. What another connection holds is waited for so long.
    Database(const std::filesystem::path& file, std::chrono::milliseconds patience);

    /// Once, for no rows.
    void run(const char* sql, const std::vector<Value>& values = {});

    /// The one number that comes.
    [[nodiscard]] std::int64_t number(const char* sql, const std::vector<Value>& values = {});

    /// How many rows the last statement changed.
    [[nodiscard]] std::int64_t changes() const;
    [[nodiscard]] std::int64_t lastInserted() const;

    /// It is what it should be: the last one that closes it writes what has not come into the file
    /// yet there, and until then leaves it all as it was.
    void trust();

    /// Whether its file is no longer there under its name.
    [[nodiscard]] bool hasMoved() const;

    /// Gives back what was kept in memory for the next time.
    void rest();

private:
    friend class Rows;
    friend class Transaction;

    struct Close {
        void operator()(sqlite3* connection) const;
    };
    std::unique_ptr<sqlite3, Close> connection_;
};

/// What a statement answers.
class Rows {
public:
    Rows(Database& database, const char* sql);

    /// Begins, once more too.
    void begin(const std::vector<Value>& values = {});

    /// To the next row; false when there is none.
    [[nodiscard]] bool next();

    [[nodiscard]] std::int64_t number(int column) const;
    /// Until the next row.
    [[nodiscard]] std::string_view bytes(int column) const;

private:
    struct End {
        void operator()(sqlite3_stmt* statement) const;
    };
    Database& database_;
    std::unique_ptr<sqlite3_stmt, End> statement_;
};

/// All or nothing: what is not committed by its end is taken back.
class Transaction {
public:
    explicit Transaction(Database& database);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();

    void commit();

private:
    Database& database_;
};

} // namespace wegslot::history
