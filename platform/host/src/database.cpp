#include "database.h"

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>

#include "complain.h"
#include "folder_lock.h"
#include "state_place.h"

namespace mobile_ap {
namespace {

constexpr off_t kMebibyte = off_t{1} << 20;
constexpr off_t kLongLog = 16 * kMebibyte;
constexpr off_t kLongestLog = 64 * kMebibyte;
constexpr int kLogPatienceMs = 200;

std::string mebibytes(off_t size)
{
    return std::to_string(size / kMebibyte);
}

std::string folder_of(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

// SQLite is told to follow no link, and means those among the folders, too, which are the user's own affair.
std::string without_links(const std::string& path)
{
    char folder[PATH_MAX];
    if (realpath((folder_of(path) + "/").c_str(), folder) == nullptr)
        throw DatabaseError{SQLITE_CANTOPEN, errno_text(errno)};
    std::string whole = folder + path.substr(path.rfind('/'));
    const size_t room = static_cast<size_t>(sqlite3_vfs_find(nullptr)->mxPathname);
    if (whole.size() + sizeof "-journal" - 1 > room)
        throw DatabaseError{SQLITE_CANTOPEN, "the path is too long for SQLite"};
    return whole;
}

// Bytes of the log's index, as SQLite locks them: each snapshot has one of the first five, each open log has the last.
constexpr long kFirstSnapshot = 123;
constexpr long kLastSnapshot = 127;
constexpr long kOpen = 128;

// The processes that have locked one of these bytes: "process 12, 13". Asking the file itself would mean to open it,
// and with its closing this process's own locks would go.
std::string who_locks(const std::string& path, long first, long last)
{
    struct stat index = {};
    if (stat((path + "-shm").c_str(), &index) != 0) return "";
    std::string processes;
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        int pid = 0;
        unsigned long inode = 0;
        long byte = 0;
        const int found = sscanf(line.c_str(), "%*s POSIX %*s %*s %d %*x:%*x:%lu %ld", &pid, &inode, &byte);
        if (found == 3 && inode == index.st_ino && byte >= first && byte <= last)
            processes += (processes.empty() ? "process " : ", ") + std::to_string(pid);
    }
    return processes;
}

// What the connection's last failure was. Quotas and size limits are a lack of room, too.
DatabaseError last_failure(sqlite3* connection)
{
    const int code = sqlite3_extended_errcode(connection);
    const int reason = sqlite3_system_errno(connection);
    if ((code & 0xff) == SQLITE_IOERR && means_no_room(reason)) return {SQLITE_FULL, errno_text(reason)};
    return {code, sqlite3_errmsg(connection)};
}

}  // namespace

std::string who_has_open(const std::string& path)
{
    return who_locks(path, kOpen, kOpen);
}

// ---- Query ----

void Query::Release::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void Query::fail() const
{
    throw last_failure(connection_);
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

int Database::wait_for_lock(void* database, int attempt)
{
    return static_cast<Database*>(database)->patience_.nap(attempt) ? 1 : 0;
}

void Database::open(const std::string& path)
{
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) throw DatabaseError{SQLITE_CANTOPEN, errno_text(errno)};
    const FolderLock lock(folder_of(path), FolderLock::kShared, Patience(patience_ms_));
    open(path, lock);
    try {
        run_script("PRAGMA schema_version");  // opens the logs
    } catch (...) {
        close();
        throw;
    }
}

void Database::open(const std::string& path, const FolderLock&)
{
    close();
    path_ = path;
    patience_ = Patience(patience_ms_);
    for (const char* log : {"", "-journal", "-wal", "-shm"})
        keep_private(path + log);
    const std::string whole = without_links(path);
    const int code = sqlite3_open_v2(whole.c_str(), &connection_,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_NOMUTEX, nullptr);
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
    if (sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw last_failure(connection_);
}

bool Database::empty_log()
{
    patience_ = Patience(kLogPatienceMs);
    return sqlite3_wal_checkpoint_v2(connection_, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) == SQLITE_OK;
}

// No log ends behind a snapshot that somebody holds. Sessions hold none for longer than a method.
void Database::look_at_log()
{
    struct stat log = {};
    if (stat((path_ + "-wal").c_str(), &log) != 0 || log.st_size <= kLongLog) return;
    const bool too_long = log.st_size > kLongestLog;
    if ((told_of_log_ && !too_long) || empty_log()) return;
    const std::string processes = who_locks(path_, kFirstSnapshot, kLastSnapshot);
    const std::string why =
        " MiB, as " + (processes.empty() ? "another process" : processes) + " does not end a read transaction; ";
    if (too_long)
        throw DatabaseError{SQLITE_FULL, "the log is longer than " + mebibytes(kLongestLog) + why +
                                             "nothing can be changed until that ends"};
    complain("mobile-AP state " + path_ + ": the log is longer than " + mebibytes(kLongLog) + why + "beyond " +
             mebibytes(kLongestLog) + " MiB nothing can be changed");
    told_of_log_ = true;
}

void Database::begin(Access access)
{
    touch_on_commit_ = false;
    if (access == Access::kWrite) {
        const std::string problem = why_no_room(folder_of(path_));
        if (!problem.empty()) throw DatabaseError{SQLITE_FULL, problem};
        look_at_log();
    }
    patience_ = Patience(patience_ms_);
    run_script(access == Access::kWrite ? "BEGIN IMMEDIATE" : "BEGIN");
}

void Database::commit()
{
    run_script("COMMIT");
    if (touch_on_commit_) utimensat(AT_FDCWD, path_.c_str(), nullptr, 0);
}

void Database::roll_back()
{
    if (sqlite3_get_autocommit(connection_) != 0) return;
    sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
    if (sqlite3_get_autocommit(connection_) == 0) close();  // which needs no memory; whoever comes next opens again
}

// ---- Transaction ----

Transaction::Transaction(Database& db, Access access) : db_(db)
{
    db.begin(access);
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
