#include "database.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "complain.h"

namespace mobile_ap {

// ---- Query ----

void Query::Release::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void Query::fail() const
{
    throw DatabaseError{sqlite3_extended_errcode(connection_), sqlite3_errmsg(connection_)};
}

void Query::prepare(const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(connection_, sql, -1, &statement, nullptr) != SQLITE_OK) fail();
    statement_.reset(statement);
}

bool Query::next()
{
    const int code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) fail();
    return code == SQLITE_ROW;
}

bool Query::is_null(int column) const
{
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

int64_t Query::integer(int column) const
{
    return sqlite3_column_int64(statement_.get(), column);
}

std::string Query::text(int column) const
{
    const unsigned char* data = sqlite3_column_text(statement_.get(), column);
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return data == nullptr ? std::string() : std::string(data, data + size);
}

std::vector<uint8_t> Query::bytes(int column) const
{
    const uint8_t* data = static_cast<const uint8_t*>(sqlite3_column_blob(statement_.get(), column));
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return data == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(data, data + size);
}

void Query::bind_null(int place)
{
    if (sqlite3_bind_null(statement_.get(), place) != SQLITE_OK) fail();
}

void Query::bind_integer(int place, int64_t value)
{
    if (sqlite3_bind_int64(statement_.get(), place, value) != SQLITE_OK) fail();
}

void Query::bind_text(int place, const char* text, size_t size)
{
    if (sqlite3_bind_text64(statement_.get(), place, text, size, SQLITE_TRANSIENT, SQLITE_UTF8) != SQLITE_OK) fail();
}

void Query::bind_blob(int place, const Blob& blob)
{
    if (sqlite3_bind_blob64(statement_.get(), place, blob.data, blob.size, SQLITE_TRANSIENT) != SQLITE_OK) fail();
}

// ---- Database ----

Database::~Database()
{
    close();
}

void Database::close()
{
    sqlite3_close_v2(connection_);
    connection_ = nullptr;
}

void Database::open(const std::string& path)
{
    connect(path, SQLITE_OPEN_READWRITE);
}

void Database::open_or_make(const std::string& path)
{
    connect(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
}

int Database::wait_for_lock(void* database, int attempt)
{
    return static_cast<Database*>(database)->patience_.nap(attempt) ? 1 : 0;
}

void Database::connect(const std::string& path, int flags)
{
    close();
    path_ = path;
    patience_ = Patience(patience_ms_);
    const int code = sqlite3_open_v2(path.c_str(), &connection_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        const int reason = connection_ == nullptr ? 0 : sqlite3_system_errno(connection_);
        const std::string words = reason != 0 ? errno_text(reason) : sqlite3_errstr(code);
        close();
        throw DatabaseError{code, words};
    }
    sqlite3_extended_result_codes(connection_, 1);
    sqlite3_busy_handler(connection_, wait_for_lock, this);
    // The log stays when the last session closes, emptied: a session whose database was taken away must not remove the
    // log of the one that has come in its place.
    int keep_log = 1;
    sqlite3_file_control(connection_, "main", SQLITE_FCNTL_PERSIST_WAL, &keep_log);
    // A damaged file fails here already; what is wrong with it is for the first real statement to say.
    sqlite3_exec(connection_, "PRAGMA journal_size_limit = 0; PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = ON",
                 nullptr, nullptr, nullptr);
}

bool Database::is_read_only() const
{
    return sqlite3_db_readonly(connection_, "main") == 1;
}

bool Database::replaced() const
{
    int moved = 0;
    if (connection_ == nullptr) return true;
    return sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

void Database::run_script(const char* sql)
{
    const int code = sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) throw DatabaseError{sqlite3_extended_errcode(connection_), sqlite3_errmsg(connection_)};
}

void Database::begin(const char* sql)
{
    touch_on_commit_ = false;
    patience_ = Patience(patience_ms_);
    run_script(sql);
}

void Database::commit()
{
    run_script("COMMIT");
    if (touch_on_commit_) utimensat(AT_FDCWD, path_.c_str(), nullptr, 0);
}

void Database::roll_back()
{
    if (sqlite3_get_autocommit(connection_) == 0) sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
}

// ---- Transaction ----

Transaction::Transaction(Database& db, Access access) : db_(db)
{
    db.begin(access == Access::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
}

Transaction::~Transaction()
{
    db_.roll_back();
}

void Transaction::commit()
{
    db_.commit();
}

}  // namespace mobile_ap
