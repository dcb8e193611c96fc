#include "api_test.h"

namespace {

using VpnPassthroughTest = ApiTest;

struct Setter {
    const char* function;
    uint32_t (*set)(uint32_t wwan_handle, uint32_t enable);
    const char* method;
    const char* backhaul_down;
    const char* failed;  // in front of the error word
    const char* done;    // in front of its values
};

struct Getter {
    const char* function;
    uint32_t (*get)(uint32_t wwan_handle, uint8_t* enable);
    const char* method;
    const char* failed;  // in front of the error word
    const char* done;    // in front of its values
};

// Capitals differ from text to text; they are as log readers know them.
const std::vector<Setter> kSetters = {
    {"zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1", zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1, "SetPPTPVpnPassthrough",
     "Backhaul down. PPTP VPN passthrough enabled in xml file.",
     "PPTP VPN passthrough set fails. Error: ", "Set IPv4 PPTP Passthrough"},
    {"zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1", zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1,
     "SetPPTPVpnPassthrough_Ipv6", "Backhaul down. IPv6 PPTP VPN passthrough enabled in xml file.",
     "IPv6 PPTP VPN passthrough set fails. Error: ", "Set IPv6 PPTP Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1,
     "SetIPSECVpnPassthrough", "Backhaul down. IPSec VPN passthrough enabled in xml file.",
     "IPSec VPN passthrough set fails. Error: ", "Set IPv4 IPSec VPN Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1,
     "SetIPSECVpnPassthrough_Ipv6", "Backhaul down. IPv6 IPSec VPN passthrough enabled in xml file.",
     "IPv6 IPSec VPN passthrough set fails. Error: ", "Set IPv6 IPSec VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1, "SetL2TPVpnPassthrough",
     "Backhaul down. L2TP VPN passthrough enabled in xml file.",
     "L2TP VPN passthrough set fails. Error: ", "Set IPv4 L2TP VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1,
     "SetL2TPVpnPassthrough_Ipv6", "Backhaul down. IPv6 L2TP VPN passthrough enabled in xml file.",
     "IPv6 L2TP VPN passthrough set fails. Error: ", "Set IPv6 L2TP VPN Passthrough"},
};

const std::vector<Getter> kGetters = {
    {"zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1", zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1, "GetPPTPVpnPassthrough",
     "Get PPTP VPN passthrough flag failed. Error: ", "Get IPv4 PPTP Passthrough"},
    {"zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1", zr_nexa_nat_pptpvpnpassthrough_ipv6_get_v1,
     "GetPPTPVpnPassthrough_Ipv6", "Ipv6 PPTP VPN passthrough get fails. Error: ", "Get IPv6 PPTP Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv4_get_v1,
     "GetIPSECVpnPassthrough", "IPSec VPN passthrough get fails. Error: ", "Get IPv4 IPSec VPN Passthrough"},
    {"zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1", zr_nexa_nat_ipsecvpnpassthrough_ipv6_get_v1,
     "GetIPSECVpnPassthrough_Ipv6", "Ipv6 IPSec VPN passthrough get fails. Error: ", "Get IPv6 IPSec VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv4_get_v1, "GetL2TPVpnPassthrough",
     "L2TP VPN passthrough get fails. Error: ", "Get IPv4 L2TP VPN Passthrough"},
    {"zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1", zr_nexa_nat_l2tpvpnpassthrough_ipv6_get_v1,
     "GetL2TPVpnPassthrough_Ipv6", "Ipv6 L2TP VPN passthrough get fails. Error: ", "Get IPv6 L2TP VPN Passthrough"},
};

struct ShownWord {
    uint32_t err;
    const char* decimal;
    const char* hex;
};
const std::vector<ShownWord> kShownWords = {
    {0, "0", "0x0"},
    {1, "1", "0x1"},
    {3, "3", "0x3"},
    {42, "42", "0x2a"},
    {44, "44", "0x2c"},
    {0x102B, "4139", "0x102b"},
    {0xFFFF, "65535", "0xffff"},
    {0x7FFFFFFF, "2147483647", "0x7fffffff"},
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
        SCOPED_TRACE(member.function);
        const std::string method = member.method;
        EXPECT_EQ(member.set(50, 1), 0u);
        expect_row(member.function, {"SetWWANProfileHandlePreference(50)", method + "(1)"},
                   {info("entry"), info(std::string(member.done) + " (wwan_handle=50) Status 1, error 0")});
        EXPECT_EQ(member.set(0xFFFFFFFF, 0), 0u);
        expect_row(member.function, {"SetWWANProfileHandlePreference(4294967295)", method + "(0)"},
                   {info("entry"), info(std::string(member.done) + " (wwan_handle=-1) Status 0, error 0")});
        platform.on(method).succeeds(43);
        EXPECT_EQ(member.set(2, 1), 43u);
        expect_row(member.function, {"SetWWANProfileHandlePreference(2)", method + "(1)"},
                   {info("entry"), info(std::string(member.done) + " (wwan_handle=2) Status 1, error 43")});
    }
}

TEST_F(VpnPassthroughTest, SetRefusesABadHandleOrFlagWithoutAPlatformCall)
{
    for (const auto& member : kSetters) {
        SCOPED_TRACE(member.function);
        EXPECT_EQ(member.set(0, 0), 4u);
        EXPECT_EQ(member.set(0, 1), 4u);
        EXPECT_EQ(member.set(0, 2), 4u);
        EXPECT_EQ(member.set(1, 2), 4u);
        EXPECT_EQ(member.set(1, 256), 4u);
        EXPECT_EQ(member.set(1, 0xFFFFFFFF), 4u);
        expect_row(member.function, {}, std::vector<ExpectedRecord>(6, info("entry")));
    }
}

