// The state as a whole: where it is kept, what happens when it cannot be, and that nothing is lost or mixed.
#include "store.h"

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

#include "addresses.h"
#include "host_fixture.h"
#include "lan_addressing.h"
#include "session.h"
#include "state_place.h"

namespace {

namespace fs = std::filesystem;
using mobile_ap::method;
using mobile_ap::read_method;
using mobile_ap::refuse;
using mobile_ap::refuse_but_keep_changes;
using mobile_ap::Session;
using mobile_ap::Store;
using mobile_ap::succeed_with;

class StoreHostTest : public HostTest {
protected:
    // Opens a session that must not be ready; returns what it told.
    static std::string refused()
    {
        return stderr_of([] {
            OpenClient client;
            EXPECT_FALSE(client.open);
            EXPECT_FALSE(client.IsReady());
            qmi_error_type_v01 error = QMI_ERR_NONE_V01;
            EXPECT_FALSE(client.EnableMobileAP_Ext(&error, 65535));
            EXPECT_EQ(error, QMI_ERR_INTERNAL_V01);
            EXPECT_FALSE(client.EnableIPV4(&error));
            EXPECT_EQ(error, QMI_ERR_INTERNAL_V01);
            EXPECT_TRUE(client.DisableMobileAP(&error));
            EXPECT_EQ(error, QMI_ERR_NONE_V01);
        });
    }
    static std::string not_ready_line(const std::string& path, const std::string& reason)
    {
        return "mobile-AP state " + path + ": " + reason + "; the service is not ready\n";
    }
    std::string database() const
    {
        return folder + "/mobile_ap.db";
    }
    static bool works()
    {
        OpenClient client;
        qmi_error_type_v01 error = QMI_ERR_INTERNAL_V01;
        return client.open && client.EnableIPV4(&error);
    }
    static std::string read_file(const std::string& name)
    {
        std::ifstream file(name, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }
    std::string name_set_aside() const
    {
        for (const auto& entry : fs::directory_iterator(folder)) {
            const std::string name = entry.path().string();
            if (name.find(".corrupt-") != std::string::npos && name.find("-journal") == std::string::npos &&
                name.find("-wal") == std::string::npos)
                return name;
        }
        return "";
    }
};

// ---- where ----

TEST_F(StoreHostTest, NamedFolderMustExist)
{
    setenv("MOBILE_AP_STATE", (folder + "/missing").c_str(), 1);
    EXPECT_EQ(refused(), not_ready_line(folder + "/missing", "No such file or directory"));
    EXPECT_FALSE(fs::exists(folder + "/missing"));
}

TEST_F(StoreHostTest, NamedPlaceMustBeAFolder)
{
    std::ofstream(folder + "/file") << "precious";
    setenv("MOBILE_AP_STATE", (folder + "/file").c_str(), 1);
    EXPECT_EQ(refused(), not_ready_line(folder + "/file", "not a folder"));
    EXPECT_EQ(read_file(folder + "/file"), "precious");
    setenv("MOBILE_AP_STATE", (folder + "/file/below").c_str(), 1);
    EXPECT_EQ(refused(), not_ready_line(folder + "/file/below", "Not a directory"));
}

TEST_F(StoreHostTest, DatabaseThatIsAFolder)
{
    fs::create_directory(database());
    const std::string told = refused();
    EXPECT_EQ(told.rfind("mobile-AP state " + database() + ": ", 0), 0u) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1);
}

TEST_F(StoreHostTest, DefaultPlaceIsMade)
{
    unsetenv("MOBILE_AP_STATE");
    setenv("XDG_STATE_HOME", (folder + "/a/b").c_str(), 1);
    EXPECT_TRUE(works());
    EXPECT_TRUE(fs::exists(folder + "/a/b/zr_nexa/mobile_ap.db"));
    unsetenv("XDG_STATE_HOME");

    const std::string home = getenv("HOME") != nullptr ? getenv("HOME") : "/";
    setenv("HOME", (folder + "/home").c_str(), 1);
    EXPECT_TRUE(works());
    EXPECT_TRUE(fs::exists(folder + "/home/.local/state/zr_nexa/mobile_ap.db"));
    setenv("HOME", home.c_str(), 1);
}

TEST_F(StoreHostTest, PlaceWithoutAnyEnvironment)
{
    const pid_t child = start_child([&] {
        const passwd* user = getpwuid(getuid());
        if (user == nullptr || !enter_private_mounts()) return 77;
        if (mount("tmpfs", user->pw_dir, "tmpfs", 0, nullptr) != 0) return 77;  // the real one is left alone
        const std::string wanted = std::string(user->pw_dir) + "/.local/state/zr_nexa/mobile_ap.db";
        clearenv();
        return works() && fs::exists(wanted) ? 0 : 1;
    });
    const int status = wait_child(child);
    if (status == 77) GTEST_SKIP() << "no private mounts here";
    EXPECT_EQ(status, 0);
}

TEST_F(StoreHostTest, UnwritableFolder)
{
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    const pid_t child = start_child([&] {
        if (getuid() == 0 && setuid(65534) != 0) return 77;
        const std::string told = refused();
        return told == not_ready_line(folder, "Permission denied") ? 0 : 1;
    });
    EXPECT_EQ(wait_child(child), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
}

TEST_F(StoreHostTest, UnwritableDatabase)
{
    ASSERT_TRUE(works());
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    ASSERT_EQ(chmod(database().c_str(), 0444), 0);
    const pid_t child = start_child([&] {
        if (getuid() == 0 && setuid(65534) != 0) return 77;
        return refused() == not_ready_line(database(), "Permission denied") ? 0 : 1;
    });
    EXPECT_EQ(wait_child(child), 0);
}

TEST_F(StoreHostTest, ReadOnlyFileSystem)
{
    ASSERT_TRUE(works());
    const pid_t child = start_child([&] {
        if (!enter_private_mounts()) return 77;
        if (mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr) != 0) return 77;
        if (mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) != 0) return 77;
        return refused() == not_ready_line(folder, "Read-only file system") ? 0 : 1;
    });
    const int status = wait_child(child);
    if (status == 77) GTEST_SKIP() << "no private mounts here";
    EXPECT_EQ(status, 0);
}

