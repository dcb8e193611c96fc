#include "api_test.h"

namespace {

using WanConnectionTest = ApiTest;

constexpr uint32_t kPreset = 0x80000001;

qcmap_msgr_wwan_status_enum_v01 status(int value)
{
    return static_cast<qcmap_msgr_wwan_status_enum_v01>(value);
}

TEST_F(WanConnectionTest, StatusPassesTheKnownStatesOnly)
{
    for (int value = -1; value <= 14; ++value) {
        const bool is_v4 = value == 1 || value == 3 || value == 4 || value == 6;
        const bool is_v6 = value == 7 || value == 9 || value == 10 || value == 12;
        const std::string shown = std::to_string(value);
        platform.on("GetWWANStatus").gives("v4_status", status(value)).gives("v6_status", status(value));
        uint32_t v4 = kPreset;
        uint32_t v6 = kPreset;
        EXPECT_ROW(zr_nexa_wan_status_get_v1(5, &v4, &v6), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(5)",
                   "call  GetWWANStatus()",
                   "info  Get WWAN Status (wwan_handle=5):wwan_v4_status=" + shown + " wwan_v6_status=" + shown);
        EXPECT_EQ(v4, is_v4 ? static_cast<uint32_t>(value) : kPreset) << value;
        EXPECT_EQ(v6, is_v6 ? static_cast<uint32_t>(value) : kPreset) << value;
    }
    EXPECT_ROW(zr_nexa_wan_status_get_v1(0, nullptr, nullptr), 4u, "info  entry");
}

// ---- the set families ----

struct SetFunction {
    const char* function;
    uint32_t (*set)(uint32_t wwan_handle, uint32_t flag);
    const char* on_call;
    const char* off_call;
    const char* on_done;  // with error 26
    const char* off_done;
};

const SetFunction kSetFunctions[] = {
    {"zr_nexa_wan_connect_v4_set_v1", zr_nexa_wan_connect_v4_set_v1, "call  ConnectBackHaul(1)",
     "call  DisconnectBackHaul(1)", "info  Set IPv4 BackHaul (wwan_handle=5 v4_connect=1) error 26",
     "info  Set IPv4 BackHaul (wwan_handle=5 v4_connect=0) error 26"},
    {"zr_nexa_wan_connect_v6_set_v1", zr_nexa_wan_connect_v6_set_v1, "call  ConnectBackHaul(2)",
     "call  DisconnectBackHaul(2)", "info  Set IPv6 BackHaul (wwan_handle=5 v6_connect=1) error 26",
     "info  Set IPv6 BackHaul (wwan_handle=5 v6_connect=0) error 26"},
    {"zr_nexa_wan_reconnect_set_v1", zr_nexa_wan_reconnect_set_v1, "call  SetReconnect(1)", "call  SetReconnect(0)",
     "info  Set Reconnect Mode (wwan_handle=5) Status 1, error 26",
     "info  Set Reconnect Mode (wwan_handle=5) Status 0, error 26"},
    {"zr_nexa_wan_autoconnect_set_v1", zr_nexa_wan_autoconnect_set_v1, "call  SetAutoconnect(1)",
     "call  SetAutoconnect(0)", "info  Set Autoconnect Mode (wwan_handle=5) Status 1, error 26",
     "info  Set Autoconnect Mode (wwan_handle=5) Status 0, error 26"},
    {"zr_nexa_wan_roaming_set_v1", zr_nexa_wan_roaming_set_v1, "call  SetRoaming(1)", "call  SetRoaming(0)",
     "info  Set Roaming Mode (wwan_handle=5) Status 1, error 26",
     "info  Set Roaming Mode (wwan_handle=5) Status 0, error 26"},
};

TEST_F(WanConnectionTest, SetFunctionsSelectAndAsk)
{
    for (const char* const method :
         {"ConnectBackHaul", "DisconnectBackHaul", "SetReconnect", "SetAutoconnect", "SetRoaming"}) {
        platform.on(method).succeeds(26);
    }
    for (const SetFunction& row : kSetFunctions) {
        EXPECT_ROW_OF(row.function, row.set(5, 1), 26u,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(5)",
                      row.on_call,
                      row.on_done);
        EXPECT_ROW_OF(row.function, row.set(5, 0), 26u,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(5)",
                      row.off_call,
                      row.off_done);
    }
}

TEST_F(WanConnectionTest, SetFunctionsRefuseHandle0AndOtherFlags)
{
    for (const SetFunction& row : kSetFunctions) {
        EXPECT_ROW_OF(row.function, row.set(0, 1), 4u, "info  entry");
        for (const uint32_t flag : {2u, 255u, 256u, 257u, 0xFFFFFFFFu}) {
            EXPECT_ROW_OF(row.function, row.set(5, flag), 4u, "info  entry");
        }
    }
}

// ---- the get family ----

struct GetFunction {
    const char* function;
    uint32_t (*get)(uint32_t wwan_handle, uint8_t* enable);
    const char* method;
    std::string done;  // what stands in front of the mode
};

const GetFunction kGetFunctions[] = {
    {"zr_nexa_wan_reconnect_get_v1", zr_nexa_wan_reconnect_get_v1, "GetReconnect",
     "info  Get Reconnect Mode (wwan_handle=5) Status "},
    {"zr_nexa_wan_autoconnect_get_v1", zr_nexa_wan_autoconnect_get_v1, "GetAutoconnect",
     "info  Get Autoconnect Mode (wwan_handle=5) Status "},
    {"zr_nexa_wan_roaming_get_v1", zr_nexa_wan_roaming_get_v1, "GetRoaming",
     "info  Get Roaming Mode (wwan_handle=5) Status "},
};

TEST_F(WanConnectionTest, GetFunctionsGiveTheByte)
{
    for (const GetFunction& row : kGetFunctions) {
        for (const uint8_t value : {uint8_t{0}, uint8_t{1}, uint8_t{2}, uint8_t{255}}) {
            platform.on(row.method).succeeds(7).gives("enable", value);
            uint8_t mode = poisoned<uint8_t>();
            EXPECT_ROW_OF(row.function, row.get(5, &mode), 7u,
                          "info  entry",
                          "call  SetWWANProfileHandlePreference(5)",
                          std::string("call  ") + row.method + "()",
                          row.done + std::to_string(value) + ", error 7");
            EXPECT_EQ(mode, value);
        }
    }
}

TEST_F(WanConnectionTest, GetFunctionsRefuseHandle0AndNull)
{
    for (const GetFunction& row : kGetFunctions) {
        uint8_t mode = poisoned<uint8_t>();
        EXPECT_ROW_OF(row.function, row.get(0, &mode), 4u, "info  entry");
        EXPECT_ROW_OF(row.function, row.get(5, nullptr), 4u, "info  entry");
        EXPECT_TRUE(is_poisoned(mode));
    }
}

// ---- details ----

qcmap_connected_wwan_info pdn(uint32_t handle, const std::string& iface_name, uint32_t seed)
{
    qcmap_connected_wwan_info entry = {};
    entry.profile_handle = handle;
    std::memcpy(entry.iface_name, iface_name.data(), iface_name.size());
    entry.v4_addr = seed + 1;
    entry.v4_netmask = seed + 2;
    entry.v4_gw_addr = seed + 3;
    entry.v4_pri_dns_addr = seed + 4;
    entry.v4_sec_dns_addr = seed + 5;
    entry.v4_mtu = seed + 6;
    entry.v6_prefix = 64;
    std::memcpy(entry.v6_addr, "ADDRESS_ADDRESS_", 16);
    std::memcpy(entry.v6_gw_addr, "gateway_gateway_", 16);  // fills its field: no zero to end it
    std::memcpy(entry.v6_pri_dns_addr, "pri\0----", 8);
    std::memcpy(entry.v6_sec_dns_addr, "\0sec", 4);
    entry.v6_mtu = seed + 7;
    return entry;
}

void expect_is(const zr_nexa_wan_info_t& seen, const std::string& iface_name, uint32_t seed)
{
    EXPECT_EQ(seen.connected, 1);
    EXPECT_EQ(std::string(seen.iface_name, 16), iface_name + std::string(16 - iface_name.size(), '\0'));
    EXPECT_EQ(seen.v4_addr, seed + 1);
    EXPECT_EQ(seen.v4_netmask, seed + 2);
    EXPECT_EQ(seen.v4_gw_addr, seed + 3);
    EXPECT_EQ(seen.v4_pri_dns_addr, seed + 4);
    EXPECT_EQ(seen.v4_sec_dns_addr, seed + 5);
    EXPECT_EQ(seen.v4_mtu, seed + 6);
    EXPECT_EQ(seen.v6_prefix, 64);
    EXPECT_EQ(std::memcmp(seen.v6_addr, "ADDRESS_ADDRESS_", 16), 0);
    EXPECT_EQ(std::memcmp(seen.v6_gw_addr, "gateway_gateway_", 16), 0);
    EXPECT_EQ(std::memcmp(seen.v6_pri_dns_addr, "pri\0----\0\0\0\0\0\0\0\0", 16), 0);
    EXPECT_EQ(std::memcmp(seen.v6_sec_dns_addr, "\0sec\0\0\0\0\0\0\0\0\0\0\0\0", 16), 0);
    EXPECT_EQ(seen.v6_mtu, seed + 7);
}

std::vector<std::string> lines_of(const zr_nexa_wan_info_t& output, const std::string& iface_name, int seed)
{
    const auto n = [seed](int i) { return std::to_string(seed + i); };
    const std::string where = std::to_string(static_cast<int>(reinterpret_cast<uintptr_t>(output.v6_addr)));
    return {"info  wwan_handle=5 iface_name=" + iface_name + " v4_addr=" + n(1) + " v4_netmask=" + n(2),
            "info  wwan_handle=5 v4_gw_addr=" + n(3) + " v4_pri_dns_addr=" + n(4) + " v4_sec_dns_addr=" + n(5),
            "info  wwan_handle=5 v4_mtu=" + n(6) + " v6_prefix=64 v6_addr=" + where,
            "info  wwan_handle=5 v6_gw_addr=gateway_gateway_ v6_pri_dns_addr=pri v6_sec_dns_addr=",
            "info  wwan_handle=5 v6_mtu=" + n(7)};
}

TEST_F(WanConnectionTest, InfoGivesTheEntryOfTheHandle)
{
    const qcmap_connected_wwan_info pdns[] = {pdn(4, "wwan0", 100), pdn(5, "wwan1", 200), pdn(6, "wwan2", 300)};
    platform.on("GetAllConnectedPDNEx").gives("count", uint8_t{3}).gives_array("pdn", pdns, 3);
    auto output = poisoned<zr_nexa_wan_info_t>();
    EXPECT_ROW(zr_nexa_wan_info_get_v1(5, &output), 0u,
               "info  entry",
               "call  GetAllConnectedPDNEx()",
               lines_of(output, "wwan1", 200));
    expect_is(output, "wwan1", 200);
}

TEST_F(WanConnectionTest, InfoTakesTheLastEntryOfTheHandle)
{
    const std::string sixteen = "interface_name_X";
    const qcmap_connected_wwan_info pdns[] = {pdn(5, "wwan0", 100), pdn(6, "wwan1", 200), pdn(5, sixteen, 300)};
    platform.on("GetAllConnectedPDNEx").gives("count", uint8_t{3}).gives_array("pdn", pdns, 3);
    auto output = poisoned<zr_nexa_wan_info_t>();
    EXPECT_ROW(zr_nexa_wan_info_get_v1(5, &output), 0u,
               "info  entry",
               "call  GetAllConnectedPDNEx()",
               lines_of(output, "wwan0", 100),
               lines_of(output, sixteen, 300));
    expect_is(output, sixteen, 300);
}

TEST_F(WanConnectionTest, InfoWithoutAnEntryIsAllZero)
{
    const zr_nexa_wan_info_t nothing = {};
    const qcmap_connected_wwan_info pdns[] = {pdn(5, "wwan0", 100)};
    platform.on("GetAllConnectedPDNEx").succeeds(50).gives("count", uint8_t{0}).gives_array("pdn", pdns, 1);
    auto output = poisoned<zr_nexa_wan_info_t>();
    EXPECT_ROW(zr_nexa_wan_info_get_v1(5, &output), 50u, "info  entry", "call  GetAllConnectedPDNEx()");
    EXPECT_EQ(std::memcmp(&output, &nothing, sizeof(output)), 0);
}

TEST_F(WanConnectionTest, InfoClearsItsOutputBeforeItChecks)
{
    const zr_nexa_wan_info_t nothing = {};
    auto output = poisoned<zr_nexa_wan_info_t>();
    EXPECT_ROW(zr_nexa_wan_info_get_v1(0, &output), 4u, "info  entry");
    EXPECT_EQ(std::memcmp(&output, &nothing, sizeof(output)), 0);
    const qcmap_connected_wwan_info pdns[] = {pdn(5, "wwan0", 100)};
    platform.on("GetAllConnectedPDNEx").fails(3).gives("count", uint8_t{1}).gives_array("pdn", pdns, 1);
    output = poisoned<zr_nexa_wan_info_t>();
    EXPECT_EQ(zr_nexa_wan_info_get_v1(5, &output), 0x1003u);
    EXPECT_EQ(std::memcmp(&output, &nothing, sizeof(output)), 0);
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    output = poisoned<zr_nexa_wan_info_t>();
    EXPECT_EQ(zr_nexa_wan_info_get_v1(5, &output), 13u);
    EXPECT_TRUE(is_poisoned(output));
}

TEST_F(WanConnectionTest, InfoTakesFiftyEntriesAtMost)
{
    std::vector<qcmap_connected_wwan_info> pdns;
    for (uint32_t i = 0; i < 50; ++i) {
        pdns.push_back(pdn(i + 1, "wwan", 1000 * i));
    }
    for (const int count : {50, 51, 255}) {
        platform.on("GetAllConnectedPDNEx")
            .gives("count", static_cast<uint8_t>(count))
            .gives_array("pdn", pdns.data(), pdns.size());
        auto output = poisoned<zr_nexa_wan_info_t>();
        EXPECT_EQ(zr_nexa_wan_info_get_v1(50, &output), 0u);
        expect_is(output, "wwan", 49000);
        EXPECT_EQ(zr_nexa_wan_info_get_v1(51, &output), 0u);
        EXPECT_EQ(output.connected, 0);
    }
}

// ---- traffic counts ----

qcmap_msgr_wwan_statistics_type_v01 counts()
{
    return {0x123456789ABCDEF0ull, 2, 3, 4, 5, 0xFFFFFFFF};
}

TEST_F(WanConnectionTest, StatisticsGetGivesTheRecordWhole)
{
    const auto given = counts();
    for (const uint32_t family : {4u, 6u, 10u, 12u}) {
        const std::string shown = std::to_string(family);
        platform.on("GetWWANStatistics").succeeds(3).gives("statistics", given);
        auto output = poisoned<qcmap_msgr_wwan_statistics_type_v01>();
        EXPECT_ROW(zr_nexa_wan_statistics_get_v1(5, family, &output), 3u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(5)",
                   "call  GetWWANStatistics(" + shown + ")",
                   "info  Get WWAN Statistics (wwan_handle=5, ip_family=" + shown + ") success.");
        EXPECT_EQ(std::memcmp(&output, &given, sizeof(output)), 0);
    }
}

TEST_F(WanConnectionTest, StatisticsReset)
{
    EXPECT_ROW(zr_nexa_wan_statistics_reset_v1(0, 4), 4u, "info  entry");
    for (const uint32_t family : {4u, 6u, 10u, 12u}) {
        const std::string shown = std::to_string(family);
        EXPECT_ROW(zr_nexa_wan_statistics_reset_v1(5, family), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(5)",
                   "call  ResetWWANStatistics(" + shown + ")",
                   "info  Reset WWAN Statistics (wwan_handle=5, ip_family=" + shown + ") success.");
    }
}

TEST_F(WanConnectionTest, StatisticsOfOtherFamiliesAreWarnedOfAndAsked)
{
    for (const uint32_t family : {0u, 5u, 7u, 46u, 0x80000004u, 0xFFFFFFFFu}) {
        const std::string shown = std::to_string(static_cast<int>(family));
        qcmap_msgr_wwan_statistics_type_v01 output = {};
        EXPECT_ROW(zr_nexa_wan_statistics_get_v1(5, family, &output), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(5)",
                   "error invalid ip family " + shown,
                   "call  GetWWANStatistics(" + shown + ")",
                   "info  Get WWAN Statistics (wwan_handle=5, ip_family=" + shown + ") success.");
        EXPECT_ROW(zr_nexa_wan_statistics_reset_v1(5, family), 0u,
                   "info  entry",
                   "call  SetWWANProfileHandlePreference(5)",
                   "error invalid ip family " + shown,
                   "call  ResetWWANStatistics(" + shown + ")",
                   "info  Reset WWAN Statistics (wwan_handle=5, ip_family=" + shown + ") success.");
    }
}

TEST_F(WanConnectionTest, TheFamilyIsLookedAtAfterTheSelection)
{
    platform.on("SetWWANProfileHandlePreference").fails(9);
    qcmap_msgr_wwan_statistics_type_v01 output = {};
    EXPECT_ROW(zr_nexa_wan_statistics_get_v1(5, 5, &output), 0x1009u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "error Set WWAN Profile Handle Preference (wwan_handle=5) error 9");
    EXPECT_ROW(zr_nexa_wan_statistics_reset_v1(5, 5), 0x1009u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(5)",
               "error Set WWAN Profile Handle Preference (wwan_handle=5) error 9");
}

TEST_F(WanConnectionTest, StatisticsGetClearsItsOutputBeforeItChecks)
{
    const qcmap_msgr_wwan_statistics_type_v01 nothing = {};
    auto output = poisoned<qcmap_msgr_wwan_statistics_type_v01>();
    EXPECT_ROW(zr_nexa_wan_statistics_get_v1(0, 5, &output), 4u, "info  entry");
    EXPECT_EQ(std::memcmp(&output, &nothing, sizeof(output)), 0);
    platform.on("GetWWANStatistics").fails(3).gives("statistics", counts());
    output = poisoned<qcmap_msgr_wwan_statistics_type_v01>();
    EXPECT_EQ(zr_nexa_wan_statistics_get_v1(5, 6, &output), 0x2003u);
    EXPECT_EQ(std::memcmp(&output, &nothing, sizeof(output)), 0);
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    output = poisoned<qcmap_msgr_wwan_statistics_type_v01>();
    EXPECT_EQ(zr_nexa_wan_statistics_get_v1(5, 6, &output), 13u);
    EXPECT_TRUE(is_poisoned(output));
}

TEST_F(WanConnectionTest, RadvdRestartIsNotAvailableAndSilent)
{
    EXPECT_ROW(zr_nexa_wan_radvd_restart_v1(), 3u, kNothing);
    ASSERT_EQ(zr_nexa_client_uninit(), 0u);
    platform.forget();
    EXPECT_ROW(zr_nexa_wan_radvd_restart_v1(), 3u, kNothing);
}

}  // namespace
