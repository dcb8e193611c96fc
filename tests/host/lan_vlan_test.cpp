#include <string.h>

#include <memory>

#include "host_fixture.h"

namespace {

constexpr auto kEth = QCMAP_MSGR_INTERFACE_TYPE_ETH_V01;
constexpr auto kEcm = QCMAP_MSGR_INTERFACE_TYPE_ECM_V01;
constexpr auto kRndis = QCMAP_MSGR_INTERFACE_TYPE_RNDIS_V01;
constexpr auto kEthNic2 = QCMAP_MSGR_INTERFACE_TYPE_ETH_NIC2_V01;

class LanVlanHostTest : public HostTest {
protected:
    bool create(QCMAP_Client& client, int id, qcmap_msgr_interface_type_enum_v01 type = kEth, uint8_t accelerated = 0)
    {
        bool beside = accelerated != 0;
        return client.CreateVLANConfig({type, static_cast<int16_t>(id), accelerated}, &err, &beside);
    }
    // "id:type:accelerated" of each.
    std::string vlans(QCMAP_Client& client)
    {
        const auto list = std::make_unique<qcmap_msgr_vlan_conf_t>();
        memset(list.get(), 0xa5, sizeof *list);
        EXPECT_TRUE(client.GetVLANConfig(list.get(), &err));
        std::string text;
        for (int i = 0; i < list->count; ++i) {
            const qcmap_msgr_vlan_config_ex_v01& vlan = list->vlan[i];
            text += std::to_string(vlan.vlan_id) + ":" + std::to_string(vlan.interface_type) + ":" +
                    std::to_string(vlan.is_accelerated) + " ";
        }
        return text;
    }
    qcmap_msgr_lan_config_v01 bridge(QCMAP_Client& client, short id)
    {
        qcmap_msgr_lan_config_v01 lan = {};
        EXPECT_TRUE(client.SelectLANBridge(id, &err));
        EXPECT_TRUE(client.GetLANConfig(&lan, &err));
        return lan;
    }
};

TEST_F(LanVlanHostTest, ThereIsNoneAtFirst)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(vlans(client), "");
    EXPECT_EQ(err, 50);
    // The word is of this one answer.
    EXPECT_TRUE(client.SelectLANBridge(0, &err));
    EXPECT_EQ(err, 0);
}

TEST_F(LanVlanHostTest, VlansAreKeptInTheOrderOfTheirIds)
{
    {
        OpenClient client;
        EXPECT_TRUE(create(client, 4094, kEthNic2, 1));
        EXPECT_TRUE(create(client, 1, kEth, 0));
        EXPECT_TRUE(create(client, 300, kRndis, 1));
        EXPECT_TRUE(create(client, 20, kEcm, 0));
        EXPECT_EQ(err, 0);
    }
    OpenClient client;
    EXPECT_EQ(vlans(client), "1:2:0 20:3:0 300:4:1 4094:6:1 ");
    EXPECT_EQ(err, 0);
}

TEST_F(LanVlanHostTest, OneThatIsThereAlreadyIsToldApartFromAnotherOfItsId)
{
    OpenClient client;
    EXPECT_TRUE(create(client, 100, kEth, 1));
    EXPECT_TRUE(create(client, 100, kEth, 1));
    EXPECT_EQ(err, 118);
    EXPECT_FALSE(create(client, 100, kEth, 0));
    EXPECT_EQ(err, 118);
    EXPECT_FALSE(create(client, 100, kEcm, 1));
    EXPECT_EQ(err, 118);
    EXPECT_EQ(vlans(client), "100:2:1 ");
}

TEST_F(LanVlanHostTest, WhatIsNoVlanIsRefused)
{
    OpenClient client;
    for (const int id : {0, -1, 4095, 32767}) {
        EXPECT_FALSE(create(client, id)) << id;
        EXPECT_EQ(err, 48);
        EXPECT_FALSE(client.DeleteVLANConfig(static_cast<short>(id), kEth, &err)) << id;
        EXPECT_EQ(err, 48);
    }
    for (const int type : {0, 1, 5, 7}) {
        const auto interface_type = static_cast<qcmap_msgr_interface_type_enum_v01>(type);
        EXPECT_FALSE(create(client, 100, interface_type)) << type;
        EXPECT_EQ(err, 48);
        EXPECT_FALSE(client.DeleteVLANConfig(100, interface_type, &err)) << type;
        EXPECT_EQ(err, 48);
    }
    EXPECT_FALSE(create(client, 100, kEth, 2));
    EXPECT_EQ(err, 48);
    EXPECT_EQ(vlans(client), "");
}

TEST_F(LanVlanHostTest, TheBridgeComesAndGoesWithItsVlan)
{
    OpenClient client;
    EXPECT_FALSE(client.SelectLANBridge(2, &err));
    EXPECT_EQ(err, 14);
    EXPECT_TRUE(create(client, 2));
    const qcmap_msgr_lan_config_v01 lan = bridge(client, 2);
    EXPECT_EQ(lan.gateway_ip, 0xc0a8e301u);  // 192.168.227.1
    EXPECT_EQ(lan.netmask, 0xffffff00u);
    EXPECT_EQ(lan.dhcp_start_ip, 0xc0a8e314u);
    EXPECT_EQ(lan.dhcp_end_ip, 0xc0a8e33cu);
    EXPECT_EQ(lan.lease_time, 43200u);
    EXPECT_EQ(lan.enable_dhcp, 1);

    EXPECT_TRUE(client.DeleteVLANConfig(2, kEth, &err));
    EXPECT_EQ(err, 0);
    EXPECT_EQ(vlans(client), "");
    EXPECT_FALSE(client.SelectLANBridge(2, &err));
    EXPECT_EQ(err, 14);
}

