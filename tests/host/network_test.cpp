// What the mobile network does to calls: it ends them, refuses them, is slow, is foreign, and moves bytes.
#include "network.h"

#include "provoked.h"

namespace {

class NetworkHostTest : public ProvokedTest {
protected:
    // Both calls of profile 1 are up, and a session hears what follows.
    void SetUp() override
    {
        ASSERT_TRUE(client.open);
        ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
        ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
        ASSERT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 36:7:1 34:9:1 36:9:1 ");
    }
    void hang_up_both()
    {
        ASSERT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
        ASSERT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
        told(heard);
    }

    Heard heard;
    OpenClient client{Heard::callback, &heard};
};

// ---- dropped ----

TEST_F(NetworkHostTest, BothCallsAreEndedWithAReason)
{
    EXPECT_EQ(provoke("call drop 1 --reason 6:36"), "profile 1: IPv4 call ended\nprofile 1: IPv6 call ended\n");
    EXPECT_EQ(told(heard), "35:6:1/6:36 36:6:1/6:36 35:12:1/6:36 36:12:1/6:36 ");
    EXPECT_EQ(status(client), "6 12");
    EXPECT_TRUE(connected(client).empty());
    EXPECT_EQ(provoke("call drop 1"), "refused 26");
    let_pass(10000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
    EXPECT_FALSE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
}

TEST_F(NetworkHostTest, OneFamilysCallIsEnded)
{
    EXPECT_EQ(provoke("call drop 1 --family 6"), "profile 1: IPv6 call ended\n");
    EXPECT_EQ(status(client), "3 12");
    EXPECT_EQ(provoke("call drop 1 --family 6"), "refused 26");
    EXPECT_EQ(provoke("call drop 1"), "profile 1: IPv4 call ended\n");
    EXPECT_EQ(told(heard), "35:12:1 36:12:1 35:6:1 36:6:1 ");
    EXPECT_EQ(provoke("call drop 2"), "refused 9");
}

TEST_F(NetworkHostTest, ADroppedCallCountsNoMore)
{
    let_pass(1000);
    provoke("call drop 1 --family 4");
    let_pass(500);
    EXPECT_EQ(statistics(client, 4).bytes_rx, 125000u);
    EXPECT_EQ(statistics(client, 4).bytes_tx, 25000u);
    EXPECT_EQ(statistics(client, 6).bytes_rx, 187500u);
}

TEST_F(NetworkHostTest, ADroppedCallIsDialledAgainAfterThreeSeconds)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    EXPECT_EQ(provoke("call drop 1 --family 4"), "profile 1: IPv4 call ended; dialled again in 3 s\n");
    EXPECT_EQ(status(client), "6 9");
    EXPECT_EQ(told(heard), "35:6:1 36:6:1 ");
    let_pass(2999);
    EXPECT_EQ(status(client), "6 9");
    EXPECT_EQ(told(heard), "");
    let_pass(1);
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.6");
}

TEST_F(NetworkHostTest, RedialHappensAtItsTimeThoughNobodyLooksForLong)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1 --family 4");
    let_pass(63000);
    EXPECT_EQ(statistics(client, 4).bytes_rx, 60000u * 125);
}

TEST_F(NetworkHostTest, ARedialIsGivenUp)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1");
    told(heard);
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told(heard), "36:4:1 35:6:1 36:6:1 ");
    EXPECT_FALSE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_TRUE(client.SetReconnect(false, &err));
    let_pass(3000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
    EXPECT_TRUE(client.SetReconnect(true, &err));
    let_pass(3000);
    EXPECT_EQ(status(client), "6 12");
}

TEST_F(NetworkHostTest, ACallThatIsAwaitedIsConnectedAtOnceInstead)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1 --family 4");
    told(heard);
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "3 9");
    let_pass(3000);
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
}

TEST_F(NetworkHostTest, ARedialInAFamilyThatTheProfileHasNoMoreIsGivenUp)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1");
    told(heard);
    qcmap_net_policy_info policy = {};
    policy.ip_family = QCMAP_MSGR_IP_FAMILY_V4_V01;
    ASSERT_TRUE(client.UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01, policy, &err));
    let_pass(3000);
    EXPECT_EQ(status(client), "3 12");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
    EXPECT_FALSE(client.DisconnectBackHaul(kCallV6, &err));
}