TEST_F(StoreHostTest, FullFileSystem)
{
    const pid_t child = start_child([&] {
        if (!enter_private_mounts()) return 77;
        if (mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=8m") != 0) return 77;
        if (!works()) return 1;
        const std::string before = read_file(database());
        std::ofstream(folder + "/filler") << std::string(16 << 20, 'f');
        const std::string told = refused();
        if (told != not_ready_line(folder, "No space left on device")) return 2;
        if (read_file(database()) != before) return 3;
        fs::remove(folder + "/filler");
        return works() ? 0 : 4;
    });
    const int status = wait_child(child);
    if (status == 77) GTEST_SKIP() << "no private mounts here";
    EXPECT_EQ(status, 0);
}

TEST_F(StoreHostTest, DiskFillsUpDuringASession)
{
    const std::string told = stderr_of([&] {
        OpenClient client;
        ASSERT_TRUE(client.open);
        ASSERT_TRUE(client.DisableIPV4(&err));
        signal(SIGXFSZ, SIG_IGN);
        rlimit before = {};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        const rlimit tiny = {1000, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tiny), 0);
        EXPECT_FALSE(client.EnableIPV4(&err));
        EXPECT_NE(err, QMI_ERR_NONE_V01);
        EXPECT_FALSE(client.EnableIPV4(&err));
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
        unsigned char state = 0xa5;
        EXPECT_TRUE(client.GetIPv4State(&state, &err));
        EXPECT_EQ(state, 0);
        EXPECT_TRUE(client.EnableIPV4(&err));
    });
    EXPECT_EQ(told.rfind("mobile-AP state " + database() + ": ", 0), 0u) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
}

// ---- damage ----

TEST_F(StoreHostTest, NotADatabaseIsSetAside)
{
    const std::string junk(5000, 'j');
    std::ofstream(database()) << junk;
    const std::string told = refused();
    const std::string aside = name_set_aside();
    EXPECT_EQ(told, not_ready_line(database(), "damaged (file is not a database); set aside as " + aside +
                                                   ", a factory-fresh one takes its place"));
    EXPECT_EQ(read_file(aside), junk);
    EXPECT_EQ(stderr_of([] { EXPECT_TRUE(works()); }), "");
}

