// WAN provisioning with the real tool, one process a command, on one state.
#include <sqlite3.h>
#include <sys/resource.h>

#include "run_tool.h"

namespace {

constexpr const char* kOk = "CMD OK\r\n";

class WanTest : public ToolTest {
protected:
    // A change of the state that no command of this test makes.
    void change_state(const std::string& sql) const
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(database().c_str(), &db), SQLITE_OK);
        sqlite3_busy_timeout(db, 10000);
        EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
    }
};

TEST_F(WanTest, AWholeProvisioningSession)
{
    // Profiles.
    expect({"WAN", "WWANConfig", "get"},
           "WAN WWANConfig List:\r\n"
           "wwanconfig num = 1\r\n"
           "default wwanconfig handle = 1\r\n"
           "\r\n"
           "wwan_handle:1  tech_pref:0  apn_id:1\r\n"
           "CMD OK\r\n");
    expect({"WAN", "WWANConfig", "add", "0", "2"}, "WAN WWANConfig add success, new wwan_handle = 2\r\nCMD OK\r\n");
    expect({"WAN", "WWANConfig", "set", "2", "1", "16"}, "WAN WWANConfig modify success\r\nCMD OK\r\n");
    expect({"WAN", "WWANConfig", "setdefault", "2"},
           "WAN WWANConfig set default wwanconfig handle = 2 success\r\nCMD OK\r\n");
    expect({"WAN", "WWANConfig", "get"},
           "WAN WWANConfig List:\r\n"
           "wwanconfig num = 2\r\n"
           "default wwanconfig handle = 2\r\n"
           "\r\n"
           "wwan_handle:1  tech_pref:0  apn_id:1\r\n"
           "wwan_handle:2  tech_pref:1  apn_id:16\r\n"
           "CMD OK\r\n");
    expect({"WAN", "APWWAN", "set", "2", "1"}, "WAN APWWAN modify success\r\nCMD OK\r\n");
    expect({"WAN", "APWWAN", "get"},
           "WAN APWWAN Config:\r\nAP wwanconfig handle = 2\r\nAP DNS wwanconfig handle = 1\r\nCMD OK\r\n");

    // Both connections come up, with addresses.
    expect({"WAN", "Status", "get", "2"}, "WAN Status:\r\nv4 disconnected\r\nv6 disconnected\r\nCMD OK\r\n");
    expect({"WAN", "Info", "get", "2"}, "WAN Info: disconnected\r\nCMD OK\r\n");
    expect({"WAN", "Connect", "connect", "2", "46"},
           "WAN Connect connect v4 set success\r\nWAN Connect connect v6 set success\r\nCMD OK\r\n");
    expect({"WAN", "Status", "get", "2"}, "WAN Status:\r\nv4 connected\r\nv6 connected\r\nCMD OK\r\n");
    expect({"WAN", "Status", "get", "1"}, "WAN Status:\r\nv4 disconnected\r\nv6 disconnected\r\nCMD OK\r\n");
    expect({"WAN", "Info", "get", "2"},
           "WAN Info: connected\r\n"
           "Interface Name          : wwan1\n"
           "Public IPv4 Address     : 10.102.0.2\n"
           "Public IPv4 Netmask     : 255.255.255.252\n"
           "Gateway IPv4 Address    : 10.102.0.1\n"
           "Pri DNS IPv4 Address    : 192.0.2.53\n"
           "Sec DNS IPv4 Address    : 198.51.100.53\n"
           "IPv4 MTU                : 1500\n"
           "Public IPv6 Address     : 2001:db8:2::2/64\n"
           "Gateway IPv6 Address    : 2001:db8:2::1\n"
           "Pri DNS IPv6 Address    : 2001:db8:ffff::53\n"
           "Sec DNS IPv6 Address    : 2001:db8:ffff::153\n"
           "IPv6 MTU                : 1500\n"
           "\n"
           "CMD OK\r\n");
    expect({"WAN", "Info", "get", "1"}, "WAN Info: disconnected\r\nCMD OK\r\n");

    // A VLAN goes out through the profile.
    expect({"WAN", "MPDNMapping", "add", "2", "10"}, "CMD Error#0x200e\r\n");
    expect({"LAN", "VLAN", "add", "10", "1", "0"}, kOk);
    expect({"WAN", "MPDNMapping", "add", "2", "10"}, "WAN MPDNMapping add success\r\nCMD OK\r\n");
    expect({"WAN", "MPDNMapping", "get"},
           "WAN MPDNMapping List:\r\n"
           "MPDNMapping rule num: 1\r\n"
           "wwan_handle: 2  (v)lan_id: 10\r\n"
           "CMD OK\r\n");

    // Modes.
    expect({"WAN", "AutoConnect", "get", "2"}, "WAN AutoConnect disabled\r\nCMD OK\r\n");
    expect({"WAN", "AutoConnect", "set", "2", "1"}, "WAN AutoConnect set enable success\r\nCMD OK\r\n");
    expect({"WAN", "AutoConnect", "get", "2"}, "WAN AutoConnect enabled\r\nCMD OK\r\n");
    expect({"WAN", "ReConnect", "get", "2"}, "WAN ReConnect disabled\r\nCMD OK\r\n");
    expect({"WAN", "ReConnect", "set", "2", "1"}, "WAN ReConnect set enable success\r\nCMD OK\r\n");
    expect({"WAN", "ReConnect", "get", "2"}, "WAN ReConnect enabled\r\nCMD OK\r\n");
    expect({"WAN", "AutoConnect", "set", "2", "0"}, "WAN AutoConnect set disable success\r\nCMD OK\r\n");
    expect({"WAN", "AutoConnect", "get", "2"}, "WAN AutoConnect disabled\r\nCMD OK\r\n");
    expect({"WAN", "ReConnect", "get", "2"}, "WAN ReConnect enabled\r\nCMD OK\r\n");
    expect({"WAN", "ReConnect", "set", "2", "256"}, "WAN ReConnect set disable success\r\nCMD OK\r\n");
    expect({"WAN", "ReConnect", "get", "2"}, "WAN ReConnect disabled\r\nCMD OK\r\n");
    expect({"WAN", "AutoConnect", "get", "1"}, "WAN AutoConnect disabled\r\nCMD OK\r\n");

    // And all of it taken back.
    expect({"WAN", "Connect", "disconnect", "2", "4"}, "WAN Connect disconnect v4 set success\r\nCMD OK\r\n");
    expect({"WAN", "Status", "get", "2"}, "WAN Status:\r\nv4 disconnected\r\nv6 connected\r\nCMD OK\r\n");
    expect({"WAN", "Connect", "disconnect", "2", "6"}, "WAN Connect disconnect v6 set success\r\nCMD OK\r\n");
    expect({"WAN", "Status", "get", "2"}, "WAN Status:\r\nv4 disconnected\r\nv6 disconnected\r\nCMD OK\r\n");
    expect({"WAN", "Info", "get", "2"}, "WAN Info: disconnected\r\nCMD OK\r\n");
    expect({"WAN", "MPDNMapping", "del", "2", "10"}, "WAN MPDNMapping del success\r\nCMD OK\r\n");
    expect({"WAN", "MPDNMapping", "get"}, "WAN MPDNMapping List:\r\nMPDNMapping rule num: 0\r\nCMD OK\r\n");
    expect({"WAN", "APWWAN", "set", "1", "1"}, "WAN APWWAN modify success\r\nCMD OK\r\n");
    expect({"WAN", "WWANConfig", "setdefault", "1"},
           "WAN WWANConfig set default wwanconfig handle = 1 success\r\nCMD OK\r\n");
    expect({"WAN", "WWANConfig", "del", "2"}, "WAN WWANConfig delete success\r\nCMD OK\r\n");
    expect({"WAN", "WWANConfig", "get"},
           "WAN WWANConfig List:\r\n"
           "wwanconfig num = 1\r\n"
           "default wwanconfig handle = 1\r\n"
           "\r\n"
           "wwan_handle:1  tech_pref:0  apn_id:1\r\n"
           "CMD OK\r\n");
    expect({"WAN", "Status", "get", "2"}, "CMD Error#0x1009\r\n");
}

