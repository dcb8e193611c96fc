#include "store.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "schemas.h"
#include "signals.h"

namespace mobile_ap {
namespace {

constexpr int64_t kLongestWaitMs = 10000;
constexpr unsigned int kLongestNapMs = 25;

// The service's own tables, which a factory restore leaves alone.
constexpr const char* kServiceSchema = R"(
CREATE TABLE IF NOT EXISTS mobile_ap (handle INTEGER NOT NULL);
INSERT INTO mobile_ap (handle) SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM mobile_ap);
CREATE TABLE IF NOT EXISTS indication (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    msg_id INTEGER NOT NULL,
    wire BLOB NOT NULL,
    time TEXT NOT NULL
);
)";

int64_t now_ms()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// Short at first, longer the longer the wait has been.
unsigned int random_nap_ms(int attempt)
{
    thread_local std::minstd_rand random(static_cast<unsigned int>(getpid()) * 2654435761u ^
                                         static_cast<unsigned int>(now_ms()));
    const unsigned int longest = std::min(kLongestNapMs, 2 + static_cast<unsigned int>(attempt));
    return 1 + static_cast<unsigned int>(random()) % longest;
}

// Changes with every word of the table definitions, so that no program works on tables it does not know.
int schema_version()
{
    uint32_t hash = 2166136261u;
    auto add = [&hash](const char* text) {
        for (; *text != '\0'; ++text)
            hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619u;
    };
    add(kServiceSchema);
    for (const char* const* schema : kAreaSchemas)
        add(*schema);
    return static_cast<int>(hash & 0x7fffffffu) | 1;
}

bool means_damage(int code)
{
    const int kind = code & 0xff;
    return kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB;
}

void run_script(sqlite3* connection, const char* sql)
{
    const int code = sqlite3_exec(connection, sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) throw StoreError{sqlite3_extended_errcode(connection), sqlite3_errmsg(connection)};
}

std::string utc_stamp()
{
    const time_t now = time(nullptr);
    tm parts = {};
    gmtime_r(&now, &parts);
    char text[32];
    strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &parts);
    return text;
}

