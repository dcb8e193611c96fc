#include <arpa/inet.h>
#include <string.h>

#include "host_fixture.h"

namespace {

constexpr auto kEnabled = QCMAP_MSGR_IP_PASSTHROUGH_MODE_ENABLED_V01;
constexpr auto kDisabled = QCMAP_MSGR_IP_PASSTHROUGH_MODE_DISABLED_V01;

class LanPassthroughHostTest : public HostTest {
protected:
    void create_vlan(QCMAP_Client& client, int16_t id)
    {
        bool accelerated = false;
        ASSERT_TRUE(client.CreateVLANConfig({QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, id, 0}, &err, &accelerated));
    }
    bool set_passthrough(QCMAP_Client& client, qcmap_msgr_ip_passthrough_config_v01 config)
    {
        return client.SetIPPassthroughConfig(kEnabled, true, &config, &err);
    }
    qcmap_msgr_ip_passthrough_config_v01 passthrough(QCMAP_Client& client,
                                                     qcmap_msgr_ip_passthrough_mode_enum_v01 expected_mode)
    {
        qcmap_msgr_ip_passthrough_config_v01 config;
        memset(&config, 0xa5, sizeof config);
        auto mode = static_cast<qcmap_msgr_ip_passthrough_mode_enum_v01>(99);
        EXPECT_TRUE(client.GetIPPassthroughConfig(&mode, &config, &err));
        EXPECT_EQ(mode, expected_mode);
        return config;
    }
    uint32_t feature_mode(QCMAP_Client& client)
    {
        unsigned long long features = 0xa5;
        qcmap_client_feature_mode_config config = {0xa5, 0xa5};
        EXPECT_TRUE(client.GetFeatureMode(&features, &config, &err));
        EXPECT_EQ(features, 1u);
        EXPECT_EQ(config.features, 1u);
        return config.feature_mode;
    }
    int pdn(QCMAP_Client& client)
    {
        int value = 77;
        EXPECT_TRUE(client.ZR_GetIPPTNATPDN(&value, &err));
        return value;
    }
    bool set_filters(QCMAP_Client& client, qcmap_msgr_sw_path_filters_conf_t list)
    {
        return client.SetIPPassthroughSoftwarePathFilters(&list, &err);
    }
    // "flags start-end/protocol" of each.
    std::string filters(QCMAP_Client& client)
    {
        qcmap_msgr_sw_path_filters_conf_t list;
        memset(&list, 0xa5, sizeof list);
        list.request = 2;
        EXPECT_TRUE(client.GetIPPassthroughSoftwarePathFilters(&list, &err));
        EXPECT_EQ(list.request, 2u);
        std::string text = std::to_string(list.flags);
        for (int i = 0; i < list.count; ++i) {
            text += " " + std::to_string(list.filter[i].start_port) + "-" + std::to_string(list.filter[i].end_port) +
                    "/" + std::to_string(list.filter[i].protocol);
        }
        return text;
    }
    std::string addresses(QCMAP_Client& client)
    {
        qcmap_sw_path_filters_ex_ipv4_addr_list list;
        memset(&list, 0xa5, sizeof list);
        EXPECT_TRUE(client.ZR_GetIPFromSWPathFilters(&list, &err));
        EXPECT_EQ(err, 0);
        std::string text;
        for (int i = 0; i < list.count; ++i) {
            char address[INET_ADDRSTRLEN];
            inet_ntop(AF_INET, &list.address[i], address, sizeof address);
            text += std::string(address) + " ";
        }
        return text;
    }
};

TEST_F(LanPassthroughHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(feature_mode(client), 1u);
    EXPECT_EQ(pdn(client), -1);
    EXPECT_EQ(passthrough(client, kDisabled).adaptive_value, 0);
    EXPECT_EQ(filters(client), "0");
    EXPECT_EQ(addresses(client), "");
}

TEST_F(LanPassthroughHostTest, FeatureModeIsOneForAll)
{
    OpenClient client;
    for (const uint32_t mode : {2u, 3u, 1u, 3u}) {
        qcmap_client_feature_mode_config config = {1, mode};
        EXPECT_TRUE(client.SetFeatureMode(1, &config, &err));
        EXPECT_EQ(feature_mode(client), mode);
    }
    for (const uint32_t mode : {0u, 4u, 0xffffffffu}) {
        qcmap_client_feature_mode_config config = {1, mode};
        EXPECT_FALSE(client.SetFeatureMode(1, &config, &err)) << mode;
        EXPECT_EQ(err, 48);
    }
    qcmap_client_feature_mode_config config = {1, 1};
    for (const unsigned long long features : {0ULL, 2ULL, 3ULL}) {
        EXPECT_FALSE(client.SetFeatureMode(features, &config, &err));
        EXPECT_EQ(err, 48);
    }
    create_vlan(client, 100);
    EXPECT_TRUE(client.SelectLANBridge(100, &err));
    EXPECT_EQ(feature_mode(client), 3u);
    OpenClient next;
    EXPECT_EQ(feature_mode(next), 3u);
}

TEST_F(LanPassthroughHostTest, NatOfABridgeIsItsOwn)
{
    OpenClient client;
    create_vlan(client, 100);
    create_vlan(client, 200);
    EXPECT_TRUE(client.SelectLANBridge(100, &err));
    for (const int value : {0, 1, -1, 2}) {
        EXPECT_TRUE(client.ZR_SetIPPTNATPDN(value, &err));
        EXPECT_EQ(pdn(client), value);
    }
    for (const int value : {-2, 3, 255, 256}) {
        EXPECT_FALSE(client.ZR_SetIPPTNATPDN(value, &err)) << value;
        EXPECT_EQ(err, 48);
    }
    EXPECT_TRUE(client.SelectLANBridge(200, &err));
    EXPECT_EQ(pdn(client), -1);
    OpenClient next;
    EXPECT_EQ(pdn(next), -1);
    EXPECT_TRUE(next.SelectLANBridge(100, &err));
    EXPECT_EQ(pdn(next), 2);
}

TEST_F(LanPassthroughHostTest, PassthroughIsKeptAsItWasSet)
{
    OpenClient client;
    create_vlan(client, 100);
    for (const uint32_t device_type : {4u, 8u, 16u, 9u}) {
        EXPECT_TRUE(set_passthrough(client, {device_type, 0, 0, {0xab, 0xcd, 0xef, 0, 0x1f, 9}, {}}));
        const auto config = passthrough(client, kEnabled);
        EXPECT_EQ(config.device_type, device_type);
        EXPECT_EQ(config.adaptive_flag, 0);
        EXPECT_EQ(config.adaptive_value, 0);
        EXPECT_EQ(memcmp(config.mac, "\xab\xcd\xef\x00\x1f\x09", 6), 0);
        EXPECT_EQ(config.host_name[0], '\0');
    }
    for (const uint8_t value : std::vector<uint8_t>{0, 1, 10}) {
        EXPECT_TRUE(set_passthrough(client, {0x7fffffff, 1, value, {}, {}}));
        const auto config = passthrough(client, kEnabled);
        EXPECT_EQ(config.device_type, 0x7fffffffu);
        EXPECT_EQ(config.adaptive_flag, 1);
        EXPECT_EQ(config.adaptive_value, value);
    }
    EXPECT_TRUE(client.SelectLANBridge(100, &err));
    passthrough(client, kDisabled);
}

TEST_F(LanPassthroughHostTest, AHostNameMayFillItsField)
{
    OpenClient client;
    qcmap_msgr_ip_passthrough_config_v01 named = {3, 0, 0, {}, {}};
    memset(named.host_name, '\xe9', sizeof named.host_name);
    EXPECT_TRUE(set_passthrough(client, named));
    OpenClient next;
    EXPECT_EQ(memcmp(passthrough(next, kEnabled).host_name, named.host_name, sizeof named.host_name), 0);

    memset(named.host_name, 0, sizeof named.host_name);
    memcpy(named.host_name, "Korvane_PC", 10);
    EXPECT_TRUE(set_passthrough(client, named));
    EXPECT_EQ(memcmp(passthrough(next, kEnabled).host_name, named.host_name, sizeof named.host_name), 0);
}

TEST_F(LanPassthroughHostTest, DisablingForgetsTheDevice)
{
    OpenClient client;
    EXPECT_TRUE(set_passthrough(client, {4, 0, 0, {1, 2, 3, 4, 5, 6}, {}}));
    EXPECT_TRUE(client.SetIPPassthroughConfig(kDisabled, false, nullptr, &err));
    EXPECT_EQ(err, 0);
    EXPECT_EQ(passthrough(client, kDisabled).device_type, 0u);
    EXPECT_TRUE(client.SetIPPassthroughConfig(kDisabled, false, nullptr, &err));
}

TEST_F(LanPassthroughHostTest, WhatIsNoPassthroughIsRefused)
{
    OpenClient client;
    EXPECT_TRUE(set_passthrough(client, {4, 0, 0, {1, 2, 3, 4, 5, 6}, {}}));
    const qcmap_msgr_ip_passthrough_config_v01 bad[] = {
        {0, 0, 0, {}, {}}, {5, 0, 0, {}, {}},          {17, 0, 0, {}, {}},         {4, 1, 0, {1}, {}},
        {3, 0, 0, {}, {}}, {3, 1, 0, {}, {"pc"}},      {0x7fffffff, 0, 1, {}, {}}, {0x7fffffff, 2, 1, {}, {}},
        {9, 1, 0, {}, {}}, {0x7fffffff, 1, 11, {}, {}}};
    for (const auto& config : bad) {
        EXPECT_FALSE(set_passthrough(client, config)) << config.device_type;
        EXPECT_EQ(err, 48);
    }
    qcmap_msgr_ip_passthrough_config_v01 good = {8, 0, 0, {1}, {}};
    EXPECT_FALSE(client.SetIPPassthroughConfig(kEnabled, false, &good, &err));
    EXPECT_FALSE(client.SetIPPassthroughConfig(kEnabled, true, nullptr, &err));
    EXPECT_FALSE(
        client.SetIPPassthroughConfig(static_cast<qcmap_msgr_ip_passthrough_mode_enum_v01>(2), true, &good, &err));
    EXPECT_EQ(err, 48);
    EXPECT_EQ(passthrough(client, kEnabled).device_type, 4u);
}

TEST_F(LanPassthroughHostTest, FiltersKeepTheirOrderAndFlags)
{
    OpenClient client;
    create_vlan(client, 100);
    EXPECT_TRUE(
        set_filters(client, {2, 5, 0xfffffffe, {{80, 80, 1}, {1, 65535, 2}, {0, 0, 4}, {80, 80, 1}, {9, 1, 4}}}));
    EXPECT_EQ(filters(client), "4294967294 80-80/1 1-65535/2 0-0/4 80-80/1 9-1/4");
    EXPECT_TRUE(set_filters(client, {2, 2, 1, {{7, 8, 2}, {80, 80, 1}, {5, 5, 1}}}));
    EXPECT_EQ(filters(client), "1 7-8/2 80-80/1");
    EXPECT_TRUE(client.SelectLANBridge(100, &err));
    EXPECT_EQ(filters(client), "0");
    OpenClient next;
    EXPECT_EQ(filters(next), "1 7-8/2 80-80/1");
    EXPECT_TRUE(set_filters(next, {2, 0, 1, {}}));
    EXPECT_EQ(filters(next), "1");
}

TEST_F(LanPassthroughHostTest, ABadFilterListLeavesTheOldOne)
{
    OpenClient client;
    EXPECT_TRUE(set_filters(client, {2, 1, 3, {{80, 81, 1}}}));
    EXPECT_FALSE(set_filters(client, {2, 6, 0, {{1, 1, 1}}}));
    EXPECT_EQ(err, 62);
    for (const qcmap_sw_path_filter& bad :
         std::vector<qcmap_sw_path_filter>{{1, 2, 0}, {1, 2, 3}, {1, 2, 5}, {0, 2, 1}, {2, 1, 2}, {1, 2, 257}}) {
        EXPECT_FALSE(set_filters(client, {2, 2, 0, {{1, 1, 1}, bad}})) << bad.protocol;
        EXPECT_EQ(err, 48);
    }
    EXPECT_FALSE(set_filters(client, {1, 1, 0, {{1, 1, 1}}}));
    EXPECT_EQ(err, 48);
    qcmap_msgr_sw_path_filters_conf_t list = {};
    EXPECT_FALSE(client.GetIPPassthroughSoftwarePathFilters(&list, &err));
    EXPECT_EQ(err, 48);
    EXPECT_EQ(filters(client), "3 80-81/1");
}

TEST_F(LanPassthroughHostTest, AddressesAreKeptInTheirOrder)
{
    OpenClient client;
    for (const char* address : {"192.168.225.30", "10.0.0.1", "192.168.225.20", "8.8.8.8", "255.255.255.255"}) {
        EXPECT_TRUE(client.ZR_AddIPToSWPathFilters(inet_addr(address), &err)) << address;
    }
    EXPECT_EQ(addresses(client), "192.168.225.30 10.0.0.1 192.168.225.20 8.8.8.8 255.255.255.255 ");
    EXPECT_FALSE(client.ZR_AddIPToSWPathFilters(inet_addr("1.1.1.1"), &err));
    EXPECT_EQ(err, 62);
    EXPECT_FALSE(client.ZR_AddIPToSWPathFilters(inet_addr("10.0.0.1"), &err));
    EXPECT_EQ(err, 118);
    EXPECT_FALSE(client.ZR_DeleteIPFromSWPathFilters(inet_addr("1.1.1.1"), &err));
    EXPECT_EQ(err, 25);
    EXPECT_TRUE(client.ZR_DeleteIPFromSWPathFilters(inet_addr("10.0.0.1"), &err));
    EXPECT_TRUE(client.ZR_AddIPToSWPathFilters(inet_addr("1.1.1.1"), &err));
    OpenClient next;
    EXPECT_EQ(addresses(next), "192.168.225.30 192.168.225.20 8.8.8.8 255.255.255.255 1.1.1.1 ");
    EXPECT_TRUE(next.ZR_DeleteIPFromSWPathFilters(inet_addr("8.8.8.8"), &err));
    EXPECT_FALSE(next.ZR_AddIPToSWPathFilters(0, &err));
    EXPECT_EQ(err, 48);
}

TEST_F(LanPassthroughHostTest, RestoreBringsBackTheFactoryState)
{
    OpenClient client;
    qcmap_client_feature_mode_config mode = {1, 3};
    EXPECT_TRUE(client.SetFeatureMode(1, &mode, &err));
    EXPECT_TRUE(client.ZR_SetIPPTNATPDN(2, &err));
    EXPECT_TRUE(set_passthrough(client, {4, 0, 0, {1, 2, 3, 4, 5, 6}, {}}));
    EXPECT_TRUE(set_filters(client, {2, 1, 3, {{80, 81, 1}}}));
    EXPECT_TRUE(client.ZR_AddIPToSWPathFilters(inet_addr("1.1.1.1"), &err));
    EXPECT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(feature_mode(client), 1u);
    EXPECT_EQ(pdn(client), -1);
    passthrough(client, kDisabled);
    EXPECT_EQ(filters(client), "0");
    EXPECT_EQ(addresses(client), "");
}

}  // namespace