TEST_F(StoreHostTest, DamagedPageIsSetAside)
{
    ASSERT_TRUE(works());
    const int fd = open(database().c_str(), O_WRONLY);
    ASSERT_GE(fd, 0);
    const std::string junk(4096, '\xee');
    ASSERT_EQ(pwrite(fd, junk.data(), junk.size(), 4096), 4096);
    close(fd);
    const std::string told = refused();
    EXPECT_NE(told.find(": damaged ("), std::string::npos) << told;
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 1);
    EXPECT_TRUE(works());
}

TEST_F(StoreHostTest, TablesOfAnotherVersionAreSetAside)
{
    ASSERT_TRUE(works());
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(database().c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, "PRAGMA user_version = 7", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(connection);
    EXPECT_NE(refused().find("its tables are of another version"), std::string::npos);
    EXPECT_TRUE(works());
}

// Tables are there to be read and changed by hand: what no function would have stored must not overrun a caller.
TEST_F(StoreHostTest, ValuesWrittenByHandAreCutToWhatACallerHolds)
{
    OpenClient client;
    qcmap_msgr_l2tp_config_v01 tunnel = {};
    for (tunnel.tunnel_id = 1; tunnel.tunnel_id <= 2; ++tunnel.tunnel_id)
        ASSERT_TRUE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01, tunnel, &err));
    std::string sql = "UPDATE lan_service SET gateway_url = '" + std::string(300, 'w') + "';";
    for (int position = 0; position < 12; ++position)
        sql += "INSERT INTO l2tp_session VALUES (0, 1, " + std::to_string(position) + ", 77, 78);";
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(database().c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);

    unsigned char url[512];
    memset(url, 0xa5, sizeof url);
    unsigned int len = 0;
    ASSERT_TRUE(client.GetGatewayUrl(url, &len, &err));
    EXPECT_EQ(len, 127u);
    EXPECT_EQ(std::string(url, url + 128), std::string(127, 'w') + '\0');
    EXPECT_EQ(url[128], 0xa5);

    static qcmap_msgr_l2tp_conf_t config;
    ASSERT_TRUE(client.GetL2TPConfig(&config, &err));
    ASSERT_EQ(config.tunnel_count, 2u);
    EXPECT_EQ(config.tunnel[0].session_count, 8u);
    EXPECT_EQ(config.tunnel[0].session[7].local_session_id, 77u);
    EXPECT_EQ(config.tunnel[1].tunnel_id, 2u);
    EXPECT_EQ(config.tunnel[1].session_count, 0u);
}

TEST_F(StoreHostTest, ManyThatFindDamageSetOneFileAside)
{
    for (int round = 0; round < 5; ++round) {
        std::ofstream(database()) << "junk junk junk junk " << round;
        std::vector<pid_t> children;
        for (int i = 0; i < 12; ++i) {
            children.push_back(start_child([] {
                const int null = open("/dev/null", O_WRONLY);
                dup2(null, STDERR_FILENO);
                OpenClient client;
                qmi_error_type_v01 error = QMI_ERR_NONE_V01;
                return client.open && !client.DisableIPV4(&error) ? 1 : 0;
            }));
        }
        for (const pid_t child : children)
            EXPECT_EQ(wait_child(child), 0);
        EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), round + 1);
        EXPECT_TRUE(works());
    }
}

TEST_F(StoreHostTest, DatabaseTakenAwayUnderASession)
{
    OpenClient client;
    ASSERT_TRUE(client.DisableIPV4(&err));
    fs::remove(database());
    unsigned char state = 0xa5;
    EXPECT_TRUE(client.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1) << "a fresh one is in its place";
    EXPECT_TRUE(client.DisableIPV4(&err));
    OpenClient other;
    EXPECT_TRUE(other.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 0);

    fs::remove_all(folder);
    const std::string told = stderr_of([&] {
        EXPECT_FALSE(client.EnableIPV4(&err));
        EXPECT_FALSE(client.EnableIPV4(&err));
    });
    EXPECT_EQ(err, QMI_ERR_INTERNAL_V01);
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    fs::create_directory(folder);
    EXPECT_TRUE(client.EnableIPV4(&err));
}

