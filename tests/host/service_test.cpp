// The service itself: away for a while, back, restarted.
#include "service.h"

#include "provoked.h"

namespace {

class ServiceHostTest : public ProvokedTest {
protected:
    bool fails_with_3(bool good) const
    {
        return !good && err == QMI_ERR_INTERNAL_V01;
    }
};

TEST_F(ServiceHostTest, NothingAnswersWhileItIsAway)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.open);
    EXPECT_EQ(provoke("service away 5"), "the service is back in 5 s\n");
    EXPECT_FALSE(client.IsReady());
    auto v4_status = QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01;
    auto v6_status = QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01;
    unsigned char flag = 7;
    EXPECT_TRUE(fails_with_3(client.GetWWANStatus(&v4_status, &v6_status, &err)));
    EXPECT_EQ(v4_status, QCMAP_MSGR_WWAN_STATUS_CONNECTED_V01);
    EXPECT_TRUE(fails_with_3(client.SetReconnect(true, &err)));
    EXPECT_TRUE(fails_with_3(client.GetReconnect(&flag, &err)));
    EXPECT_EQ(flag, 7);
    EXPECT_TRUE(fails_with_3(client.ConnectBackHaul(kCallV4, &err)));
    EXPECT_TRUE(fails_with_3(client.SetWWANProfileHandlePreference(1, &err)));
    EXPECT_TRUE(fails_with_3(client.SelectLANBridge(0, &err)));
    EXPECT_TRUE(fails_with_3(client.RestoreFactoryConfig(&err)));
    EXPECT_TRUE(fails_with_3(client.EnableMobileAP_Ext(&err, 65535)));
    let_pass(4999);
    EXPECT_FALSE(client.IsReady());
    let_pass(1);
    EXPECT_TRUE(client.IsReady());
    EXPECT_TRUE(client.GetReconnect(&flag, &err));
    EXPECT_EQ(flag, 0);
    EXPECT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 ");
}

TEST_F(ServiceHostTest, AMethodIsTheFirstToSeeItBack)
{
    OpenClient client;
    provoke("service away 5");
    let_pass(5000);
    EXPECT_EQ(status(client), "6 12");
}

TEST_F(ServiceHostTest, DeliveryEndsThoughTheServiceIsAway)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    provoke("service away 5");
    EXPECT_TRUE(fails_with_3(client.DisableMobileAP(&err)));
    let_pass(5000);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(heard.take(0), "");
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV4, &err));
    EXPECT_EQ(told(heard), "36:4:1 35:6:1 36:6:1 ");
}

TEST_F(ServiceHostTest, ASessionThatIsOpenedMeanwhileBecomesReady)
{
    provoke("service away 5");
    OpenClient client;
    EXPECT_FALSE(client.open);
    EXPECT_FALSE(client.IsReady());
    EXPECT_TRUE(fails_with_3(client.EnableMobileAP_Ext(&err, 65535)));
    let_pass(5000);
    EXPECT_TRUE(client.IsReady());
    EXPECT_TRUE(client.EnableMobileAP_Ext(&err, 65535));
    EXPECT_EQ(status(client), "6 12");
}

// Not the one in which the session was opened.
TEST_F(ServiceHostTest, ReadinessIsThatOfTheStateInPlace)
{
    OpenClient client;
    ASSERT_TRUE(client.IsReady());
    std::filesystem::rename(folder + "/mobile_ap.db", folder + "/elsewhere.db");
    ASSERT_EQ(mobile_ap::open_state(db, folder), "");
    provoke("service away 5");
    EXPECT_FALSE(client.IsReady());
    let_pass(5000);
    EXPECT_TRUE(client.IsReady());
}

