#include "area_fixture.h"

namespace ctl {
namespace {

class VpnPassthroughTest : public AreaTest {
protected:
    static std::string flags(uint32_t profile)
    {
        std::string digits;
        for (const char* const name : kNames)
            digits += value_of(name, profile).child(name).flag() ? "1" : "0";
        return digits;
    }
    static constexpr const char* kNames[] = {"vpn_passthrough.pptp.ipv4",  "vpn_passthrough.pptp.ipv6",
                                             "vpn_passthrough.ipsec.ipv4", "vpn_passthrough.ipsec.ipv6",
                                             "vpn_passthrough.l2tp.ipv4",  "vpn_passthrough.l2tp.ipv6"};
};

// The profile is not connected, which is said by a code, and done.
TEST_F(VpnPassthroughTest, SwitchesEachAlone)
{
    const uint32_t second = add_profile();
    const std::string alone[] = {"100000", "010000", "001000", "000100", "000010", "000001"};
    const std::string answers[] = {
        "0x202b zr_nexa_nat_pptpvpnpassthrough_ipv4_set_v1",  "0x202b zr_nexa_nat_pptpvpnpassthrough_ipv6_set_v1",
        "0x202b zr_nexa_nat_ipsecvpnpassthrough_ipv4_set_v1", "0x202b zr_nexa_nat_ipsecvpnpassthrough_ipv6_set_v1",
        "0x202b zr_nexa_nat_l2tpvpnpassthrough_ipv4_set_v1",  "0x202b zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1"};
    for (size_t i = 0; i < 6; ++i) {
        const std::string name = kNames[i];
        EXPECT_EQ(read(name, second), "{" + name + ": " + field(name).factory + "}");
        EXPECT_EQ(write(name, second, {{name, true}}), answers[i]);
        EXPECT_EQ(flags(second), alone[i]) << name;
        EXPECT_EQ(flags(1), "000000");
        EXPECT_EQ(write(name, second, {{name, false}}), answers[i]);
        EXPECT_EQ(flags(second), "000000");
        EXPECT_EQ(row(name).done_codes, std::vector<uint32_t>{0x202B});
        EXPECT_EQ(row(name).done_note, "holds with the next connection");
    }
}

TEST_F(VpnPassthroughTest, TellsRefusals)
{
    open("SetL2TPVpnPassthrough_Ipv6=fail:3,GetPPTPVpnPassthrough#2=fail:16");
    const std::string name = "vpn_passthrough.l2tp.ipv6";
    EXPECT_EQ(write(name, 1, {{name, true}}), "0x2003 zr_nexa_nat_l2tpvpnpassthrough_ipv6_set_v1");
    EXPECT_EQ(flags(1), "000000");
    Value out;
    EXPECT_EQ(told(row("vpn_passthrough.pptp.ipv4").read(1, &out)),
              "0x2010 zr_nexa_nat_pptpvpnpassthrough_ipv4_get_v1");
    EXPECT_EQ(in_short(out), "none");
}

}  // namespace
}  // namespace ctl
