#include <string.h>

#include "alg.h"
#include "host_fixture.h"
#include "lan_addressing.h"
#include "state_file.h"

namespace {

using mobile_ap::Store;

class AlgHostTest : public HostTest {
protected:
    // What happens outside every session, as the demonstration tool does it. Returns the error word it ended with.
    template <class Work>
    int outside(const Work& work)
    {
        Store db;
        EXPECT_EQ(mobile_ap::open_state(db, folder), "");
        mobile_ap::Transaction transaction(db, mobile_ap::Access::kWrite);
        try {
            work(db);
            transaction.commit();
            return 0;
        } catch (const mobile_ap::Ending& refusal) {
            return static_cast<int>(refusal.word);
        }
    }
    int assign(int bridge, uint32_t family, const std::string& address, const std::string& fqdn = "")
    {
        return outside([&](Store& db) { mobile_ap::add_network_sip_server(db, bridge, family, address, fqdn); });
    }
    std::string enabled_algs()
    {
        Store db;
        EXPECT_EQ(mobile_ap::open_state(db, folder), "");
        std::string all;
        auto q = db.query("SELECT type, enabled FROM alg ORDER BY type");
        while (q.next())
            all += std::to_string(q.get<int>(0)) + "=" + std::to_string(q.get<int>(1)) + " ";
        return all;
    }
    void read(QCMAP_Client& client)
    {
        memset(&configured, 0xa5, sizeof configured);
        memset(network, 0xa5, sizeof network);
        memset(network6, 0xa5, sizeof network6);
        count = count6 = -1;
        EXPECT_TRUE(client.GetSIPServerInfo(&configured, network, &count, &err)) << err;
        EXPECT_TRUE(client.GetV6SIPServerInfo(network6, &count6, &err)) << err;
    }