// ---- transactions ----

TEST_F(StoreHostTest, AnErrorWordUndoesEverything)
{
    Session session(nullptr, nullptr);
    EXPECT_FALSE(method(&session, "Test", &err, [](Store& db) {
        db.run("UPDATE data_path SET optimised = 5");
        refuse(QMI_ERR_NO_EFFECT_V01);
    }));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_FALSE(method(&session, "Test", &err, [](Store& db) {
        db.run("UPDATE data_path SET optimised = 6");
        db.select_profile(7);
    }));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    const std::string told = stderr_of([&] {
        EXPECT_FALSE(method(&session, "Test", &err, [](Store& db) {
            db.run("UPDATE data_path SET optimised = 7");
            db.run("UPDATE no_such_table SET x = 1");
        }));
    });
    EXPECT_EQ(told, "mobile-AP state " + database() + ": no such table: no_such_table\n");
    EXPECT_EQ(err, QMI_ERR_INTERNAL_V01);
    int value = 0;
    EXPECT_TRUE(read_method(&session, "Test", &err,
                            [&](Store& db) { value = db.one<int>("SELECT optimised FROM data_path").value_or(-1); }));
    EXPECT_EQ(value, 1);
}

TEST_F(StoreHostTest, ChangesCanBeKeptInSpiteOfAnErrorWord)
{
    Session session(nullptr, nullptr);
    const auto optimised = [&] {
        std::optional<int> value;
        EXPECT_TRUE(read_method(&session, "Test", nullptr,
                                [&](Store& db) { value = db.one<int>("SELECT optimised FROM data_path"); }));
        return value;
    };
    EXPECT_FALSE(method(&session, "Test", &err, [](Store& db) {
        db.run("UPDATE data_path SET optimised = 5");
        refuse_but_keep_changes(QMI_ERR_BACKHAUL_DOWN_V01);
    }));
    EXPECT_EQ(err, QMI_ERR_BACKHAUL_DOWN_V01);
    EXPECT_EQ(optimised(), 5);
    EXPECT_TRUE(method(&session, "Test", &err, [](Store& db) {
        db.run("UPDATE data_path SET optimised = 6");
        succeed_with(QMI_ERR_EMPTY_LIST_V01);
    }));
    EXPECT_EQ(err, QMI_ERR_EMPTY_LIST_V01);
    EXPECT_EQ(optimised(), 6);
}

TEST_F(StoreHostTest, ValuesOfEveryKind)
{
    Session session(nullptr, nullptr);
    EXPECT_TRUE(method(&session, "Test", &err, [](Store& db) {
                    db.run("CREATE TABLE t (a, b, c, d, e)");
                    const uint8_t bytes[] = {0, 1, 255};
                    const uint64_t big = UINT64_MAX;
                    EXPECT_EQ(db.run("INSERT INTO t VALUES (?, ?, ?, ?, ?)", big, std::string("a\0b", 3), "text",
                                     mobile_ap::Blob{bytes, sizeof bytes}, nullptr),
                              1);
                    mobile_ap::Query q = db.query("SELECT a, b, c, d, e FROM t WHERE a = ?", big);
                    EXPECT_TRUE(q.next());
                    EXPECT_EQ(q.get<uint64_t>(0), big);
                    EXPECT_EQ(q.get<std::string>(1), std::string("a\0b", 3));
                    EXPECT_EQ(q.get<std::string>(2), "text");
                    EXPECT_EQ(q.get<std::vector<uint8_t>>(3), std::vector<uint8_t>(bytes, bytes + 3));
                    EXPECT_TRUE(q.is_null(4));
                    EXPECT_FALSE(q.next());
                    EXPECT_EQ(db.one<int>("SELECT e FROM t"), std::nullopt);
                    EXPECT_EQ(db.one<int>("SELECT 1 FROM t WHERE a = 3"), std::nullopt);
                    refuse(QMI_ERR_NO_EFFECT_V01);
                }) == false);
}