TEST_F(NetworkHostTest, AProfileWithAnAwaitedCallCanBeDeleted)
{
    ASSERT_TRUE(create(client, 4));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_FALSE(client.DeleteWWANPolicy(&err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_EQ(provoke("call drop 2"), "profile 2: IPv4 call ended; dialled again in 3 s\n");
    told(heard);
    EXPECT_TRUE(client.DeleteWWANPolicy(&err));
    let_pass(3000);
    EXPECT_EQ(told(heard), "");
}

// ---- refused ----

TEST_F(NetworkHostTest, ConnectsAreRefused)
{
    hang_up_both();
    EXPECT_EQ(provoke("call refuse 1 --reason 3:1030"), "");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
    EXPECT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    EXPECT_EQ(told(heard), "36:1:1 34:2:1/3:1030 36:2:1/3:1030 36:7:1 34:8:1/3:1030 36:8:1/3:1030 ");
    EXPECT_EQ(status(client), "6 12");
    EXPECT_STREQ(heard.bring_up().iface_name, "");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 36:7:1 34:9:1 36:9:1 ");
    EXPECT_EQ(status(client), "3 9");
}

TEST_F(NetworkHostTest, DisconnectsAreRefusedAndTheCallStaysUp)
{
    EXPECT_EQ(provoke("call refuse 1 disconnect --reason 2:210"), "");
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NONE_V01);
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
    EXPECT_EQ(told(heard), "36:4:1 35:5:1/2:210 36:5:1/2:210 36:10:1 35:11:1/2:210 36:11:1/2:210 ");
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.2");
    EXPECT_EQ(v6(connected(client)[0].v6_addr), "2001:db8:1::2");
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
    EXPECT_EQ(told(heard), "36:4:1 35:6:1 36:6:1 36:10:1 35:12:1 36:12:1 ");
}

TEST_F(NetworkHostTest, SoManyAreRefusedInOneFamily)
{
    hang_up_both();
    provoke("call refuse 1 connect --times 2 --family 6");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "3 12");
    for (const char* shown : {"3 12", "3 12", "3 9"}) {
        EXPECT_TRUE(client.ConnectBackHaul(kCallV6, &err));
        EXPECT_EQ(status(client), shown);
    }
    // Disconnects are another matter.
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
    EXPECT_EQ(status(client), "3 12");
}

TEST_F(NetworkHostTest, ARefusalTakesThePlaceOfTheOneBeforeAndIsTakenBack)
{
    hang_up_both();
    provoke("call refuse 1 --times 9");
    provoke("call refuse 1 --reason 1:2");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told(heard), "36:1:1 34:2:1/1:2 36:2:1/1:2 ");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "3 12");
    provoke("call refuse 1 --times 9");
    provoke("call refuse 1 --times 0");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(provoke("call refuse 2"), "refused 9");
}

TEST_F(NetworkHostTest, ARefusedRedialIsRepeatedWhileReconnectIsOn)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1 --family 4");
    provoke("call refuse 1 --times 2");
    told(heard);
    for (int i = 0; i < 2; ++i) {
        let_pass(3000);
        EXPECT_EQ(status(client), "6 9");
        EXPECT_EQ(told(heard), "36:1:1 34:2:1 36:2:1 ");
    }
    let_pass(2999);
    EXPECT_EQ(status(client), "6 9");
    let_pass(1);
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
}

TEST_F(NetworkHostTest, ACallersRefusedConnectIsTheCallersToRepeat)
{
    hang_up_both();
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call refuse 1");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told(heard), "36:1:1 34:2:1 36:2:1 ");
    let_pass(60000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
}

// ---- slow ----

TEST_F(NetworkHostTest, ConnectingTakesTime)
{
    hang_up_both();
    EXPECT_EQ(provoke("call slow 1 800"), "");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "1 12");
    EXPECT_EQ(told(heard), "36:1:1 ");
    EXPECT_FALSE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_TRUE(connected(client).empty());
    EXPECT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    EXPECT_EQ(status(client), "1 7");
    let_pass(800);
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:7:1 34:3:1 36:3:1 34:9:1 36:9:1 ");
}

TEST_F(NetworkHostTest, DisconnectingTakesTime)
{
    provoke("call slow 1 800");
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
    EXPECT_EQ(status(client), "4 10");
    EXPECT_EQ(told(heard), "36:4:1 36:10:1 ");
    EXPECT_FALSE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_FALSE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    EXPECT_TRUE(connected(client).empty());
    let_pass(800);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "35:6:1 36:6:1 35:12:1 36:12:1 ");
}

