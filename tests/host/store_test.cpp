// The state as a whole: where it is kept, what happens when it cannot be, and that nothing is lost or mixed.
#include "store.h"

#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <string.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <random>
#include <thread>

#include "addresses.h"
#include "host_fixture.h"
#include "lan_addressing.h"
#include "private_mounts.h"
#include "program.h"
#include "session.h"
#include "state_file.h"
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
    void damage_a_page() const
    {
        std::fstream file(database(), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(4096) << std::string(4096, '\xee');
        EXPECT_TRUE(file.flush());
    }
    std::string name_set_aside() const
    {
        for (const auto& entry : fs::directory_iterator(folder)) {
            const std::string name = entry.path().string();
            if (name.find(".corrupt-") != std::string::npos && name.find("-journal") == std::string::npos &&
                name.find("-wal") == std::string::npos && name.find("-shm") == std::string::npos)
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

TEST_F(StoreHostTest, DefaultPlaceThatCannotBeMade)
{
    unsetenv("MOBILE_AP_STATE");
    std::ofstream(folder + "/file") << "precious";
    setenv("XDG_STATE_HOME", (folder + "/file/state").c_str(), 1);
    EXPECT_EQ(refused(), not_ready_line(folder + "/file/state/zr_nexa", "Not a directory"));
    EXPECT_EQ(read_file(folder + "/file"), "precious");

    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    setenv("XDG_STATE_HOME", (folder + "/state").c_str(), 1);
    const pid_t child = start_child([&] {
        if (getuid() == 0 && setuid(65534) != 0) return 77;
        return refused() == not_ready_line(folder + "/state/zr_nexa", "Permission denied") ? 0 : 1;
    });
    EXPECT_EQ(wait_child(child), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
    EXPECT_FALSE(fs::exists(folder + "/state"));
    unsetenv("XDG_STATE_HOME");
}

TEST_F(StoreHostTest, NoHomeFolderIsKnown)
{
    const pid_t child = start_child([] {
        constexpr uid_t kNobodyAtAll = 4242421;
        clearenv();
        if (getpwuid(kNobodyAtAll) != nullptr || setuid(kNobodyAtAll) != 0) return 77;
        const std::string line =
            not_ready_line("/.local/state/zr_nexa", "no home folder is known; name a folder in MOBILE_AP_STATE");
        return refused() == line ? 0 : 1;
    });
    const int status = wait_child(child);
    if (status == 77) GTEST_SKIP() << "no other user may be taken on here";
    EXPECT_EQ(status, 0);
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
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
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
    if (getuid() == 0) {
        for (const auto& entry : fs::directory_iterator(folder))
            ASSERT_EQ(chown(entry.path().c_str(), 65534, 65534), 0);
    }
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
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
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
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        const std::string told = stderr_of([&] {
            OpenClient client;
            unsigned char state = 0xa5;
            EXPECT_TRUE(client.open);
            EXPECT_TRUE(client.GetIPv4State(&state, &error));
            EXPECT_EQ(state, 1);
            EXPECT_FALSE(client.DisableIPV4(&error));
            EXPECT_FALSE(client.DisableIPV4(&error));
            EXPECT_TRUE(client.GetIPv4State(&state, nullptr));
            EXPECT_EQ(state, 1);
        });
        if (error != QMI_ERR_NO_MEMORY_V01) return 5;
        if (told != "mobile-AP state " + database() + ": No space left on device\n") return 2;
        if (HasFailure() || read_file(database()) != before) return 3;
        fs::remove(folder + "/filler");
        return works() ? 0 : 4;
    });
    const int status = wait_child(child);
    if (status == 77) GTEST_SKIP() << kNoPrivateMounts;
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
    damage_a_page();
    const std::string told = refused();
    EXPECT_NE(told.find(": damaged ("), std::string::npos) << told;
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 1);
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

// What a caller has room for, and what lies behind it.
template <class Record>
struct Room {
    Record record;
    uint8_t behind[4096];

    Room() : record()
    {
        memset(behind, 0xa5, sizeof behind);
    }
    bool is_overrun() const
    {
        return std::any_of(std::begin(behind), std::end(behind), [](uint8_t byte) { return byte != 0xa5; });
    }
};

TEST_F(StoreHostTest, RowsWrittenByHandAreCutToWhatACallerHolds)
{
    Session session(nullptr, nullptr);
    EXPECT_TRUE(method(&session, "Test", &err, [&](Store& db) {
        const std::string numbers = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2003) ";
        for (const char* insert : {
                 "INSERT INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip)"
                 " SELECT i, '', 1, '', '' FROM n",
                 "INSERT INTO vlan SELECT i, 2, 0 FROM n",
                 "INSERT INTO dhcp_reservation SELECT i, i, i, '', 1 FROM n LIMIT 23",
                 "INSERT INTO connected_device SELECT i, 4, '', '', 0, 0 FROM n LIMIT 53",
                 "INSERT INTO connected_device_ipv6 SELECT 50, i FROM n LIMIT 9",
                 "INSERT INTO l2tp_tunnel SELECT 0, i, 0, 4, 1, 0, 0, '', '', '', '', 0 FROM n LIMIT 11",
                 "INSERT INTO gateway_filter SELECT 0, i, 1, 1, 1 FROM n LIMIT 8",
                 "INSERT INTO software_path_address SELECT i, i FROM n LIMIT 8",
                 "INSERT INTO wwan_profile (handle) SELECT i + 1 FROM n LIMIT 52",
                 "INSERT INTO wwan_call (profile, family, state) SELECT i, 4, 'up' FROM n LIMIT 53",
                 "INSERT INTO nat_static_entry SELECT i, 1, '', 1, i, 6 FROM n LIMIT 53",
                 "INSERT INTO firewall_entry SELECT i, 1, 1, 4, 0, '', '', '', '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0"
                 " FROM n LIMIT 53",
                 "INSERT INTO hw_mac_filter_station SELECT i, '' FROM n LIMIT 19",
                 "INSERT INTO hw_mac_filter_interface SELECT i, 1, 2, 3, 4, 5 FROM n LIMIT 11",
                 "INSERT INTO sip_server_network SELECT i, 0, 4, 2, '', '' FROM n LIMIT 28",
                 "INSERT INTO sip_server_network SELECT i + 28, 0, 6, 2, '', '' FROM n LIMIT 28",
             })
            db.run((numbers + insert).c_str());
    })) << err;

    OpenClient client;
    const auto vlans = std::make_unique<Room<qcmap_msgr_vlan_conf_t>>();
    EXPECT_TRUE(client.GetVLANConfig(&vlans->record, &err));
    EXPECT_EQ(vlans->record.count, 2000);
    EXPECT_EQ(vlans->record.vlan[1999].vlan_id, 2000);
    EXPECT_FALSE(vlans->is_overrun());

    Room<qcmap_msgr_dhcp_reservation_v01[20]> reservations;
    unsigned int count = 0;
    EXPECT_TRUE(client.GetDHCPReservRecords(reservations.record, &count, &err));
    EXPECT_EQ(count, 20u);
    EXPECT_FALSE(reservations.is_overrun());

    Room<qcmap_connected_devices> devices;
    EXPECT_TRUE(client.GetConnectedDevicesInfo(&devices.record, &count, &err));
    EXPECT_EQ(count, 50u);
    EXPECT_EQ(devices.record.device[49].ipv6_count, 6u);
    EXPECT_FALSE(devices.is_overrun());

    Room<qcmap_msgr_l2tp_conf_t> tunnels;
    EXPECT_TRUE(client.GetL2TPConfig(&tunnels.record, &err));
    EXPECT_EQ(tunnels.record.tunnel_count, 8u);
    EXPECT_FALSE(tunnels.is_overrun());

    Room<qcmap_msgr_sw_path_filters_conf_t> filters;
    filters.record.request = 2;
    EXPECT_TRUE(client.GetIPPassthroughSoftwarePathFilters(&filters.record, &err));
    EXPECT_EQ(filters.record.count, 5);
    EXPECT_FALSE(filters.is_overrun());

    Room<qcmap_sw_path_filters_ex_ipv4_addr_list> addresses;
    EXPECT_TRUE(client.ZR_GetIPFromSWPathFilters(&addresses.record, &err));
    EXPECT_EQ(addresses.record.count, 5);
    EXPECT_FALSE(addresses.is_overrun());

    Room<qcmap_wwan_policy_list_info> profiles;
    EXPECT_TRUE(client.GetWWANPolicyListEx(&profiles.record, &err));
    EXPECT_EQ(profiles.record.number_of_policies, 50u);
    EXPECT_FALSE(profiles.is_overrun());

    Room<qcmap_connected_wwan_info[50]> connected;
    unsigned char connected_count = 0;
    EXPECT_TRUE(client.GetAllConnectedPDNEx(&connected_count, connected.record, &err));
    EXPECT_EQ(connected_count, 50);
    EXPECT_FALSE(connected.is_overrun());

    Room<qcmap_msgr_snat_entry_config_v01[50]> entries;
    int signed_count = 0;
    EXPECT_TRUE(client.GetStaticNatConfig(entries.record, &signed_count, &err));
    EXPECT_EQ(signed_count, 50);
    EXPECT_FALSE(entries.is_overrun());

    Room<qcmap_msgr_get_firewall_handle_list_conf_t> handles;
    EXPECT_TRUE(client.GetFireWallHandlesList(&handles.record, &err));
    EXPECT_EQ(handles.record.count, 50);
    EXPECT_FALSE(handles.is_overrun());

    Room<qcmap_hw_filter_config> filtering;
    auto state = QCMAP_MSGR_CONFIG_STATE_OFF_V01;
    EXPECT_TRUE(client.GetHWMACFilteringState(&state, &filtering.record, &err));
    EXPECT_EQ(filtering.record.mac_count, 16u);
    EXPECT_EQ(filtering.record.iface_count, 8u);
    EXPECT_FALSE(filtering.is_overrun());

    Room<qcmap_msgr_sip_server_info_v01[25]> servers;
    qcmap_msgr_sip_server_info_v01 configured;
    EXPECT_TRUE(client.GetSIPServerInfo(&configured, servers.record, &signed_count, &err));
    EXPECT_EQ(signed_count, 25);
    EXPECT_FALSE(servers.is_overrun());

    Room<qcmap_msgr_ipv6_sip_server_info_v01[25]> servers6;
    EXPECT_TRUE(client.GetV6SIPServerInfo(servers6.record, &signed_count, &err));
    EXPECT_EQ(signed_count, 25);
    EXPECT_FALSE(servers6.is_overrun());
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

TEST_F(StoreHostTest, DamageSeenByManyIsLookedAtAgain)
{
    std::ofstream(database()) << "junk junk junk junk";
    const int lock = open((folder + "/mobile_ap.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
        children.push_back(start_child([lock] {
            close(lock);
            stderr_of([] { OpenClient(); });
            return 0;
        }));
    }
    // All have seen the junk by then, and wait to set it aside.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    close(lock);
    for (const pid_t child : children)
        EXPECT_EQ(wait_child(child), 0);
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 1);
}

TEST_F(StoreHostTest, LogGoesAlongWithADamagedDatabase)
{
    ASSERT_TRUE(works());
    QCMAP_Client client(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    ASSERT_TRUE(client.DisableIPV4(&err));
    const std::string log = read_file(database() + "-wal");
    ASSERT_FALSE(log.empty());
    damage_a_page();
    EXPECT_NE(refused().find(": damaged ("), std::string::npos);
    EXPECT_TRUE(read_file(name_set_aside() + "-wal") == log);
    EXPECT_TRUE(works());
}

TEST_F(StoreHostTest, DamageIsToldEvenWhenNoneCanTakeItsPlace)
{
    std::ofstream(database()) << "junk junk junk junk";
    signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tiny = {65536, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tiny), 0);
    Store db;
    const std::string problem = mobile_ap::open_state(db, folder);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_NE(problem.find("set aside as " + name_set_aside()), std::string::npos) << problem;
    EXPECT_FALSE(db.is_open());
    EXPECT_TRUE(works());
}

TEST_F(StoreHostTest, LogStaysEmptied)
{
    ASSERT_TRUE(works());
    ASSERT_TRUE(fs::exists(database() + "-wal"));
    EXPECT_EQ(fs::file_size(database() + "-wal"), 0u);
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

TEST_F(StoreHostTest, DatabaseTakenAwayAndMadeAgainByAnother)
{
    auto client = std::make_unique<QCMAP_Client>(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    auto idle = std::make_unique<QCMAP_Client>(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
    EXPECT_TRUE(client->DisableIPV4(&err));
    fs::remove(database());
    int made[2];
    int looked[2];
    ASSERT_EQ(pipe(made), 0);
    ASSERT_EQ(pipe(looked), 0);
    const pid_t other = start_child([&] {
        close(looked[1]);
        QCMAP_Client maker(nullptr, QCMAP_MSGR_ARCH_TYPE_LOCAL_V01, nullptr);
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        char byte = 0;
        const bool good = maker.SetDataPathOptStatus(0, &error) && write(made[1], "", 1) == 1;
        return good && read(looked[0], &byte, 1) == 0 && maker.EnableUPNP(&error) ? 0 : 1;
    });
    char byte = 0;
    EXPECT_EQ(read(made[0], &byte, 1), 1);
    unsigned char state = 0xa5;
    EXPECT_TRUE(client->GetDataPathOptStatus(&state, &err));
    EXPECT_EQ(state, 0) << "the other's change is seen";
    EXPECT_TRUE(client->GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1) << "and not one's own in the file that has gone";
    EXPECT_TRUE(client->SetUPNPNotifyInterval(77, &err));
    idle.reset();  // closes the file that has gone
    client.reset();
    for (const int end : {made[0], made[1], looked[0], looked[1]})
        close(end);
    EXPECT_EQ(wait_child(other), 0);

    OpenClient later;
    unsigned int seconds = 0;
    EXPECT_TRUE(later.GetUPNPNotifyInterval(&seconds, &err));
    EXPECT_EQ(seconds, 77u);
    auto mode = QCMAP_MSGR_UPNP_MODE_DOWN_V01;
    EXPECT_TRUE(later.GetUPNPStatus(&mode, &err));
    EXPECT_EQ(mode, QCMAP_MSGR_UPNP_MODE_UP_V01);
    EXPECT_EQ(files_beginning("mobile_ap.db.corrupt-"), 0);
}

// ---- transactions ----

// Ten seconds on the wall: a process that sleeps uses hardly any time of its own.
TEST_F(StoreHostTest, PatienceWithOthersEndsAfterTenSeconds)
{
    ASSERT_TRUE(works());
    const std::string unmade = folder + "/unmade";
    fs::create_directory(unmade);
    int holding[2];
    ASSERT_EQ(pipe(holding), 0);
    const pid_t holder = start_child([&] {
        Store db;
        if (!mobile_ap::open_state(db, folder).empty()) return 1;
        const mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        const int lock = open((unmade + "/mobile_ap.lock").c_str(), O_RDWR | O_CREAT, 0600);
        if (flock(lock, LOCK_EX) != 0 || write(holding[1], "x", 1) != 1) return 2;
        sleep(20);
        return 0;
    });
    char byte = 0;
    ASSERT_EQ(read(holding[0], &byte, 1), 1);
    const auto start = std::chrono::steady_clock::now();
    const auto waited = [start] { return std::chrono::steady_clock::now() - start >= std::chrono::seconds(10); };
    const pid_t writer = start_child([&] {
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        bool done = true;
        const std::string told = stderr_of([&] { done = OpenClient().EnableIPV4(&error); });
        if (done || error != QMI_ERR_INTERNAL_V01 || !waited()) return 1;
        return told == "mobile-AP state " + database() + ": database is locked\n" ? 0 : 2;
    });
    const pid_t maker = start_child([&] {
        setenv("MOBILE_AP_STATE", unmade.c_str(), 1);
        bool ready = true;
        const std::string told = stderr_of([&] { ready = OpenClient().open; });
        if (ready || !waited()) return 1;
        return told == not_ready_line(unmade + "/mobile_ap.db", "the folder's lock is taken") ? 0 : 2;
    });
    EXPECT_EQ(wait_child(writer), 0);
    EXPECT_EQ(wait_child(maker), 0);
    kill(holder, SIGKILL);
    EXPECT_EQ(wait_child(holder), 1000 + SIGKILL);
    close(holding[0]);
    close(holding[1]);
}

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
    constexpr int kProcesses = kEmulated ? 40 : 200;  // none waits longer than 10 s for the others
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
