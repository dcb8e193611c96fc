#include <string.h>

#include <chrono>
#include <thread>

#include "calls.h"
#include "host_fixture.h"

namespace {

constexpr auto kV4 = QCMAP_MSGR_WWAN_CALL_TYPE_V4_V01;
constexpr auto kV6 = QCMAP_MSGR_WWAN_CALL_TYPE_V6_V01;

class WanConnectionHostTest : public HostTest {
protected:
    void wait_ms(int ms)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    }
};

TEST_F(WanConnectionHostTest, FactoryState)
{
    OpenClient client;
    ASSERT_TRUE(client.open);
    EXPECT_EQ(status(client), "6 12");
    EXPECT_TRUE(connected(client).empty());
    const auto counts = statistics(client, 12);
    const qcmap_msgr_wwan_statistics_type_v01 nothing = {};
    EXPECT_EQ(memcmp(&counts, &nothing, sizeof counts), 0);
    unsigned char mode = 0xa5;
    EXPECT_TRUE(client.GetReconnect(&mode, &err));
    EXPECT_EQ(mode, 0);
    mode = 0xa5;
    EXPECT_TRUE(client.GetAutoconnect(&mode, &err));
    EXPECT_EQ(mode, 0);
    mode = 0xa5;
    EXPECT_TRUE(client.GetRoaming(&mode, &err));
    EXPECT_EQ(mode, 0);
}

TEST_F(WanConnectionHostTest, EachFamilyConnectsAndDisconnectsOnItsOwn)
{
    {
        OpenClient client;
        EXPECT_TRUE(client.ConnectBackHaul(kV4, &err));
        EXPECT_EQ(status(client), "3 12");
        EXPECT_TRUE(client.ConnectBackHaul(kV6, &err));
        EXPECT_EQ(status(client), "3 9");
    }
    OpenClient client;  // the calls belong to the service, not to the session
    EXPECT_EQ(status(client), "3 9");
    EXPECT_TRUE(client.DisconnectBackHaul(kV4, &err));
    EXPECT_EQ(status(client), "6 9");
    EXPECT_TRUE(client.DisconnectBackHaul(kV6, &err));
    EXPECT_EQ(status(client), "6 12");
}