TEST_F(ServiceHostTest, SessionsGoOnWithWhatTheyHadSelected)
{
    OpenClient client;
    ASSERT_TRUE(create(client, 4));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    bool beside = false;
    ASSERT_TRUE(client.CreateVLANConfig({QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, 7, 0}, &err, &beside));
    ASSERT_TRUE(client.SelectLANBridge(7, &err));
    qcmap_msgr_lan_config_v01 before = {};
    ASSERT_TRUE(client.GetLANConfig(&before, &err));
    provoke("service away 5");
    EXPECT_FALSE(client.IsReady());
    let_pass(5000);
    EXPECT_EQ(status(client), "3 12");
    qcmap_msgr_lan_config_v01 after = {};
    EXPECT_TRUE(client.GetLANConfig(&after, &err));
    EXPECT_EQ(memcmp(&before, &after, sizeof before), 0);
    ASSERT_TRUE(client.SelectLANBridge(0, &err));
    ASSERT_TRUE(client.GetLANConfig(&after, &err));
    EXPECT_NE(memcmp(&before, &after, sizeof before), 0);  // another bridge's
}

TEST_F(ServiceHostTest, AnAwayServiceIsCalledBackAtOnce)
{
    OpenClient client;
    provoke("service away 3600");
    EXPECT_FALSE(client.IsReady());
    EXPECT_EQ(provoke("service away 0"), "");
    EXPECT_TRUE(client.IsReady());
    let_pass(3600000);
    EXPECT_TRUE(client.IsReady());
}

TEST_F(ServiceHostTest, TheLatestWordSaysWhenItIsBack)
{
    OpenClient client;
    provoke("service away 3600");
    provoke("service away 2");
    let_pass(2000);
    EXPECT_TRUE(client.IsReady());
    provoke("service away 2");
    let_pass(1000);
    provoke("service away 2");
    let_pass(1500);
    EXPECT_FALSE(client.IsReady());
    let_pass(500);
    EXPECT_TRUE(client.IsReady());
}

TEST_F(ServiceHostTest, CallsSurviveItsAbsence)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    told(heard);
    provoke("service away 5");
    let_pass(5000);
    EXPECT_EQ(status(client), "3 12");
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.2");
    EXPECT_EQ(statistics(client, 4).bytes_rx, 5000u * 125);
    EXPECT_EQ(told(heard), "");
}

TEST_F(ServiceHostTest, ARestartEndsEveryCall)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    provoke("call slow 1 60000");
    ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    ASSERT_TRUE(create(client, 10));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    provoke("call slow 2 60000");
    ASSERT_TRUE(client.DisconnectBackHaul(kCallV6, &err));
    told(heard);
    EXPECT_EQ(provoke("service restart"), "the service is back in 2 s\n");
    EXPECT_EQ(told(heard), "34:8:1 36:8:1 35:6:2 36:6:2 35:12:2 36:12:2 ");
    EXPECT_FALSE(client.IsReady());
    let_pass(2000);
    EXPECT_EQ(status(client), "6 12");
    // Reconnect is about the network, not about this.
    let_pass(60000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
}

TEST_F(ServiceHostTest, ARestartGivesUpWhatIsAwaited)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.SetReconnect(true, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    provoke("call drop 1 --family 4");
    provoke("roam on");
    told(heard);
    EXPECT_EQ(provoke("service restart 1"), "the service is back in 1 s\n");
    let_pass(60000);
    EXPECT_TRUE(client.IsReady());
    provoke("roam off");
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "");
}

TEST_F(ServiceHostTest, ProfilesWithAutoconnectDialWhenItStarts)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.SetAutoconnect(true, &err));
    ASSERT_TRUE(create(client, 4));
    ASSERT_TRUE(client.SetAutoconnect(true, &err));
    ASSERT_TRUE(create(client, 6));
    EXPECT_EQ(told(heard), "");
    provoke("service restart 5");
    let_pass(5000);
    EXPECT_TRUE(client.IsReady());
    EXPECT_EQ(told(heard), "36:1:1 34:3:1 36:3:1 36:7:1 34:9:1 36:9:1 36:1:2 34:3:2 36:3:2 ");
    // Calls that are up stay as they are.
    provoke("call drop 1 --family 6");
    told(heard);
    provoke("service away 5");
    let_pass(5000);
    EXPECT_TRUE(client.IsReady());
    EXPECT_EQ(told(heard), "36:7:1 34:9:1 36:9:1 ");
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.2");
}