TEST_F(VpnPassthroughTest, SetWithTheBackhaulDownGivesTwoRecords)
{
    for (const auto& member : kSetters) {
        SCOPED_TRACE(member.function);
        platform.on(member.method).fails(43);
        EXPECT_EQ(member.set(7, 1), 0x202Bu);
        expect_row(member.function, {"SetWWANProfileHandlePreference(7)", std::string(member.method) + "(1)"},
                   {info("entry"), error(member.backhaul_down), error(std::string(member.failed) + "0x2b")});
        EXPECT_EQ(member.set(7, 0), 0x202Bu);
        expect_row(member.function, {"SetWWANProfileHandlePreference(7)", std::string(member.method) + "(0)"},
                   {info("entry"), error(member.backhaul_down), error(std::string(member.failed) + "0x2b")});
    }
}

TEST_F(VpnPassthroughTest, SetFailingOtherwiseGivesOneRecord)
{
    for (const auto& member : kSetters) {
        for (const auto& word : kShownWords) {
            SCOPED_TRACE(std::string(member.function) + " " + word.decimal);
            platform.on(member.method).fails(word.err);
            EXPECT_EQ(member.set(7, 1), word.err | 0x2000);
            expect_row(member.function, {"SetWWANProfileHandlePreference(7)", std::string(member.method) + "(1)"},
                       {info("entry"), error(std::string(member.failed) + word.hex)});
        }
    }
}

TEST_F(VpnPassthroughTest, GetWritesThroughTheCallersPointer)
{
    for (const auto& member : kGetters) {
        SCOPED_TRACE(member.function);
        const std::string method = member.method;
        const struct {
            uint8_t flag;
            const char* text;
        } rows[] = {{0, "0"}, {1, "1"}, {255, "255"}};
        for (const auto& row : rows) {
            uint8_t enable = 0xA5;
            platform.on(method).gives("enable", row.flag);
            EXPECT_EQ(member.get(3, &enable), 0u);
            EXPECT_EQ(enable, row.flag);
            expect_row(
                member.function, {"SetWWANProfileHandlePreference(3)", method + "()"},
                {info("entry"), info(std::string(member.done) + " (wwan_handle=3) Status " + row.text + ", error 0")});
        }
        platform.on(method).succeeds(43);
        uint8_t enable = 0xA5;
        EXPECT_EQ(member.get(3, &enable), 43u);
        platform.forget();
    }
}

TEST_F(VpnPassthroughTest, GetHandsANullPointerToThePlatform)
{
    for (const auto& member : kGetters) {
        SCOPED_TRACE(member.function);
        EXPECT_EQ(member.get(3, nullptr), 0u);
        expect_row(member.function, {"SetWWANProfileHandlePreference(3)", std::string(member.method) + "(enable=null)"},
                   {info("entry"), info(std::string(member.done) + " (wwan_handle=3) Status 0, error 0")});
        platform.on(member.method).fails(48);
        EXPECT_EQ(member.get(3, nullptr), 0x2030u);
        platform.forget();
    }
}

TEST_F(VpnPassthroughTest, GetRefusesHandleZero)
{
    for (const auto& member : kGetters) {
        SCOPED_TRACE(member.function);
        uint8_t enable = 0xA5;
        EXPECT_EQ(member.get(0, &enable), 4u);
        EXPECT_EQ(member.get(0, nullptr), 4u);
        EXPECT_EQ(enable, 0xA5);
        expect_row(member.function, {}, {info("entry"), info("entry")});
    }
}

TEST_F(VpnPassthroughTest, GetFailsWithOneRecordForEveryError)
{
    auto words = kShownWords;
    words.push_back({43, "43", "0x2b"});
    for (const auto& member : kGetters) {
        for (const auto& word : words) {
            SCOPED_TRACE(std::string(member.function) + " " + word.decimal);
            uint8_t enable = 0xA5;
            platform.on(member.method).fails(word.err);
            EXPECT_EQ(member.get(7, &enable), word.err | 0x2000);
            EXPECT_EQ(enable, 0xA5);
            expect_row(member.function, {"SetWWANProfileHandlePreference(7)", std::string(member.method) + "()"},
                       {info("entry"), error(std::string(member.failed) + word.hex)});
        }
    }
}

TEST_F(VpnPassthroughTest, AnUnknownProfileEndsEveryMember)
{
    auto words = kShownWords;
    words.push_back({43, "43", "0x2b"});
    for (const auto& word : words) {
        platform.on("SetWWANProfileHandlePreference").fails(word.err);
        const std::string text =
            std::string("Set WWAN Profile Handle Preference (wwan_handle=9) error ") + word.decimal;
        for (const auto& member : kSetters) {
            SCOPED_TRACE(member.function);
            EXPECT_EQ(member.set(9, 1), word.err | 0x1000);
            expect_row(member.function, {"SetWWANProfileHandlePreference(9)"}, {info("entry"), error(text)});
        }
        for (const auto& member : kGetters) {
            SCOPED_TRACE(member.function);
            uint8_t enable = 0xA5;
            EXPECT_EQ(member.get(9, &enable), word.err | 0x1000);
            EXPECT_EQ(enable, 0xA5);
            expect_row(member.function, {"SetWWANProfileHandlePreference(9)"}, {info("entry"), error(text)});
        }
    }
}

}  // namespace