TEST_F(NetworkHostTest, DisconnectingWhileConnectingEndsAtOnce)
{
    hang_up_both();
    provoke("call slow 1 800");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "6 12");
    let_pass(800);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "36:1:1 36:4:1 35:6:1 36:6:1 ");
}

TEST_F(NetworkHostTest, ADropMeetsCallsUnderWay)
{
    provoke("call slow 1 800");
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    EXPECT_EQ(provoke("call drop 1 --family 4 --reason 6:36"), "profile 1: IPv4 call ended\n");
    EXPECT_EQ(told(heard), "36:4:1 35:6:1/6:36 36:6:1/6:36 ");
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(provoke("call drop 1 --family 4 --reason 6:36"), "profile 1: IPv4 call ended; dialled again in 3 s\n");
    EXPECT_EQ(told(heard), "36:1:1 34:2:1/6:36 36:2:1/6:36 ");
    let_pass(3000);
    EXPECT_EQ(status(client), "1 9");
    let_pass(800);
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
}

TEST_F(NetworkHostTest, SlowRequestsAreRefusedAtTheirEnd)
{
    provoke("call slow 1 800");
    provoke("call refuse 1 disconnect --family 4");
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "4 9");
    let_pass(800);
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:4:1 35:5:1 36:5:1 ");
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.2");
}

TEST_F(NetworkHostTest, AProfileWithACallUnderWayStays)
{
    ASSERT_TRUE(create(client, 4));
    provoke("call slow 2 800");
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_FALSE(client.DeleteWWANPolicy(&err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    let_pass(800);
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_FALSE(client.DeleteWWANPolicy(&err));
    EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    let_pass(800);
    EXPECT_TRUE(client.DeleteWWANPolicy(&err));
}

TEST_F(NetworkHostTest, DelaysAreTheProfilesOwnAndEnd)
{
    ASSERT_TRUE(create(client, 4));
    provoke("call slow 1 800");
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "3 12");
    provoke("call slow 1 0");
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "6 9");
    EXPECT_EQ(provoke("call slow 3 1"), "refused 9");
}

// ---- roaming ----

class RoamingHostTest : public NetworkHostTest {
protected:
    // Profile 2, for IPv4, may be up while the module roams; profile 1 is selected again.
    void SetUp() override
    {
        NetworkHostTest::SetUp();
        ASSERT_TRUE(create(client, 4));
        ASSERT_TRUE(client.SetRoaming(true, &err));
        ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
        ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
        told(heard);
    }
};

TEST_F(RoamingHostTest, CallsOfProfilesWithoutRoamingEndAndComeBack)
{
    EXPECT_EQ(provoke("roam on"), "");
    EXPECT_EQ(told(heard), "35:6:1 36:6:1 35:12:1 36:12:1 ");
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(connected(client).size(), 1u);
    EXPECT_EQ(provoke("roam on"), "");
    EXPECT_EQ(told(heard), "");
    let_pass(60000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(provoke("roam off"), "");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 36:7:1 34:9:1 36:9:1 ");
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.6");
    EXPECT_EQ(v4(connected(client)[1].v4_addr), "10.102.0.2");
    EXPECT_EQ(provoke("roam off"), "");
    EXPECT_EQ(told(heard), "");
}

TEST_F(RoamingHostTest, ThePermissionIsGivenAndTakenMeanwhile)
{
    provoke("roam on");
    told(heard);
    ASSERT_TRUE(client.SetRoaming(true, &err));
    EXPECT_EQ(status(client), "3 9");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 36:7:1 34:9:1 36:9:1 ");
    ASSERT_TRUE(client.SetRoaming(false, &err));
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "35:6:1 36:6:1 35:12:1 36:12:1 ");
    provoke("roam off");
    EXPECT_EQ(status(client), "3 9");
}

TEST_F(RoamingHostTest, ConnectingWhileRoamingFails)
{
    provoke("roam on");
    told(heard);
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    EXPECT_EQ(told(heard), "36:1:1 34:2:1 36:2:1 36:7:1 34:8:1 36:8:1 ");
    EXPECT_EQ(status(client), "6 12");
    // What the caller tried is the caller's to repeat.
    provoke("roam off");
    EXPECT_EQ(status(client), "6 12");
}

TEST_F(RoamingHostTest, ACallThatWaitsForHomeIsGivenUp)
{
    provoke("roam on");
    told(heard);
    EXPECT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told(heard), "36:4:1 35:6:1 36:6:1 ");
    provoke("roam off");
    EXPECT_EQ(status(client), "6 9");
}

