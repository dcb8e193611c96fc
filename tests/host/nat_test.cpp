#include <algorithm>

#include "host_fixture.h"

namespace {

constexpr uint32_t kHost = 0xC0A8E132;  // 192.168.225.50

class NatHostTest : public HostTest {
protected:
    unsigned int add_profile(QCMAP_Client& client)
    {
        qcmap_net_policy_info policy = {};
        policy.ip_family = QCMAP_MSGR_IP_FAMILY_V4V6_V01;
        policy.profile_index_3gpp = 1;
        policy.profile_index_3gpp2 = 1;
        unsigned int handle = 0;
        EXPECT_TRUE(client.CreateWWANPolicyEx(policy, &handle, &err)) << err;
        EXPECT_NE(handle, 0u);
        return handle;
    }
    void select(QCMAP_Client& client, unsigned int handle)
    {
        EXPECT_TRUE(client.SetWWANProfileHandlePreference(handle, &err)) << err;
    }
    int nat_type(QCMAP_Client& client)
    {
        auto type = static_cast<qcmap_msgr_nat_enum_v01>(77);
        EXPECT_TRUE(client.GetNatType(&type, &err)) << err;
        return type;
    }
    uint32_t dmz(QCMAP_Client& client)
    {
        unsigned int ip = 77;
        EXPECT_TRUE(client.GetDMZ(&ip, &err)) << err;
        return ip;
    }
    unsigned int routing_behind(QCMAP_Client& client)
    {
        unsigned int value = 77;
        EXPECT_TRUE(client.ZR_GetRoutingBH(&value, &err)) << err;
        return value;
    }
    bool add(QCMAP_Client& client, qcmap_msgr_snat_entry_config_v01 entry)
    {
        err = QMI_ERR_INTERNAL_V01;
        return client.AddStaticNatEntry(&entry, &err);
    }
    bool remove(QCMAP_Client& client, qcmap_msgr_snat_entry_config_v01 entry)
    {
        err = QMI_ERR_INTERNAL_V01;
        return client.DeleteStaticNatEntry(&entry, &err);
    }
    // Every entry as "ip:port<-port/protocol".
    std::vector<std::string> entries(QCMAP_Client& client)
    {
        qcmap_msgr_snat_entry_config_v01 list[QCMAP_MAX_SNAT_ENTRIES] = {};
        int count = 77;
        EXPECT_TRUE(client.GetStaticNatConfig(list, &count, &err)) << err;
        std::vector<std::string> shown;
        for (int i = 0; i < count; ++i)
            shown.push_back(std::to_string(list[i].private_ip) + ":" + std::to_string(list[i].private_port) + "<-" +
                            std::to_string(list[i].global_port) + "/" + std::to_string(list[i].protocol));
        return shown;
    }
    using Shown = std::vector<std::string>;
};

TEST_F(NatHostTest, FactoryState)
{
    OpenClient client;
    EXPECT_EQ(nat_type(client), 1);
    EXPECT_EQ(dmz(client), 0u);
    EXPECT_EQ(entries(client), Shown{});
    EXPECT_EQ(routing_behind(client), 0u);
}

TEST_F(NatHostTest, TypeIsKept)
{
    OpenClient client;
    for (const int type : {0, 1, 2, 3}) {
        EXPECT_TRUE(client.SetNatType(static_cast<qcmap_msgr_nat_enum_v01>(type), &err));
        OpenClient other;
        EXPECT_EQ(nat_type(other), type);
    }
    for (const int type : {4, -1, 256, 2147483647}) {
        EXPECT_FALSE(client.SetNatType(static_cast<qcmap_msgr_nat_enum_v01>(type), &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    EXPECT_EQ(nat_type(client), 3);
}

TEST_F(NatHostTest, AFurtherDmzHostTakesThePlaceOfTheFirst)
{
    OpenClient client;
    EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_FULL_CONE_V01, &err));
    EXPECT_TRUE(client.AddDMZ(kHost, &err));
    EXPECT_EQ(dmz(client), kHost);
    EXPECT_TRUE(client.AddDMZ(0xFFFFFFFF, &err));
    OpenClient other;
    EXPECT_EQ(dmz(other), 0xFFFFFFFFu);
    EXPECT_FALSE(client.AddDMZ(0, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_EQ(dmz(client), 0xFFFFFFFFu);
    EXPECT_EQ(nat_type(client), 2) << "the DMZ changed the NAT type";
}

TEST_F(NatHostTest, DeletingTheDmzTwiceIsNoError)
{
    OpenClient client;
    EXPECT_TRUE(client.DeleteDMZ(&err));
    EXPECT_TRUE(client.AddDMZ(kHost, &err));
    EXPECT_TRUE(client.DeleteDMZ(&err));
    EXPECT_EQ(dmz(client), 0u);
    EXPECT_TRUE(client.DeleteDMZ(&err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
    EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_FULL_CONE_V01, &err));
    EXPECT_EQ(dmz(client), 0u);
}

TEST_F(NatHostTest, EntriesAreKeptInTheirOrder)
{
    OpenClient client;
    EXPECT_TRUE(add(client, {9, 80, 8080, 253}));
    EXPECT_TRUE(add(client, {1, 0, 0, 1}));
    EXPECT_TRUE(add(client, {0xFFFFFFFE, 65535, 65534, 17}));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
    OpenClient other;
    EXPECT_EQ(entries(other), (Shown{"9:80<-8080/253", "1:0<-0/1", "4294967294:65535<-65534/17"}));
    EXPECT_TRUE(remove(other, {1, 0, 0, 1}));
    EXPECT_TRUE(add(other, {1, 0, 0, 50}));
    EXPECT_EQ(entries(client), (Shown{"9:80<-8080/253", "4294967294:65535<-65534/17", "1:0<-0/50"}));
}

TEST_F(NatHostTest, AnEntryThatIsThereIsRefused)
{
    OpenClient client;
    EXPECT_TRUE(add(client, {9, 80, 8080, 6}));
    EXPECT_FALSE(add(client, {9, 80, 8080, 6}));
    EXPECT_EQ(err, QMI_ERR_ALREADY_THERE_V01);
    EXPECT_EQ(entries(client), Shown{"9:80<-8080/6"});
    // One value apart is another entry.
    EXPECT_TRUE(add(client, {8, 80, 8080, 6}));
    EXPECT_TRUE(add(client, {9, 81, 8080, 6}));
    EXPECT_TRUE(add(client, {9, 80, 8081, 6}));
    EXPECT_TRUE(add(client, {9, 80, 8080, 17}));
    EXPECT_EQ(entries(client).size(), 5u);
}

TEST_F(NatHostTest, OnlyAnExactEntryIsDeleted)
{
    OpenClient client;
    EXPECT_TRUE(add(client, {9, 80, 8080, 6}));
    for (const qcmap_msgr_snat_entry_config_v01& almost :
         {qcmap_msgr_snat_entry_config_v01{8, 80, 8080, 6}, {9, 81, 8080, 6}, {9, 80, 8081, 6}, {9, 80, 8080, 253}}) {
        EXPECT_FALSE(remove(client, almost));
        EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    }
    EXPECT_EQ(entries(client), Shown{"9:80<-8080/6"});
    EXPECT_TRUE(remove(client, {9, 80, 8080, 6}));
    EXPECT_EQ(entries(client), Shown{});
    EXPECT_FALSE(remove(client, {9, 80, 8080, 6}));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
}

TEST_F(NatHostTest, FiftyEntriesFitAndTheNextIsRefused)
{
    OpenClient client;
    for (uint16_t i = 1; i <= 50; ++i)
        ASSERT_TRUE(add(client, {kHost, i, i, 6})) << i;
    EXPECT_FALSE(add(client, {kHost, 51, 51, 6}));
    EXPECT_EQ(err, QMI_ERR_LIMIT_V01);
    EXPECT_FALSE(add(client, {kHost, 50, 50, 6}));
    EXPECT_EQ(err, QMI_ERR_ALREADY_THERE_V01);
    const Shown all = entries(client);
    ASSERT_EQ(all.size(), 50u);
    EXPECT_EQ(all.front(), "3232293170:1<-1/6");
    EXPECT_EQ(all.back(), "3232293170:50<-50/6");
    EXPECT_TRUE(remove(client, {kHost, 7, 7, 6}));
    EXPECT_TRUE(add(client, {kHost, 51, 51, 6}));
    EXPECT_EQ(entries(client).back(), "3232293170:51<-51/6");
}

TEST_F(NatHostTest, EveryProfileHasItsOwn)
{
    OpenClient client;
    const unsigned int second = add_profile(client);
    select(client, second);
    EXPECT_EQ(nat_type(client), 1);
    EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_SYMMETRIC_V01, &err));
    EXPECT_TRUE(client.AddDMZ(kHost, &err));
    for (uint16_t i = 1; i <= 50; ++i)
        ASSERT_TRUE(add(client, {kHost, i, i, 6})) << i;
    select(client, 1);
    EXPECT_EQ(nat_type(client), 1);
    EXPECT_EQ(dmz(client), 0u);
    EXPECT_EQ(entries(client), Shown{});
    EXPECT_TRUE(add(client, {kHost, 1, 1, 6}));
    EXPECT_FALSE(remove(client, {kHost, 2, 2, 6}));
    EXPECT_TRUE(client.DeleteDMZ(&err));
    select(client, second);
    EXPECT_EQ(nat_type(client), 0);
    EXPECT_EQ(dmz(client), kHost);
    EXPECT_EQ(entries(client).size(), 50u);
}

TEST_F(NatHostTest, ADeletedProfileTakesItsSettingsAlong)
{
    OpenClient client;
    const unsigned int second = add_profile(client);
    select(client, second);
    EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_FULL_CONE_V01, &err));
    EXPECT_TRUE(client.AddDMZ(kHost, &err));
    EXPECT_TRUE(add(client, {kHost, 80, 80, 6}));
    select(client, 1);
    EXPECT_TRUE(add(client, {kHost, 81, 81, 6}));
    EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_ADDRESS_RESTRICTED_V01, &err));
    select(client, second);
    ASSERT_TRUE(client.DeleteWWANPolicy(&err)) << err;

    auto type = QCMAP_MSGR_NAT_SYMMETRIC_V01;
    EXPECT_FALSE(client.GetNatType(&type, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    EXPECT_FALSE(add(client, {kHost, 82, 82, 6}));
    EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    const unsigned int again = add_profile(client);
    EXPECT_EQ(again, second) << "the test is about a handle that comes back";
    select(client, again);
    EXPECT_EQ(nat_type(client), 1);
    EXPECT_EQ(dmz(client), 0u);
    EXPECT_EQ(entries(client), Shown{});
    select(client, 1);
    EXPECT_EQ(nat_type(client), 3);
    EXPECT_EQ(entries(client), Shown{"3232293170:81<-81/6"});
}

TEST_F(NatHostTest, RoutingBehindHoldsForAllProfiles)
{
    OpenClient client;
    EXPECT_TRUE(client.ZR_SetRoutingBH(1, &err));
    OpenClient other;
    select(other, add_profile(other));
    EXPECT_EQ(routing_behind(other), 1u);
    for (const unsigned int value : {2u, 256u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(client.ZR_SetRoutingBH(value, &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    EXPECT_EQ(routing_behind(client), 1u);
    EXPECT_TRUE(client.ZR_SetRoutingBH(0, &err));
    EXPECT_EQ(routing_behind(other), 0u);
}

TEST_F(NatHostTest, RestoreBringsBackFactoryState)
{
    OpenClient client;
    EXPECT_TRUE(client.SetNatType(QCMAP_MSGR_NAT_FULL_CONE_V01, &err));
    EXPECT_TRUE(client.AddDMZ(kHost, &err));
    EXPECT_TRUE(add(client, {kHost, 80, 80, 6}));
    EXPECT_TRUE(client.ZR_SetRoutingBH(1, &err));
    EXPECT_TRUE(client.RestoreFactoryConfig(&err));
    OpenClient other;
    EXPECT_EQ(nat_type(other), 1);
    EXPECT_EQ(dmz(other), 0u);
    EXPECT_EQ(entries(other), Shown{});
    EXPECT_EQ(routing_behind(other), 0u);
    // What goes with a profile still does.
    const unsigned int second = add_profile(other);
    select(other, second);
    EXPECT_TRUE(other.AddDMZ(kHost, &err));
    EXPECT_TRUE(other.DeleteWWANPolicy(&err));
    select(other, add_profile(other));
    EXPECT_EQ(dmz(other), 0u);
}

TEST_F(NatHostTest, ParallelAddsStopAtFifty)
{
    std::vector<pid_t> children;
    for (uint16_t child = 0; child < 6; ++child) {
        children.push_back(start_child([&] {
            OpenClient client;
            int added = 0;
            for (uint16_t i = 0; i < 20; ++i) {
                qcmap_msgr_snat_entry_config_v01 entry = {kHost, static_cast<uint16_t>(child * 100 + i + 1), 1, 6};
                if (client.AddStaticNatEntry(&entry, &err)) ++added;
            }
            return added;
        }));
    }
    int added = 0;
    for (const pid_t child : children)
        added += wait_child(child);
    EXPECT_EQ(added, 50);
    OpenClient client;
    Shown all = entries(client);
    EXPECT_EQ(all.size(), 50u);
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
}

}  // namespace
