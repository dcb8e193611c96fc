// The files of a state folder: who may read them, what lies there instead of them, and how they take turns.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sqlite3.h>
#include <string.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

#include "host_fixture.h"
#include "private_mounts.h"
#include "program.h"
#include "session.h"

namespace {

namespace fs = std::filesystem;
using mobile_ap::method;
using mobile_ap::read_method;
using mobile_ap::Session;
using mobile_ap::Store;

constexpr uid_t kNobody = 65534;

// A connection of somebody else's, who knows nothing of the folder's lock.
class Foreign {
public:
    explicit Foreign(const std::string& path)
    {
        EXPECT_EQ(sqlite3_open(path.c_str(), &connection_), SQLITE_OK);
    }
    ~Foreign()
    {
        sqlite3_close(connection_);
    }
    Foreign(const Foreign&) = delete;
    Foreign& operator=(const Foreign&) = delete;

    int run(const std::string& sql)
    {
        return sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr);
    }
    int empty_log()
    {
        return sqlite3_wal_checkpoint_v2(connection_, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    }
    std::string value(const std::string& sql)
    {
        sqlite3_stmt* statement = nullptr;
        std::string text;
        if (sqlite3_prepare_v2(connection_, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK &&
            sqlite3_step(statement) == SQLITE_ROW && sqlite3_column_text(statement, 0) != nullptr)
            text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        sqlite3_finalize(statement);
        return text;
    }

private:
    sqlite3* connection_ = nullptr;
};

class StateFileTest : public HostTest {
protected:
    std::string database() const
    {
        return folder + "/mobile_ap.db";
    }
    std::string line(const std::string& text) const
    {
        return "mobile-AP state " + database() + ": " + text + "\n";
    }
    // What a session tells that must not be ready.
    static std::string refused()
    {
        return stderr_of([] { EXPECT_FALSE(OpenClient().open); });
    }
    std::string not_ready(const std::string& reason) const
    {
        return line(reason + "; the service is not ready");
    }
    // What a session tells that must be ready, and change something.
    static std::string works()
    {
        return stderr_of([] {
            OpenClient client;
            qmi_error_type_v01 error = QMI_ERR_INTERNAL_V01;
            EXPECT_TRUE(client.open && client.EnableIPV4(&error)) << error;
        });
    }
    static void set_url(std::string url)
    {
        OpenClient client;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        EXPECT_TRUE(client.SetGatewayUrl(reinterpret_cast<unsigned char*>(url.data()),
                                         static_cast<unsigned int>(url.size()), &error))
            << error;
    }
    static std::string url()
    {
        OpenClient client;
        unsigned char text[512] = {};
        unsigned int len = 0;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        EXPECT_TRUE(client.GetGatewayUrl(text, &len, &error)) << error;
        return {text, text + len};
    }
    static std::string read_file(const std::string& name)
    {
        std::ifstream file(name, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }
    static void write_at(const std::string& name, std::streamoff place, const std::string& bytes)
    {
        std::fstream file(name, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(place) << bytes;
        EXPECT_TRUE(file.flush());
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string file_beginning(const std::string& start) const
    {
        for (const std::string& name : files())
            if (name.rfind(start, 0) == 0) return name;
        return "";
    }
    static mode_t mode(const std::string& path)
    {
        struct stat info = {};
        EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
        return info.st_mode & 07777;
    }
};

// ---- opening, making and setting aside keep out of each other's way ----

int say_so = -1;    // a child that has come to its stop says so here
int wait_for = -1;  // and waits there
int stops_left = 0;

void stop_here()
{
    if (stops_left-- != 1) return;
    char byte = 0;
    if (write(say_so, "", 1) != 1 || read(wait_for, &byte, 1) != 1) _exit(99);
}

// Called by SQLite when a file is open and nothing of it is read yet.
int stop_when_open(sqlite3*, const char**, const sqlite3_api_routines*)
{
    stop_here();
    return SQLITE_OK;
}

int stop_before_commit(sqlite3* connection, const char**, const sqlite3_api_routines*)
{
    sqlite3_commit_hook(
        connection,
        [](void*) {
            stop_here();
            return 0;
        },
        nullptr);
    return SQLITE_OK;
}

using Extension = int (*)(sqlite3*, const char**, const sqlite3_api_routines*);

// A process that opens a session and stops where the extension does.
class Stopped {
public:
    explicit Stopped(Extension extension)
    {
        int there[2];
        int back[2];
        EXPECT_EQ(pipe2(there, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(back, O_CLOEXEC), 0);
        child_ = start_child([&] {
            say_so = there[1];
            wait_for = back[0];
            stops_left = 1;
            sqlite3_auto_extension(reinterpret_cast<void (*)()>(extension));
            stderr_of([] { OpenClient(); });
            return 0;
        });
        close(there[1]);
        close(back[0]);
        told_ = there[0];
        go_on_ = back[1];
    }
    ~Stopped()
    {
        close(told_);
        close(go_on_);
    }
    Stopped(const Stopped&) = delete;
    Stopped& operator=(const Stopped&) = delete;

    bool has_stopped(int milliseconds) const
    {
        pollfd wait = {told_, POLLIN, 0};
        return poll(&wait, 1, milliseconds) == 1 && (wait.revents & POLLIN) != 0;
    }
    void go_on()
    {
        signal(SIGPIPE, SIG_IGN);
        EXPECT_TRUE(write(go_on_, "", 1) == 1 || errno == EPIPE) << "unless it has ended without a stop";
    }
    int end() const
    {
        return wait_child(child_);
    }

private:
    pid_t child_ = 0;
    int told_ = -1;
    int go_on_ = -1;
};

TEST_F(StateFileTest, WhoOpensADatabaseNeverTakesTheJournalOfTheNextOne)
{
    EXPECT_EQ(works(), "");
    write_at(database(), 4096, std::string(4096, '\xee'));
    const std::string damaged = read_file(database());
    Stopped opener(stop_when_open);
    ASSERT_TRUE(opener.has_stopped(5000));
    Stopped maker(stop_before_commit);
    EXPECT_FALSE(maker.has_stopped(300)) << "nobody makes a database while another is being opened";
    opener.go_on();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // the opener reads
    EXPECT_FALSE(fs::exists(database() + "-journal"));
    maker.go_on();
    EXPECT_EQ(opener.end(), 0);
    EXPECT_EQ(maker.end(), 0);
    EXPECT_EQ(read_file(folder + "/" + file_beginning("mobile_ap.db.corrupt-")).size(), damaged.size());
    EXPECT_EQ(works(), "");
}

TEST_F(StateFileTest, NothingIsMadeUnderTheDatabasesOwnName)
{
    Stopped maker(stop_before_commit);
    ASSERT_TRUE(maker.has_stopped(5000));
    EXPECT_EQ(file_beginning("mobile_ap.db"), "");
    Stopped opener(stop_when_open);
    EXPECT_FALSE(opener.has_stopped(200));
    maker.go_on();
    ASSERT_TRUE(opener.has_stopped(5000));
    opener.go_on();
    EXPECT_EQ(maker.end(), 0);
    EXPECT_EQ(opener.end(), 0);
    EXPECT_EQ(file_beginning("mobile_ap.new"), "");
}

TEST_F(StateFileTest, OpeningWaitsForWhoSetsAside)
{
    EXPECT_EQ(works(), "");
    const int lock = open((folder + "/mobile_ap.lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    Stopped opener(stop_when_open);
    EXPECT_FALSE(opener.has_stopped(200));
    ASSERT_EQ(flock(lock, LOCK_UN), 0);
    close(lock);
    EXPECT_TRUE(opener.has_stopped(5000));
    opener.go_on();
    EXPECT_EQ(opener.end(), 0);
}

TEST_F(StateFileTest, SetAsideByManyKeepsEveryByte)
{
    constexpr int kRounds = kEmulated ? 4 : 15;
    for (int round = 0; round < kRounds; ++round) {
        EXPECT_EQ(works(), "");
        write_at(database(), 4096, std::string(4096, '\xee'));
        const auto size = fs::file_size(database());
        std::vector<pid_t> children;
        for (int i = 0; i < 8; ++i)
            children.push_back(start_child([] {
                stderr_of([] { OpenClient(); });
                return 0;
            }));
        for (const pid_t child : children)
            EXPECT_EQ(wait_child(child), 0);
        int aside = 0;
        for (const std::string& name : files()) {
            if (name.rfind("mobile_ap.db.corrupt-", 0) != 0) continue;
            ++aside;
            EXPECT_EQ(fs::file_size(folder + "/" + name), size) << name;
        }
        EXPECT_EQ(aside, round + 1);
    }
}

TEST_F(StateFileTest, WhatAKilledMakerLeavesIsNoState)
{
    std::ofstream(folder + "/mobile_ap.new") << "half a database";
    std::ofstream(folder + "/mobile_ap.new-wal") << "and its log";
    EXPECT_EQ(works(), "");
    EXPECT_EQ(url(), "mobileap.home");
    EXPECT_EQ(files(),
              (std::vector<std::string>{"mobile_ap.db", "mobile_ap.db-shm", "mobile_ap.db-wal", "mobile_ap.lock"}));
}

TEST_F(StateFileTest, LogOfADatabaseThatWasTakenAwayIsKept)
{
    set_url("before");
    auto client = std::make_unique<QCMAP_Client>(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    ASSERT_TRUE(client->DisableIPV4(&err));
    const std::string log = read_file(database() + "-wal");
    ASSERT_FALSE(log.empty());
    fs::remove(database());
    EXPECT_EQ(url(), "mobileap.home");
    EXPECT_TRUE(read_file(folder + "/" + file_beginning("mobile_ap.db.removed-")) == log);
}

TEST_F(StateFileTest, EmptyDatabaseBesideItsLogIsDamaged)
{
    EXPECT_EQ(works(), "");
    std::ofstream(database(), std::ios::trunc).flush();
    std::ofstream(database() + "-wal") << "all that is left";
    ASSERT_EQ(chmod((database() + "-wal").c_str(), 0644), 0);
    const std::string told_of_it = refused();
    const std::string aside = database() + file_beginning("mobile_ap.db.corrupt-").substr(strlen("mobile_ap.db"));
    EXPECT_EQ(told_of_it, not_ready("damaged (it is empty beside its log); set aside as " + aside +
                                    ", a factory-fresh one takes its place"));
    EXPECT_EQ(read_file(aside + "-wal"), "all that is left");
    EXPECT_EQ(mode(aside + "-wal"), 0600u);
    EXPECT_EQ(works(), "");
}

TEST_F(StateFileTest, SettingAsideIsGoneOnWithAfterAKill)
{
    std::ofstream(database()) << "junk junk junk junk";
    const std::string begun = database() + ".corrupt-20010203T040506Z";
    std::ofstream(begun + "-wal") << "its log";
    EXPECT_EQ(refused(), not_ready("damaged (file is not a database); set aside as " + begun +
                                   ", a factory-fresh one takes its place"));
    EXPECT_EQ(read_file(begun), "junk junk junk junk");
    EXPECT_EQ(read_file(begun + "-wal"), "its log");
}

// Sessions that still have it open go on with its files, not with those of the next one.
TEST_F(StateFileTest, DatabaseSetAsideUnderASessionTakesAllItsFilesAlong)
{
    OpenClient client;
    ASSERT_TRUE(client.DisableIPV4(&err));
    const auto inode = [](const std::string& path) {
        struct stat info = {};
        EXPECT_EQ(stat(path.c_str(), &info), 0) << path;
        return info.st_ino;
    };
    const ino_t log = inode(database() + "-wal");
    const ino_t index = inode(database() + "-shm");
    Foreign(database()).run("PRAGMA user_version = 7");
    const pid_t other = start_child([] {
        // Without a thread of its own, which this process's child may not start everywhere.
        stderr_of([] { QCMAP_Client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr); });
        return 0;
    });
    EXPECT_EQ(wait_child(other), 0);
    EXPECT_EQ(inode(database() + ".version-7-wal"), log);
    EXPECT_EQ(inode(database() + ".version-7-shm"), index);
    unsigned char state = 0xa5;
    EXPECT_TRUE(client.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1) << "the session has gone on to the fresh one";
}

// ---- two versions ----

TEST_F(StateFileTest, TwoVersionsInTurnsLeaveTwoFiles)
{
    set_url("ours");
    const std::string own = Foreign(database()).value("PRAGMA user_version");
    const std::string aside = database() + ".version-7";
    Foreign(database()).run("PRAGMA user_version = 7");
    EXPECT_EQ(works(), line("made by another version of this program; kept as " + aside +
                            ", a factory-fresh one takes its place"));
    EXPECT_EQ(url(), "mobileap.home");
    EXPECT_EQ(Foreign(aside).value("SELECT gateway_url FROM lan_service"), "ours");
    EXPECT_EQ(works(), "") << "it is told once";

    set_url("ours, too");
    for (int turn = 0; turn < 3; ++turn) {
        // As the other version does it.
        fs::rename(database(), database() + ".version-" + own);
        fs::rename(aside, database());
        EXPECT_EQ(works(), line("made by another version of this program; kept as " + aside +
                                ", the one of this version is back in its place"));
        EXPECT_EQ(url(), "ours, too");
        EXPECT_EQ(files(), (std::vector<std::string>{"mobile_ap.db", "mobile_ap.db-shm", "mobile_ap.db-wal",
                                                     "mobile_ap.db.version-7", "mobile_ap.lock"}));
    }
}

TEST_F(StateFileTest, AnotherVersionsNameThatIsTaken)
{
    EXPECT_EQ(works(), "");
    std::ofstream(database() + ".version-7") << "precious";
    Foreign(database()).run("PRAGMA user_version = 7");
    EXPECT_EQ(works(), line("made by another version of this program; kept as " + database() +
                            ".version-7-1, a factory-fresh one takes its place"));
    EXPECT_EQ(read_file(database() + ".version-7"), "precious");
    EXPECT_EQ(Foreign(database() + ".version-7-1").value("PRAGMA user_version"), "7");
}

TEST_F(StateFileTest, DamagedOneOfThisVersionIsNotTakenBackForGood)
{
    EXPECT_EQ(works(), "");
    const std::string own = Foreign(database()).value("PRAGMA user_version");
    fs::rename(database(), database() + ".version-" + own);
    write_at(database() + ".version-" + own, 0, std::string(100, 'j'));
    const std::string told = refused();
    EXPECT_NE(told.find("damaged (file is not a database); set aside as "), std::string::npos) << told;
    EXPECT_NE(told.find(", a factory-fresh one takes its place; the service"), std::string::npos) << told;
    EXPECT_EQ(works(), "");
    EXPECT_EQ(files_beginning("mobile_ap.db.version-"), 0);
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 1);
}

// ---- who may read ----

TEST_F(StateFileTest, NobodyElseMayRead)
{
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    const mode_t before = umask(0);
    std::ofstream(database()) << "junk junk junk junk";
    refused();
    OpenClient client;
    ASSERT_TRUE(client.DisableIPV4(&err));
    umask(before);
    ASSERT_EQ(files().size(), 5u);
    for (const std::string& name : files())
        EXPECT_EQ(mode(folder + "/" + name), 0600u) << name;
    EXPECT_EQ(mode(folder), 0777u) << "a folder that was named is its owner's affair";
    if (getuid() != 0) GTEST_SKIP() << "no other user may be taken on here";
    const pid_t child = start_child([&] {
        const std::vector<std::string> names = files();
        if (setuid(kNobody) != 0) return 77;
        const bool opened = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return open((folder + "/" + name).c_str(), O_RDONLY) >= 0 || errno != EACCES;
        });
        return opened ? 1 : 0;
    });
    EXPECT_EQ(wait_child(child), 0);
}

TEST_F(StateFileTest, WideFilesAreNarrowedAtOpening)
{
    OpenClient client;
    ASSERT_TRUE(client.DisableIPV4(&err));
    std::ofstream(database() + ".version-7") << "precious";
    std::ofstream(database() + ".corrupt-20250101T000000Z") << "precious";
    for (const std::string& name : files())
        ASSERT_EQ(chmod((folder + "/" + name).c_str(), 0666), 0);
    ASSERT_EQ(chmod(database().c_str(), 0644), 0);
    EXPECT_EQ(works(), "");
    ASSERT_EQ(files().size(), 6u);
    for (const std::string& name : files())
        EXPECT_EQ(mode(folder + "/" + name), 0600u) << name;
}

TEST_F(StateFileTest, DefaultFolderIsClosedToOthers)
{
    unsetenv("MOBILE_AP_STATE");
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
    const mode_t before = umask(0);
    EXPECT_EQ(works(), "");
    umask(before);
    EXPECT_EQ(mode(folder + "/zr_nexa"), 0700u);
    ASSERT_EQ(chmod((folder + "/zr_nexa").c_str(), 0755), 0);
    EXPECT_EQ(works(), "");
    EXPECT_EQ(mode(folder + "/zr_nexa"), 0700u);
    const auto linked = folder + "/elsewhere";
    fs::rename(folder + "/zr_nexa", linked);
    fs::create_symlink(linked, folder + "/zr_nexa");
    ASSERT_EQ(chmod(linked.c_str(), 0755), 0);
    EXPECT_EQ(works(), "");
    EXPECT_EQ(mode(linked), 0755u);
    unsetenv("XDG_STATE_HOME");
}

// ---- what lies there instead ----

TEST_F(StateFileTest, OnlyFilesAreOpened)
{
    EXPECT_EQ(works(), "");
    const std::string outside = folder + "/outside";
    std::ofstream(outside) << "precious";
    struct Kind {
        const char* name;
        void (*make)(const std::string& path);
    };
    const Kind kinds[] = {
        {"a FIFO", [](const std::string& path) { EXPECT_EQ(mkfifo(path.c_str(), 0600), 0); }},
        {"a folder", [](const std::string& path) { EXPECT_TRUE(fs::create_directory(path)); }},
        {"a symbolic link", [](const std::string& path) { fs::create_symlink("outside", path); }},
        {"a socket",
         [](const std::string& path) {
             sockaddr_un address = {AF_UNIX, ""};
             path.copy(address.sun_path, sizeof address.sun_path - 1);
             const int end = socket(AF_UNIX, SOCK_STREAM, 0);
             EXPECT_EQ(bind(end, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
             close(end);
         }},
    };
    for (const char* name :
         {"mobile_ap.db", "mobile_ap.db-wal", "mobile_ap.db-shm", "mobile_ap.db-journal", "mobile_ap.lock"}) {
        const std::string path = folder + "/" + name;
        const bool was_there = fs::exists(path);
        if (was_there) fs::rename(path, folder + "/away");
        for (const Kind& kind : kinds) {
            kind.make(path);
            const auto start = std::chrono::steady_clock::now();
            const pid_t child = start_child([&] {
                alarm(5);
                return refused() == not_ready(std::string(name) + ": " + kind.name + ", not a file") ? 0 : 1;
            });
            EXPECT_EQ(wait_child(child), 0) << name << " as " << kind.name;
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(kEmulated ? 4 : 1));
            fs::remove(path);
        }
        if (was_there) fs::rename(folder + "/away", path);
    }
    fs::rename(database(), folder + "/away");
    fs::remove(database() + "-shm");
    ASSERT_EQ(mkfifo((database() + "-shm").c_str(), 0600), 0);
    EXPECT_EQ(refused(), not_ready("mobile_ap.db-shm: a FIFO, not a file")) << "not even where one is made";
    EXPECT_TRUE(fs::is_fifo(database() + "-shm"));
    fs::remove(database() + "-shm");
    fs::remove(folder + "/mobile_ap.new");
    fs::create_symlink("outside", folder + "/mobile_ap.new");
    EXPECT_EQ(refused(), not_ready("mobile_ap.new: a symbolic link, not a file"));
    fs::remove(folder + "/mobile_ap.new");
    fs::rename(folder + "/away", database());
    EXPECT_EQ(read_file(outside), "precious");
    EXPECT_EQ(works(), "");
}

TEST_F(StateFileTest, LockThatCannotBeOpened)
{
    EXPECT_EQ(works(), "");
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    ASSERT_EQ(chmod((folder + "/mobile_ap.lock").c_str(), 0), 0);
    const pid_t child = start_child([&] {
        if (getuid() == 0 && setuid(kNobody) != 0) return 77;
        return refused() == not_ready("mobile_ap.lock: Permission denied") ? 0 : 1;
    });
    EXPECT_EQ(wait_child(child), 0);
}

TEST_F(StateFileTest, LockThatIsTakenAwayMeanwhile)
{
    EXPECT_EQ(works(), "");
    const std::string path = folder + "/mobile_ap.lock";
    const int lock = open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    Stopped opener(stop_when_open);
    EXPECT_FALSE(opener.has_stopped(100));
    fs::remove(path);
    ASSERT_EQ(flock(lock, LOCK_UN), 0);
    close(lock);
    ASSERT_TRUE(opener.has_stopped(5000));
    const int next = open(path.c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(flock(next, LOCK_EX | LOCK_NB), -1) << "the opener holds the lock that lies there";
    opener.go_on();
    EXPECT_EQ(opener.end(), 0);
    close(next);
}

TEST_F(StateFileTest, FoldersMayBeLinks)
{
    fs::create_directory(folder + "/real");
    fs::create_symlink("real", folder + "/link");
    setenv("MOBILE_AP_STATE", (folder + "/link").c_str(), 1);
    EXPECT_EQ(works(), "");
    EXPECT_TRUE(fs::exists(folder + "/real/mobile_ap.db"));
}

TEST_F(StateFileTest, PathTooLongForSqlite)
{
    std::string deep = folder;
    while (deep.size() < 520)
        deep += "/" + std::string(100, 'd');
    fs::create_directories(deep);
    setenv("MOBILE_AP_STATE", deep.c_str(), 1);
    EXPECT_EQ(refused(),
              "mobile-AP state " + deep + "/mobile_ap.db: the path is too long for SQLite; the service is not ready\n");
}

TEST_F(StateFileTest, LaterFileFormatIsSetAside)
{
    for (const std::streamoff byte : {18, 19}) {
        EXPECT_EQ(works(), "");
        write_at(database(), byte, "\3");
        const std::string damaged = read_file(database());
        EXPECT_NE(refused().find(": damaged ("), std::string::npos);
        const std::string aside = folder + "/" + file_beginning("mobile_ap.db.corrupt-");
        EXPECT_TRUE(read_file(aside) == damaged) << byte;
        EXPECT_EQ(works(), "");
        fs::remove(aside);
    }
}

// ---- snapshots ----

// SQLite takes any text for a definition that it can read.
TEST_F(StateFileTest, TablesThatAreNotAsTheyWereMadeAreDamage)
{
    EXPECT_EQ(works(), "");
    EXPECT_EQ(Foreign(database()).run("CREATE TABLE mine (a); CREATE INDEX by_a ON mine (a)"), SQLITE_OK);
    EXPECT_EQ(works(), "");
    EXPECT_EQ(Foreign(database())
                  .run("PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql ="
                       " replace(sql, 'handle INTEGER', 'candle INTEGER') WHERE name = 'mobile_ap'"),
              SQLITE_OK);
    EXPECT_NE(refused().find("damaged (its tables are not as they were made); set aside as "), std::string::npos);
    EXPECT_EQ(works(), "");
}

TEST_F(StateFileTest, FormatOfTheTablesThatNobodyKnowsIsDamage)
{
    EXPECT_EQ(works(), "");
    EXPECT_EQ(Foreign(database()).empty_log(), SQLITE_OK);
    std::fstream(database(), std::ios::binary | std::ios::in | std::ios::out).seekp(47) << "w";
    EXPECT_NE(refused().find("damaged (unsupported file format); set aside as "), std::string::npos);
    EXPECT_EQ(works(), "");
}

TEST_F(StateFileTest, SnapshotOfAnotherLetsTheLogGrowOnlySoFar)
{
    Session session(nullptr, nullptr);
    const auto write_mebibyte = [&] {
        return method(&session, "Test", &err, [](Store& db) { db.run("UPDATE big SET bytes = randomblob(1 << 20)"); });
    };
    ASSERT_TRUE(method(&session, "Test", &err, [](Store& db) {
        db.run("CREATE TABLE big (bytes)");
        db.run("INSERT INTO big VALUES (NULL)");
    }));
    int reading[2];
    ASSERT_EQ(pipe2(reading, O_CLOEXEC), 0);
    const pid_t reader = start_child([&] {
        Foreign foreign(database());
        foreign.run("BEGIN; SELECT * FROM big");
        if (write(reading[1], "", 1) != 1) return 1;
        pause();
        return 0;
    });
    char byte = 0;
    ASSERT_EQ(read(reading[0], &byte, 1), 1);
    const std::string process = "process " + std::to_string(reader);
    int written = 0;
    const std::string long_log = stderr_of([&] {
        while (written < 100 && write_mebibyte())
            ++written;
    });
    EXPECT_EQ(err, QMI_ERR_NO_MEMORY_V01);
    EXPECT_NEAR(written, 64, 2);
    EXPECT_EQ(long_log, line("the log is longer than 16 MiB, as " + process +
                             " does not end a read transaction; beyond 64 MiB nothing can be changed") +
                            line("the log is longer than 64 MiB, as " + process +
                                 " does not end a read transaction; nothing can be changed until that ends"));
    EXPECT_TRUE(read_method(&session, "Test", &err,
                            [](Store& db) { EXPECT_EQ(db.one<int>("SELECT length(bytes) FROM big"), 1 << 20); }));
    const std::string next_one = stderr_of([&] {
        OpenClient client;
        EXPECT_TRUE(client.open);
        EXPECT_FALSE(client.DisableIPV4(&err));
        EXPECT_FALSE(client.DisableIPV4(&err));
    });
    EXPECT_EQ(err, QMI_ERR_NO_MEMORY_V01);
    EXPECT_EQ(next_one, line("the log is longer than 64 MiB, as " + process +
                             " does not end a read transaction; nothing can be changed until that ends"));
    kill(reader, SIGKILL);
    EXPECT_EQ(wait_child(reader), 1000 + SIGKILL);
    EXPECT_TRUE(write_mebibyte()) << err;
    EXPECT_LT(fs::file_size(database() + "-wal"), 4u << 20);
    close(reading[0]);
    close(reading[1]);
}

TEST_F(StateFileTest, NoSessionHoldsASnapshotBetweenMethods)
{
    Session session(nullptr, nullptr);
    ASSERT_TRUE(session.enable(&err));
    Foreign foreign(database());
    const auto expect_none = [&](const char* after) {
        EXPECT_EQ(foreign.run("UPDATE data_path SET optimised = optimised + 1"), SQLITE_OK) << after;
        int code = SQLITE_BUSY;
        for (int i = 0; i < 100 && code != SQLITE_OK; ++i) {  // the listener reads now and then
            code = foreign.empty_log();
            if (code != SQLITE_OK) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_EQ(code, SQLITE_OK) << after;
    };
    expect_none("opening");
    const auto rows = "SELECT name FROM sqlite_schema";
    EXPECT_TRUE(read_method(&session, "Test", &err, [&](Store& db) {
        mobile_ap::Query q = db.query(rows);
        EXPECT_TRUE(q.next());
    }));
    expect_none("a read");
    EXPECT_FALSE(read_method(&session, "Test", &err, [&](Store& db) {
        mobile_ap::Query q = db.query(rows);
        EXPECT_TRUE(q.next());
        mobile_ap::refuse(QMI_ERR_NO_ENTRY_V01);
    }));
    expect_none("a refusal");
    stderr_of([&] {
        EXPECT_FALSE(method(&session, "Test", &err, [&](Store& db) {
            mobile_ap::Query q = db.query(rows);
            EXPECT_TRUE(q.next());
            db.run("UPDATE no_such_table SET x = 1");
        }));
    });
    expect_none("a failure");
    EXPECT_TRUE(session.disable(&err));
    expect_none("the end of listening");
}

// A session's connection is left without a transaction even where undoing one finds no memory.
TEST_F(StateFileTest, FailedMethodsLeaveNoTransaction)
{
    Session session(nullptr, nullptr);
    Foreign foreign(database());
    const auto change = [&] {
        return method(&session, "Test", &err, [](Store& db) { db.run("UPDATE data_path SET optimised = 5"); });
    };
    EXPECT_FALSE(method(&session, "Test", &err, [](Store& db) {
        db.run("UPDATE data_path SET optimised = 7");
        sqlite3_hard_heap_limit64(1);
        mobile_ap::refuse(QMI_ERR_NO_EFFECT_V01);
    }));
    sqlite3_hard_heap_limit64(0);
    EXPECT_EQ(foreign.run("BEGIN EXCLUSIVE; ROLLBACK"), SQLITE_OK);
    EXPECT_EQ(foreign.value("SELECT optimised FROM data_path"), "1");
    EXPECT_TRUE(change()) << err;
    EXPECT_EQ(foreign.value("SELECT optimised FROM data_path"), "5");
}

TEST_F(StateFileTest, FailedReadsLeaveNoTransaction)
{
    Session session(nullptr, nullptr);
    ASSERT_TRUE(method(&session, "Test", &err, [](Store& db) {
        db.run("CREATE TABLE filler (i, bytes)");
        db.run(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20)"
            " INSERT INTO filler SELECT i, randomblob(1 << 20) FROM n");
    }));
    Foreign foreign(database());
    ASSERT_EQ(foreign.empty_log(), SQLITE_OK);
    // By a process of its own: this one's locks on the file would go with its closing.
    const auto write_there = [&](const std::string& bytes) {
        const auto place = static_cast<std::streamoff>(fs::file_size(database()) - bytes.size());
        EXPECT_EQ(wait_child(start_child([&] {
                      write_at(database(), place, bytes);
                      return 0;
                  })),
                  0);
    };
    std::string end(4 << 20, '\0');
    EXPECT_EQ(wait_child(start_child([&] {
                  const std::string all = read_file(database());
                  std::ofstream(folder + "/end") << all.substr(all.size() - end.size());
                  return 0;
              })),
              0);
    end = read_file(folder + "/end");
    const auto sum = [&](Store& db) { return db.one<int64_t>("SELECT sum(i + length(hex(bytes))) FROM filler"); };
    for (int round = 0; round < 2; ++round) {
        fs::resize_file(database(), fs::file_size(database()) - end.size());
        stderr_of([&] {
            for (int i = 0; i < 3; ++i)
                EXPECT_FALSE(read_method(&session, "Test", &err, [&](Store& db) { sum(db); }));
        });
        EXPECT_EQ(err, QMI_ERR_INTERNAL_V01);
        EXPECT_EQ(foreign.run("BEGIN IMMEDIATE; ROLLBACK"), SQLITE_OK);
        EXPECT_EQ(foreign.empty_log(), SQLITE_OK);
        fs::resize_file(database(), fs::file_size(database()) + end.size());
        write_there(end);
        EXPECT_TRUE(read_method(&session, "Test", &err, [&](Store& db) {
            EXPECT_EQ(sum(db), 210 + 20 * (int64_t{2} << 20));
        })) << err;
    }
}

}  // namespace