TEST_F(RoamingHostTest, ACallInAFamilyThatTheProfileHasNoMoreDoesNotComeBack)
{
    provoke("roam on");
    told(heard);
    qcmap_net_policy_info policy = {};
    policy.ip_family = QCMAP_MSGR_IP_FAMILY_V4_V01;
    ASSERT_TRUE(client.UpdateWWANPolicyEx(QCMAP_MSGR_UPDATE_IP_FAMILY_TYPE_V01, policy, &err));
    provoke("roam off");
    EXPECT_EQ(status(client), "3 12");
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
}

TEST_F(RoamingHostTest, ARedialWaitsForHome)
{
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call drop 1 --family 4");
    provoke("roam on");
    told(heard);
    let_pass(60000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
    provoke("roam off");
    EXPECT_EQ(status(client), "3 9");
}

TEST_F(RoamingHostTest, CallsUnderWayAreEnded)
{
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    provoke("call slow 1 800");
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    // One that is being hung up goes, though the network would rather keep it.
    provoke("call refuse 1 disconnect");
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
    told(heard);
    provoke("roam on");
    EXPECT_EQ(told(heard), "34:2:1 36:2:1 ");
    EXPECT_EQ(status(client), "6 10");
    let_pass(800);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "35:12:1 36:12:1 ");
    provoke("roam off");
    EXPECT_EQ(status(client), "1 12");
}

// ---- traffic ----

TEST_F(NetworkHostTest, TrafficIsCountedToTheByte)
{
    let_pass(10);
    EXPECT_EQ(provoke("traffic 1 --down 10000000001 --up 20000000"), "");
    EXPECT_EQ(provoke("traffic 1 --family 6 --up 7"), "");
    EXPECT_EQ(provoke("traffic 1"), "");
    const auto v4_counts = statistics(client, 4);
    EXPECT_EQ(v4_counts.bytes_rx, 10000001251u);
    EXPECT_EQ(v4_counts.bytes_tx, 20000250u);
    EXPECT_EQ(v4_counts.pkts_rx, 10000001u);
    EXPECT_EQ(v4_counts.pkts_tx, 40000u);
    EXPECT_EQ(statistics(client, 6).bytes_rx, 1250u);
    EXPECT_EQ(statistics(client, 6).bytes_tx, 257u);
    EXPECT_EQ(statistics(client, 10).bytes_rx, 10000002501u);
    // They stay when the call has ended.
    provoke("call drop 1");
    EXPECT_EQ(statistics(client, 4).bytes_rx, 10000001251u);
    EXPECT_EQ(provoke("traffic 1 --down 5"), "refused 26");
    EXPECT_TRUE(client.ResetWWANStatistics(QCMAP_MSGR_IP_FAMILY_V4_V01, &err));
    EXPECT_EQ(statistics(client, 4).bytes_rx, 0u);
    EXPECT_EQ(statistics(client, 4).pkts_tx, 0u);
    EXPECT_EQ(statistics(client, 6).bytes_tx, 257u);
}

TEST_F(NetworkHostTest, TrafficGoesWithTheCallThatIsUp)
{
    provoke("call drop 1 --family 4");
    EXPECT_EQ(provoke("traffic 1 --down 1000000000"), "");
    EXPECT_EQ(statistics(client, 4).bytes_rx, 0u);
    EXPECT_EQ(statistics(client, 6).bytes_rx, 1000000000u);
    EXPECT_EQ(provoke("traffic 1 --family 4 --down 1"), "refused 26");
    EXPECT_EQ(provoke("traffic 2 --down 1"), "refused 9");
}

// ---- what a factory restore leaves ----

TEST_F(NetworkHostTest, AFactoryRestoreLeavesTheNetworkAlone)
{
    provoke("call refuse 1 --family 4");
    provoke("call slow 1 800");
    provoke("roam on");
    schedule({{1000, "roam off"}});
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    ASSERT_TRUE(client.SetRoaming(true, &err));
    told(heard);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "1 12");
    let_pass(800);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "36:1:1 34:2:1 36:2:1 ");
    ASSERT_TRUE(client.SetRoaming(false, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    let_pass(200);
    EXPECT_EQ(status(client), "6 7");
    let_pass(600);
    EXPECT_EQ(status(client), "6 9");  // at home again
}

}  // namespace
