#include <string.h>

#include "host_fixture.h"

namespace {

class LanAddressingHostTest : public HostTest {
protected:
    qcmap_msgr_lan_config_v01 lan_config(QCMAP_Client& client)
    {
        qcmap_msgr_lan_config_v01 lan;
        memset(&lan, 0xa5, sizeof lan);
        EXPECT_TRUE(client.GetLANConfig(&lan, &err));
        return lan;
    }
    std::string gateway_url(QCMAP_Client& client)
    {
        unsigned char url[128];
        memset(url, 0xa5, sizeof url);
        unsigned int len = 0;
        EXPECT_TRUE(client.GetGatewayUrl(url, &len, &err));
        EXPECT_EQ(url[len], 0);
        return std::string(url, url + len);
    }
    bool set_gateway_url(QCMAP_Client& client, std::string url)
    {
        return client.SetGatewayUrl(reinterpret_cast<unsigned char*>(url.data()), static_cast<unsigned int>(url.size()),
                                    &err);
    }
};

TEST_F(LanAddressingHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    const qcmap_msgr_lan_config_v01 lan = lan_config(client);
    EXPECT_EQ(lan.gateway_ip, 0xc0a8e101u);
    EXPECT_EQ(lan.netmask, 0xffffff00u);
    EXPECT_EQ(lan.enable_dhcp, 1);
    EXPECT_EQ(lan.dhcp_start_ip, 0xc0a8e114u);
    EXPECT_EQ(lan.dhcp_end_ip, 0xc0a8e13cu);
    EXPECT_EQ(lan.lease_time, 43200u);
    EXPECT_EQ(lan.dns_mode, 1u);
    EXPECT_EQ(lan.primary_dns, 0u);
    EXPECT_EQ(lan.secondary_dns, 0u);
    EXPECT_EQ(lan.mtu, 1500u);
    EXPECT_EQ(gateway_url(client), "mobileap.home");
    qcmap_msgr_config_state_enum_v01 action = QCMAP_MSGR_CONFIG_STATE_LIST_V01;
    EXPECT_TRUE(client.ZR_GetDefaultEnableDHCP(&action, &err));
    EXPECT_EQ(action, QCMAP_MSGR_CONFIG_STATE_ON_V01);
    unsigned char state = 0xa5;
    EXPECT_TRUE(client.GetIPv4State(&state, &err));
    EXPECT_EQ(state, 1);
    state = 0xa5;
    EXPECT_TRUE(client.GetIPv6State(&state, &err));
    EXPECT_EQ(state, 1);
}

TEST_F(LanAddressingHostTest, ConfigIsKeptForTheNextSession)
{
    const qcmap_msgr_lan_config_v01 wanted = {0xfffefdfc, 0xffff0000, 2,          1,          0xffffffff,
                                              0xfffffff0, 7,          0x08080808, 0x01010101, 0xfffffff1};
    {
        OpenClient client;
        ASSERT_TRUE(client.SetLANConfig(wanted, &err));
        ASSERT_TRUE(client.ActivateLAN(&err));
    }
    OpenClient client;
    const qcmap_msgr_lan_config_v01 lan = lan_config(client);
    EXPECT_EQ(lan.gateway_ip, wanted.gateway_ip);
    EXPECT_EQ(lan.netmask, wanted.netmask);
    EXPECT_EQ(lan.enable_dhcp, 2);
    EXPECT_EQ(lan.dhcp_start_ip, wanted.dhcp_start_ip);
    EXPECT_EQ(lan.dhcp_end_ip, wanted.dhcp_end_ip);
    EXPECT_EQ(lan.lease_time, wanted.lease_time);
    EXPECT_EQ(lan.dns_mode, 7u);
    EXPECT_EQ(lan.primary_dns, wanted.primary_dns);
    EXPECT_EQ(lan.secondary_dns, wanted.secondary_dns);
    EXPECT_EQ(lan.mtu, wanted.mtu);
}

TEST_F(LanAddressingHostTest, UnknownBridgeIsRefusedAndTheSelectionStays)
{
    OpenClient client;
    for (const int id : {1, 7, 4094, -1, -32768, 32767}) {
        err = QMI_ERR_NONE_V01;
        EXPECT_FALSE(client.SelectLANBridge(static_cast<short>(id), &err)) << id;
        EXPECT_EQ(err, QMI_ERR_INVALID_ID_V01);
    }
    EXPECT_EQ(lan_config(client).gateway_ip, 0xc0a8e101u);
    err = QMI_ERR_INTERNAL_V01;
    EXPECT_TRUE(client.SelectLANBridge(0, &err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
}

TEST_F(LanAddressingHostTest, GatewayUrlLengths)
{
    OpenClient client;
    for (const size_t length : {size_t{1}, size_t{127}}) {
        const std::string url(length, 'u');
        EXPECT_TRUE(set_gateway_url(client, url));
        EXPECT_EQ(gateway_url(client), url);
    }
    for (const size_t length : {size_t{0}, size_t{128}, size_t{100000}}) {
        EXPECT_FALSE(set_gateway_url(client, std::string(length, 'v')));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    EXPECT_EQ(gateway_url(client), std::string(127, 'u'));
    EXPECT_TRUE(set_gateway_url(client, "\x01\xff'; DROP TABLE lan_service; --"));
    EXPECT_EQ(gateway_url(client), "\x01\xff'; DROP TABLE lan_service; --");
}

TEST_F(LanAddressingHostTest, SwitchesAreApart)
{
    OpenClient client;
    const auto states = [&] {
        unsigned char v4 = 0xa5;
        unsigned char v6 = 0xa5;
        EXPECT_TRUE(client.GetIPv4State(&v4, &err));
        EXPECT_TRUE(client.GetIPv6State(&v6, &err));
        return std::to_string(v4) + std::to_string(v6);
    };
    EXPECT_TRUE(client.DisableIPV4(&err));
    EXPECT_EQ(states(), "01");
    EXPECT_TRUE(client.DisableIPV6(&err));
    EXPECT_EQ(states(), "00");
    EXPECT_TRUE(client.EnableIPV4(&err));
    EXPECT_EQ(states(), "10");
    EXPECT_TRUE(client.EnableIPV6(&err));
    EXPECT_TRUE(client.EnableIPV6(&err));
    EXPECT_EQ(states(), "11");
}

TEST_F(LanAddressingHostTest, DefaultDhcpActionIsStoredAsItStands)
{
    OpenClient client;
    for (const int state : {0, 1, 2, -1, 2147483647}) {
        EXPECT_TRUE(client.ZR_SetDefaultEnableDHCP(static_cast<qcmap_msgr_config_state_enum_v01>(state), &err));
        qcmap_msgr_config_state_enum_v01 back = QCMAP_MSGR_CONFIG_STATE_LIST_V01;
        EXPECT_TRUE(client.ZR_GetDefaultEnableDHCP(&back, &err));
        EXPECT_EQ(static_cast<int>(back), state);
    }
}

}  // namespace
