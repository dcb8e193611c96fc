#include "state_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "complain.h"
#include "schemas.h"

namespace mobile_ap {
namespace {

// Who the indications are from, and those that are to be delivered; a factory restore leaves both alone.
constexpr const char* kIndicationSchema = R"(
CREATE TABLE IF NOT EXISTS mobile_ap (handle INTEGER NOT NULL);
INSERT INTO mobile_ap (handle) SELECT 1 WHERE NOT EXISTS (SELECT 1 FROM mobile_ap);
CREATE TABLE IF NOT EXISTS indication (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    msg_id INTEGER NOT NULL,
    wire BLOB NOT NULL,
    time TEXT NOT NULL
);
)";

// Changes with every word of the table definitions, so that no program works on tables it does not know.
int schema_version()
{
    uint32_t hash = 2166136261u;
    auto add = [&hash](const char* text) {
        for (; *text != '\0'; ++text)
            hash = (hash ^ static_cast<unsigned char>(*text)) * 16777619u;
    };
    add(kIndicationSchema);
    for (const char* const* schema : kServiceSchemas)
        add(*schema);
    for (const char* const* schema : kAreaSchemas)
        add(*schema);
    return static_cast<int>(hash & 0x7fffffffu) | 1;
}

// Only one process at a time makes the database, or looks at a damaged one and sets it aside.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder)
        : fd_(::open((folder + "/mobile_ap.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
    {
        const Patience patience;
        bool held = false;
        for (int attempt = 0; fd_ >= 0 && !held; ++attempt) {
            held = flock(fd_, LOCK_EX | LOCK_NB) == 0;
            if (!held && !patience.nap(attempt)) break;
        }
        if (!held) throw DatabaseError{SQLITE_BUSY, "the folder's lock is taken"};
    }
    ~FolderLock()
    {
        if (fd_ >= 0) ::close(fd_);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

private:
    int fd_;
};

bool is_fresh(Database& db)
{
    return db.one<int>("PRAGMA user_version").value_or(0) == 0 &&
           db.one<int>("SELECT count(*) FROM sqlite_schema").value_or(0) == 0;
}

bool means_damage(int code)
{
    const int kind = code & 0xff;
    return kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB;
}

// Returns what is wrong with the database, nothing when it is whole, made and writable.
std::string look_for_damage(Database& db)
{
    try {
        if (db.is_read_only()) throw DatabaseError{SQLITE_READONLY, "Permission denied"};
        std::string verdict = db.one<std::string>("PRAGMA quick_check(1)").value_or("no answer");
        if (verdict != "ok") return verdict;
        if (!is_fresh(db) && db.one<int>("PRAGMA user_version").value_or(0) != schema_version())
            return "its tables are of another version";
        return "";
    } catch (const DatabaseError& error) {
        if (!means_damage(error.code)) throw;
        return error.reason;
    }
}

// Fills a fresh database with the factory state. With its log written ahead, readers never wait, and a process that is
// killed, or a machine that stops, leaves the state before or after a transaction.
void make_tables(Database& db)
{
    db.one<std::string>("PRAGMA journal_mode = WAL");
    Transaction making(db, Access::kWrite);
    db.run_script(kIndicationSchema);
    for (const char* const* schema : kServiceSchemas)
        db.run_script(*schema);
    for (const char* const* schema : kAreaSchemas)
        db.run_script(*schema);
    db.run_script(("PRAGMA user_version = " + std::to_string(schema_version())).c_str());
    making.commit();
}

// Opens, or makes, the database under the folder's lock.
void make(Database& db, const std::string& path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        for (const char* log : {"-journal", "-wal", "-shm"})
            unlink((path + log).c_str());  // of one that was taken away
    }
    db.open_or_make(path);
    if (is_fresh(db)) make_tables(db);
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

// Gives the database another name, its logs first: logs without their database would be taken for stale ones.
std::string set_aside(const std::string& path)
{
    const std::string base = path + ".corrupt-" + utc_stamp();
    std::string name = base;
    struct stat info;
    for (int n = 1; lstat(name.c_str(), &info) == 0; ++n)
        name = base + "-" + std::to_string(n);
    for (const char* log : {"-journal", "-wal"}) {
        if (stat((path + log).c_str(), &info) == 0 && info.st_size > 0)
            rename((path + log).c_str(), (name + log).c_str());
    }
    if (rename(path.c_str(), name.c_str()) != 0) throw DatabaseError{SQLITE_IOERR, errno_text(errno)};
    return name;
}

// Looks again, under the folder's lock: another process may have seen to it. Returns what to tell of it, nothing when
// there is no damage any more.
std::string see_to_damage(Database& db, const std::string& path)
{
    db.open_or_make(path);
    const std::string damage = look_for_damage(db);
    db.close();
    if (damage.empty()) return "";
    const std::string name = set_aside(path);
    return "damaged (" + damage + "); set aside as " + name + ", a factory-fresh one takes its place";
}

}  // namespace

std::string state_file(const std::string& folder)
{
    return folder + "/mobile_ap.db";
}

std::string open_state(Database& db, const std::string& folder)
{
    const std::string path = state_file(folder);
    std::string problem;
    try {
        struct stat info;
        std::string damage;
        if (stat(path.c_str(), &info) == 0 && info.st_size > 0) {
            db.open(path);
            damage = look_for_damage(db);
            if (damage.empty() && !is_fresh(db)) return "";
            db.close();
        }
        const FolderLock lock(folder);
        if (!damage.empty()) problem = see_to_damage(db, path);
        make(db, path);
    } catch (const DatabaseError& error) {
        if (problem.empty()) problem = error.reason;
    }
    if (!problem.empty()) db.close();
    return problem;
}

void restore_factory(Database& db)
{
    std::vector<std::string> tables;
    {
        Query q = db.query(
            "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'"
            " AND name NOT IN ('mobile_ap', 'indication', 'service', 'event', 'network', 'network_refusal', 'network_delay')"
            " ORDER BY rowid DESC");
        while (q.next())
            tables.push_back(q.get<std::string>(0));
    }
    for (const std::string& table : tables)
        db.run_script(("DROP TABLE \"" + table + "\"").c_str());
    for (const char* const* schema : kAreaSchemas)
        db.run_script(*schema);
}

}  // namespace mobile_ap