TEST_F(WanConnectionHostTest, NothingToDoIsRefused)
{
    OpenClient client;
    for (const auto call_type : {kV4, kV6}) {
        EXPECT_FALSE(client.DisconnectBackHaul(call_type, &err));
        EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
        EXPECT_TRUE(client.ConnectBackHaul(call_type, &err));
        EXPECT_FALSE(client.ConnectBackHaul(call_type, &err));
        EXPECT_EQ(err, QMI_ERR_NO_EFFECT_V01);
    }
    for (const int call_type : {0, 3, -1, 4}) {
        EXPECT_FALSE(client.ConnectBackHaul(static_cast<qcmap_msgr_wwan_call_type_v01>(call_type), &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
        EXPECT_FALSE(client.DisconnectBackHaul(static_cast<qcmap_msgr_wwan_call_type_v01>(call_type), &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
    EXPECT_EQ(status(client), "3 9");
}

TEST_F(WanConnectionHostTest, AProfileConnectsInItsOwnFamilyOnly)
{
    OpenClient client;
    ASSERT_TRUE(create(client, 4));
    EXPECT_FALSE(client.ConnectBackHaul(kV6, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_TRUE(client.ConnectBackHaul(kV4, &err));
    EXPECT_EQ(status(client), "3 12");
    ASSERT_TRUE(create(client, 6));
    EXPECT_FALSE(client.ConnectBackHaul(kV4, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    EXPECT_TRUE(client.ConnectBackHaul(kV6, &err));
    EXPECT_EQ(status(client), "6 9");
}

TEST_F(WanConnectionHostTest, ConnectedProfilesAreListedWithTheirAddresses)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kV6, &err));
    ASSERT_TRUE(create(client, 6));
    ASSERT_TRUE(client.ConnectBackHaul(kV6, &err));

    auto all = connected(client);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0].profile_handle, 1u);
    EXPECT_STREQ(all[0].iface_name, "wwan0");
    EXPECT_EQ(v4(all[0].v4_addr), "10.101.0.2");
    EXPECT_EQ(v4(all[0].v4_netmask), "255.255.255.252");
    EXPECT_EQ(v4(all[0].v4_gw_addr), "10.101.0.1");
    EXPECT_EQ(v4(all[0].v4_pri_dns_addr), "192.0.2.53");
    EXPECT_EQ(v4(all[0].v4_sec_dns_addr), "198.51.100.53");
    EXPECT_EQ(all[0].v4_mtu, 1500u);
    EXPECT_EQ(v6(all[0].v6_addr), "2001:db8:1::2");
    EXPECT_EQ(all[0].v6_prefix, 64);
    EXPECT_EQ(v6(all[0].v6_gw_addr), "2001:db8:1::1");
    EXPECT_EQ(v6(all[0].v6_pri_dns_addr), "2001:db8:ffff::53");
    EXPECT_EQ(v6(all[0].v6_sec_dns_addr), "2001:db8:ffff::153");
    EXPECT_EQ(all[0].v6_mtu, 1500u);
    EXPECT_EQ(all[1].profile_handle, 2u);
    EXPECT_STREQ(all[1].iface_name, "wwan1");
    EXPECT_EQ(all[1].v4_addr, 0u);
    EXPECT_EQ(all[1].v4_mtu, 0u);
    EXPECT_EQ(v6(all[1].v6_addr), "2001:db8:2::2");

    // The next call gets other addresses.
    ASSERT_TRUE(client.DisconnectBackHaul(kV6, &err));
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(1, &err));
    ASSERT_TRUE(client.DisconnectBackHaul(kV4, &err));
    all = connected(client);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].v4_addr, 0u);
    EXPECT_EQ(v6(all[0].v6_addr), "2001:db8:1::2");
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.101.0.6");
    EXPECT_EQ(v4(connected(client)[0].v4_gw_addr), "10.101.0.5");
    ASSERT_TRUE(client.DisconnectBackHaul(kV6, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kV6, &err));
    EXPECT_EQ(v6(connected(client)[0].v6_addr), "2001:db8:1:1::2");
    EXPECT_EQ(v6(connected(client)[0].v6_gw_addr), "2001:db8:1:1::1");
}

TEST_F(WanConnectionHostTest, FiftyProfilesAreConnectedAtOnce)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    for (int i = 0; i < 49; ++i) {
        ASSERT_TRUE(create(client, 10));
        ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
        ASSERT_TRUE(client.ConnectBackHaul(kV6, &err));
    }
    const auto all = connected(client);
    ASSERT_EQ(all.size(), 50u);
    EXPECT_EQ(all[49].profile_handle, 50u);
    EXPECT_STREQ(all[49].iface_name, "wwan49");
    EXPECT_EQ(v4(all[49].v4_addr), "10.150.0.2");
    EXPECT_EQ(v6(all[49].v6_addr), "2001:db8:32::2");
}

TEST_F(WanConnectionHostTest, ModesBelongToTheProfile)
{
    struct {
        bool (QCMAP_Client::*set)(bool, qmi_error_type_v01*);
        bool (QCMAP_Client::*get)(unsigned char*, qmi_error_type_v01*);
    } const modes[] = {{&QCMAP_Client::SetReconnect, &QCMAP_Client::GetReconnect},
                       {&QCMAP_Client::SetAutoconnect, &QCMAP_Client::GetAutoconnect},
                       {&QCMAP_Client::SetRoaming, &QCMAP_Client::GetRoaming}};
    OpenClient client;
    ASSERT_TRUE(create(client, 10));
    const auto shown = [&](unsigned int profile) {
        EXPECT_TRUE(client.SetWWANProfileHandlePreference(profile, &err));
        std::string text;
        for (const auto& mode : modes) {
            unsigned char state = 0xa5;
            EXPECT_TRUE((client.*mode.get)(&state, &err));
            text += std::to_string(state);
        }
        return text;
    };
    const char* const steps[] = {"100", "110", "111"};
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(client.SetWWANProfileHandlePreference(2, &err));
        EXPECT_TRUE((client.*modes[i].set)(true, &err));
        EXPECT_EQ(shown(2), steps[i]);
    }
    EXPECT_EQ(shown(1), "000");
    ASSERT_TRUE(client.SetWWANProfileHandlePreference(2, &err));
    EXPECT_TRUE(client.SetAutoconnect(false, &err));
    EXPECT_TRUE(client.SetAutoconnect(false, &err));
    EXPECT_EQ(shown(2), "101");
}

