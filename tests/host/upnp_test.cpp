#include <string.h>

#include "host_fixture.h"

namespace {

class UpnpHostTest : public HostTest {
protected:
    qcmap_msgr_upnp_mode_enum_v01 mode(QCMAP_Client& client)
    {
        auto read = static_cast<qcmap_msgr_upnp_mode_enum_v01>(77);
        EXPECT_TRUE(client.GetUPNPStatus(&read, &err)) << err;
        return read;
    }
    unsigned int interval(QCMAP_Client& client)
    {
        unsigned int seconds = 0xa5a5a5a5;
        EXPECT_TRUE(client.GetUPNPNotifyInterval(&seconds, &err)) << err;
        return seconds;
    }
    int pinhole(QCMAP_Client& client)
    {
        unsigned char state = 0xa5;
        EXPECT_TRUE(client.GetUPNPState(&state, &err)) << err;
        return state;
    }
};

TEST_F(UpnpHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(mode(client), QCMAP_MSGR_UPNP_MODE_DOWN_V01);
    EXPECT_EQ(interval(client), 1800u);
    EXPECT_EQ(pinhole(client), 0);
}

TEST_F(UpnpHostTest, TheServiceIsKeptForTheNextSession)
{
    {
        OpenClient client;
        EXPECT_TRUE(client.EnableUPNP(&err));
        EXPECT_TRUE(client.EnableUPNP(&err)) << "once more changes nothing";
        EXPECT_TRUE(client.SetUPNPNotifyInterval(60000, &err));
    }
    OpenClient client;
    EXPECT_EQ(mode(client), QCMAP_MSGR_UPNP_MODE_UP_V01);
    EXPECT_EQ(interval(client), 60000u);
    EXPECT_TRUE(client.DisableUPNP(&err));
    EXPECT_EQ(mode(client), QCMAP_MSGR_UPNP_MODE_DOWN_V01);
}

TEST_F(UpnpHostTest, TheIntervalHas16Bits)
{
    OpenClient client;
    for (const unsigned int seconds : {0u, 29u, 60001u, 65535u, 65536u}) {
        EXPECT_FALSE(client.SetUPNPNotifyInterval(seconds, &err)) << seconds;
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    EXPECT_EQ(interval(client), 1800u);
    EXPECT_TRUE(client.SetUPNPNotifyInterval(30, &err));
    EXPECT_EQ(interval(client), 30u);
    EXPECT_TRUE(client.SetUPNPNotifyInterval(65567, &err));
    EXPECT_EQ(interval(client), 31u);
}

TEST_F(UpnpHostTest, PinholesBelongToTheProfile)
{
    OpenClient client;
    qcmap_net_policy_info policy;
    memset(&policy, 0, sizeof policy);
    policy.ip_family = 4;
    policy.profile_index_3gpp = policy.profile_index_3gpp2 = 2;
    unsigned int other = 0;
    ASSERT_TRUE(client.CreateWWANPolicyEx(policy, &other, &err)) << err;

    EXPECT_TRUE(client.SetUPNPState(1, 1, &err));
    EXPECT_EQ(pinhole(client), 1);
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(other, &err));
    EXPECT_EQ(pinhole(client), 0);
    EXPECT_TRUE(client.SetUPNPState(255, 1, &err));
    EXPECT_EQ(pinhole(client), 1);
    EXPECT_FALSE(client.SetUPNPState(1, 2, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_FALSE(client.SetUPNPState(0, 0, &err)) << "the firewall is off";
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_EQ(pinhole(client), 1);

    ASSERT_TRUE(client.DeleteWWANPolicy(&err)) << err;
    unsigned char state = 0xa5;
    EXPECT_FALSE(client.GetUPNPState(&state, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    EXPECT_FALSE(client.SetUPNPState(1, 1, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
    EXPECT_EQ(pinhole(client), 1);
    EXPECT_TRUE(client.SetUPNPState(1, 0, &err));
    EXPECT_EQ(pinhole(client), 0);
}

TEST_F(UpnpHostTest, RestoreBringsBackFactoryState)
{
    OpenClient client;
    EXPECT_TRUE(client.EnableUPNP(&err));
    EXPECT_TRUE(client.SetUPNPNotifyInterval(45, &err));
    EXPECT_TRUE(client.SetUPNPState(1, 1, &err));
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(mode(client), QCMAP_MSGR_UPNP_MODE_DOWN_V01);
    EXPECT_EQ(interval(client), 1800u);
    EXPECT_EQ(pinhole(client), 0);
}

}  // namespace