// Only one process at a time makes the database, or looks at a damaged one and sets it aside.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder)
    {
        fd_ = ::open((folder + "/mobile_ap.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        const int64_t end = now_ms() + kLongestWaitMs;
        for (int attempt = 0; fd_ >= 0 && !held_; ++attempt) {
            held_ = flock(fd_, LOCK_EX | LOCK_NB) == 0;
            if (!held_ && (now_ms() > end || !sleep_ms(random_nap_ms(attempt)))) break;
        }
        if (!held_) throw StoreError{SQLITE_BUSY, "the folder's lock is taken"};
    }
    ~FolderLock()
    {
        if (fd_ >= 0) ::close(fd_);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int fd_ = -1;
    bool held_ = false;
};

}  // namespace

// ---- Query ----

void Query::Release::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

void Query::fail() const
{
    throw StoreError{sqlite3_extended_errcode(connection_), sqlite3_errmsg(connection_)};
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

// ---- what methods use ----

uint32_t Store::selected_profile()
{
    if (!one<int>("SELECT 1 FROM wwan_profile WHERE handle = ?", selected_profile_)) refuse(QMI_ERR_INVALID_HANDLE_V01);
    return selected_profile_;
}

void Store::select_profile(uint32_t handle)
{
    if (!one<int>("SELECT 1 FROM wwan_profile WHERE handle = ?", handle)) refuse(QMI_ERR_INVALID_HANDLE_V01);
    selected_profile_ = handle;
}

int Store::selected_bridge()
{
    if (!one<int>("SELECT 1 FROM lan_bridge WHERE id = ?", selected_bridge_)) refuse(QMI_ERR_INVALID_ID_V01);
    return selected_bridge_;
}

void Store::select_bridge(int id)
{
    if (!one<int>("SELECT 1 FROM lan_bridge WHERE id = ?", id)) refuse(QMI_ERR_INVALID_ID_V01);
    selected_bridge_ = id;
}

void Store::restore_factory()
{
    std::vector<std::string> tables;
    {
        Query q = query(
            "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'"
            " AND name NOT IN ('mobile_ap', 'indication') ORDER BY rowid DESC");
        while (q.next())
            tables.push_back(q.get<std::string>(0));
    }
    for (const std::string& table : tables)
        run_script(connection_, ("DROP TABLE \"" + table + "\"").c_str());
    for (const char* const* schema : kAreaSchemas)
        run_script(connection_, *schema);
}

// ---- what the session uses ----

Store::~Store()
{
    close();
}

void Store::close()
{
    sqlite3_close_v2(connection_);
    connection_ = nullptr;
}

int Store::wait_for_lock(void* store, int attempt)
{
    return now_ms() < static_cast<Store*>(store)->wait_until_ms_ && sleep_ms(random_nap_ms(attempt)) ? 1 : 0;
}

void Store::connect(const std::string& path, int flags)
{
    close();
    path_ = path;
    wait_until_ms_ = now_ms() + patience_ms_;
    const int code = sqlite3_open_v2(path.c_str(), &connection_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        const int reason = connection_ == nullptr ? 0 : sqlite3_system_errno(connection_);
        char text[128] = "";
        const char* words = reason != 0 ? strerror_r(reason, text, sizeof text) : sqlite3_errstr(code);
        close();
        throw StoreError{code, words};
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

void Store::open_quietly(const std::string& path)
{
    connect(path, SQLITE_OPEN_READWRITE);
}

bool Store::replaced() const
{
    int moved = 0;
    if (connection_ == nullptr) return true;
    return sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

bool Store::is_fresh()
{
    return one<int>("PRAGMA user_version").value_or(0) == 0 &&
           one<int>("SELECT count(*) FROM sqlite_schema").value_or(0) == 0;
}

// Returns what is wrong with the database, nothing when it is whole, made and writable.
std::string Store::look_for_damage()
{
    try {
        if (sqlite3_db_readonly(connection_, "main") == 1) throw StoreError{SQLITE_READONLY, "Permission denied"};
        std::string verdict = one<std::string>("PRAGMA quick_check(1)").value_or("no answer");
        if (verdict != "ok") return verdict;
        if (!is_fresh() && one<int>("PRAGMA user_version").value_or(0) != schema_version())
            return "its tables are of another version";
        return "";
    } catch (const StoreError& error) {
        if (!means_damage(error.code)) throw;
        return error.reason;
    }
}

// Fills a fresh database with the factory state. With its log written ahead, readers never wait, and a process that is
// killed, or a machine that stops, leaves the state before or after a transaction.
void Store::make_tables()
{
    one<std::string>("PRAGMA journal_mode = WAL");
    begin_writing();
    run_script(connection_, kServiceSchema);
    for (const char* const* schema : kAreaSchemas)
        run_script(connection_, *schema);
    run_script(connection_, ("PRAGMA user_version = " + std::to_string(schema_version())).c_str());
    commit();
}

// Gives the database another name, its logs first: logs without their database would be taken for stale ones.
std::string Store::set_aside(const std::string& folder)
{
    const std::string base = folder + "/mobile_ap.db.corrupt-" + utc_stamp();
    std::string name = base;
    struct stat info;
    for (int n = 1; lstat(name.c_str(), &info) == 0; ++n)
        name = base + "-" + std::to_string(n);
    close();
    for (const char* log : {"-journal", "-wal"}) {
        if (stat((path_ + log).c_str(), &info) == 0 && info.st_size > 0)
            rename((path_ + log).c_str(), (name + log).c_str());
    }
    if (rename(path_.c_str(), name.c_str()) != 0) throw StoreError{SQLITE_IOERR, strerror(errno)};
    return name;
}

// Opens, or makes, the database under the folder's lock.
void Store::make(const std::string& path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        for (const char* log : {"-journal", "-wal", "-shm"})
            unlink((path + log).c_str());  // of one that was taken away
    }
    connect(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (is_fresh()) make_tables();
}

bool Store::open(const std::string& folder, std::string* problem)
{
    const std::string path = folder + "/mobile_ap.db";
    try {
        struct stat info;
        std::string damage;
        if (stat(path.c_str(), &info) == 0 && info.st_size > 0) {
            connect(path, SQLITE_OPEN_READWRITE);
            damage = look_for_damage();
            if (damage.empty() && !is_fresh()) return true;
            close();
        }
        const FolderLock lock(folder);
        if (!damage.empty()) {
            connect(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
            damage = look_for_damage();  // another process may have seen to it
            if (!damage.empty()) {
                const std::string name = set_aside(folder);
                *problem = "damaged (" + damage + "); set aside as " + name + ", a factory-fresh one takes its place";
            }
            close();
        }
        make(path);
        if (problem->empty()) return true;
    } catch (const StoreError& error) {
        roll_back();
        if (problem->empty()) *problem = error.reason;
    }
    close();
    return false;
}

void Store::begin(const char* sql)
{
    rings_ = false;
    wait_until_ms_ = now_ms() + patience_ms_;
    run_script(connection_, sql);
}

void Store::begin_writing()
{
    begin("BEGIN IMMEDIATE");
}

void Store::begin_reading()
{
    begin("BEGIN");
}

void Store::commit()
{
    run_script(connection_, "COMMIT");
    // The access times wake the sessions that wait for indications; a missed call is made up for by their own rounds.
    if (rings_) utimensat(AT_FDCWD, path_.c_str(), nullptr, 0);
    rings_ = false;
}

void Store::roll_back()
{
    if (connection_ != nullptr && sqlite3_get_autocommit(connection_) == 0)
        sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
}

}  // namespace mobile_ap
