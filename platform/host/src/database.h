// An SQLite database as such: a file that is open, statements, transactions. What stands in it is for others to say.
//
// Nothing here is to be checked for errors: what fails throws a DatabaseError.
#ifndef MOBILE_AP_DATABASE_H
#define MOBILE_AP_DATABASE_H

#include <sqlite3.h>
#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "patience.h"

namespace mobile_ap {

class FolderLock;

struct DatabaseError {
    int code;            // SQLite's extended result code
    std::string reason;  // for people
};

struct Blob {
    const void* data;
    size_t size;
};

// The processes that have the logs of the database at this path open, as far as the system tells; in words.
std::string who_has_open(const std::string& path);

// A statement under way, released when it goes out of scope.
//     Query q = db.query("SELECT id, name FROM thing WHERE kind = ?", kind);
//     while (q.next()) use(q.get<uint32_t>(0), q.get<std::string>(1));
class Query {
public:
    template <class... Values>
    Query(sqlite3* connection, const char* sql, const Values&... values) : connection_(connection)
    {
        prepare(sql);
        int place = 0;
        (bind(++place, values), ...);
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    bool next();
    bool is_null(int column) const;

    // A column as integer or enumeration (cut to T), std::string, or std::vector<uint8_t>.
    template <class T>
    T get(int column) const
    {
        if constexpr (std::is_same_v<T, std::string>)
            return text(column);
        else if constexpr (std::is_same_v<T, std::vector<uint8_t>>)
            return bytes(column);
        else
            return static_cast<T>(integer(column));
    }

private:
    struct Release {
        void operator()(sqlite3_stmt* statement) const;
    };

    // Integers and enumerations, texts, Blob; nullptr and an empty std::optional bind NULL.
    template <class T>
    void bind(int place, const T& value)
    {
        if constexpr (std::is_same_v<T, std::string>)
            bind_text(place, value.data(), value.size());
        else if constexpr (std::is_same_v<T, Blob>)
            bind_blob(place, value);
        else if constexpr (std::is_same_v<T, std::nullptr_t>)
            bind_null(place);
        else if constexpr (std::is_convertible_v<T, const char*>)
            bind_text(place, value, std::char_traits<char>::length(value));
        else
            bind_integer(place, static_cast<int64_t>(value));
    }

    template <class T>
    void bind(int place, const std::optional<T>& value)
    {
        if (value)
            bind(place, *value);
        else
            bind_null(place);
    }

    void prepare(const char* sql);
    int64_t integer(int column) const;
    std::string text(int column) const;
    std::vector<uint8_t> bytes(int column) const;
    void bind_null(int place);
    void bind_integer(int place, int64_t value);
    void bind_text(int place, const char* text, size_t size);
    void bind_blob(int place, const Blob& blob);
    [[noreturn]] void fail() const;

    sqlite3* connection_;
    std::unique_ptr<sqlite3_stmt, Release> statement_;
};

enum class Access { kRead, kWrite };

class Database {
public:
    Database() = default;
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Opens a database that is there, with all its files, under its folder's lock.
    void open(const std::string& path);
    // The same under a lock that is held until after the first statement.
    void open(const std::string& path, const FolderLock& held);
    void close();
    bool is_open() const
    {
        return connection_ != nullptr;
    }
    const std::string& path() const
    {
        return path_;
    }
    bool is_read_only() const;
    bool replaced() const;  // the file at path() is not the one that is open any more

    // How long a lock is waited for, from the start of a transaction.
    void set_patience(int milliseconds)
    {
        patience_ms_ = milliseconds;
    }

    // Runs one statement that changes something; returns how many rows it changed.
    template <class... Values>
    int run(const char* sql, const Values&... values)
    {
        Query statement(connection_, sql, values...);
        while (statement.next()) {
        }
        return sqlite3_changes(connection_);
    }

    // Starts a statement that reads rows.
    template <class... Values>
    Query query(const char* sql, const Values&... values)
    {
        return Query(connection_, sql, values...);
    }

    // First column of the first row; nothing when there is no row or the column is NULL.
    template <class T, class... Values>
    std::optional<T> one(const char* sql, const Values&... values)
    {
        Query statement(connection_, sql, values...);
        if (!statement.next() || statement.is_null(0)) return std::nullopt;
        return statement.get<T>(0);
    }

    // Runs many statements, which have no values.
    void run_script(const char* sql);

    // Brings all that stands in the log into the database itself. False: somebody reads or writes for longer than this
    // is waited for.
    bool empty_log();

    // The transaction under way touches the file's times when it is committed, which whoever watches the file sees.
    void touch_on_commit()
    {
        touch_on_commit_ = true;
    }

private:
    friend class Transaction;
    void begin(Access access);
    void look_at_log();
    void commit();
    void roll_back();
    static int wait_for_lock(void* database, int attempt);

    sqlite3* connection_ = nullptr;
    std::string path_;
    int patience_ms_ = kPatienceMs;
    Patience patience_;  // of the transaction under way
    bool touch_on_commit_ = false;
    bool told_of_log_ = false;
};

// A transaction, undone when it goes out of scope without having been committed. A writing one waits for all others
// that write, a reading one for none. A writing one is not begun without room for it, nor behind a log without end.
class Transaction {
public:
    Transaction(Database& db, Access access);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

private:
    Database& db_;
};

}  // namespace mobile_ap

#endif