TEST_F(WanTest, ConnectingBothFamiliesReportsIpv6Alone)
{
    expect({"WAN", "Connect", "connect", "1", "4"}, "WAN Connect connect v4 set success\r\nCMD OK\r\n");
    // IPv4 is up already, which is refused.
    expect({"WAN", "Connect", "connect", "1", "4"}, "CMD Error#0x201a\r\n");
    expect({"WAN", "Connect", "connect", "1", "46"}, "WAN Connect connect v6 set success\r\nCMD OK\r\n");
    expect({"WAN", "Connect", "disconnect", "1", "4"}, "WAN Connect disconnect v4 set success\r\nCMD OK\r\n");
    expect({"WAN", "Connect", "connect", "1", "302"}, "WAN Connect connect v4 set success\r\nCMD Error#0x201a\r\n");
    expect({"WAN", "Connect", "disconnect", "1", "46"},
           "WAN Connect disconnect v4 set success\r\nWAN Connect disconnect v6 set success\r\nCMD OK\r\n");
    expect({"WAN", "Connect", "disconnect", "1", "46"}, "CMD Error#0x301a\r\n");
}

TEST_F(WanTest, AFaultyConnectionIsOneLine)
{
    ToolOptions faulty = options();
    faulty.variables = {"MOBILE_AP_FAULTS=ConnectBackHaul#1=fail:43"};
    expect({"WAN", "Connect", "connect", "1", "46"}, faulty, "WAN Connect connect v6 set success\r\nCMD OK\r\n", "");
    faulty.variables = {"MOBILE_AP_FAULTS=GetWWANStatus=ok:7"};
    expect({"WAN", "Status", "get", "1"}, faulty, "CMD Error#0x7\r\n", "");
}

