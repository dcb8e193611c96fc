#include <cstring>

#include "cli_test.h"

namespace {

class WanCliTest : public CliTest {
protected:
    void give_profiles(uint32_t default_handle, const std::vector<qcmap_net_policy_info>& profiles)
    {
        qcmap_wwan_policy_list_info list = {};
        list.default_profile_handle = default_handle;
        list.number_of_policies = static_cast<uint32_t>(profiles.size());
        std::copy(profiles.begin(), profiles.end(), list.policy);
        platform.on("GetWWANPolicyListEx").gives("list", list);
    }
    void give_status(uint32_t v4, uint32_t v6)
    {
        platform.on("GetWWANStatus")
            .gives("v4_status", static_cast<qcmap_msgr_wwan_status_enum_v01>(v4))
            .gives("v6_status", static_cast<qcmap_msgr_wwan_status_enum_v01>(v6));
    }
    void give_connection(const qcmap_connected_wwan_info& pdn)
    {
        platform.on("GetAllConnectedPDNEx").gives("count", static_cast<unsigned char>(1)).gives_array("pdn", &pdn, 1);
    }
    void give_mappings(const std::vector<qcmap_pdn_to_vlan_mapping>& mappings)
    {
        platform.on("GetPDNtoVLANMappingsEx")
            .gives("count", static_cast<int>(mappings.size()))
            .gives_array("mapping", mappings.data(), mappings.size());
    }
};

constexpr const char* kSelecting = "SetWWANProfileHandlePreference";

std::string selected(const std::string& handle)
{
    return "SetWWANProfileHandlePreference(" + handle + ")";
}

qcmap_net_policy_info profile(uint32_t handle, uint64_t tech_pref, uint8_t apn_id)
{
    qcmap_net_policy_info info = {};
    info.profile_handle = handle;
    info.tech_pref = tech_pref;
    info.profile_index_3gpp = apn_id;
    info.profile_index_3gpp2 = 99;
    return info;
}

// The platform's record of a profile, as a command builds it.
std::string policy(int tech_pref, int apn_id)
{
    const std::string index = std::to_string(apn_id);
    return "profile_handle=0 tech_pref=" + std::to_string(tech_pref) + " ip_family=10 profile_index_3gpp=" + index +
           " profile_index_3gpp2=" + index + " apn_name=\"\" call_bringup_mode=0)";
}

std::string create(int tech_pref, int apn_id)
{
    return "CreateWWANPolicyEx(" + policy(tech_pref, apn_id);
}

std::vector<std::string> update(const std::string& handle, int tech_pref, int apn_id)
{
    return {selected(handle), "UpdateWWANPolicyEx(update=1 " + policy(tech_pref, apn_id),
            "UpdateWWANPolicyEx(update=6 " + policy(tech_pref, apn_id)};
}

// ---- WWANConfig ----

TEST_F(WanCliTest, ListsTheProfiles)
{
    const std::vector<std::string> calls = {"GetWWANPolicyListEx()"};
    const std::string none = "WAN WWANConfig List:\r\nwwanconfig num = 0\r\nCMD OK\r\n";
    // Words behind "get" are ignored, as long as they are not too many.
    expect({{"WAN WWANConfig get", none, calls},
            {"WAN WWANConfig get x", none, calls},
            {"WAN WWANConfig get x ''", none, calls},
            {"WAN WWANConfig get x '' 1", none, calls}});
    expect_invalid({"WAN WWANConfig get x '' 1 2"});

    give_profiles(2, {profile(1, 0, 1), profile(2, 2, 16), profile(0xFFFFFFFF, 0x1FF, 255)});
    expect({{"WAN WWANConfig get",
             "WAN WWANConfig List:\r\n"
             "wwanconfig num = 3\r\n"
             "default wwanconfig handle = 2\r\n"
             "\r\n"
             "wwan_handle:1  tech_pref:0  apn_id:1\r\n"
             "wwan_handle:2  tech_pref:2  apn_id:16\r\n"
             "wwan_handle:-1  tech_pref:255  apn_id:255\r\n"
             "CMD OK\r\n",
             calls}});

    give_profiles(0, {profile(7, 1, 2)});
    expect({{"WAN WWANConfig get",
             "WAN WWANConfig List:\r\n"
             "wwanconfig num = 1\r\n"
             "wwan_handle:7  tech_pref:1  apn_id:2\r\n"
             "CMD OK\r\n",
             calls},
            {"WAN WWANConfig get", "CMD Error#0x1003\r\n", calls, "GetWWANPolicyListEx", 3}});
}

TEST_F(WanCliTest, ListsAFullTable)
{
    std::vector<qcmap_net_policy_info> profiles;
    std::string list = "WAN WWANConfig List:\r\nwwanconfig num = 50\r\ndefault wwanconfig handle = 50\r\n\r\n";
    for (uint32_t handle = 1; handle <= 50; ++handle) {
        profiles.push_back(profile(handle, 0, 4));
        list += "wwan_handle:" + std::to_string(handle) + "  tech_pref:0  apn_id:4\r\n";
    }
    give_profiles(50, profiles);
    expect({{"WAN WWANConfig get", list + "CMD OK\r\n", {"GetWWANPolicyListEx()"}}});
}

TEST_F(WanCliTest, AddsAProfile)
{
    // Without a handle there is no line.
    expect({{"WAN WWANConfig add 0 1", "CMD OK\r\n", {create(0, 1)}}});
    platform.on("CreateWWANPolicyEx").gives("handle", 0xFFFFFFFFu);
    expect(
        {{"WAN WWANConfig add 0 1", "WAN WWANConfig add success, new wwan_handle = -1\r\nCMD OK\r\n", {create(0, 1)}}});

    platform.on("CreateWWANPolicyEx").gives("handle", 5u);
    const std::string added = "WAN WWANConfig add success, new wwan_handle = 5\r\nCMD OK\r\n";
    expect({{"WAN WWANConfig add 0 1", added, {create(0, 1)}},
            {"WAN WWANConfig add 2 16", added, {create(2, 16)}},
            // Both are cut to 8 bits; what is no number is 0.
            {"WAN WWANConfig add 257 260", added, {create(1, 4)}},
            {"WAN WWANConfig add -254 -255", added, {create(2, 1)}},
            {"WAN WWANConfig add x 3abc", added, {create(0, 3)}},
            {"WAN WWANConfig add '' ' 7'", added, {create(0, 7)}},
            // APN 0 is the interface's to refuse.
            {"WAN WWANConfig add 0 0", "CMD Error#0x4\r\n"},
            {"WAN WWANConfig add 2 256", "CMD Error#0x4\r\n"},
            {"WAN WWANConfig add 0 x", "CMD Error#0x4\r\n"},
            {"WAN WWANConfig add 0 1", "CMD Error#0x103e\r\n", {create(0, 1)}, "CreateWWANPolicyEx", 62}});
    expect_invalid("WAN WWANConfig add 0 ?", {"17", "255", "-1"});
    expect_invalid("WAN WWANConfig add ? 1", {"3", "-1"});
}

TEST_F(WanCliTest, SetsAProfile)
{
    const std::string done = "WAN WWANConfig modify success\r\nCMD OK\r\n";
    expect({{"WAN WWANConfig set 5 1 16", done, update("5", 1, 16)},
            // The handle keeps all its bits, the others 8.
            {"WAN WWANConfig set 256 258 257", done, update("256", 2, 1)},
            {"WAN WWANConfig set -1 0 1", done, update("4294967295", 0, 1)},
            {"WAN WWANConfig set 1 1 0", "CMD Error#0x4\r\n"},
            {"WAN WWANConfig set 1 1 1", "CMD Error#0x1009\r\n", {selected("1")}, kSelecting, 9},
            {"WAN WWANConfig set 1 1 1",
             "CMD Error#0x2003\r\n",
             {selected("1"), "UpdateWWANPolicyEx(update=1 " + policy(1, 1)},
             "UpdateWWANPolicyEx",
             3}});
    expect_invalid({"WAN WWANConfig set 0 1 1", "WAN WWANConfig set x 1 1", "WAN WWANConfig set 1 3 1",
                    "WAN WWANConfig set 1 1 17"});
}

TEST_F(WanCliTest, DeletesAProfile)
{
    expect_each(
        {"WAN WWANConfig del ?", "WAN WWANConfig delete success\r\nCMD OK\r\n", {selected("?"), "DeleteWWANPolicy()"}},
        {{"3", "3"}, {"65536", "65536"}});
    expect({{"WAN WWANConfig del 3",
             "CMD Error#0x2000\r\n",
             {selected("3"), "DeleteWWANPolicy()"},
             "DeleteWWANPolicy",
             0}});
    expect_invalid("WAN WWANConfig del ?", {"0", "abc"});
}

TEST_F(WanCliTest, SetsTheDefaultProfile)
{
    const std::string make_default =
        "UpdateWWANPolicyEx(update=7 profile_handle=0 tech_pref=0 ip_family=0 profile_index_3gpp=0 "
        "profile_index_3gpp2=0 apn_name=\"\" call_bringup_mode=0)";
    expect({{"WAN WWANConfig setdefault 4",
             "WAN WWANConfig set default wwanconfig handle = 4 success\r\nCMD OK\r\n",
             {selected("4"), make_default}},
            {"WAN WWANConfig setdefault -2",
             "WAN WWANConfig set default wwanconfig handle = -2 success\r\nCMD OK\r\n",
             {selected("4294967294"), make_default}},
            {"WAN WWANConfig setdefault 4", "CMD Error#0x1009\r\n", {selected("4")}, kSelecting, 9}});
    expect_invalid({"WAN WWANConfig setdefault 0"});
}

// ---- APWWAN ----

TEST_F(WanCliTest, PrintsTheApsProfiles)
{
    const std::vector<std::string> calls = {"GetAPProfileHandle()"};
    expect({{"WAN APWWAN get",
             "WAN APWWAN Config:\r\nAP wwanconfig handle = 0\r\nAP DNS wwanconfig handle = 0\r\nCMD OK\r\n", calls}});
    platform.on("GetAPProfileHandle").gives("ap", 3u).gives("apdns", 50u);
    expect({{"WAN APWWAN get",
             "WAN APWWAN Config:\r\nAP wwanconfig handle = 3\r\nAP DNS wwanconfig handle = 50\r\nCMD OK\r\n", calls},
            {"WAN APWWAN get", "CMD Error#0x1019\r\n", calls, "GetAPProfileHandle", 25}});
}

TEST_F(WanCliTest, SetsTheApsProfiles)
{
    const std::string done = "WAN APWWAN modify success\r\nCMD OK\r\n";
    expect({{"WAN APWWAN set 3 50", done, {"SetAPProfileHandle(ap=3 apdns=50)"}},
            {"WAN APWWAN set 256 -1", done, {"SetAPProfileHandle(ap=256 apdns=4294967295)"}},
            {"WAN APWWAN set 3 50",
             "CMD Error#0x1009\r\n",
             {"SetAPProfileHandle(ap=3 apdns=50)"},
             "SetAPProfileHandle",
             9}});
    expect_invalid("WAN APWWAN set ? 1", {"0", "x"});
    expect_invalid("WAN APWWAN set 1 ?", {"0", "x"});
}

// ---- Status ----

TEST_F(WanCliTest, PrintsTheStatus)
{
    const std::vector<std::pair<uint32_t, std::string>> v4 = {{1, "v4 connecting\r\n"},
                                                              {3, "v4 connected\r\n"},
                                                              {4, "v4 disconnecting\r\n"},
                                                              {6, "v4 disconnected\r\n"},
                                                              {0, ""},
                                                              {2, ""},
                                                              {5, ""},
                                                              {7, ""},
                                                              {9, ""},
                                                              {13, ""},
                                                              {0x80000001, ""},
                                                              {0xFFFFFFFF, ""}};
    const std::vector<std::pair<uint32_t, std::string>> v6 = {{7, "v6 connecting\r\n"},
                                                              {9, "v6 connected\r\n"},
                                                              {10, "v6 disconnecting\r\n"},
                                                              {12, "v6 disconnected\r\n"},
                                                              {0, ""},
                                                              {1, ""},
                                                              {3, ""},
                                                              {8, ""},
                                                              {11, ""},
                                                              {13, ""},
                                                              {0x80000001, ""},
                                                              {0xFFFFFFFF, ""}};
    for (const auto& [v4_status, v4_line] : v4) {
        for (const auto& [v6_status, v6_line] : v6) {
            give_status(v4_status, v6_status);
            expect({{"WAN Status get 1",
                     "WAN Status:\r\n" + v4_line + v6_line + "CMD OK\r\n",
                     {selected("1"), "GetWWANStatus()"}}});
        }
    }
    expect({{"WAN Status get 2", "CMD Error#0x2003\r\n", {selected("2"), "GetWWANStatus()"}, "GetWWANStatus", 3},
            {"WAN Status get -2", "CMD Error#0x1009\r\n", {selected("4294967294")}, kSelecting, 9}});
    expect_invalid("WAN Status get ?", {"0", "x", ""});
}

// ---- Connect ----

TEST_F(WanCliTest, ConnectsAndDisconnects)
{
    const std::string on4 = "WAN Connect connect v4 set success\r\n";
    const std::string on6 = "WAN Connect connect v6 set success\r\n";
    const std::string off4 = "WAN Connect disconnect v4 set success\r\n";
    const std::string off6 = "WAN Connect disconnect v6 set success\r\n";
    const std::string ok = "CMD OK\r\n";
    expect({{"WAN Connect connect 1 4", on4 + ok, {selected("1"), "ConnectBackHaul(1)"}},
            {"WAN Connect disconnect 1 4", off4 + ok, {selected("1"), "DisconnectBackHaul(1)"}},
            {"WAN Connect connect 7 6", on6 + ok, {selected("7"), "ConnectBackHaul(2)"}},
            {"WAN Connect disconnect 7 6", off6 + ok, {selected("7"), "DisconnectBackHaul(2)"}},
            {"WAN Connect connect 7 46",
             on4 + on6 + ok,
             {selected("7"), "ConnectBackHaul(1)", selected("7"), "ConnectBackHaul(2)"}},
            {"WAN Connect disconnect 7 46",
             off4 + off6 + ok,
             {selected("7"), "DisconnectBackHaul(1)", selected("7"), "DisconnectBackHaul(2)"}},
            // The IP type is cut to 8 bits, the handle keeps all.
            {"WAN Connect connect 1 302",
             on4 + on6 + ok,
             {selected("1"), "ConnectBackHaul(1)", selected("1"), "ConnectBackHaul(2)"}},
            {"WAN Connect connect 256 260", on4 + ok, {selected("256"), "ConnectBackHaul(1)"}},
            {"WAN Connect disconnect -1 -250", off6 + ok, {selected("4294967295"), "DisconnectBackHaul(2)"}}});
    const std::string on = "ConnectBackHaul";
    const std::string off = "DisconnectBackHaul";
    expect({{"WAN Connect connect 1 4", "CMD Error#0x2003\r\n", {selected("1"), on + "(1)"}, on, 3},
            {"WAN Connect connect 1 6", "CMD Error#0x2003\r\n", {selected("1"), on + "(2)"}, on, 3},
            {"WAN Connect disconnect 1 4", "CMD Error#0x301a\r\n", {selected("1"), off + "(1)"}, off, 26},
            {"WAN Connect disconnect 1 6", "CMD Error#0x301a\r\n", {selected("1"), off + "(2)"}, off, 26}});
}

TEST_F(WanCliTest, OfBothFamiliesOnlyIpv6IsReported)
{
    const struct {
        std::string option, method, verdict;
    } rows[] = {{"connect", "ConnectBackHaul", "CMD Error#0x2003\r\n"},
                {"disconnect", "DisconnectBackHaul", "CMD Error#0x3003\r\n"}};
    for (const auto& row : rows) {
        const std::string line = "WAN Connect " + row.option + " 1 46";
        const std::vector<std::string> calls = {selected("1"), row.method + "(1)", selected("1"), row.method + "(2)"};
        platform.on(row.method, 1).fails(43);
        expect({{line, "WAN Connect " + row.option + " v6 set success\r\nCMD OK\r\n", calls}});
        platform.on(row.method, 2).fails(3);
        expect({{line, row.verdict, calls}});
        platform.on(row.method, 1).succeeds();
        expect({{line, "WAN Connect " + row.option + " v4 set success\r\n" + row.verdict, calls}});
        platform.reset();
    }
    platform.on(kSelecting, 1).fails(9);
    expect({{"WAN Connect connect 1 46",
             "WAN Connect connect v6 set success\r\nCMD OK\r\n",
             {selected("1"), selected("1"), "ConnectBackHaul(2)"}}});
}

TEST_F(WanCliTest, ConnectRefuses)
{
    for (const char* line : {"WAN Connect connect 1 ?", "WAN Connect disconnect 1 ?"})
        expect_invalid(line, {"0", "5", "10", "12", "45", "47", "64", "x", "", "-4", "256", "303"});
    expect_invalid({"WAN Connect connect 0 4", "WAN Connect connect x 46", "WAN Connect disconnect 0 4",
                    "WAN Connect disconnect x 46"});
    expect_invalid("WAN Connect ? 1 46", {"", "Connect", "get", "connec", "disconnected"});
}

// ---- ReConnect and AutoConnect ----

// The same command under both names; the texts differ in the name only.
TEST_F(WanCliTest, ModesAreReadAndSwitched)
{
    const struct {
        std::string setting, setter, getter;
    } rows[] = {{"WAN ReConnect", "SetReconnect", "GetReconnect"},
                {"WAN AutoConnect", "SetAutoconnect", "GetAutoconnect"}};
    for (const auto& row : rows) {
        const std::vector<std::string> calls = {selected("4"), row.getter + "()"};
        const std::string disabled = row.setting + " disabled\r\nCMD OK\r\n";
        const std::string enabled = row.setting + " enabled\r\nCMD OK\r\n";
        // An output that the platform leaves alone reads as off. A sixth word is ignored.
        expect({{row.setting + " get 4", disabled, calls}, {row.setting + " get 4 1", disabled, calls}});
        for (const int on : {1, 2, 255}) {
            platform.on(row.getter).gives("enable", static_cast<unsigned char>(on));
            expect({{row.setting + " get 4", enabled, calls}, {row.setting + " get 4 x", enabled, calls}});
        }
        expect({{row.setting + " get 4", "CMD Error#0x2007\r\n", calls, row.getter, 7}});

        const std::string disable = row.setting + " set disable success\r\nCMD OK\r\n";
        const std::string enable = row.setting + " set enable success\r\nCMD OK\r\n";
        const std::string set0 = row.setter + "(0)";
        const std::string set1 = row.setter + "(1)";
        expect({{row.setting + " set 1 0", disable, {selected("1"), set0}},
                {row.setting + " set 1 1", enable, {selected("1"), set1}},
                // The mode is cut to 8 bits, the handle keeps all.
                {row.setting + " set 1 256", disable, {selected("1"), set0}},
                {row.setting + " set 256 257", enable, {selected("256"), set1}},
                {row.setting + " set -1 -255", enable, {selected("4294967295"), set1}},
                {row.setting + " set 1 off", disable, {selected("1"), set0}},
                {row.setting + " set 1 1", "CMD Error#0x2003\r\n", {selected("1"), set1}, row.setter, 3},
                {row.setting + " set 1 0", "CMD Error#0x3003\r\n", {selected("1"), set0}, row.setter, 3}});

        expect_invalid(row.setting + " ? 0", {"get", "set"});
        expect_invalid(row.setting + " ? 0 1", {"get", "set"});
        expect_invalid(row.setting + " ? x 1", {"get", "set"});
        expect_invalid(row.setting + " set 1 ?", {"2", "255", "-1"});
    }
}

// ---- Info ----

TEST_F(WanCliTest, PrintsTheDetailsOfAConnection)
{
    qcmap_connected_wwan_info pdn = {};
    pdn.profile_handle = 3;
    std::memcpy(pdn.iface_name, "abcdefghijklmnop", 16);  // fills its field
    std::memcpy(&pdn.v4_addr, "\x0a\x01\x02\x03", 4);
    std::memcpy(&pdn.v4_netmask, "\xff\xff\xff\xf8", 4);
    std::memcpy(&pdn.v4_gw_addr, "\x0a\x01\x02\x01", 4);
    std::memcpy(&pdn.v4_pri_dns_addr, "\x08\x08\x04\x04", 4);
    std::memcpy(&pdn.v4_sec_dns_addr, "\xff\xfe\xfd\xfc", 4);
    pdn.v4_mtu = 1500;
    pdn.v6_prefix = 64;
    std::memcpy(pdn.v6_addr, "\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\x10", 16);
    std::memset(pdn.v6_gw_addr, 0xFE, 16);
    std::memcpy(pdn.v6_pri_dns_addr, "\x20\x01\x0d\xb8\0\x01\0\x02\0\x03\0\x04\0\x05\0\x06", 16);
    pdn.v6_mtu = 1280;
    give_connection(pdn);
    expect({{"WAN Info get 3",
             "WAN Info: connected\r\n"
             "Interface Name          : abcdefghijklmnop\n"
             "Public IPv4 Address     : 10.1.2.3\n"
             "Public IPv4 Netmask     : 255.255.255.248\n"
             "Gateway IPv4 Address    : 10.1.2.1\n"
             "Pri DNS IPv4 Address    : 8.8.4.4\n"
             "Sec DNS IPv4 Address    : 255.254.253.252\n"
             "IPv4 MTU                : 1500\n"
             "Public IPv6 Address     : 2001:db8::10/64\n"
             "Gateway IPv6 Address    : fefe:fefe:fefe:fefe:fefe:fefe:fefe:fefe\n"
             "Pri DNS IPv6 Address    : 2001:db8:1:2:3:4:5:6\n"
             "Sec DNS IPv6 Address    : ::\n"
             "IPv6 MTU                : 1280\n"
             "\n"
             "CMD OK\r\n",
             {"GetAllConnectedPDNEx()"}}});
}

TEST_F(WanCliTest, PrintsAConnectionWithoutAddresses)
{
    qcmap_connected_wwan_info pdn = {};
    pdn.profile_handle = 0xFFFFFFFF;
    pdn.v4_mtu = 0xFFFFFFFF;
    pdn.v6_prefix = 255;
    // The longest text of an IPv6 address.
    std::memset(pdn.v6_sec_dns_addr, 0xFF, 16);
    give_connection(pdn);
    expect({{"WAN Info get -1",
             "WAN Info: connected\r\n"
             "Interface Name          : \n"
             "Public IPv4 Address     : 0.0.0.0\n"
             "Public IPv4 Netmask     : 0.0.0.0\n"
             "Gateway IPv4 Address    : 0.0.0.0\n"
             "Pri DNS IPv4 Address    : 0.0.0.0\n"
             "Sec DNS IPv4 Address    : 0.0.0.0\n"
             "IPv4 MTU                : -1\n"
             "Public IPv6 Address     : ::/255\n"
             "Gateway IPv6 Address    : ::\n"
             "Pri DNS IPv6 Address    : ::\n"
             "Sec DNS IPv6 Address    : ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff\n"
             "IPv6 MTU                : 0\n"
             "\n"
             "CMD OK\r\n",
             {"GetAllConnectedPDNEx()"}}});
}

TEST_F(WanCliTest, PrintsThatAProfileIsDisconnected)
{
    expect({{"WAN Info get 3", "WAN Info: disconnected\r\nCMD OK\r\n", {"GetAllConnectedPDNEx()"}},
            {"WAN Info get 3", "CMD Error#0x1003\r\n", {"GetAllConnectedPDNEx()"}, "GetAllConnectedPDNEx", 3}});
    expect_invalid("WAN Info get ?", {"0", "x"});
}

// ---- MPDNMapping ----

TEST_F(WanCliTest, ListsTheMappings)
{
    const std::vector<std::string> calls = {"GetPDNtoVLANMappingsEx()"};
    std::vector<qcmap_pdn_to_vlan_mapping> mappings(2);
    mappings[0].profile_handle = 1;
    mappings[0].vlan_count = 2;
    mappings[0].vlan_id[0] = 10;
    mappings[0].vlan_id[1] = 4094;
    mappings[1].profile_handle = 0xFFFFFFFF;
    mappings[1].vlan_count = 1;
    mappings[1].vlan_id[0] = -1;
    give_mappings(mappings);
    const std::string list =
        "WAN MPDNMapping List:\r\n"
        "MPDNMapping rule num: 3\r\n"
        "wwan_handle: 1  (v)lan_id: 10\r\n"
        "wwan_handle: 1  (v)lan_id: 4094\r\n"
        "wwan_handle: -1  (v)lan_id: 65535\r\n"
        "CMD OK\r\n";
    expect({{"WAN MPDNMapping get", list, calls},
            {"WAN MPDNMapping get x ''", list, calls},
            {"WAN MPDNMapping get", "CMD Error#0x1003\r\n", calls, "GetPDNtoVLANMappingsEx", 3}});
}

TEST_F(WanCliTest, ListsAsManyMappingsAsThereCanBe)
{
    std::vector<qcmap_pdn_to_vlan_mapping> mappings(50);
    std::string list = "WAN MPDNMapping List:\r\nMPDNMapping rule num: 204700\r\n";
    for (uint32_t handle = 1; handle <= 50; ++handle) {
        mappings[handle - 1].profile_handle = handle;
        mappings[handle - 1].vlan_count = 4094;
        for (int vlan_id = 1; vlan_id <= 4094; ++vlan_id) {
            mappings[handle - 1].vlan_id[vlan_id - 1] = static_cast<int16_t>(vlan_id);
            list += "wwan_handle: " + std::to_string(handle) + "  (v)lan_id: " + std::to_string(vlan_id) + "\r\n";
        }
    }
    give_mappings(mappings);
    EXPECT_TRUE(run("WAN MPDNMapping get") == list + "CMD OK\r\n");
    platform.forget();
    // A short list after a long one.
    give_mappings({});
    expect({{"WAN MPDNMapping get",
             "WAN MPDNMapping List:\r\nMPDNMapping rule num: 0\r\nCMD OK\r\n",
             {"GetPDNtoVLANMappingsEx()"}}});
}

TEST_F(WanCliTest, AddsAndDeletesMappings)
{
    const std::string added = "WAN MPDNMapping add success\r\nCMD OK\r\n";
    const std::string deleted = "WAN MPDNMapping del success\r\nCMD OK\r\n";
    const auto calls = [](const std::string& method, const std::string& handle, const std::string& lan_id) {
        return std::vector<std::string>{selected(handle), "SelectLANBridge(" + lan_id + ")",
                                        method + "(vlan_id=" + lan_id + " profile_handle=" + handle + ")"};
    };
    const std::string add = "AddPDNToVLANMapping";
    const std::string del = "DeletePDNToVLANMapping";
    expect({{"WAN MPDNMapping add 1 10", added, calls(add, "1", "10")},
            {"WAN MPDNMapping del 1 10", deleted, calls(del, "1", "10")},
            {"WAN MPDNMapping add -1 4094", added, calls(add, "4294967295", "4094")},
            // The LAN id is cut to 16 bits, the handle keeps all.
            {"WAN MPDNMapping add 65536 65538", added, calls(add, "65536", "2")},
            {"WAN MPDNMapping del 256 -65533", deleted, calls(del, "256", "3")},
            {"WAN MPDNMapping add 1 10", "CMD Error#0x3076\r\n", calls(add, "1", "10"), add, 118},
            {"WAN MPDNMapping del 1 10", "CMD Error#0x3019\r\n", calls(del, "1", "10"), del, 25},
            {"WAN MPDNMapping add 1 10",
             "CMD Error#0x200e\r\n",
             {selected("1"), "SelectLANBridge(10)"},
             "SelectLANBridge",
             14}});
    for (const char* line : {"WAN MPDNMapping add 1 ?", "WAN MPDNMapping del 1 ?"}) {
        // The default LAN is left to the interface to refuse.
        expect_each({line, "CMD Error#0x6\r\n"}, {{"0", ""}, {"x", ""}, {"", ""}, {"65536", ""}});
        expect_invalid(line, {"1", "4095", "4096", "65535", "-1", "65537", "-65535"});
    }
    expect_invalid("WAN MPDNMapping add ? 10", {"0", "x"});
    expect_invalid("WAN MPDNMapping del ? 10", {"0", "x"});
}

// ---- RestartRadvd ----

TEST_F(WanCliTest, RestartingRadvdIsNotAvailable)
{
    expect_each({"WAN RestartRadvd restart ?", "CMD Error#0x3\r\n"}, {{"1", ""}, {"65536", ""}});
    EXPECT_EQ(run("WAN RestartRadvd restart -1"), "CMD Error#0x3\r\n");
    EXPECT_THAT(platform.journal, testing::IsEmpty());
    EXPECT_THAT(platform.log, testing::IsEmpty());
    expect_invalid("WAN RestartRadvd restart ?", {"0", "x"});
}

}  // namespace
