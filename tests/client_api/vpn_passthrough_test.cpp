#include "api_test.h"

namespace {

using VpnPassthroughTest = ApiTest;

struct Setter {
    const char* function;
    uint32_t (*set)(uint32_t wwan_handle, uint32_t enable);
    std::string method;
    const char* backhaul_down;
    const char* failed;  // with error 43
    std::string done;    // in front of its values
};

struct Getter {
    const char* function;
    uint32_t (*get)(uint32_t wwan_handle, uint8_t* enable);
    std::string method;
    std::string done;  // in front of its values
};

// Capitals differ from text to text; they are as log readers know them.
const std::vector<Setter> kSetters = {
    {"zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1", zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1, "SetPPTPVpnPassthrough",
     "error Backhaul down. PPTP VPN passthrough enabled in xml file.",
     "error PPTP VPN passthrough set fails. Error: 0x2b", "info  Set IPv4 PPTP Passthrough"},
    {"zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1", zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1,
     "SetPPTPVpnPassthrough_Ipv6", "error Backhaul down. IPv6 PPTP VPN passthrough enabled in xml file.",
     "error IPv6 PPTP VPN passthrough set fails. Error: 0x2b", "info  Set IPv6 PPTP Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1,
     "SetIPSECVpnPassthrough", "error Backhaul down. IPSec VPN passthrough enabled in xml file.",
     "error IPSec VPN passthrough set fails. Error: 0x2b", "info  Set IPv4 IPSec VPN Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1,
     "SetIPSECVpnPassthrough_Ipv6", "error Backhaul down. IPv6 IPSec VPN passthrough enabled in xml file.",
     "error IPv6 IPSec VPN passthrough set fails. Error: 0x2b", "info  Set IPv6 IPSec VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1, "SetL2TPVpnPassthrough",
     "error Backhaul down. L2TP VPN passthrough enabled in xml file.",
     "error L2TP VPN passthrough set fails. Error: 0x2b", "info  Set IPv4 L2TP VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1,
     "SetL2TPVpnPassthrough_Ipv6", "error Backhaul down. IPv6 L2TP VPN passthrough enabled in xml file.",
     "error IPv6 L2TP VPN passthrough set fails. Error: 0x2b", "info  Set IPv6 L2TP VPN Passthrough"},
};

const std::vector<Getter> kGetters = {
    {"zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1", zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1, "GetPPTPVpnPassthrough",
     "info  Get IPv4 PPTP Passthrough"},
    {"zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1", zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1,
     "GetPPTPVpnPassthrough_Ipv6", "info  Get IPv6 PPTP Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1,
     "GetIPSECVpnPassthrough", "info  Get IPv4 IPSec VPN Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1,
     "GetIPSECVpnPassthrough_Ipv6", "info  Get IPv6 IPSec VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1, "GetL2TPVpnPassthrough",
     "info  Get IPv4 L2TP VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1,
     "GetL2TPVpnPassthrough_Ipv6", "info  Get IPv6 L2TP VPN Passthrough"},
};

TEST_F(VpnPassthroughTest, TheFamilyHasTwelveMembers)
{
    EXPECT_EQ(kSetters.size(), 6u);
    EXPECT_EQ(kGetters.size(), 6u);
    EXPECT_EQ(ZR_NEXA_VPN_PASSTHROUGH_ERR_BACKHAUL_DOWN, 0x202Bu);
}

TEST_F(VpnPassthroughTest, SetHandsTheFlagToItsOwnMethod)
{
    for (const auto& member : kSetters) {
        EXPECT_ROW_OF(member.function, member.set(50, 1), 0u,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(50)",
                      "call  " + member.method + "(1)",
                      member.done + " (wwan_handle=50) Status 1, error 0");
        platform.on(member.method).succeeds(43);
        EXPECT_ROW_OF(member.function, member.set(0xFFFFFFFF, 0), 43u,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(4294967295)",
                      "call  " + member.method + "(0)",
                      member.done + " (wwan_handle=-1) Status 0, error 43");
    }
}

TEST_F(VpnPassthroughTest, SetRefusesABadHandleOrFlagWithoutAPlatformCall)
{
    for (const auto& member : kSetters) {
        EXPECT_ROW_OF(member.function, member.set(0, 0), 4u, "info  entry");
        EXPECT_ROW_OF(member.function, member.set(0, 1), 4u, "info  entry");
        EXPECT_ROW_OF(member.function, member.set(0, 2), 4u, "info  entry");
        EXPECT_ROW_OF(member.function, member.set(1, 2), 4u, "info  entry");
        EXPECT_ROW_OF(member.function, member.set(1, 256), 4u, "info  entry");
        EXPECT_ROW_OF(member.function, member.set(1, 0xFFFFFFFF), 4u, "info  entry");
    }
}

TEST_F(VpnPassthroughTest, SetWithTheBackhaulDownGivesTwoRecords)
{
    for (const auto& member : kSetters) {
        platform.on(member.method).fails(43);
        EXPECT_ROW_OF(member.function, member.set(7, 1), 0x202Bu,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(7)",
                      "call  " + member.method + "(1)",
                      member.backhaul_down,
                      member.failed);
        EXPECT_ROW_OF(member.function, member.set(7, 0), 0x202Bu,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(7)",
                      "call  " + member.method + "(0)",
                      member.backhaul_down,
                      member.failed);
    }
    // Two only of the passthrough's own call.
    platform.on("SetWWANProfileHandlePreference").fails(43);
    for (const auto& member : kSetters) {
        EXPECT_ROW_OF(member.function, member.set(7, 1), 0x102Bu,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(7)",
                      "error Set WWAN Profile Handle Preference (wwan_handle=7) error 43");
    }
}

TEST_F(VpnPassthroughTest, GetWritesThroughTheCallersPointer)
{
    for (const auto& member : kGetters) {
        for (const uint8_t flag : {uint8_t{0}, uint8_t{1}, uint8_t{255}}) {
            uint8_t enable = 0xA5;
            platform.on(member.method).gives("enable", flag).succeeds(43);
            EXPECT_ROW_OF(member.function, member.get(3, &enable), 43u,
                          "info  entry",
                          "call  SetWWANProfileHandlePreference(3)",
                          "call  " + member.method + "()",
                          member.done + " (wwan_handle=3) Status " + std::to_string(flag) + ", error 43");
            EXPECT_EQ(enable, flag);
        }
    }
}

TEST_F(VpnPassthroughTest, GetHandsANullPointerToThePlatform)
{
    for (const auto& member : kGetters) {
        EXPECT_ROW_OF(member.function, member.get(3, nullptr), 0u,
                      "info  entry",
                      "call  SetWWANProfileHandlePreference(3)",
                      "call  " + member.method + "(enable=null)",
                      member.done + " (wwan_handle=3) Status 0, error 0");
        platform.on(member.method).fails(48);
        EXPECT_EQ(member.get(3, nullptr), 0x2030u);
        platform.forget();
    }
}

TEST_F(VpnPassthroughTest, GetRefusesHandleZero)
{
    for (const auto& member : kGetters) {
        uint8_t enable = 0xA5;
        EXPECT_ROW_OF(member.function, member.get(0, &enable), 4u, "info  entry");
        EXPECT_ROW_OF(member.function, member.get(0, nullptr), 4u, "info  entry");
        EXPECT_EQ(enable, 0xA5);
    }
}

}  // namespace
