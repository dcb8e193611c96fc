#include "state_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <vector>

#include "complain.h"
#include "folder_lock.h"
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

const std::string& all_schemas()
{
    static const std::string text = [] {
        std::string all = kIndicationSchema;
        for (const char* const* schema : kServiceSchemas)
            all += *schema;
        for (const char* const* schema : kAreaSchemas)
            all += *schema;
        return all;
    }();
    return text;
}

// Changes with every word of the table definitions, so that no program works on tables it does not know.
int schema_version()
{
    uint32_t hash = 2166136261u;
    for (const char c : all_schemas())
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return static_cast<int>(hash & 0x7fffffffu) | 1;
}

constexpr const char* kLogs[] = {"-journal", "-wal", "-shm"};

// What lies where the database should.
struct Finding {
    enum Kind { kNothing, kWhole, kOtherVersion, kDamage } kind;
    std::string words{};  // of damage
    int version = 0;
};

bool is_fresh(Database& db)
{
    return db.one<int>("PRAGMA user_version").value_or(0) == 0 &&
           db.one<int>("SELECT count(*) FROM sqlite_schema").value_or(0) == 0;
}

// Every definition of ours stands in the database as it was given, which SQLite does not check. What others have added
// is theirs.
bool has_all_tables(Database& db)
{
    const std::string start = " IF NOT EXISTS ";
    const std::string& wanted = all_schemas();
    int missing = 0;
    for (size_t place = wanted.find(start); place != std::string::npos; place = wanted.find(start, place + 1))
        ++missing;
    Query q = db.query("SELECT substr(sql, instr(substr(sql, 8), ' ') + 8) FROM sqlite_schema WHERE sql IS NOT NULL");
    while (q.next())
        if (wanted.find(start + q.get<std::string>(0) + ";") != std::string::npos) --missing;
    return missing == 0;
}

// The statements are ours and right, so one that makes no sense meets a file that does not.
bool means_damage(int code)
{
    const int kind = code & 0xff;
    return kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB || kind == SQLITE_ERROR;
}

bool lies_there(const std::string& path)
{
    struct stat info = {};
    return lstat(path.c_str(), &info) == 0;
}

bool is_empty_file(const std::string& path)
{
    struct stat info = {};
    return lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && info.st_size == 0;
}

// The index holds nothing that the log does not.
bool holds_something(const std::string& path, const char* log)
{
    return strcmp(log, "-shm") != 0 && lies_there(path + log) && !is_empty_file(path + log);
}

// SQLite takes a database for read-only when its file is, or when its header names a file format of later days.
std::string why_read_only(const std::string& path)
{
    if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        throw DatabaseError{SQLITE_READONLY, errno_text(errno)};
    return "its file format is a later one";
}

// Leaves the database open when there is one.
Finding look(Database& db, const std::string& path, const FolderLock& lock)
{
    if (!lies_there(path)) return {Finding::kNothing};
    if (is_empty_file(path)) {
        // SQLite would do away with the log.
        const bool has_log = holds_something(path, "-wal") || holds_something(path, "-journal");
        return has_log ? Finding{Finding::kDamage, "it is empty beside its log"} : Finding{Finding::kNothing};
    }
    try {
        db.open(path, lock);
        if (db.is_read_only()) return {Finding::kDamage, why_read_only(path)};
        const std::string verdict = db.one<std::string>("PRAGMA quick_check(1)").value_or("no answer");
        if (verdict != "ok") return {Finding::kDamage, verdict};
        const int version = db.one<int>("PRAGMA user_version").value_or(0);
        if (version == schema_version() && !has_all_tables(db))
            return {Finding::kDamage, "its tables are not as they were made"};
        if (version == schema_version()) return {Finding::kWhole};
        return is_fresh(db) ? Finding{Finding::kNothing} : Finding{Finding::kOtherVersion, "", version};
    } catch (const DatabaseError& error) {
        if (!means_damage(error.code)) throw;
        return {Finding::kDamage, error.reason};
    }
}

void rename_file(const std::string& from, const std::string& to)
{
    if (rename(from.c_str(), to.c_str()) != 0) throw DatabaseError{SQLITE_IOERR, errno_text(errno)};
}

// What holds nothing goes along only for sessions that still have the database open.
void move_logs(const std::string& from, const std::string& to, bool is_open)
{
    for (const char* log : kLogs) {
        keep_private(from + log);
        if (is_open ? lies_there(from + log) : holds_something(from, log))
            rename_file(from + log, to + log);
        else
            unlink((from + log).c_str());
    }
}

// The logs go first: without their database they would be taken for stale ones.
void rename_database(const std::string& from, const std::string& to)
{
    keep_private(from);
    move_logs(from, to, !who_has_open(from).empty());
    rename_file(from, to);
}

// The first name that is free. Logs that lie there without a database are this one's, from a process that was killed
// between the renamings, unless it has its own.
std::string free_name(const std::string& from, const std::string& base)
{
    const bool is_open = !who_has_open(from).empty();
    const auto is_free = [&](const std::string& name) {
        return !lies_there(name) && std::none_of(std::begin(kLogs), std::end(kLogs), [&](const char* log) {
            return (is_open || holds_something(from, log)) && lies_there(name + log);
        });
    };
    std::string name = base;
    for (int n = 1; !is_free(name); ++n)
        name = base + "-" + std::to_string(n);
    return name;
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

std::vector<std::string> names_beginning(const std::string& folder, const std::string& start)
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().string());
        if (names.back().rfind(start, 0) != 0) names.pop_back();
    }
    return names;
}