TEST_F(WanConnectionHostTest, StatisticsMoveWhileConnectedAndStayAfterwards)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    wait_ms(60);
    const auto first = statistics(client, 4);
    EXPECT_GE(first.bytes_rx, 60u * 125);
    EXPECT_GT(first.bytes_rx, first.bytes_tx);
    EXPECT_GE(first.pkts_rx, 7u);
    EXPECT_GE(first.pkts_tx, 3u);
    wait_ms(60);
    EXPECT_GT(statistics(client, 4).bytes_rx, first.bytes_rx);
    EXPECT_EQ(statistics(client, 6).bytes_rx, 0u);
    ASSERT_TRUE(client.DisconnectBackHaul(kV4, &err));
    const auto last = statistics(client, 4);
    EXPECT_GE(last.bytes_rx, first.bytes_rx + 60u * 125);
    wait_ms(30);
    EXPECT_EQ(statistics(client, 4).bytes_rx, last.bytes_rx);
    EXPECT_EQ(statistics(client, 10).bytes_rx, last.bytes_rx);
    ASSERT_TRUE(client.ConnectBackHaul(kV6, &err));
    wait_ms(30);
    EXPECT_GE(statistics(client, 12).bytes_rx, last.bytes_rx + 30u * 125);
    // Another call adds to what the one before it counted.
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    wait_ms(30);
    ASSERT_TRUE(client.DisconnectBackHaul(kV4, &err));
    EXPECT_GE(statistics(client, 4).bytes_rx, last.bytes_rx + 30u * 125);
}

TEST_F(WanConnectionHostTest, StatisticsAreResetByFamily)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kV6, &err));
    wait_ms(100);
    ASSERT_TRUE(client.DisconnectBackHaul(kV4, &err));
    ASSERT_TRUE(client.DisconnectBackHaul(kV6, &err));
    EXPECT_TRUE(client.ResetWWANStatistics(QCMAP_MSGR_IP_FAMILY_V4_V01, &err));
    EXPECT_EQ(statistics(client, 4).bytes_rx, 0u);
    EXPECT_GE(statistics(client, 6).bytes_rx, 100u * 125);
    EXPECT_TRUE(client.ResetWWANStatistics(QCMAP_MSGR_IP_FAMILY_ANY_V01, &err));
    EXPECT_EQ(statistics(client, 10).bytes_rx, 0u);
    // Of a call that is up, from now on.
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    wait_ms(200);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_TRUE(client.ResetWWANStatistics(QCMAP_MSGR_IP_FAMILY_V4V6_V01, &err));
    const uint64_t bytes = statistics(client, 4).bytes_rx;
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - before).count();
    EXPECT_LE(bytes, static_cast<uint64_t>(ms + 20) * 125);
}

