// The state of the mobile-AP service: one SQLite database, shared by every process that opens a session.
//
// Inside a method a Store is used without checking for errors: a failed statement throws and ends the method, and the
// shared wrapper (session.h) undoes the transaction and answers with a fitting error word.
#ifndef MOBILE_AP_STORE_H
#define MOBILE_AP_STORE_H

#include <sqlite3.h>
#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "ending.h"

namespace mobile_ap {

// A statement failed.
struct StoreError {
    int code;            // SQLite's extended result code
    std::string reason;  // for people
};

struct Blob {
    const void* data;
    size_t size;
};

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

class Store {
public:
    Store() = default;
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    // ---- for methods ----

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

    // What this client object has selected. The getters refuse (INVALID_HANDLE, INVALID_ID) when it has gone since, the
    // setters when it is not there. A new object starts with profile 1 and bridge 0.
    uint32_t selected_profile();
    void select_profile(uint32_t handle);
    int selected_bridge();
    void select_bridge(int id);

    // Every table of every area as it was on the first day. Sessions and their indications stay.
    void restore_factory();

    // ---- for the session ----

    // Opens the database in this folder, and makes it when there is none; a damaged one is set aside. Returns false,
    // and why, when it cannot be used now.
    bool open(const std::string& folder, std::string* problem);
    void open_quietly(const std::string& path);  // one that is there, unchecked; throws StoreError
    void close();
    bool is_open() const
    {
        return connection_ != nullptr;
    }
    const std::string& path() const
    {
        return path_;
    }
    bool replaced() const;  // the file at path() is not the one that is open any more

    // How long a lock is waited for, from the start of a transaction.
    void set_patience(int milliseconds)
    {
        patience_ms_ = milliseconds;
    }
    void begin_writing();
    void begin_reading();
    void commit();
    void roll_back();

    // Indications queued by the transaction under way, see indications.h.
    void queued_indication()
    {
        rings_ = true;
    }

private:
    void connect(const std::string& path, int flags);
    bool is_fresh();
    std::string look_for_damage();
    void make_tables();
    void make(const std::string& path);
    std::string set_aside(const std::string& folder);
    void begin(const char* sql);

    sqlite3* connection_ = nullptr;
    std::string path_;
    int patience_ms_ = 10000;
    int64_t wait_until_ms_ = 0;
    uint32_t selected_profile_ = 1;
    int selected_bridge_ = 0;
    bool rings_ = false;

    static int wait_for_lock(void* store, int attempt);
};

}  // namespace mobile_ap

#endif
