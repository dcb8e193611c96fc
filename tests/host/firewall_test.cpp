#include <string.h>
#include <zr_nexa_client_api.h>

#include <algorithm>

#include "firewall_entries.h"
#include "host_fixture.h"

namespace {

class FirewallHostTest : public HostTest {
protected:
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
    static qcmap_msgr_firewall_conf_t entry(uint32_t ip_version)
    {
        qcmap_msgr_firewall_conf_t conf;
        memset(&conf, 0, sizeof conf);
        conf.filter.ip_version = ip_version;
        return conf;
    }
    bool add(QCMAP_Client& client, uint32_t ip_version)
    {
        auto conf = entry(ip_version);
        return client.AddFireWallEntry(&conf, &err);
    }
    std::vector<uint32_t> handles(QCMAP_Client& client, uint32_t ip_family)
    {
        qcmap_msgr_get_firewall_handle_list_conf_t list;
        memset(&list, 0xa5, sizeof list);
        list.ip_family = ip_family;
        EXPECT_TRUE(client.GetFireWallHandlesList(&list, &err)) << err;
        return {list.handle, list.handle + list.count};
    }
    bool get(QCMAP_Client& client, uint32_t ip_family, uint32_t handle)
    {
        qcmap_msgr_firewall_entry_conf_t conf;
        memset(&conf, 0, sizeof conf);
        conf.ip_family = ip_family;
        conf.handle = handle;
        return client.GetFireWallEntry(&conf, &err);
    }
    // Switch and policy as digits.
    std::string firewall(QCMAP_Client& client)
    {
        unsigned char enabled = 0xa5;
        unsigned char allowed = 0xa5;
        EXPECT_TRUE(client.GetFirewall(&enabled, &allowed, &err)) << err;
        return std::to_string(enabled) + std::to_string(allowed);
    }
    qcmap_hw_filter_config hw_filter(QCMAP_Client& client, qcmap_msgr_config_state_enum_v01 expected_state)
    {
        auto state = static_cast<qcmap_msgr_config_state_enum_v01>(77);
        qcmap_hw_filter_config config;
        memset(&config, 0xa5, sizeof config);
        EXPECT_TRUE(client.GetHWMACFilteringState(&state, &config, &err)) << err;
        EXPECT_EQ(state, expected_state);
        return config;
    }
};

TEST_F(FirewallHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(firewall(client), "00");
    for (const uint32_t family : {0u, 4u, 6u}) {
        EXPECT_TRUE(handles(client, family).empty());
    }
    const auto config = hw_filter(client, QCMAP_MSGR_CONFIG_STATE_OFF_V01);
    EXPECT_EQ(config.mac_count, 0u);
    EXPECT_EQ(config.iface_count, 0u);
}

TEST_F(FirewallHostTest, EntriesHaveHandlesInTheirOrder)
{
    OpenClient client;
    EXPECT_TRUE(add(client, 4));
    EXPECT_TRUE(add(client, 6));
    EXPECT_TRUE(add(client, 4));
    const auto all = handles(client, 0);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_LT(all[0], all[1]);
    EXPECT_LT(all[1], all[2]);
    EXPECT_EQ(handles(client, 4), (std::vector<uint32_t>{all[0], all[2]}));
    EXPECT_EQ(handles(client, 6), (std::vector<uint32_t>{all[1]}));

    EXPECT_TRUE(get(client, 4, all[0]));
    EXPECT_TRUE(get(client, 0, all[1]));
    EXPECT_FALSE(get(client, 4, all[1])) << "of the other family";
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    EXPECT_FALSE(get(client, 4, all[2] + 1));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
}

TEST_F(FirewallHostTest, ADeletedHandleIsGoneForGood)
{
    OpenClient client;
    EXPECT_TRUE(add(client, 4));
    EXPECT_TRUE(add(client, 4));
    const auto before = handles(client, 4);
    const int last = static_cast<int>(before[1]);
    EXPECT_TRUE(client.DeleteFireWallEntry(last, &err));
    EXPECT_EQ(handles(client, 4), (std::vector<uint32_t>{before[0]}));
    EXPECT_FALSE(client.DeleteFireWallEntry(last, &err));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    EXPECT_FALSE(client.DeleteFireWallEntry(0, &err));
    EXPECT_FALSE(client.DeleteFireWallEntry(-1, &err));
    EXPECT_TRUE(add(client, 4));
    EXPECT_NE(handles(client, 4)[1], before[1]) << "a new entry under an old handle";
}

TEST_F(FirewallHostTest, NonsenseIsRefused)
{
    OpenClient client;
    for (const uint32_t version : {0u, 5u, 10u, 0x10004u}) {
        EXPECT_FALSE(add(client, version));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    auto conf = entry(4);
    conf.direction = 3;
    EXPECT_FALSE(client.AddFireWallEntry(&conf, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    qcmap_msgr_get_firewall_handle_list_conf_t list;
    memset(&list, 0, sizeof list);
    list.ip_family = 5;
    EXPECT_FALSE(client.GetFireWallHandlesList(&list, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_FALSE(get(client, 10, 1));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_TRUE(handles(client, 0).empty());
}

TEST_F(FirewallHostTest, FiftyEntriesAProfile)
{
    OpenClient client;
    const unsigned int other = add_profile(client);
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(add(client, i % 2 == 0 ? 4 : 6)) << i;
    }
    for (const uint32_t version : {4u, 6u}) {
        EXPECT_FALSE(add(client, version));
        EXPECT_EQ(err, QMI_ERR_LIMIT_V01);
    }
    const auto all = handles(client, 0);
    EXPECT_EQ(all.size(), 50u);
    EXPECT_EQ(handles(client, 4).size(), 25u);

    ASSERT_TRUE(client.SetWWANProfileHandlePreference(other, &err));
    EXPECT_TRUE(handles(client, 0).empty());
    EXPECT_TRUE(add(client, 4));
    EXPECT_FALSE(get(client, 0, all[0])) << "of another profile";
    EXPECT_FALSE(client.DeleteFireWallEntry(static_cast<int>(all[0]), &err));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);

    ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
    EXPECT_TRUE(client.DeleteFireWallEntry(static_cast<int>(all[0]), &err));
    EXPECT_TRUE(add(client, 6));
}

TEST_F(FirewallHostTest, SwitchAndPolicyBelongToTheProfile)
{
    OpenClient client;
    const unsigned int other = add_profile(client);
    EXPECT_TRUE(client.SetFirewall(1, 1, &err));
    EXPECT_EQ(firewall(client), "11");
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(other, &err));
    EXPECT_EQ(firewall(client), "00");
    EXPECT_TRUE(client.SetFirewall(1, 0, &err));
    EXPECT_EQ(firewall(client), "10");
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
    EXPECT_EQ(firewall(client), "11");

    EXPECT_FALSE(client.SetFirewall(1, 2, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_FALSE(client.SetFirewall(2, 0, &err));
    EXPECT_EQ(firewall(client), "11");
    EXPECT_TRUE(client.SetFirewall(0, 5, &err));
    EXPECT_EQ(firewall(client), "01") << "the policy stays";
    EXPECT_TRUE(client.SetFirewall(0, 0, &err));
    EXPECT_EQ(firewall(client), "00");
}

TEST_F(FirewallHostTest, AProfileTakesItsFirewallAlong)
{
    OpenClient client;
    const unsigned int other = add_profile(client);
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(other, &err));
    EXPECT_TRUE(client.SetFirewall(1, 1, &err));
    EXPECT_TRUE(add(client, 4));
    ASSERT_TRUE(client.DeleteWWANPolicy(&err)) << err;
    EXPECT_FALSE(add(client, 4));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    EXPECT_FALSE(client.SetFirewall(1, 1, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);

    ASSERT_EQ(add_profile(client), other);
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(other, &err));
    EXPECT_EQ(firewall(client), "00");
    EXPECT_TRUE(handles(client, 0).empty());
}

TEST_F(FirewallHostTest, HardwareFilterIsKeptWhole)
{
    qcmap_hw_filter_config config;
    memset(&config, 0, sizeof config);
    config.mac_count = 16;
    config.iface_count = 8;
    for (uint32_t i = 0; i < 16; ++i) {
        for (uint32_t j = 0; j < 6; ++j) {
            config.mac[i][j] = static_cast<uint8_t>(i * 16 + j);
        }
    }
    for (uint32_t i = 0; i < 8; ++i) {
        for (uint32_t j = 0; j < 5; ++j) {
            config.iface[i][j] = 0xfffffff0u - i * 5 + j;
        }
    }
    {
        OpenClient client;
        EXPECT_TRUE(client.SetHWMACFilteringState(QCMAP_MSGR_CONFIG_STATE_LIST_V01, config, &err));
    }
    OpenClient client;
    auto read = hw_filter(client, QCMAP_MSGR_CONFIG_STATE_LIST_V01);
    EXPECT_EQ(memcmp(&read, &config, sizeof read), 0);

    // A shorter list leaves nothing of the longer one behind.
    config.mac_count = 1;
    config.iface_count = 2;
    EXPECT_TRUE(client.SetHWMACFilteringState(QCMAP_MSGR_CONFIG_STATE_ON_V01, config, &err));
    read = hw_filter(client, QCMAP_MSGR_CONFIG_STATE_ON_V01);
    EXPECT_EQ(read.mac_count, 1u);
    EXPECT_EQ(memcmp(read.mac[0], config.mac[0], 6), 0);
    EXPECT_EQ(read.mac[1][0], 0);
    EXPECT_EQ(read.iface_count, 2u);
    EXPECT_EQ(read.iface[1][4], config.iface[1][4]);
    EXPECT_EQ(read.iface[2][0], 0u);

    config.mac_count = 17;
    EXPECT_FALSE(client.SetHWMACFilteringState(QCMAP_MSGR_CONFIG_STATE_ON_V01, config, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    config.mac_count = 1;
    config.iface_count = 9;
    EXPECT_FALSE(client.SetHWMACFilteringState(QCMAP_MSGR_CONFIG_STATE_ON_V01, config, &err));
    config.iface_count = 1;
    for (const int state : {-1, 3}) {
        EXPECT_FALSE(client.SetHWMACFilteringState(static_cast<qcmap_msgr_config_state_enum_v01>(state), config, &err));
    }
    read = hw_filter(client, QCMAP_MSGR_CONFIG_STATE_ON_V01);
    EXPECT_EQ(read.iface_count, 2u);
}

TEST_F(FirewallHostTest, RestoreBringsBackFactoryState)
{
    OpenClient client;
    EXPECT_TRUE(add(client, 4));
    EXPECT_TRUE(client.SetFirewall(1, 1, &err));
    qcmap_hw_filter_config config;
    memset(&config, 0, sizeof config);
    config.mac_count = config.iface_count = 1;
    EXPECT_TRUE(client.SetHWMACFilteringState(QCMAP_MSGR_CONFIG_STATE_ON_V01, config, &err));
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_TRUE(handles(client, 0).empty());
    EXPECT_EQ(firewall(client), "00");
    config = hw_filter(client, QCMAP_MSGR_CONFIG_STATE_OFF_V01);
    EXPECT_EQ(config.mac_count, 0u);
    EXPECT_EQ(config.iface_count, 0u);
}

// Through the client interface: every family, every code, every flag that matters to them, and every second time the
// flags that do not.
TEST_F(FirewallHostTest, WhatAnApplicationAddsItReadsBack)
{
    std::vector<zr_nexa_firewall_entry_t> entries;
    for (const uint32_t version : {4u, 6u}) {
        for (uint32_t code = 0; code <= 8; ++code) {
            for (uint32_t header = 0; header < 8; ++header) {
                for (uint32_t transport = 0; transport < 32; ++transport) {
                    auto wanted = full_entry(version);
                    wanted.protocol = code;
                    wanted.direction = transport % 4;
                    const uint32_t foreign = transport % 2 == 0 ? 7 : 0;
                    const uint32_t headers = version == 4 ? header | foreign << 3 : foreign | header << 3;
                    const uint32_t with_protocol = code == 0 ? 0 : 1;
                    set_flags(&wanted, headers | with_protocol << 6 | transport << 7);
                    entries.push_back(wanted);
                }
            }
        }
    }
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    static zr_nexa_firewall_entry_list_t list;
    for (size_t at = 0; at < entries.size(); at += 50) {
        const size_t count = std::min<size_t>(50, entries.size() - at);
        size_t of_version[2] = {};
        for (size_t i = at; i < at + count; ++i) {
            ASSERT_EQ(zr_nexa_firewall_entry_add_v1(1, &entries[i]), 0u);
        }
        for (const uint32_t version : {4u, 6u}) {
            memset(&list, 0, sizeof list);
            ASSERT_EQ(zr_nexa_firewall_entry_get_v1(1, version, &list), 0u);
            size_t next = 0;
            for (size_t i = at; i < at + count; ++i) {
                if (entries[i].ip_version != version) continue;
                ASSERT_LT(next, list.count);
                const auto expected = read_back_of(entries[i]);
                ASSERT_EQ(memcmp(&list.entry[next], &expected, sizeof expected), 0) << "entry " << i;
                ASSERT_EQ(zr_nexa_firewall_entry_del_v1(1, static_cast<int32_t>(list.handle[next])), 0u);
                ++next;
            }
            ASSERT_EQ(next, list.count);
            of_version[version == 4 ? 0 : 1] = next;
        }
        ASSERT_EQ(of_version[0] + of_version[1], count);
    }
    EXPECT_EQ(zr_nexa_client_uninit(), 0u);
}

}  // namespace