TEST_F(LanVlanHostTest, TheDefaultActionDecidesAboutDhcp)
{
    OpenClient client;
    EXPECT_TRUE(client.ZR_SetDefaultEnableDHCP(QCMAP_MSGR_CONFIG_STATE_OFF_V01, &err));
    EXPECT_TRUE(create(client, 2));
    EXPECT_EQ(bridge(client, 2).enable_dhcp, 0);
    EXPECT_TRUE(client.ZR_SetDefaultEnableDHCP(QCMAP_MSGR_CONFIG_STATE_ON_V01, &err));
    EXPECT_TRUE(create(client, 3));
    EXPECT_EQ(bridge(client, 3).enable_dhcp, 1);
    EXPECT_EQ(bridge(client, 2).enable_dhcp, 0);
}

TEST_F(LanVlanHostTest, DeletingNeedsTheInterfaceTypeItWasMadeWith)
{
    OpenClient client;
    EXPECT_TRUE(create(client, 100, kRndis));
    for (const auto type : {kEth, kEcm, kEthNic2}) {
        EXPECT_FALSE(client.DeleteVLANConfig(100, type, &err));
        EXPECT_EQ(err, 48);
    }
    EXPECT_FALSE(client.DeleteVLANConfig(101, kRndis, &err));
    EXPECT_EQ(err, 25);
    EXPECT_EQ(vlans(client), "100:4:0 ");
    EXPECT_TRUE(client.DeleteVLANConfig(100, kRndis, &err));
    EXPECT_FALSE(client.DeleteVLANConfig(100, kRndis, &err));
    EXPECT_EQ(err, 25);
}

TEST_F(LanVlanHostTest, ABridgeTakesItsSettingsAlong)
{
    OpenClient client;
    EXPECT_TRUE(create(client, 100));
    EXPECT_TRUE(client.SelectLANBridge(100, &err));
    qcmap_msgr_ip_passthrough_config_v01 passthrough = {4, 0, 0, {1, 2, 3, 4, 5, 6}, {}};
    EXPECT_TRUE(client.SetIPPassthroughConfig(QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01, true, &passthrough, &err));
    EXPECT_TRUE(client.ZR_SetIPPTNATPDN(2, &err));
    qcmap_msgr_sw_path_filters_conf_t filters = {2, 1, 7, {{80, 80, 1}}};
    EXPECT_TRUE(client.SetIPPassthroughSoftwarePathFilters(&filters, &err));
    EXPECT_TRUE(client.AddPDNToVLANMapping(100, 1, &err));

    EXPECT_TRUE(client.DeleteVLANConfig(100, kEth, &err));
    // The object still has the bridge selected that is gone.
    EXPECT_FALSE(client.ZR_SetIPPTNATPDN(1, &err));
    EXPECT_EQ(err, 14);
    EXPECT_TRUE(create(client, 100));
    auto mode = QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01;
    EXPECT_TRUE(client.GetIPPassthroughConfig(&mode, &passthrough, &err));
    EXPECT_EQ(mode, QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01);
    int pdn = 77;
    EXPECT_TRUE(client.ZR_GetIPPTNATPDN(&pdn, &err));
    EXPECT_EQ(pdn, -1);
    EXPECT_TRUE(client.GetIPPassthroughSoftwarePathFilters(&filters, &err));
    EXPECT_EQ(filters.count, 0);
    EXPECT_EQ(filters.flags, 0u);
    const auto mappings = std::make_unique<qcmap_msgr_pdn_to_vlan_mapping_ex_v01>();
    int profiles = 0;
    EXPECT_TRUE(client.GetPDNtoVLANMappingsEx(mappings.get(), &profiles, &err));
    for (int i = 0; i < profiles; ++i) {
        for (int j = 0; j < mappings->mapping[i].vlan_count; ++j)
            EXPECT_NE(mappings->mapping[i].vlan_id[j], 100);
    }
}

TEST_F(LanVlanHostTest, ThereIsRoomFor2000)
{
    OpenClient client;
    for (int id = 1; id <= 2000; ++id)
        ASSERT_TRUE(create(client, id)) << id;
    EXPECT_FALSE(create(client, 2001));
    EXPECT_EQ(err, 62);
    EXPECT_FALSE(client.SelectLANBridge(2001, &err));
    EXPECT_TRUE(create(client, 2000));
    EXPECT_EQ(err, 118);
    const auto list = std::make_unique<qcmap_msgr_vlan_conf_t>();
    EXPECT_TRUE(client.GetVLANConfig(list.get(), &err));
    EXPECT_EQ(list->count, 2000);
    EXPECT_EQ(list->vlan[1999].vlan_id, 2000);
}

TEST_F(LanVlanHostTest, RestoreTakesAllVlansAndTheirBridges)
{
    OpenClient client;
    EXPECT_TRUE(create(client, 100));
    EXPECT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(vlans(client), "");
    EXPECT_FALSE(client.SelectLANBridge(100, &err));
}

}  // namespace