TEST_F(WanConnectionHostTest, StatisticsOfNoFamilyAreRefused)
{
    OpenClient client;
    for (const int family : {0, 5, 46, -1}) {
        qcmap_msgr_wwan_statistics_type_v01 counts = {};
        EXPECT_FALSE(client.GetWWANStatistics(static_cast<qcmap_msgr_ip_family_enum_v01>(family), &counts, &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
        EXPECT_FALSE(client.ResetWWANStatistics(static_cast<qcmap_msgr_ip_family_enum_v01>(family), &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    }
}

TEST_F(WanConnectionHostTest, AReusedHandleStartsAfresh)
{
    OpenClient client;
    ASSERT_TRUE(create(client, 10));
    ASSERT_TRUE(client.SetReconnect(true, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    wait_ms(20);
    ASSERT_TRUE(client.DisconnectBackHaul(kV4, &err));
    ASSERT_TRUE(client.DeleteWWANPolicy(&err));
    for (const auto gone : {&QCMAP_Client::ConnectBackHaul, &QCMAP_Client::DisconnectBackHaul}) {
        EXPECT_FALSE((client.*gone)(kV4, &err));
        EXPECT_EQ(err, QMI_ERR_INVALID_HANDLE_V01);
    }
    ASSERT_TRUE(create(client, 10));
    unsigned char mode = 0xa5;
    EXPECT_TRUE(client.GetReconnect(&mode, &err));
    EXPECT_EQ(mode, 0);
    EXPECT_EQ(statistics(client, 4).bytes_rx, 0u);
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    EXPECT_EQ(v4(connected(client)[0].v4_addr), "10.102.0.2");
}

TEST_F(WanConnectionHostTest, RestoreEndsEveryCall)
{
    OpenClient client;
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    ASSERT_TRUE(client.SetAutoconnect(true, &err));
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    EXPECT_EQ(status(client), "6 12");
    EXPECT_TRUE(connected(client).empty());
    unsigned char mode = 0xa5;
    EXPECT_TRUE(client.GetAutoconnect(&mode, &err));
    EXPECT_EQ(mode, 0);
}

TEST_F(WanConnectionHostTest, EverySessionHearsEveryStepInOrder)
{
    Heard one;
    Heard two;
    OpenClient first(Heard::callback, &one);
    OpenClient second(Heard::callback, &two);
    ASSERT_TRUE(first.open && second.open);
    ASSERT_TRUE(first.ConnectBackHaul(kV4, &err));
    ASSERT_TRUE(first.ConnectBackHaul(kV6, &err));
    for (Heard* heard : {&one, &two})
        EXPECT_EQ(heard->take(6), "36:1:1 34:3:1 36:3:1 36:7:1 34:9:1 36:9:1 ");
    const auto record = one.bring_up();
    EXPECT_EQ(record.call.mobile_ap_handle, first.mobile_ap_handle);
    EXPECT_EQ(record.call.profile_handle_valid, 1);
    EXPECT_EQ(record.call.subs_id_valid, 1);
    EXPECT_EQ(record.call.subs_id, 1u);
    EXPECT_STREQ(record.iface_name, "wwan0");
    EXPECT_EQ(v4(record.v4_addr), "10.101.0.2");
    EXPECT_EQ(v4(record.v4_pri_dns_addr), "192.0.2.53");
    EXPECT_EQ(v4(record.v4_sec_dns_addr), "198.51.100.53");
    EXPECT_EQ(v6(record.v6_addr), "2001:db8:1::2");
    EXPECT_EQ(v6(record.v6_pri_dns_addr), "2001:db8:ffff::53");
    EXPECT_EQ(v6(record.v6_sec_dns_addr), "2001:db8:ffff::153");
    ASSERT_TRUE(second.DisconnectBackHaul(kV6, &err));
    ASSERT_TRUE(second.DisconnectBackHaul(kV4, &err));
    for (Heard* heard : {&one, &two})
        EXPECT_EQ(heard->take(6), "36:10:1 35:12:1 36:12:1 36:4:1 35:6:1 36:6:1 ");
    EXPECT_EQ(one.last().profile_handle_valid, 1);
    first.DisableMobileAP(&err);
    second.DisableMobileAP(&err);
}

TEST_F(WanConnectionHostTest, WhatIsRefusedIsNotTold)
{
    Heard heard;
    OpenClient client(Heard::callback, &heard);
    EXPECT_FALSE(client.DisconnectBackHaul(kV4, &err));
    ASSERT_TRUE(create(client, 4));
    EXPECT_FALSE(client.ConnectBackHaul(kV6, &err));
    ASSERT_TRUE(client.ConnectBackHaul(kV4, &err));
    EXPECT_FALSE(client.ConnectBackHaul(kV4, &err));
    EXPECT_EQ(heard.take(3), "36:1:2 34:3:2 36:3:2 ");
    client.DisableMobileAP(&err);
}

// The other process is made while this one has no thread yet; it goes on when the session here is open.
TEST_F(WanConnectionHostTest, AnotherProcessIsHeardInOrder)
{
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    const pid_t child = start_child([&] {
        char word = 0;
        if (read(go[0], &word, 1) != 1) return 1;
        OpenClient client;
        qmi_error_type_v01 error = QMI_ERR_NONE_V01;
        if (!create(client, 10)) return 2;
        for (int i = 0; i < 10; ++i) {
            if (!client.ConnectBackHaul(kV4, &error) || !client.ConnectBackHaul(kV6, &error)) return 3;
            if (!client.DisconnectBackHaul(kV4, &error) || !client.DisconnectBackHaul(kV6, &error)) return 4;
        }
        return 0;
    });
    Heard heard;
    {
        OpenClient client(Heard::callback, &heard);
        ASSERT_TRUE(client.open);
        ASSERT_EQ(write(go[1], "g", 1), 1);
        std::string expected;
        for (int i = 0; i < 10; ++i)
            expected += "36:1:2 34:3:2 36:3:2 36:7:2 34:9:2 36:9:2 36:4:2 35:6:2 36:6:2 36:10:2 35:12:2 36:12:2 ";
        EXPECT_EQ(heard.take(120), expected);
        client.DisableMobileAP(&err);
    }
    EXPECT_EQ(wait_child(child), 0);
    close(go[0]);
    close(go[1]);
}

}  // namespace
