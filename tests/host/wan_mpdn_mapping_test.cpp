#include <sqlite3.h>
#include <string.h>

#include <memory>

#include "host_fixture.h"

namespace {

class WanMpdnMappingHostTest : public HostTest {
protected:
    static bool create_profile(QCMAP_Client& client)
    {
        qcmap_net_policy_info info = {};
        info.ip_family = 10;
        info.profile_index_3gpp = info.profile_index_3gpp2 = 1;
        unsigned int handle = 0;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        return client.CreateWWANPolicyEx(info, &handle, &error);
    }
    // Straight into the database, as a test of the mappings alone.
    void run_sql(const std::string& sql)
    {
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open((folder + "/mobile_ap.db").c_str(), &connection), SQLITE_OK);
        sqlite3_busy_timeout(connection, 5000);
        EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    }
    void make_bridge(int id)
    {
        run_sql(
            "INSERT INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip)"
            " VALUES (" +
            std::to_string(id) + ", '192.168.9.1', 1, '192.168.9.20', '192.168.9.60')");
    }
    bool add(QCMAP_Client& client, int vlan_id, unsigned int profile)
    {
        return client.AddPDNToVLANMapping(static_cast<short>(vlan_id), profile, &err);
    }
    bool remove(QCMAP_Client& client, int vlan_id, unsigned int profile)
    {
        return client.DeletePDNToVLANMapping(static_cast<short>(vlan_id), profile, &err);
    }
    std::unique_ptr<qcmap_msgr_pdn_to_vlan_mapping_ex_v01> list(QCMAP_Client& client, int* count)
    {
        auto all = std::make_unique<qcmap_msgr_pdn_to_vlan_mapping_ex_v01>();
        memset(all.get(), 0xa5, sizeof *all);
        *count = -1;
        EXPECT_TRUE(client.GetPDNtoVLANMappingsEx(all.get(), count, &err));
        return all;
    }
    std::string pairs(QCMAP_Client& client)
    {
        int count = 0;
        const auto all = list(client, &count);
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += std::to_string(all->mapping[i].profile_handle) + ":";
            for (int j = 0; j < all->mapping[i].vlan_count; ++j)
                text += " " + std::to_string(all->mapping[i].vlan_id[j]);
            text += "; ";
        }
        return text;
    }
};

TEST_F(WanMpdnMappingHostTest, FactoryStateIsEmpty)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(pairs(client), "");
}

TEST_F(WanMpdnMappingHostTest, MappingsAreKeptByProfileAndVlan)
{
    {
        OpenClient client;
        ASSERT_TRUE(create_profile(client));
        for (const int id : {20, 10, 4094})
            make_bridge(id);
        EXPECT_TRUE(add(client, 4094, 2));
        EXPECT_TRUE(add(client, 20, 1));
        EXPECT_TRUE(add(client, 10, 1));
        EXPECT_TRUE(add(client, 10, 2));
    }
    OpenClient client;
    EXPECT_EQ(pairs(client), "1: 10 20; 2: 10 4094; ");
    EXPECT_TRUE(remove(client, 10, 1));
    EXPECT_EQ(pairs(client), "1: 20; 2: 10 4094; ");
    EXPECT_FALSE(remove(client, 10, 1));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    EXPECT_TRUE(remove(client, 20, 1));
    EXPECT_EQ(pairs(client), "2: 10 4094; ");
    EXPECT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(pairs(client), "");
}

TEST_F(WanMpdnMappingHostTest, OnlyProfilesAndBridgesThatAreThere)
{
    OpenClient client;
    make_bridge(100);
    for (const unsigned int profile : {0u, 2u, 51u, 0xffffffffu}) {
        EXPECT_FALSE(add(client, 100, profile)) << profile;
        EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    }
    for (const int vlan_id : {0, 101, 4095, -1, -32768}) {
        EXPECT_FALSE(add(client, vlan_id, 1)) << vlan_id;
        EXPECT_EQ(err, QMI_ERR_INVALID_ID_V01);
        EXPECT_FALSE(remove(client, vlan_id, 1));
        EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    }
    EXPECT_TRUE(add(client, 100, 1));
    EXPECT_FALSE(add(client, 100, 1));
    EXPECT_EQ(err, QMI_ERR_ALREADY_THERE_V01);
    make_bridge(1);
    EXPECT_TRUE(add(client, 1, 1));
    EXPECT_EQ(pairs(client), "1: 1 100; ");
}

TEST_F(WanMpdnMappingHostTest, MappingsGoWithTheirProfileAndTheirBridge)
{
    OpenClient client;
    ASSERT_TRUE(create_profile(client));
    for (const int id : {10, 20})
        make_bridge(id);
    for (const unsigned int profile : {1u, 2u}) {
        ASSERT_TRUE(add(client, 10, profile));
        ASSERT_TRUE(add(client, 20, profile));
    }
    run_sql("DELETE FROM lan_bridge WHERE id = 10");
    EXPECT_EQ(pairs(client), "1: 20; 2: 20; ");
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(2, &err));
    ASSERT_TRUE(client.DeleteWWANPolicy(&err));
    EXPECT_EQ(pairs(client), "1: 20; ");
    ASSERT_TRUE(create_profile(client));
    EXPECT_EQ(pairs(client), "1: 20; ");
}

TEST_F(WanMpdnMappingHostTest, TheLargestListIsGivenWhole)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    run_sql(
        "WITH RECURSIVE p(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM p WHERE n < 50),"
        " v(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM v WHERE n < 4094)"
        " INSERT INTO pdn_vlan_mapping SELECT p.n, v.n FROM p, v");
    int count = 0;
    const auto all = list(client, &count);
    ASSERT_EQ(count, 50);
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(all->mapping[i].profile_handle, static_cast<uint32_t>(i + 1));
        ASSERT_EQ(all->mapping[i].vlan_count, 4094);
        for (int j = 0; j < 4094; ++j)
            ASSERT_EQ(all->mapping[i].vlan_id[j], j + 1);
    }
}

TEST_F(WanMpdnMappingHostTest, MoreIdsThanThereAreVlansAreCut)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    run_sql(
        "WITH RECURSIVE v(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM v WHERE n < 4094)"
        " INSERT INTO pdn_vlan_mapping SELECT 1, n FROM v;"
        "INSERT INTO pdn_vlan_mapping VALUES (1, 1.5), (1, 4093.5), (2, 7)");
    int count = 0;
    const auto all = list(client, &count);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(all->mapping[0].profile_handle, 1u);
    EXPECT_EQ(all->mapping[0].vlan_count, 4094);
    EXPECT_EQ(all->mapping[1].profile_handle, 2u);
    EXPECT_EQ(all->mapping[1].vlan_count, 1);
    EXPECT_EQ(all->mapping[1].vlan_id[0], 7);
}

}  // namespace
