#include "cli_test.h"

namespace {

std::string selected(uint32_t handle)
{
    return "SetWWANProfileHandlePreference(" + std::to_string(handle) + ")";
}

// The platform's record of a profile, as a command builds it.
std::string policy(int tech_pref, int apn_id)
{
    const std::string index = std::to_string(apn_id);
    return "profile_handle=0 tech_pref=" + std::to_string(tech_pref) + " ip_family=10 profile_index_3gpp=" + index +
           " profile_index_3gpp2=" + index + " apn_name=\"\" call_bringup_mode=0)";
}

// The same command under both names; the texts differ in the name only.
struct Mode {
    std::string setting;
    std::string set_call;
    std::string get_call;
};
const std::vector<Mode> kModes = {{"ReConnect", "SetReconnect", "GetReconnect"},
                                  {"AutoConnect", "SetAutoconnect", "GetAutoconnect"}};

class WanCliTest : public CliTest {
protected:
    void give_profiles(uint32_t default_handle, const std::vector<qcmap_net_policy_info>& profiles)
    {
        qcmap_wwan_policy_list_info list = {};
        list.default_profile_handle = default_handle;
        list.number_of_policies = static_cast<uint32_t>(profiles.size());
        for (size_t i = 0; i < profiles.size(); ++i) {
            list.policy[i] = profiles[i];
        }
        platform.on("GetWWANPolicyListEx").gives("list", list);
    }
    void give_status(uint32_t v4, uint32_t v6)
    {
        platform.on("GetWWANStatus")
            .gives("v4_status", static_cast<qcmap_msgr_wwan_status_enum_v01>(v4))
            .gives("v6_status", static_cast<qcmap_msgr_wwan_status_enum_v01>(v6));
    }
    // A command with one, two, ... words more than words, up to max words behind the setting, none of them accepted.
    void expect_invalid_from(std::vector<std::string> words, size_t first, size_t last)
    {
        for (size_t count = first; count <= last; ++count) {
            std::vector<std::string> line = words;
            line.resize(count, "1");
            expect_invalid(line);
        }
    }
};

qcmap_net_policy_info profile(uint32_t handle, uint64_t tech_pref, uint8_t apn_id)
{
    qcmap_net_policy_info info = {};
    info.profile_handle = handle;
    info.tech_pref = tech_pref;
    info.profile_index_3gpp = apn_id;
    info.profile_index_3gpp2 = 99;
    return info;
}

// ---- usage ----

TEST_F(WanCliTest, WWANConfigUsage)
{
    expect_run({"WAN", "WWANConfig"},
               "How to use:\r\n"
               "zr_nexa WAN WWANConfig <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "add: zr_nexa WAN WWANConfig add <tech_pref> <apn_id>\r\n"
               "     add a wwanconfig, used by datacall, will return new wwanconfig handle\r\n"
               "set: zr_nexa WAN WWANConfig set <wwan_handle> <tech_pref> <apn_id>\r\n"
               "     update a wwanconfig\r\n"
               "get: zr_nexa WAN WWANConfig get\r\n"
               "     show all wwanconfig in a list\r\n"
               "del: zr_nexa WAN WWANConfig del <wwan_handle>\r\n"
               "     delete a wwanconfig\r\n"
               "setdefault: zr_nexa WAN WWANConfig setdefault <wwan_handle>\r\n"
               "            set a wwanconfig to be default wwanconfig\r\n"
               "\r\n"
               "note: default wwanconfig, which is used for module internally network\r\n"
               "      default wwanconfig handle is 1 in default\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<tech_pref>\r\n"
               "int type, 0-2\r\n"
               "0: any\r\n"
               "1: umts\r\n"
               "2: cdma\r\n"
               "\r\n"
               "<apn_id>\r\n"
               "int type, the apn id used by network connection, 1-16\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, APWWANUsage)
{
    expect_run({"WAN", "APWWAN"},
               "How to use:\r\n"
               "zr_nexa WAN APWWAN <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa WAN APWWAN set <ap_wwan_handle> <apdns_wwan_handle>\r\n"
               "     configure the wwanconfig handle used by the module AP\r\n"
               "get: zr_nexa WAN APWWAN get\r\n"
               "     query the wwanconfig handle used by the module AP\r\n"
               "\r\n"
               "<ap_wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "The wwanconfig handle used by the module AP internally\r\n"
               "\r\n"
               "<apdns_wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "The wwanconfig handle used by dns proxy in module AP\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, StatusUsage)
{
    expect_run({"WAN", "Status"},
               "How to use:\r\n"
               "zr_nexa WAN Status <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "get: zr_nexa WAN Status get <wwan_handle>\r\n"
               "     get a wwanconfig connect status\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, ConnectUsage)
{
    expect_run({"WAN", "Connect"},
               "How to use:\r\n"
               "zr_nexa WAN Connect <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "connect: zr_nexa WAN Connect connect <wwan_handle> <ip_type>\r\n"
               "         connect a wwanconfig\r\n"
               "disconnect: zr_nexa WAN Connect disconnect <wwan_handle> <ip_type>\r\n"
               "            disconnect a wwanconfig\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<ip_type>\r\n"
               "int type\r\n"
               "4:  connect/disconnect ipv4\r\n"
               "6:  connect/disconnect ipv6\r\n"
               "46: connect/disconnect ipv4 and ipv6\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, ReConnectUsage)
{
    expect_run({"WAN", "ReConnect"},
               "How to use:\r\n"
               "zr_nexa WAN ReConnect <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa WAN ReConnect set <wwan_handle> <reconnect>\r\n"
               "     set a wwanconfig reconnect enable/disable\r\n"
               "get: zr_nexa WAN ReConnect get <wwan_handle>\r\n"
               "     get a wwanconfig reconnect status\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<reconnect>\r\n"
               "int type\r\n"
               "1:  enable reconnect\r\n"
               "0:  disable reconnect\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, AutoConnectUsage)
{
    expect_run({"WAN", "AutoConnect"},
               "How to use:\r\n"
               "zr_nexa WAN AutoConnect <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "set: zr_nexa WAN AutoConnect set <wwan_handle> <autoconnect>\r\n"
               "     set a wwanconfig autoconnect enable/disable\r\n"
               "get: zr_nexa WAN AutoConnect get <wwan_handle>\r\n"
               "     get a wwanconfig autoconnect status\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<autoconnect>\r\n"
               "int type\r\n"
               "1:  enable autoconnect\r\n"
               "0:  disable autoconnect\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, InfoUsage)
{
    expect_run({"WAN", "Info"},
               "How to use:\r\n"
               "zr_nexa WAN Info <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "get: zr_nexa WAN Info get <wwan_handle>\r\n"
               "     get a wwanconfig network connection info\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, MPDNMappingUsage)
{
    expect_run({"WAN", "MPDNMapping"},
               "How to use:\r\n"
               "zr_nexa WAN MPDNMapping <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "add: zr_nexa WAN MPDNMapping add <wwan_handle> <lan_id>\r\n"
               "     add a mapping rule between wwanconfig and (v)lan\r\n"
               "get: zr_nexa WAN MPDNMapping get\r\n"
               "     get all mapping rule config\r\n"
               "del: dzr_nexa WAN MPDNMapping del <wwan_handle> <lan_id>\r\n"
               "     del a mapping rule\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "<lan_id>\r\n"
               "int type\r\n"
               "if you mean default lan, this value is 0; if you mean vlan, this value is vlan_id\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(WanCliTest, RestartRadvdUsage)
{
    expect_run({"WAN", "RestartRadvd"},
               "How to use:\r\n"
               "zr_nexa WAN RestartRadvd\r\n"
               "\r\n"
               "<option>\r\n"
               "restart: zr_nexa WAN RestartRadvd restart <wwan_handle>\r\n"
               "     Restart Radvd for <wwan_handle> (only support on RADVD supported project)\r\n"
               "\r\n"
               "<wwan_handle>\r\n"
               "int type, wwanconfig handle, 1-50\r\n"
               "\r\n"
               "CMD OK\r\n");
}

// ---- WWANConfig ----

TEST_F(WanCliTest, ListsTheProfiles)
{
    give_profiles(2, {profile(1, 0, 1), profile(2, 2, 16), profile(0xFFFFFFFF, 0x1FF, 255)});
    expect_run({"WAN", "WWANConfig", "get"},
               "WAN WWANConfig List:\r\n"
               "wwanconfig num = 3\r\n"
               "default wwanconfig handle = 2\r\n"
               "\r\n"
               "wwan_handle:1  tech_pref:0  apn_id:1\r\n"
               "wwan_handle:2  tech_pref:2  apn_id:16\r\n"
               "wwan_handle:-1  tech_pref:255  apn_id:255\r\n"
               "CMD OK\r\n",
               {"GetWWANPolicyListEx()"});
}

TEST_F(WanCliTest, ListsProfilesWithoutADefault)
{
    give_profiles(0, {profile(7, 1, 2)});
    expect_run({"WAN", "WWANConfig", "get"},
               "WAN WWANConfig List:\r\n"
               "wwanconfig num = 1\r\n"
               "wwan_handle:7  tech_pref:1  apn_id:2\r\n"
               "CMD OK\r\n",
               {"GetWWANPolicyListEx()"});
}

TEST_F(WanCliTest, ListsNoProfiles)
{
    const std::string empty = "WAN WWANConfig List:\r\nwwanconfig num = 0\r\nCMD OK\r\n";
    // Words behind "get" are ignored, as long as they are not too many.
    expect_run({"WAN", "WWANConfig", "get"}, empty, {"GetWWANPolicyListEx()"});
    expect_run({"WAN", "WWANConfig", "get", "x"}, empty, {"GetWWANPolicyListEx()"});
    expect_run({"WAN", "WWANConfig", "get", "x", ""}, empty, {"GetWWANPolicyListEx()"});
    expect_run({"WAN", "WWANConfig", "get", "x", "", "1"}, empty, {"GetWWANPolicyListEx()"});
    expect_invalid({"WAN", "WWANConfig", "get", "x", "", "1", "2"});
}

TEST_F(WanCliTest, ListsAFullTable)
{
    std::vector<qcmap_net_policy_info> profiles;
    std::string lines;
    for (uint32_t handle = 1; handle <= 50; ++handle) {
        profiles.push_back(profile(handle, 0, 4));
        lines += "wwan_handle:" + std::to_string(handle) + "  tech_pref:0  apn_id:4\r\n";
    }
    give_profiles(50, profiles);
    expect_run(
        {"WAN", "WWANConfig", "get"},
        "WAN WWANConfig List:\r\nwwanconfig num = 50\r\ndefault wwanconfig handle = 50\r\n\r\n" + lines + "CMD OK\r\n",
        {"GetWWANPolicyListEx()"});
}

TEST_F(WanCliTest, AListThatIsRefusedPrintsNothing)
{
    platform.on("GetWWANPolicyListEx").fails(3);
    expect_run({"WAN", "WWANConfig", "get"}, "CMD Error#0x1003\r\n", {"GetWWANPolicyListEx()"});
}

TEST_F(WanCliTest, AddsAProfile)
{
    platform.on("CreateWWANPolicyEx").gives("handle", 5u);
    const std::string added = "WAN WWANConfig add success, new wwan_handle = 5\r\nCMD OK\r\n";
    expect_run({"WAN", "WWANConfig", "add", "0", "1"}, added, {"CreateWWANPolicyEx(" + policy(0, 1)});
    expect_run({"WAN", "WWANConfig", "add", "2", "16"}, added, {"CreateWWANPolicyEx(" + policy(2, 16)});
    // Both are cut to 8 bits; what is no number is 0.
    expect_run({"WAN", "WWANConfig", "add", "257", "260"}, added, {"CreateWWANPolicyEx(" + policy(1, 4)});
    expect_run({"WAN", "WWANConfig", "add", "-254", "-255"}, added, {"CreateWWANPolicyEx(" + policy(2, 1)});
    expect_run({"WAN", "WWANConfig", "add", "x", "3abc"}, added, {"CreateWWANPolicyEx(" + policy(0, 3)});
    expect_run({"WAN", "WWANConfig", "add", "", " 7"}, added, {"CreateWWANPolicyEx(" + policy(0, 7)});
}

TEST_F(WanCliTest, AnAddedProfileWithoutAHandlePrintsNothing)
{
    expect_run({"WAN", "WWANConfig", "add", "0", "1"}, "CMD OK\r\n", {"CreateWWANPolicyEx(" + policy(0, 1)});
    platform.on("CreateWWANPolicyEx").gives("handle", 0xFFFFFFFFu);
    expect_run({"WAN", "WWANConfig", "add", "0", "1"}, "WAN WWANConfig add success, new wwan_handle = -1\r\nCMD OK\r\n",
               {"CreateWWANPolicyEx(" + policy(0, 1)});
}

TEST_F(WanCliTest, AddLeavesApnZeroToTheInterface)
{
    expect_run({"WAN", "WWANConfig", "add", "0", "0"}, "CMD Error#0x4\r\n");
    expect_run({"WAN", "WWANConfig", "add", "2", "256"}, "CMD Error#0x4\r\n");
    expect_run({"WAN", "WWANConfig", "add", "0", "x"}, "CMD Error#0x4\r\n");
}

TEST_F(WanCliTest, AddRefuses)
{
    expect_invalid({"WAN", "WWANConfig", "add", "0", "17"});
    expect_invalid({"WAN", "WWANConfig", "add", "0", "255"});
    expect_invalid({"WAN", "WWANConfig", "add", "0", "-1"});
    expect_invalid({"WAN", "WWANConfig", "add", "3", "1"});
    expect_invalid({"WAN", "WWANConfig", "add", "-1", "1"});
    expect_invalid({"WAN", "WWANConfig", "add"});
    expect_invalid({"WAN", "WWANConfig", "add", "0"});
    expect_invalid({"WAN", "WWANConfig", "add", "0", "1", "1"});
    expect_invalid({"WAN", "WWANConfig", "add", "0", "1", "1", "1"});
    platform.on("CreateWWANPolicyEx").fails(62).gives("handle", 5u);
    expect_run({"WAN", "WWANConfig", "add", "0", "1"}, "CMD Error#0x103e\r\n", {"CreateWWANPolicyEx(" + policy(0, 1)});
}

TEST_F(WanCliTest, SetsAProfile)
{
    const std::string done = "WAN WWANConfig modify success\r\nCMD OK\r\n";
    expect_run(
        {"WAN", "WWANConfig", "set", "5", "1", "16"}, done,
        {selected(5), "UpdateWWANPolicyEx(update=1 " + policy(1, 16), "UpdateWWANPolicyEx(update=6 " + policy(1, 16)});
    // The handle keeps all its bits, the others 8.
    expect_run(
        {"WAN", "WWANConfig", "set", "256", "258", "257"}, done,
        {selected(256), "UpdateWWANPolicyEx(update=1 " + policy(2, 1), "UpdateWWANPolicyEx(update=6 " + policy(2, 1)});
    expect_run({"WAN", "WWANConfig", "set", "-1", "0", "1"}, done,
               {selected(0xFFFFFFFF), "UpdateWWANPolicyEx(update=1 " + policy(0, 1),
                "UpdateWWANPolicyEx(update=6 " + policy(0, 1)});
}

TEST_F(WanCliTest, SetRefuses)
{
    expect_invalid({"WAN", "WWANConfig", "set", "0", "1", "1"});
    expect_invalid({"WAN", "WWANConfig", "set", "x", "1", "1"});
    expect_invalid({"WAN", "WWANConfig", "set", "1", "3", "1"});
    expect_invalid({"WAN", "WWANConfig", "set", "1", "1", "17"});
    expect_invalid({"WAN", "WWANConfig", "set"});
    expect_invalid({"WAN", "WWANConfig", "set", "1"});
    expect_invalid({"WAN", "WWANConfig", "set", "1", "1"});
    expect_invalid({"WAN", "WWANConfig", "set", "1", "1", "1", "1"});
    expect_run({"WAN", "WWANConfig", "set", "1", "1", "0"}, "CMD Error#0x4\r\n");
    platform.on("SetWWANProfileHandlePreference").fails(9);
    expect_run({"WAN", "WWANConfig", "set", "1", "1", "1"}, "CMD Error#0x1009\r\n", {selected(1)});
    platform.on("SetWWANProfileHandlePreference").succeeds();
    platform.on("UpdateWWANPolicyEx").fails(3);
    expect_run({"WAN", "WWANConfig", "set", "1", "1", "1"}, "CMD Error#0x2003\r\n",
               {selected(1), "UpdateWWANPolicyEx(update=1 " + policy(1, 1)});
}

TEST_F(WanCliTest, DeletesAProfile)
{
    expect_run({"WAN", "WWANConfig", "del", "3"}, "WAN WWANConfig delete success\r\nCMD OK\r\n",
               {selected(3), "DeleteWWANPolicy()"});
    expect_run({"WAN", "WWANConfig", "del", "65536"}, "WAN WWANConfig delete success\r\nCMD OK\r\n",
               {selected(65536), "DeleteWWANPolicy()"});
    expect_invalid({"WAN", "WWANConfig", "del", "0"});
    expect_invalid({"WAN", "WWANConfig", "del", "abc"});
    expect_invalid({"WAN", "WWANConfig", "del"});
    expect_invalid({"WAN", "WWANConfig", "del", "3", "3"});
    platform.on("DeleteWWANPolicy").fails(0);
    expect_run({"WAN", "WWANConfig", "del", "3"}, "CMD Error#0x2000\r\n", {selected(3), "DeleteWWANPolicy()"});
}

TEST_F(WanCliTest, SetsTheDefaultProfile)
{
    const std::string update =
        "UpdateWWANPolicyEx(update=7 profile_handle=0 tech_pref=0 ip_family=0 profile_index_3gpp=0 "
        "profile_index_3gpp2=0 apn_name=\"\" call_bringup_mode=0)";
    expect_run({"WAN", "WWANConfig", "setdefault", "4"},
               "WAN WWANConfig set default wwanconfig handle = 4 success\r\nCMD OK\r\n", {selected(4), update});
    expect_run({"WAN", "WWANConfig", "setdefault", "-2"},
               "WAN WWANConfig set default wwanconfig handle = -2 success\r\nCMD OK\r\n",
               {selected(0xFFFFFFFE), update});
    expect_invalid({"WAN", "WWANConfig", "setdefault", "0"});
    expect_invalid({"WAN", "WWANConfig", "setdefault"});
    expect_invalid({"WAN", "WWANConfig", "setdefault", "4", "4"});
    platform.on("SetWWANProfileHandlePreference").fails(9);
    expect_run({"WAN", "WWANConfig", "setdefault", "4"}, "CMD Error#0x1009\r\n", {selected(4)});
}

TEST_F(WanCliTest, WwanConfigRefusesOtherOptions)
{
    for (const char* option : {"", "Get", "GET", "list", "ge", "gett", "delete", "default"}) {
        expect_invalid_from({"WAN", "WWANConfig", option}, 3, 8);
    }
    expect_invalid({"WAN", "WWANConfig", std::string(100000, 'g')});
}

// ---- APWWAN ----

TEST_F(WanCliTest, PrintsTheApsProfiles)
{
    expect_run({"WAN", "APWWAN", "get"},
               "WAN APWWAN Config:\r\n"
               "AP wwanconfig handle = 0\r\n"
               "AP DNS wwanconfig handle = 0\r\n"
               "CMD OK\r\n",
               {"GetAPProfileHandle()"});
    platform.on("GetAPProfileHandle").gives("ap", 3u).gives("apdns", 50u);
    expect_run({"WAN", "APWWAN", "get"},
               "WAN APWWAN Config:\r\n"
               "AP wwanconfig handle = 3\r\n"
               "AP DNS wwanconfig handle = 50\r\n"
               "CMD OK\r\n",
               {"GetAPProfileHandle()"});
    platform.on("GetAPProfileHandle").fails(25);
    expect_run({"WAN", "APWWAN", "get"}, "CMD Error#0x1019\r\n", {"GetAPProfileHandle()"});
}

TEST_F(WanCliTest, SetsTheApsProfiles)
{
    expect_run({"WAN", "APWWAN", "set", "3", "50"}, "WAN APWWAN modify success\r\nCMD OK\r\n",
               {"SetAPProfileHandle(ap=3 apdns=50)"});
    expect_run({"WAN", "APWWAN", "set", "256", "-1"}, "WAN APWWAN modify success\r\nCMD OK\r\n",
               {"SetAPProfileHandle(ap=256 apdns=4294967295)"});
    platform.on("SetAPProfileHandle").fails(9);
    expect_run({"WAN", "APWWAN", "set", "3", "50"}, "CMD Error#0x1009\r\n", {"SetAPProfileHandle(ap=3 apdns=50)"});
}

TEST_F(WanCliTest, ApwwanRefuses)
{
    expect_invalid({"WAN", "APWWAN", "set", "0", "1"});
    expect_invalid({"WAN", "APWWAN", "set", "1", "0"});
    expect_invalid({"WAN", "APWWAN", "set", "x", "1"});
    expect_invalid({"WAN", "APWWAN", "set", "1", "x"});
    expect_invalid({"WAN", "APWWAN", "set"});
    expect_invalid({"WAN", "APWWAN", "set", "1"});
    expect_invalid({"WAN", "APWWAN", "set", "1", "1", "1"});
    expect_invalid_from({"WAN", "APWWAN", "get"}, 4, 7);
    expect_invalid_from({"WAN", "APWWAN", "Set"}, 3, 7);
    expect_invalid_from({"WAN", "APWWAN", ""}, 3, 7);
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
            expect_run({"WAN", "Status", "get", "1"}, "WAN Status:\r\n" + v4_line + v6_line + "CMD OK\r\n",
                       {selected(1), "GetWWANStatus()"});
        }
    }
}

TEST_F(WanCliTest, StatusFailures)
{
    give_status(3, 9);
    platform.on("GetWWANStatus").fails(3);
    expect_run({"WAN", "Status", "get", "2"}, "CMD Error#0x2003\r\n", {selected(2), "GetWWANStatus()"});
    platform.on("SetWWANProfileHandlePreference").fails(9);
    expect_run({"WAN", "Status", "get", "-2"}, "CMD Error#0x1009\r\n", {selected(0xFFFFFFFE)});
}

TEST_F(WanCliTest, StatusRefuses)
{
    expect_invalid({"WAN", "Status", "get"});
    expect_invalid({"WAN", "Status", "get", "0"});
    expect_invalid({"WAN", "Status", "get", "x"});
    expect_invalid({"WAN", "Status", "get", ""});
    expect_invalid({"WAN", "Status", "get", "1", "1"});
    expect_invalid_from({"WAN", "Status", "Get"}, 3, 7);
    expect_invalid_from({"WAN", "Status", "set"}, 3, 7);
}

// ---- Connect ----

TEST_F(WanCliTest, ConnectsAndDisconnects)
{
    expect_run({"WAN", "Connect", "connect", "1", "4"}, "WAN Connect connect v4 set success\r\nCMD OK\r\n",
               {selected(1), "ConnectBackHaul(1)"});
    expect_run({"WAN", "Connect", "disconnect", "1", "4"}, "WAN Connect disconnect v4 set success\r\nCMD OK\r\n",
               {selected(1), "DisconnectBackHaul(1)"});
    expect_run({"WAN", "Connect", "connect", "7", "6"}, "WAN Connect connect v6 set success\r\nCMD OK\r\n",
               {selected(7), "ConnectBackHaul(2)"});
    expect_run({"WAN", "Connect", "disconnect", "7", "6"}, "WAN Connect disconnect v6 set success\r\nCMD OK\r\n",
               {selected(7), "DisconnectBackHaul(2)"});
    expect_run({"WAN", "Connect", "connect", "7", "46"},
               "WAN Connect connect v4 set success\r\nWAN Connect connect v6 set success\r\nCMD OK\r\n",
               {selected(7), "ConnectBackHaul(1)", selected(7), "ConnectBackHaul(2)"});
    expect_run({"WAN", "Connect", "disconnect", "7", "46"},
               "WAN Connect disconnect v4 set success\r\nWAN Connect disconnect v6 set success\r\nCMD OK\r\n",
               {selected(7), "DisconnectBackHaul(1)", selected(7), "DisconnectBackHaul(2)"});
}

TEST_F(WanCliTest, ConnectCutsTheIpTypeToEightBits)
{
    expect_run({"WAN", "Connect", "connect", "1", "302"},
               "WAN Connect connect v4 set success\r\nWAN Connect connect v6 set success\r\nCMD OK\r\n",
               {selected(1), "ConnectBackHaul(1)", selected(1), "ConnectBackHaul(2)"});
    expect_run({"WAN", "Connect", "connect", "256", "260"}, "WAN Connect connect v4 set success\r\nCMD OK\r\n",
               {selected(256), "ConnectBackHaul(1)"});
    expect_run({"WAN", "Connect", "disconnect", "-1", "-250"}, "WAN Connect disconnect v6 set success\r\nCMD OK\r\n",
               {selected(0xFFFFFFFF), "DisconnectBackHaul(2)"});
}

TEST_F(WanCliTest, ConnectFailures)
{
    platform.on("ConnectBackHaul").fails(3);
    platform.on("DisconnectBackHaul").fails(26);
    expect_run({"WAN", "Connect", "connect", "1", "4"}, "CMD Error#0x2003\r\n", {selected(1), "ConnectBackHaul(1)"});
    expect_run({"WAN", "Connect", "connect", "1", "6"}, "CMD Error#0x2003\r\n", {selected(1), "ConnectBackHaul(2)"});
    expect_run({"WAN", "Connect", "disconnect", "1", "4"}, "CMD Error#0x301a\r\n",
               {selected(1), "DisconnectBackHaul(1)"});
    expect_run({"WAN", "Connect", "disconnect", "1", "6"}, "CMD Error#0x301a\r\n",
               {selected(1), "DisconnectBackHaul(2)"});
}

TEST_F(WanCliTest, OfBothFamiliesOnlyIpv6IsReported)
{
    for (const std::string option : {"connect", "disconnect"}) {
        const std::string call = option == "connect" ? "ConnectBackHaul" : "DisconnectBackHaul";
        const std::string step = option == "connect" ? "2" : "3";
        const std::vector<std::string> calls = {selected(1), call + "(1)", selected(1), call + "(2)"};
        const std::string v4 = "WAN Connect " + option + " v4 set success\r\n";
        const std::string v6 = "WAN Connect " + option + " v6 set success\r\n";
        const std::vector<std::string> words = {"WAN", "Connect", option, "1", "46"};
        platform.on(call, 1).fails(43);
        expect_run(words, v6 + "CMD OK\r\n", calls);
        platform.on(call, 2).fails(3);
        expect_run(words, "CMD Error#0x" + step + "003\r\n", calls);
        platform.on(call, 1).succeeds();
        expect_run(words, v4 + "CMD Error#0x" + step + "003\r\n", calls);
        platform.reset();
    }
    platform.on("SetWWANProfileHandlePreference", 1).fails(9);
    expect_run({"WAN", "Connect", "connect", "1", "46"}, "WAN Connect connect v6 set success\r\nCMD OK\r\n",
               {selected(1), selected(1), "ConnectBackHaul(2)"});
}

TEST_F(WanCliTest, ConnectRefuses)
{
    for (const char* option : {"connect", "disconnect"}) {
        for (const char* ip_type : {"0", "5", "10", "12", "45", "47", "64", "x", "", "-4", "256", "303"}) {
            expect_invalid({"WAN", "Connect", option, "1", ip_type});
        }
        expect_invalid({"WAN", "Connect", option, "0", "4"});
        expect_invalid({"WAN", "Connect", option, "x", "46"});
        expect_invalid({"WAN", "Connect", option});
        expect_invalid({"WAN", "Connect", option, "1"});
        expect_invalid({"WAN", "Connect", option, "1", "4", "4"});
    }
    for (const char* option : {"", "Connect", "get", "connec", "disconnected"}) {
        expect_invalid({"WAN", "Connect", option, "1", "4"});
        expect_invalid({"WAN", "Connect", option, "1", "46"});
    }
}

// ---- ReConnect and AutoConnect ----

TEST_F(WanCliTest, ModesArePrinted)
{
    for (const Mode& mode : kModes) {
        const std::vector<std::string> calls = {selected(4), mode.get_call + "()"};
        const std::string disabled = "WAN " + mode.setting + " disabled\r\nCMD OK\r\n";
        const std::string enabled = "WAN " + mode.setting + " enabled\r\nCMD OK\r\n";
        // An output that the platform leaves alone reads as off. A sixth word is ignored.
        expect_run({"WAN", mode.setting, "get", "4"}, disabled, calls);
        expect_run({"WAN", mode.setting, "get", "4", "1"}, disabled, calls);
        for (const int on : {1, 2, 255}) {
            platform.on(mode.get_call).gives("enable", static_cast<unsigned char>(on));
            expect_run({"WAN", mode.setting, "get", "4"}, enabled, calls);
            expect_run({"WAN", mode.setting, "get", "4", "x"}, enabled, calls);
        }
        platform.on(mode.get_call).fails(7);
        expect_run({"WAN", mode.setting, "get", "4"}, "CMD Error#0x2007\r\n", calls);
    }
}

TEST_F(WanCliTest, ModesAreSwitched)
{
    for (const Mode& mode : kModes) {
        const std::string disable = "WAN " + mode.setting + " set disable success\r\nCMD OK\r\n";
        const std::string enable = "WAN " + mode.setting + " set enable success\r\nCMD OK\r\n";
        expect_run({"WAN", mode.setting, "set", "1", "0"}, disable, {selected(1), mode.set_call + "(0)"});
        expect_run({"WAN", mode.setting, "set", "1", "1"}, enable, {selected(1), mode.set_call + "(1)"});
        // The mode is cut to 8 bits, the handle keeps all.
        expect_run({"WAN", mode.setting, "set", "1", "256"}, disable, {selected(1), mode.set_call + "(0)"});
        expect_run({"WAN", mode.setting, "set", "256", "257"}, enable, {selected(256), mode.set_call + "(1)"});
        expect_run({"WAN", mode.setting, "set", "-1", "-255"}, enable, {selected(0xFFFFFFFF), mode.set_call + "(1)"});
        expect_run({"WAN", mode.setting, "set", "1", "off"}, disable, {selected(1), mode.set_call + "(0)"});
        platform.on(mode.set_call).fails(3);
        expect_run({"WAN", mode.setting, "set", "1", "1"}, "CMD Error#0x2003\r\n",
                   {selected(1), mode.set_call + "(1)"});
        expect_run({"WAN", mode.setting, "set", "1", "0"}, "CMD Error#0x3003\r\n",
                   {selected(1), mode.set_call + "(0)"});
    }
}

TEST_F(WanCliTest, ModesRefuse)
{
    for (const Mode& mode : kModes) {
        for (const char* option : {"get", "set"}) {
            expect_invalid({"WAN", mode.setting, option});
            expect_invalid({"WAN", mode.setting, option, "0"});
            expect_invalid({"WAN", mode.setting, option, "0", "1"});
            expect_invalid({"WAN", mode.setting, option, "x", "1"});
            expect_invalid({"WAN", mode.setting, option, "1", "1", "1"});
        }
        expect_invalid({"WAN", mode.setting, "set", "1"});
        expect_invalid({"WAN", mode.setting, "set", "1", "2"});
        expect_invalid({"WAN", mode.setting, "set", "1", "255"});
        expect_invalid({"WAN", mode.setting, "set", "1", "-1"});
        expect_invalid_from({"WAN", mode.setting, "Get"}, 3, 7);
        expect_invalid_from({"WAN", mode.setting, "enable"}, 3, 7);
        expect_invalid_from({"WAN", mode.setting, ""}, 3, 7);
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
    platform.on("GetAllConnectedPDNEx").gives("count", static_cast<unsigned char>(1)).gives_array("pdn", &pdn, 1);
    expect_run({"WAN", "Info", "get", "3"},
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
               {"GetAllConnectedPDNEx()"});
}

TEST_F(WanCliTest, PrintsAConnectionWithoutAddresses)
{
    qcmap_connected_wwan_info pdn = {};
    pdn.profile_handle = 0xFFFFFFFF;
    pdn.v4_mtu = 0xFFFFFFFF;
    pdn.v6_prefix = 255;
    // The longest text of an IPv6 address.
    std::memset(pdn.v6_sec_dns_addr, 0xFF, 16);
    platform.on("GetAllConnectedPDNEx").gives("count", static_cast<unsigned char>(1)).gives_array("pdn", &pdn, 1);
    expect_run({"WAN", "Info", "get", "-1"},
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
               {"GetAllConnectedPDNEx()"});
}

TEST_F(WanCliTest, PrintsThatAProfileIsDisconnected)
{
    expect_run({"WAN", "Info", "get", "3"}, "WAN Info: disconnected\r\nCMD OK\r\n", {"GetAllConnectedPDNEx()"});
    platform.on("GetAllConnectedPDNEx").fails(3);
    expect_run({"WAN", "Info", "get", "3"}, "CMD Error#0x1003\r\n", {"GetAllConnectedPDNEx()"});
}

TEST_F(WanCliTest, InfoRefuses)
{
    expect_invalid({"WAN", "Info", "get"});
    expect_invalid({"WAN", "Info", "get", "0"});
    expect_invalid({"WAN", "Info", "get", "x"});
    expect_invalid({"WAN", "Info", "get", "1", "1"});
    expect_invalid_from({"WAN", "Info", "Get"}, 3, 7);
    expect_invalid_from({"WAN", "Info", ""}, 3, 7);
}

// ---- MPDNMapping ----

TEST_F(WanCliTest, ListsTheMappings)
{
    std::vector<qcmap_pdn_to_vlan_mapping> mappings(2);
    mappings[0].profile_handle = 1;
    mappings[0].vlan_count = 2;
    mappings[0].vlan_id[0] = 10;
    mappings[0].vlan_id[1] = 4094;
    mappings[1].profile_handle = 0xFFFFFFFF;
    mappings[1].vlan_count = 1;
    mappings[1].vlan_id[0] = -1;
    platform.on("GetPDNtoVLANMappingsEx").gives("count", 2).gives_array("mapping", mappings.data(), 2);
    const std::string listed =
        "WAN MPDNMapping List:\r\n"
        "MPDNMapping rule num: 3\r\n"
        "wwan_handle: 1  (v)lan_id: 10\r\n"
        "wwan_handle: 1  (v)lan_id: 4094\r\n"
        "wwan_handle: -1  (v)lan_id: 65535\r\n"
        "CMD OK\r\n";
    expect_run({"WAN", "MPDNMapping", "get"}, listed, {"GetPDNtoVLANMappingsEx()"});
    expect_run({"WAN", "MPDNMapping", "get", "x", ""}, listed, {"GetPDNtoVLANMappingsEx()"});
}

TEST_F(WanCliTest, ListsNoMappings)
{
    expect_run({"WAN", "MPDNMapping", "get"}, "WAN MPDNMapping List:\r\nMPDNMapping rule num: 0\r\nCMD OK\r\n",
               {"GetPDNtoVLANMappingsEx()"});
    platform.on("GetPDNtoVLANMappingsEx").fails(3);
    expect_run({"WAN", "MPDNMapping", "get"}, "CMD Error#0x1003\r\n", {"GetPDNtoVLANMappingsEx()"});
}

TEST_F(WanCliTest, ListsAsManyMappingsAsThereCanBe)
{
    std::vector<qcmap_pdn_to_vlan_mapping> mappings(50);
    std::string listed = "WAN MPDNMapping List:\r\nMPDNMapping rule num: 204700\r\n";
    for (uint32_t handle = 1; handle <= 50; ++handle) {
        mappings[handle - 1].profile_handle = handle;
        mappings[handle - 1].vlan_count = 4094;
        for (int vlan_id = 1; vlan_id <= 4094; ++vlan_id) {
            mappings[handle - 1].vlan_id[vlan_id - 1] = static_cast<int16_t>(vlan_id);
            listed += "wwan_handle: " + std::to_string(handle) + "  (v)lan_id: " + std::to_string(vlan_id) + "\r\n";
        }
    }
    platform.on("GetPDNtoVLANMappingsEx").gives("count", 50).gives_array("mapping", mappings.data(), 50);
    EXPECT_TRUE(run({"WAN", "MPDNMapping", "get"}) == listed + "CMD OK\r\n");
    platform.forget();
    // A short list after a long one.
    platform.on("GetPDNtoVLANMappingsEx").gives("count", 0);
    expect_run({"WAN", "MPDNMapping", "get"}, "WAN MPDNMapping List:\r\nMPDNMapping rule num: 0\r\nCMD OK\r\n",
               {"GetPDNtoVLANMappingsEx()"});
}

TEST_F(WanCliTest, AddsAndDeletesMappings)
{
    const std::string added = "WAN MPDNMapping add success\r\nCMD OK\r\n";
    const std::string deleted = "WAN MPDNMapping del success\r\nCMD OK\r\n";
    expect_run({"WAN", "MPDNMapping", "add", "1", "10"}, added,
               {selected(1), "SelectLANBridge(10)", "AddPDNToVLANMapping(vlan_id=10 profile_handle=1)"});
    expect_run({"WAN", "MPDNMapping", "del", "1", "10"}, deleted,
               {selected(1), "SelectLANBridge(10)", "DeletePDNToVLANMapping(vlan_id=10 profile_handle=1)"});
    expect_run(
        {"WAN", "MPDNMapping", "add", "-1", "4094"}, added,
        {selected(0xFFFFFFFF), "SelectLANBridge(4094)", "AddPDNToVLANMapping(vlan_id=4094 profile_handle=4294967295)"});
    // The LAN id is cut to 16 bits, the handle keeps all.
    expect_run({"WAN", "MPDNMapping", "add", "65536", "65538"}, added,
               {selected(65536), "SelectLANBridge(2)", "AddPDNToVLANMapping(vlan_id=2 profile_handle=65536)"});
    expect_run({"WAN", "MPDNMapping", "del", "256", "-65533"}, deleted,
               {selected(256), "SelectLANBridge(3)", "DeletePDNToVLANMapping(vlan_id=3 profile_handle=256)"});
}

TEST_F(WanCliTest, TheDefaultLanIsLeftToTheInterfaceToRefuse)
{
    for (const char* option : {"add", "del"}) {
        for (const char* lan_id : {"0", "x", "", "65536"}) {
            expect_run({"WAN", "MPDNMapping", option, "1", lan_id}, "CMD Error#0x6\r\n");
        }
    }
}

TEST_F(WanCliTest, MappingFailures)
{
    platform.on("AddPDNToVLANMapping").fails(118);
    expect_run({"WAN", "MPDNMapping", "add", "1", "10"}, "CMD Error#0x3076\r\n",
               {selected(1), "SelectLANBridge(10)", "AddPDNToVLANMapping(vlan_id=10 profile_handle=1)"});
    platform.on("DeletePDNToVLANMapping").fails(25);
    expect_run({"WAN", "MPDNMapping", "del", "1", "10"}, "CMD Error#0x3019\r\n",
               {selected(1), "SelectLANBridge(10)", "DeletePDNToVLANMapping(vlan_id=10 profile_handle=1)"});
    platform.on("SelectLANBridge").fails(14);
    expect_run({"WAN", "MPDNMapping", "add", "1", "10"}, "CMD Error#0x200e\r\n", {selected(1), "SelectLANBridge(10)"});
}

TEST_F(WanCliTest, MappingRefuses)
{
    for (const char* option : {"add", "del"}) {
        for (const char* lan_id : {"1", "4095", "4096", "65535", "-1", "65537", "-65535"}) {
            expect_invalid({"WAN", "MPDNMapping", option, "1", lan_id});
        }
        expect_invalid({"WAN", "MPDNMapping", option, "0", "10"});
        expect_invalid({"WAN", "MPDNMapping", option, "x", "10"});
        expect_invalid({"WAN", "MPDNMapping", option});
        expect_invalid({"WAN", "MPDNMapping", option, "1"});
        expect_invalid({"WAN", "MPDNMapping", option, "1", "10", "10"});
    }
    expect_invalid({"WAN", "MPDNMapping", "get", "1"});
    expect_invalid({"WAN", "MPDNMapping", "get", "1", "1", "1"});
    expect_invalid_from({"WAN", "MPDNMapping", "Add"}, 3, 7);
    expect_invalid_from({"WAN", "MPDNMapping", ""}, 3, 7);
}

// ---- RestartRadvd ----

TEST_F(WanCliTest, RestartingRadvdIsNotAvailable)
{
    expect_run({"WAN", "RestartRadvd", "restart", "1"}, "CMD Error#0x3\r\n");
    expect_run({"WAN", "RestartRadvd", "restart", "65536"}, "CMD Error#0x3\r\n");
    EXPECT_EQ(run({"WAN", "RestartRadvd", "restart", "-1"}), "CMD Error#0x3\r\n");
    EXPECT_THAT(platform.journal, testing::IsEmpty());
    EXPECT_THAT(platform.log, testing::IsEmpty());
    platform.forget();
    expect_invalid({"WAN", "RestartRadvd", "restart"});
    expect_invalid({"WAN", "RestartRadvd", "restart", "0"});
    expect_invalid({"WAN", "RestartRadvd", "restart", "x"});
    expect_invalid({"WAN", "RestartRadvd", "restart", "1", "1"});
    expect_invalid_from({"WAN", "RestartRadvd", "Restart"}, 3, 7);
    expect_invalid_from({"WAN", "RestartRadvd", "get"}, 3, 7);
}

}  // namespace