    qcmap_msgr_sip_server_info_v01 configured;
    qcmap_msgr_sip_server_info_v01 network[QCMAP_MAX_SIP_SERVERS];
    qcmap_msgr_ipv6_sip_server_info_v01 network6[QCMAP_MAX_SIP_SERVERS];
    int count;
    int count6;
};

qcmap_msgr_sip_server_info_v01 server(uint32_t type, uint32_t address, const std::string& fqdn)
{
    qcmap_msgr_sip_server_info_v01 info = {};
    info.pcscf_info_type = type;
    info.ipv4_addr = address;
    memcpy(info.fqdn, fqdn.data(), fqdn.size());
    return info;
}

TEST_F(AlgHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(enabled_algs(), "1=0 2=0 ");
    read(client);
    EXPECT_EQ(configured.pcscf_info_type, 0u);
    EXPECT_EQ(configured.ipv4_addr, 0u);
    EXPECT_EQ(configured.fqdn[0], 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(count6, 0);
}

TEST_F(AlgHostTest, AlgsAreSwitchedOneByOneOrTogether)
{
    OpenClient client;
    EXPECT_TRUE(client.EnableAlg(2, &err));
    EXPECT_EQ(enabled_algs(), "1=0 2=1 ");
    EXPECT_TRUE(client.EnableAlg(3, &err));
    EXPECT_EQ(enabled_algs(), "1=1 2=1 ");
    EXPECT_TRUE(client.DisableAlg(2, &err));
    EXPECT_EQ(enabled_algs(), "1=1 2=0 ");
    for (const uint64_t unknown : {uint64_t{0}, uint64_t{4}, uint64_t{5}, uint64_t{0x100000001}, ~uint64_t{0}}) {
        EXPECT_FALSE(client.EnableAlg(unknown, &err));
        EXPECT_EQ(err, 48);
        EXPECT_FALSE(client.DisableAlg(unknown, &err));
        EXPECT_EQ(err, 48);
    }
    EXPECT_EQ(enabled_algs(), "1=1 2=0 ");
}

TEST_F(AlgHostTest, EachBridgeKeepsItsConfiguredServer)
{
    const std::string full(100, 'n');
    {
        OpenClient client;
        ASSERT_EQ(outside([](Store& db) { mobile_ap::add_bridge(db, 7); }), 0);
        auto by_ip = server(1, 0x0a000001, "");
        EXPECT_TRUE(client.SetSIPServerInfo(&by_ip, &err));
        EXPECT_TRUE(client.SelectLANBridge(7, &err));
        auto by_name = server(2, 0, full);
        EXPECT_TRUE(client.SetSIPServerInfo(&by_name, &err));
    }
    OpenClient client;
    read(client);
    EXPECT_EQ(configured.pcscf_info_type, 1u);
    EXPECT_EQ(configured.ipv4_addr, 0x0a000001u);
    EXPECT_EQ(configured.fqdn[0], 0);
    EXPECT_EQ(configured.fqdn[99], 0);
    ASSERT_TRUE(client.SelectLANBridge(7, &err));
    read(client);
    EXPECT_EQ(configured.pcscf_info_type, 2u);
    EXPECT_EQ(configured.ipv4_addr, 0u);
    EXPECT_EQ(std::string(configured.fqdn, 100), full);
    // A further one takes its place.
    auto other = server(1, 0x0a000002, "");
    EXPECT_TRUE(client.SetSIPServerInfo(&other, &err));
    read(client);
    EXPECT_EQ(configured.ipv4_addr, 0x0a000002u);
    EXPECT_EQ(configured.fqdn[0], 0);
}

TEST_F(AlgHostTest, AServerOfAnotherTypeIsRefused)
{
    OpenClient client;
    for (const uint32_t type : {0u, 3u, 0xffffffffu}) {
        auto info = server(type, 1, "x");
        EXPECT_FALSE(client.SetSIPServerInfo(&info, &err));
        EXPECT_EQ(err, 48);
    }
    read(client);
    EXPECT_EQ(configured.pcscf_info_type, 0u);
}

TEST_F(AlgHostTest, NetworkServersStandInTheOrderTheyCame)
{
    OpenClient client;
    ASSERT_EQ(assign(0, 4, "10.0.0.9"), 0);
    ASSERT_EQ(assign(0, 6, "2001:db8::5"), 0);
    ASSERT_EQ(assign(0, 4, "", "pcscf.example"), 0);
    ASSERT_EQ(assign(0, 4, "10.0.0.1"), 0);
    ASSERT_EQ(assign(0, 6, "", "pcscf6.example"), 0);
    read(client);
    ASSERT_EQ(count, 3);
    EXPECT_EQ(network[0].pcscf_info_type, 1u);
    EXPECT_EQ(network[0].ipv4_addr, 0x0a000009u);
    EXPECT_EQ(network[0].fqdn[0], 0);
    EXPECT_EQ(network[1].pcscf_info_type, 2u);
    EXPECT_EQ(network[1].ipv4_addr, 0u);
    EXPECT_STREQ(network[1].fqdn, "pcscf.example");
    EXPECT_EQ(network[2].ipv4_addr, 0x0a000001u);
    EXPECT_EQ(network[3].pcscf_info_type, 0xa5a5a5a5u);
    ASSERT_EQ(count6, 2);
    const uint8_t address[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5};
    EXPECT_EQ(network6[0].pcscf_info_type, 1u);
    EXPECT_EQ(memcmp(network6[0].ipv6_addr, address, 16), 0);
    EXPECT_EQ(network6[1].pcscf_info_type, 2u);
    EXPECT_STREQ(network6[1].fqdn, "pcscf6.example");
    EXPECT_EQ(network6[2].pcscf_info_type, 0xa5a5a5a5u);

    ASSERT_EQ(outside([](Store& db) { mobile_ap::clear_network_sip_servers(db, 0); }), 0);
    read(client);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(count6, 0);
}

TEST_F(AlgHostTest, AFamilyHas25NetworkServersAtMost)
{
    OpenClient client;
    for (int i = 1; i <= 25; ++i) {
        ASSERT_EQ(assign(0, 4, "10.0.0." + std::to_string(i)), 0);
        ASSERT_EQ(assign(0, 6, "2001:db8::" + std::to_string(i)), 0);
    }
    EXPECT_EQ(assign(0, 4, "10.0.0.26"), 62);
    EXPECT_EQ(assign(0, 6, "2001:db8::26"), 62);
    read(client);
    ASSERT_EQ(count, 25);
    ASSERT_EQ(count6, 25);
    EXPECT_EQ(network[24].ipv4_addr, 0x0a000019u);
    EXPECT_EQ(network6[24].ipv6_addr[15], 0x25);
}

TEST_F(AlgHostTest, WhatIsNoServerIsNotAssigned)
{
    EXPECT_EQ(assign(0, 4, "2001:db8::1"), 48);
    EXPECT_EQ(assign(0, 6, "10.0.0.1"), 48);
    EXPECT_EQ(assign(0, 4, "", ""), 48);
    EXPECT_EQ(assign(0, 4, "", std::string(101, 'n')), 48);
    EXPECT_EQ(assign(0, 10, "10.0.0.1"), 48);
    EXPECT_EQ(assign(9, 4, "10.0.0.1"), 14);
    EXPECT_EQ(outside([](Store& db) { mobile_ap::clear_network_sip_servers(db, 9); }), 14);
    OpenClient client;
    read(client);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(count6, 0);
}

TEST_F(AlgHostTest, ABridgeTakesItsServersAlong)
{
    OpenClient client;
    ASSERT_EQ(outside([](Store& db) { mobile_ap::add_bridge(db, 7); }), 0);
    ASSERT_EQ(assign(7, 4, "10.0.0.1"), 0);
    ASSERT_TRUE(client.SelectLANBridge(7, &err));
    auto info = server(1, 5, "");
    ASSERT_TRUE(client.SetSIPServerInfo(&info, &err));
    ASSERT_EQ(outside([](Store& db) { mobile_ap::remove_bridge(db, 7); }), 0);
    EXPECT_FALSE(client.SetSIPServerInfo(&info, &err));
    EXPECT_EQ(err, 14);
    EXPECT_FALSE(client.GetSIPServerInfo(&configured, network, &count, &err));
    EXPECT_EQ(err, 14);
    EXPECT_FALSE(client.GetV6SIPServerInfo(network6, &count6, &err));
    EXPECT_EQ(err, 14);
    ASSERT_EQ(outside([](Store& db) { mobile_ap::add_bridge(db, 7); }), 0);
    read(client);
    EXPECT_EQ(configured.pcscf_info_type, 0u);
    EXPECT_EQ(count, 0);
}

TEST_F(AlgHostTest, RestoreBringsBackTheFactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.EnableAlg(1, &err));
    auto info = server(1, 5, "");
    ASSERT_TRUE(client.SetSIPServerInfo(&info, &err));
    ASSERT_EQ(assign(0, 4, "10.0.0.1"), 0);
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(enabled_algs(), "1=0 2=0 ");
    read(client);
    EXPECT_EQ(configured.pcscf_info_type, 0u);
    EXPECT_EQ(count, 0);
}

}  // namespace