TEST_F(StoreHostTest, RestoreWithRowsThatPointAtOthers)
{
    Session session(nullptr, nullptr);
    EXPECT_TRUE(method(&session, "Test", &err, [](Store& db) {
        db.run("CREATE TABLE a_child (parent INTEGER REFERENCES lan_bridge(id))");
        db.run("INSERT INTO a_child VALUES (0)");
        db.run("CREATE TABLE z_parent (id INTEGER PRIMARY KEY)");
        db.run("CREATE TABLE b_child (parent INTEGER REFERENCES z_parent(id))");
        db.run("INSERT INTO z_parent VALUES (1)");
        db.run("INSERT INTO b_child VALUES (1)");
    }));
    OpenClient client;
    EXPECT_TRUE(client.RestoreFactoryConfig(&err)) << err;
    EXPECT_TRUE(read_method(&session, "Test", &err, [](Store& db) {
        EXPECT_EQ(db.one<int>("SELECT count(*) FROM sqlite_schema WHERE name LIKE '%_child'"), 0);
        EXPECT_EQ(db.one<int>("SELECT count(*) FROM lan_bridge"), 1);
    }));
}

TEST_F(StoreHostTest, BridgesOfVlans)
{
    OpenClient client;
    Session session(nullptr, nullptr);
    EXPECT_TRUE(client.ZR_SetDefaultEnableDHCP(QCMAP_MSGR_CONFIG_STATE_OFF_V01, &err));
    const auto on_bridge = [&](int id, void (*work)(Store&, int)) {
        return method(&session, "Test", &err, [&](Store& db) { work(db, id); });
    };
    EXPECT_TRUE(on_bridge(5, mobile_ap::add_bridge));
    EXPECT_FALSE(on_bridge(5, mobile_ap::add_bridge));
    EXPECT_EQ(err, QMI_ERR_ALREADY_THERE_V01);
    EXPECT_TRUE(on_bridge(4094, mobile_ap::add_bridge));
    EXPECT_TRUE(client.SelectLANBridge(4094, &err));
    EXPECT_TRUE(client.SelectLANBridge(5, &err));
    qcmap_msgr_lan_config_v01 lan = {};
    EXPECT_TRUE(client.GetLANConfig(&lan, &err));
    EXPECT_EQ(lan.gateway_ip, 0xc0a8e601u);
    EXPECT_EQ(lan.enable_dhcp, 0);

    EXPECT_TRUE(on_bridge(5, mobile_ap::remove_bridge));
    EXPECT_FALSE(client.GetLANConfig(&lan, &err)) << "the selected bridge has gone";
    EXPECT_EQ(err, QMI_ERR_INVALID_ID_V01);
    EXPECT_FALSE(client.SetLANConfig(lan, &err));
    EXPECT_FALSE(client.ActivateLAN(&err));
    EXPECT_FALSE(on_bridge(5, mobile_ap::remove_bridge));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    EXPECT_FALSE(on_bridge(0, mobile_ap::remove_bridge));
}

TEST_F(StoreHostTest, ManyProcessesLoseNoWrite)
{
    constexpr int kProcesses = 200;
    constexpr int kWrites = 3;
    std::vector<pid_t> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(start_child([] {
            Session session(nullptr, nullptr);
            qmi_error_type_v01 error = QMI_ERR_NONE_V01;
            if (!session.enable(&error)) return 1;
            for (int n = 0; n < kWrites; ++n) {
                const bool good = method(&session, "Increment", &error, [](Store& db) {
                    const int value = db.one<int>("SELECT optimised FROM data_path").value_or(-1000);
                    db.run("UPDATE data_path SET optimised = ?", value + 1);
                });
                if (!good) return 2;
            }
            return 0;
        }));
    }
    for (const pid_t child : children)
        EXPECT_EQ(wait_child(child), 0);
    OpenClient client;
    Session session(nullptr, nullptr);
    EXPECT_TRUE(read_method(&session, "Test", &err, [&](Store& db) {
        EXPECT_EQ(db.one<int>("SELECT optimised FROM data_path"), 1 + kProcesses * kWrites);
    }));
}