TEST_F(WanTest, UnknownProfilesAreRefused)
{
    for (const char* handle : {"2", "51", "256", "65536", "-1", "2147483647"}) {
        expect({"WAN", "Status", "get", handle}, "CMD Error#0x1009\r\n");
        expect({"WAN", "Connect", "connect", handle, "4"}, "CMD Error#0x1009\r\n");
        expect({"WAN", "Connect", "connect", handle, "46"}, "CMD Error#0x1009\r\n");
        expect({"WAN", "AutoConnect", "get", handle}, "CMD Error#0x1009\r\n");
        expect({"WAN", "ReConnect", "set", handle, "1"}, "CMD Error#0x1009\r\n");
        expect({"WAN", "WWANConfig", "del", handle}, "CMD Error#0x1009\r\n");
        expect({"WAN", "WWANConfig", "set", handle, "0", "1"}, "CMD Error#0x1009\r\n");
        expect({"WAN", "WWANConfig", "setdefault", handle}, "CMD Error#0x1009\r\n");
        expect({"WAN", "APWWAN", "set", "1", handle}, "CMD Error#0x1009\r\n");
        expect({"WAN", "MPDNMapping", "add", handle, "10"}, "CMD Error#0x1009\r\n");
        // Details are looked for, not selected.
        expect({"WAN", "Info", "get", handle}, "WAN Info: disconnected\r\nCMD OK\r\n");
    }
    expect({"WAN", "APWWAN", "get"},
           "WAN APWWAN Config:\r\nAP wwanconfig handle = 1\r\nAP DNS wwanconfig handle = 1\r\nCMD OK\r\n");
}

TEST_F(WanTest, WhatTheInterfaceRefuses)
{
    expect({"WAN", "WWANConfig", "add", "0", "0"}, "CMD Error#0x4\r\n");
    expect({"WAN", "WWANConfig", "set", "1", "0", "0"}, "CMD Error#0x4\r\n");
    expect({"WAN", "MPDNMapping", "add", "1", "0"}, "CMD Error#0x6\r\n");
    expect({"WAN", "MPDNMapping", "del", "1", "0"}, "CMD Error#0x6\r\n");
    expect({"WAN", "RestartRadvd", "restart", "1"}, "CMD Error#0x3\r\n");
}

TEST_F(WanTest, TheTableOfProfilesHoldsFifty)
{
    std::string profiles = "wwan_handle:1  tech_pref:0  apn_id:1\r\n";
    for (int handle = 2; handle <= 50; ++handle) {
        const std::string number = std::to_string(handle);
        expect({"WAN", "WWANConfig", "add", "2", "3"},
               "WAN WWANConfig add success, new wwan_handle = " + number + "\r\nCMD OK\r\n");
        profiles += "wwan_handle:" + number + "  tech_pref:2  apn_id:3\r\n";
    }
    expect({"WAN", "WWANConfig", "add", "2", "3"}, "CMD Error#0x103e\r\n");
    expect({"WAN", "WWANConfig", "get"},
           "WAN WWANConfig List:\r\nwwanconfig num = 50\r\ndefault wwanconfig handle = 1\r\n\r\n" + profiles + kOk);
}

TEST_F(WanTest, TheLongestListOfMappingsIsPrintedWhole)
{
    expect({"WAN", "MPDNMapping", "get"}, "WAN MPDNMapping List:\r\nMPDNMapping rule num: 0\r\nCMD OK\r\n");
    change_state(
        "WITH RECURSIVE profile(p) AS (SELECT 2 UNION ALL SELECT p + 1 FROM profile WHERE p < 50)"
        " INSERT INTO wwan_profile (handle) SELECT p FROM profile;"
        "WITH RECURSIVE profile(p) AS (SELECT 1 UNION ALL SELECT p + 1 FROM profile WHERE p < 50),"
        " vlan(v) AS (SELECT 1 UNION ALL SELECT v + 1 FROM vlan WHERE v < 4094)"
        " INSERT INTO pdn_vlan_mapping (profile, vlan_id) SELECT p, v FROM profile, vlan;");
    std::string listed = "WAN MPDNMapping List:\r\nMPDNMapping rule num: 204700\r\n";
    for (int profile = 1; profile <= 50; ++profile) {
        for (int vlan_id = 1; vlan_id <= 4094; ++vlan_id) {
            listed += "wwan_handle: " + std::to_string(profile) + "  (v)lan_id: " + std::to_string(vlan_id) + "\r\n";
        }
    }
    // The record has no place on a stack of this size.
    ToolOptions small_stack = options();
    small_stack.before_exec = [] {
        const rlimit limit = {512 * 1024, 512 * 1024};
        setrlimit(RLIMIT_STACK, &limit);
    };
    // Long enough for the thread that listens for indications to look around, which has a stack of its own.
    small_stack.variables = {"MOBILE_AP_FAULTS=GetPDNtoVLANMappingsEx=delay:500"};
    const ToolRun run = run_tool({"WAN", "MPDNMapping", "get"}, small_stack);
    EXPECT_TRUE(run.out == listed + kOk) << run.out.size() << " bytes";
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
}

}  // namespace