TEST_F(ServiceHostTest, AutoconnectMeetsTheNetworkAsItIs)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(create(client, 4));
    ASSERT_TRUE(client.SetAutoconnect(true, &err));
    provoke("call refuse 2");
    provoke("service restart 1");
    let_pass(1000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "36:1:2 34:2:2 36:2:2 ");
    let_pass(60000);
    EXPECT_EQ(status(client), "6 12");
    // With reconnect it is tried again.
    ASSERT_TRUE(client.SetReconnect(true, &err));
    provoke("call refuse 2");
    provoke("service restart 1");
    let_pass(1000);
    EXPECT_EQ(status(client), "6 12");
    let_pass(3000);
    EXPECT_EQ(status(client), "3 12");
    told(heard);
    // Abroad it fails, and comes up at home.
    provoke("roam on");
    provoke("service restart 1");
    told(heard);
    let_pass(1000);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_EQ(told(heard), "36:1:2 34:2:2 36:2:2 ");
    provoke("roam off");
    EXPECT_EQ(status(client), "3 12");
}

TEST_F(ServiceHostTest, WhatIsDueWhileItIsAwayHappensOnItsReturnAndAtThatTime)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    ASSERT_TRUE(client.SetReconnect(true, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    provoke("call slow 1 800");
    ASSERT_TRUE(client.ConnectBackHaul(kCallV6, &err));
    schedule({{1000, "call drop 1 --family 4"}});
    told(heard);
    provoke("service away 10");
    let_pass(9000);
    EXPECT_FALSE(client.IsReady());
    EXPECT_EQ(told(heard), "");
    let_pass(1000);
    EXPECT_EQ(status(client), "6 9");
    EXPECT_EQ(told(heard), "34:9:1 36:9:1 35:6:1 36:6:1 ");
    let_pass(2999);  // three seconds from the return
    EXPECT_EQ(status(client), "6 9");
    let_pass(1);
    EXPECT_EQ(status(client), "1 9");
    let_pass(800);
    EXPECT_EQ(status(client), "3 9");
}

TEST_F(ServiceHostTest, ItsOwnEventsHappenWhileItIsAway)
{
    OpenClient client;
    schedule({{1000, "service away 0"}, {500, "roam on"}, {2000, "service away 60"}});
    provoke("service away 10");
    let_pass(1000);
    EXPECT_TRUE(client.IsReady());
    let_pass(1000);
    EXPECT_FALSE(client.IsReady());
    let_pass(59000);
    EXPECT_FALSE(client.IsReady());
    let_pass(1000);
    EXPECT_TRUE(client.IsReady());
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    EXPECT_EQ(status(client), "6 12");  // the module roams
}

TEST_F(ServiceHostTest, SettingsForTheNextStartTakeEffect)
{
    OpenClient client;
    const auto in_force = [&] { return db.one<int>("SELECT routing_behind_in_force FROM nat_service").value_or(-1); };
    ASSERT_TRUE(client.ZR_SetRoutingBH(1, &err));
    EXPECT_EQ(in_force(), 0);
    provoke("service restart 1");
    EXPECT_EQ(in_force(), 0);
    let_pass(1000);
    EXPECT_TRUE(client.IsReady());
    EXPECT_EQ(in_force(), 1);
    unsigned int routing_bh = 7;
    EXPECT_TRUE(client.ZR_GetRoutingBH(&routing_bh, &err));
    EXPECT_EQ(routing_bh, 1u);
}

TEST_F(ServiceHostTest, AFactoryRestoreLeavesWhatIsToCome)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kCallV4, &err));
    schedule({{1000, "service away 5"}});
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(status(client), "6 12");
    let_pass(1000);
    EXPECT_FALSE(client.IsReady());
    let_pass(5000);
    EXPECT_TRUE(client.IsReady());
}

}  // namespace
