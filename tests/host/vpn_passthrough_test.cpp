#include <string.h>

#include "host_fixture.h"

namespace {

struct Flag {
    const char* name;
    bool (QCMAP_Client::*set)(unsigned char enable, qmi_error_type_v01* err);
    bool (QCMAP_Client::*get)(unsigned char* enable, qmi_error_type_v01* err);
};

constexpr Flag kFlags[] = {
    {"PPTP, IPv4", &QCMAP_Client::SetPPTPVpnPassthrough, &QCMAP_Client::GetPPTPVpnPassthrough},
    {"PPTP, IPv6", &QCMAP_Client::SetPPTPVpnPassthrough_Ipv6, &QCMAP_Client::GetPPTPVpnPassthrough_Ipv6},
    {"IPSec, IPv4", &QCMAP_Client::SetIPSECVpnPassthrough, &QCMAP_Client::GetIPSECVpnPassthrough},
    {"IPSec, IPv6", &QCMAP_Client::SetIPSECVpnPassthrough_Ipv6, &QCMAP_Client::GetIPSECVpnPassthrough_Ipv6},
    {"L2TP, IPv4", &QCMAP_Client::SetL2TPVpnPassthrough, &QCMAP_Client::GetL2TPVpnPassthrough},
    {"L2TP, IPv6", &QCMAP_Client::SetL2TPVpnPassthrough_Ipv6, &QCMAP_Client::GetL2TPVpnPassthrough_Ipv6},
};

class VpnPassthroughHostTest : public HostTest {
protected:
    // All six flags in the order of kFlags, as digits.
    std::string flags(QCMAP_Client& client)
    {
        std::string digits;
        for (const Flag& flag : kFlags) {
            unsigned char enable = 0xa5;
            EXPECT_TRUE((client.*flag.get)(&enable, &err)) << flag.name << " " << err;
            digits += std::to_string(enable);
        }
        return digits;
    }
    unsigned int add_profile(QCMAP_Client& client)
    {
        qcmap_net_policy_info policy;
        memset(&policy, 0, sizeof policy);
        policy.ip_family = 4;
        policy.profile_index_3gpp = 2;
        policy.profile_index_3gpp2 = 2;
        unsigned int handle = 0;
        EXPECT_TRUE(client.CreateWWANPolicyEx(policy, &handle, &err)) << err;
        return handle;
    }
};

TEST_F(VpnPassthroughHostTest, AllIsBlockedAtFirst)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(flags(client), "000000");
}

TEST_F(VpnPassthroughHostTest, ASetWhileTheBackhaulIsDownIsKeptAndAnswers43)
{
    const char* const after_each[] = {"100000", "110000", "111000", "111100", "111110", "111111"};
    {
        OpenClient client;
        for (int i = 0; i < 6; ++i) {
            EXPECT_FALSE((client.*kFlags[i].set)(1, &err)) << kFlags[i].name;
            EXPECT_EQ(err, 43);
            EXPECT_EQ(flags(client), after_each[i]);
        }
        EXPECT_FALSE(client.SetIPSECVpnPassthrough(0, &err));
        EXPECT_EQ(err, 43);
    }
    OpenClient client;
    EXPECT_EQ(flags(client), "110111");
}

TEST_F(VpnPassthroughHostTest, ASetWhileTheBackhaulIsUpSucceeds)
{
    const struct {
        qcmap_msgr_wwan_call_type_v01 call;
        const char* before;
        const char* after;
    } calls[] = {{QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01, "000000", "010000"},
                 {QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01, "010000", "010000"}};
    OpenClient client;
    for (const auto& row : calls) {
        EXPECT_EQ(flags(client), row.before);
        ASSERT_TRUE(client.ConnectBackHaul(row.call, &err)) << err;
        EXPECT_TRUE(client.SetPPTPVpnPassthrough_Ipv6(1, &err)) << err;
        EXPECT_EQ(err, 0);
        EXPECT_EQ(flags(client), row.after);
        ASSERT_TRUE(client.DisconnectBackHaul(row.call, &err)) << err;
        EXPECT_FALSE(client.SetPPTPVpnPassthrough_Ipv6(1, &err));
        EXPECT_EQ(err, 43);
    }
}

TEST_F(VpnPassthroughHostTest, AnotherFlagThan0And1IsRefusedAndNotKept)
{
    OpenClient client;
    for (const Flag& flag : kFlags) {
        EXPECT_FALSE((client.*flag.set)(2, &err)) << flag.name;
        EXPECT_EQ(err, 48);
        EXPECT_FALSE((client.*flag.set)(255, &err)) << flag.name;
        EXPECT_EQ(err, 48);
        EXPECT_FALSE((client.*flag.get)(nullptr, &err)) << flag.name;
        EXPECT_EQ(err, 48);
    }
    EXPECT_EQ(flags(client), "000000");
}

TEST_F(VpnPassthroughHostTest, EachProfileHasItsOwnFlagsAndItsOwnBackhaul)
{
    OpenClient client;
    const unsigned int second = add_profile(client);
    ASSERT_TRUE(client.ConnectBackHaul(QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01, &err)) << err;
    EXPECT_TRUE(client.SetPPTPVpnPassthrough(1, &err)) << err;
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(second, &err));
    EXPECT_EQ(flags(client), "000000");
    EXPECT_FALSE(client.SetL2TPVpnPassthrough(1, &err));
    EXPECT_EQ(err, 43);
    EXPECT_EQ(flags(client), "000010");
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
    EXPECT_EQ(flags(client), "100000");
}

TEST_F(VpnPassthroughHostTest, ADeletedProfileTakesItsFlagsAlong)
{
    OpenClient client;
    const unsigned int second = add_profile(client);
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(second, &err));
    EXPECT_FALSE(client.SetPPTPVpnPassthrough(1, &err));
    ASSERT_TRUE(client.DeleteWWANPolicy(&err)) << err;
    unsigned char enable = 0xa5;
    for (const Flag& flag : kFlags) {
        EXPECT_FALSE((client.*flag.set)(1, &err)) << flag.name;
        EXPECT_EQ(err, 9);
        EXPECT_FALSE((client.*flag.get)(&enable, &err)) << flag.name;
        EXPECT_EQ(err, 9);
    }
    EXPECT_EQ(enable, 0xa5);
    ASSERT_EQ(add_profile(client), second);
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(second, &err));
    EXPECT_EQ(flags(client), "000000");
}

TEST_F(VpnPassthroughHostTest, RestoreBlocksAllAgain)
{
    OpenClient client;
    EXPECT_FALSE(client.SetPPTPVpnPassthrough(1, &err));
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(flags(client), "000000");
}

}  // namespace