// Where a process that was killed has put the logs of a damaged database, but not the database yet.
std::string begun_name(const std::string& path)
{
    const std::string start = "mobile_ap.db.corrupt-";
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    for (const std::string& log : names_beginning(folder, start)) {
        const std::string name = log.substr(0, log.rfind('-'));
        if (log.substr(name.size()) == "-wal" && !lies_there(folder + name)) return folder + name;
    }
    return folder + start + utc_stamp();
}

std::string set_aside(const std::string& path, const std::string& base)
{
    std::string name = free_name(path, base);
    rename_database(path, name);
    return name;
}

// Logs of a database that was taken away are not for the one that comes in its place.
void put_logs_away(const std::string& path)
{
    move_logs(path, free_name(path, path + ".removed-" + utc_stamp()), false);
}

// The database of this version that another version has set aside. False: there is none.
bool take_back(const std::string& path, const FolderLock& lock)
{
    const std::string name = path + ".version-" + std::to_string(schema_version());
    if (!lies_there(name)) return false;
    put_logs_away(path);
    {
        Database db;
        db.open(name, lock);
        db.empty_log();
    }
    rename_database(name, path);
    return true;
}

// Fills an empty file with the factory state. With its log written ahead, readers never wait, and a process that is
// killed, or a machine that stops, leaves the state before or after a transaction.
void make_tables(Database& db)
{
    db.run_script("PRAGMA journal_mode = MEMORY");
    Transaction making(db, Access::kWrite);
    db.run_script(all_schemas().c_str());
    db.run_script(("PRAGMA user_version = " + std::to_string(schema_version())).c_str());
    making.commit();
    db.run_script("PRAGMA journal_mode = WAL");
}

void remove_logs(const std::string& path)
{
    for (const char* log : kLogs)
        unlink((path + log).c_str());
}

void remove_unfinished(const std::string& path)
{
    remove_logs(path);
    unlink(path.c_str());
}

// Makes the database under another name, so that nobody ever meets half of one. Whoever is killed meanwhile leaves that
// to the next one, who begins anew.
void make(const std::string& path, const FolderLock& lock)
{
    const std::string unfinished = path.substr(0, path.rfind('/')) + "/mobile_ap.new";
    keep_private(unfinished);
    remove_unfinished(unfinished);
    const int fd = ::open(unfinished.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (fd < 0) throw DatabaseError{SQLITE_CANTOPEN, errno_text(errno)};
    ::close(fd);
    try {
        Database db;
        db.open(unfinished, lock);
        make_tables(db);
    } catch (const DatabaseError&) {
        remove_unfinished(unfinished);
        throw;
    }
    remove_logs(unfinished);
    put_logs_away(path);
    rename_file(unfinished, path);
}

// What was set aside by a program that left it open to others. Nobody opens it, so that it may be of any kind.
void close_old_ones_to_others(const std::string& folder)
{
    for (const std::string& name : names_beginning(folder, "mobile_ap.db.")) {
        std::string path = folder;
        path.append("/").append(name);
        struct stat info = {};
        if (lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) close_to_others(path, info);
    }
}

bool open_whole(Database& db, const std::string& folder, const std::string& path)
{
    if (!lies_there(path)) return false;
    const FolderLock lock(folder, FolderLock::kShared);
    if (look(db, path, lock).kind == Finding::kWhole) return true;
    db.close();
    return false;
}

constexpr const char* kFreshSuccessor = ", a factory-fresh one takes its place";

// What was set aside, for people.
struct SetAside {
    std::string damaged;
    std::string other_version;
    const char* successor = kFreshSuccessor;
};

// Sees to it that a whole database lies there, and opens it. Looks first: another process may have seen to it.
void mend(Database& db, const std::string& path, const FolderLock& lock, SetAside& aside)
{
    for (bool made = false;;) {
        const Finding found = look(db, path, lock);
        if (found.kind == Finding::kWhole) return;
        if (made) throw DatabaseError{SQLITE_CORRUPT, "the database cannot be made here"};
        if (found.kind == Finding::kOtherVersion) db.empty_log();
        db.close();
        if (found.kind == Finding::kOtherVersion) {
            aside.other_version = "made by another version of this program; kept as " +
                                  set_aside(path, path + ".version-" + std::to_string(found.version));
        } else if (found.kind == Finding::kDamage) {
            aside.damaged = "damaged (" + found.words + "); set aside as " + set_aside(path, begun_name(path));
        } else if (take_back(path, lock)) {
            aside.successor = ", the one of this version is back in its place";
        } else {
            make(path, lock);
            made = true;
            aside.successor = kFreshSuccessor;  // one that was taken back may have been no better
        }
    }
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
    SetAside aside;
    try {
        close_old_ones_to_others(folder);
        if (!open_whole(db, folder, path)) {
            const FolderLock lock(folder, FolderLock::kExclusive);
            mend(db, path, lock, aside);
        }
    } catch (const DatabaseError& error) {
        problem = error.reason;
    }
    if (!aside.other_version.empty())
        complain("mobile-AP state " + path + ": " + aside.other_version + aside.successor);
    if (!aside.damaged.empty()) problem = aside.damaged + aside.successor;
    if (!problem.empty()) db.close();
    return problem;
}

bool is_of_this_version(Database& db)
{
    return db.one<int>("PRAGMA user_version") == schema_version();
}

void restore_factory(Database& db)
{
    std::vector<std::string> tables;
    {
        Query q = db.query(
            "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'"
            " AND name NOT IN ('mobile_ap', 'indication', 'service', 'event', 'network', 'network_refusal', "
            "'network_delay')"
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