TEST_F(StoreHostTest, KilledAtAnyPointLeavesOldOrNew)
{
    ASSERT_TRUE(works());
    std::minstd_rand random(7);
    int last = 0;
    int advanced = 0;
    for (int round = 0; round < 80; ++round) {
        int under_way[2];
        ASSERT_EQ(pipe2(under_way, O_CLOEXEC), 0);
        const pid_t child = start_child([&under_way] {
            Session session(nullptr, nullptr);
            qmi_error_type_v01 error = QMI_ERR_NONE_V01;
            for (bool first = true;; first = false) {
                method(&session, "Test", &error, [](Store& db) {
                    db.run("UPDATE lan_bridge SET lease_time = lease_time + 1, netmask = ?", std::string(3000, 'n'));
                    db.run("UPDATE lan_service SET ipv4_enabled = ipv4_enabled + 1");
                    db.run("UPDATE data_path SET optimised = optimised + 1");
                });
                if (first && write(under_way[1], "", 1) != 1) return 1;
            }
            return 0;
        });
        // A sanitizer takes its time to start; the moment of the kill counts from the first change on.
        close(under_way[1]);
        char byte = 0;
        EXPECT_EQ(read(under_way[0], &byte, 1), 1);
        close(under_way[0]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 15000));
        kill(child, SIGKILL);
        EXPECT_EQ(wait_child(child), 1000 + SIGKILL);
        Session session(nullptr, nullptr);
        ASSERT_TRUE(read_method(&session, "Test", &err, [&](Store& db) {
            const int now = db.one<int>("SELECT lease_time - 43200 FROM lan_bridge").value_or(-1);
            EXPECT_EQ(db.one<int>("SELECT ipv4_enabled - 1 FROM lan_service"), now);
            EXPECT_EQ(db.one<int>("SELECT optimised - 1 FROM data_path"), now);
            EXPECT_GE(now, last);
            advanced += now > last ? 1 : 0;
            last = now;
            EXPECT_EQ(db.one<std::string>("PRAGMA integrity_check"), "ok");
        }));
    }
    EXPECT_EQ(advanced, 80) << "every child must have got somewhere";
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 0);
}

TEST_F(StoreHostTest, KilledWhileItIsMade)
{
    std::minstd_rand random(11);
    for (int round = 0; round < 60; ++round) {
        fs::remove(database());
        const pid_t child = start_child([] {
            Session session(nullptr, nullptr);
            pause();
            return 0;
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 6000));
        kill(child, SIGKILL);
        wait_child(child);
        ASSERT_TRUE(works());
    }
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 0);
}

// ---- addresses ----

TEST(Addresses, ThereAndBack)
{
    using namespace mobile_ap;
    EXPECT_EQ(ipv4_text(0xc0a8e101), "192.168.225.1");
    EXPECT_EQ(ipv4_word("192.168.225.1"), 0xc0a8e101u);
    EXPECT_EQ(ipv4_word("255.255.255.255"), 0xffffffffu);
    EXPECT_EQ(ipv4_word("nonsense"), 0u);
    uint8_t v6[16];
    ipv6_bytes("2001:db8::1", v6);
    EXPECT_EQ(ipv6_text(v6), "2001:db8::1");
    ipv6_bytes("nonsense", v6);
    EXPECT_EQ(ipv6_text(v6), "::");
    uint8_t mac[6];
    mac_bytes("aA:0b:cc:dd:ee:ff", mac);
    EXPECT_EQ(mac_text(mac), "aa:0b:cc:dd:ee:ff");
    mac_bytes("aa:bb", mac);
    EXPECT_EQ(mac_text(mac), "00:00:00:00:00:00");
    char field[4];
    set_field_text(field, sizeof field, "abcdef");
    EXPECT_EQ(field_text(field, sizeof field), "abcd");
    set_field_text(field, sizeof field, "x");
    EXPECT_EQ(memcmp(field, "x\0\0\0", 4), 0);
    EXPECT_EQ(field_text(field, sizeof field), "x");
}

}  // namespace
