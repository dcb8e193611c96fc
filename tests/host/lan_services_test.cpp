#include <arpa/inet.h>

#include <cstdio>
#include <cstring>

#include "host_fixture.h"
#include "program.h"

namespace {

uint32_t network(const char* text)
{
    in_addr address = {};
    inet_pton(AF_INET, text, &address);
    return address.s_addr;
}

qmi_error_type_v01 word(int value)
{
    return static_cast<qmi_error_type_v01>(value);
}

class LanServicesHostTest : public HostTest {
protected:
    static qcmap_msgr_dhcp_reservation_v01 reservation(uint8_t last, const char* name = "printer")
    {
        qcmap_msgr_dhcp_reservation_v01 record = {};
        record.mac[0] = 2;
        record.mac[5] = last;
        record.reserved_ip = htonl(0xC0A8E100u + last);
        std::strncpy(record.device_name, name, sizeof(record.device_name));
        record.enable = 1;
        return record;
    }
    static qcmap_msgr_l2tp_config_v01 tunnel(uint32_t id)
    {
        qcmap_msgr_l2tp_config_v01 config = {};
        config.tunnel_id = id;
        config.peer_tunnel_id = id + 1000;
        config.ip_family = 6;
        config.encapsulation = QCMAP_L2TP_UDP;
        config.local_port = 1701;
        config.peer_port = 65535;
        config.local_ipv4 = network("10.0.0.1");
        config.peer_ipv4 = network("10.0.0.2");
        config.local_ipv6[0] = 0x20;
        config.peer_ipv6[15] = 9;
        config.mtu = 1460;
        config.session_count = 2;
        config.session[0] = {0xFFFFFFFF, 2};
        config.session[1] = {3, 4};
        return config;
    }
};

TEST_F(LanServicesHostTest, ReservationsAreKeptInOrderForTheNextSession)
{
    qcmap_msgr_dhcp_reservation_v01 first = reservation(9);
    std::memset(first.device_name, 'n', sizeof(first.device_name));
    qcmap_msgr_dhcp_reservation_v01 second = reservation(5);
    second.enable = 0;
    {
        OpenClient client;
        ASSERT_TRUE(client.AddDHCPReservRecord(&first, &err));
        ASSERT_TRUE(client.AddDHCPReservRecord(&second, &err));
    }
    OpenClient client;
    qcmap_msgr_dhcp_reservation_v01 records[QCMAP_MAX_DHCP_RESERVATIONS] = {};
    unsigned int count = 77;
    ASSERT_TRUE(client.GetDHCPReservRecords(records, &count, &err));
    ASSERT_EQ(count, 2u);
    EXPECT_EQ(records[0].reserved_ip, first.reserved_ip);
    EXPECT_EQ(std::memcmp(records[0].mac, first.mac, 6), 0);
    EXPECT_EQ(std::string(records[0].device_name, 100), std::string(100, 'n'));
    EXPECT_EQ(records[0].enable, 1);
    EXPECT_EQ(records[1].reserved_ip, second.reserved_ip);
    EXPECT_STREQ(records[1].device_name, "printer");
    EXPECT_EQ(records[1].enable, 0);
}

TEST_F(LanServicesHostTest, TwentyReservationsAreTheLimit)
{
    OpenClient client;
    for (uint8_t i = 1; i <= 20; ++i) {
        auto record = reservation(i);
        ASSERT_TRUE(client.AddDHCPReservRecord(&record, &err));
    }
    auto one_more = reservation(21);
    EXPECT_FALSE(client.AddDHCPReservRecord(&one_more, &err));
    EXPECT_EQ(err, QMI_ERR_LIMIT_V01);
    unsigned int address = reservation(3).reserved_ip;
    ASSERT_TRUE(client.DeleteDHCPReservRecord(&address, &err));
    EXPECT_TRUE(client.AddDHCPReservRecord(&one_more, &err));
}

TEST_F(LanServicesHostTest, AnAddressOrAMacIsReservedOnce)
{
    OpenClient client;
    auto record = reservation(1);
    ASSERT_TRUE(client.AddDHCPReservRecord(&record, &err));
    EXPECT_FALSE(client.AddDHCPReservRecord(&record, &err));
    EXPECT_EQ(err, QMI_ERR_ALREADY_THERE_V01);
    auto same_mac = reservation(2);
    std::memcpy(same_mac.mac, record.mac, 6);
    EXPECT_FALSE(client.AddDHCPReservRecord(&same_mac, &err));
    auto no_mac = reservation(3);
    std::memset(no_mac.mac, 0, 6);
    EXPECT_FALSE(client.AddDHCPReservRecord(&no_mac, &err));
    EXPECT_EQ(err, QMI_ERR_INVALID_ARG_V01);
    auto no_address = reservation(4);
    no_address.reserved_ip = 0;
    EXPECT_FALSE(client.AddDHCPReservRecord(&no_address, &err));
    auto bad_flag = reservation(5);
    bad_flag.enable = 2;
    EXPECT_FALSE(client.AddDHCPReservRecord(&bad_flag, &err));
}

TEST_F(LanServicesHostTest, AReservationIsEditedInItsPlace)
{
    OpenClient client;
    auto first = reservation(1);
    auto second = reservation(2);
    ASSERT_TRUE(client.AddDHCPReservRecord(&first, &err));
    ASSERT_TRUE(client.AddDHCPReservRecord(&second, &err));
    unsigned int address = first.reserved_ip;
    auto changed = reservation(9, "camera");
    ASSERT_TRUE(client.EditDHCPReservRecord(&address, &changed, &err));
    qcmap_msgr_dhcp_reservation_v01 records[QCMAP_MAX_DHCP_RESERVATIONS] = {};
    unsigned int count = 0;
    ASSERT_TRUE(client.GetDHCPReservRecords(records, &count, &err));
    EXPECT_STREQ(records[0].device_name, "camera");
    EXPECT_FALSE(client.EditDHCPReservRecord(&address, &changed, &err)) << "the old address is gone";
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
    address = changed.reserved_ip;
    EXPECT_TRUE(client.EditDHCPReservRecord(&address, &changed, &err)) << "a record may keep its own address";
    EXPECT_FALSE(client.EditDHCPReservRecord(&address, &second, &err)) << "not another one's";
    EXPECT_EQ(err, QMI_ERR_ALREADY_THERE_V01);
    EXPECT_FALSE(client.DeleteDHCPReservRecord(&first.reserved_ip, &err));
    EXPECT_EQ(err, QMI_ERR_NO_ENTRY_V01);
}

TEST_F(LanServicesHostTest, PacketStatsAreOffAtFirst)
{
    OpenClient client;
    qcmap_msgr_packet_stats_status_enum_v01 status = {};
    ASSERT_TRUE(client.GetPacketStatsStatus(&status, &err));
    EXPECT_EQ(status, QCMAP_MSGR_PACKET_STATS_DISABLED_V01);
    ASSERT_TRUE(client.EnablePacketStats(&err));
    ASSERT_TRUE(client.GetPacketStatsStatus(&status, &err));
    EXPECT_EQ(status, QCMAP_MSGR_PACKET_STATS_ENABLED_V01);
    ASSERT_TRUE(client.DisablePacketStats(&err));
    ASSERT_TRUE(client.GetPacketStatsStatus(&status, &err));
    EXPECT_EQ(status, QCMAP_MSGR_PACKET_STATS_DISABLED_V01);
}

TEST_F(LanServicesHostTest, DevicesJoinAndLeave)
{
    OpenClient client;
    qcmap_connected_devices list = {};
    unsigned int count = 77;
    ASSERT_TRUE(client.GetConnectedDevicesInfo(&list, &count, &err));
    EXPECT_EQ(count, 0u);

    const auto device = [](std::vector<std::string> words) {
        words.insert(words.begin(), "device");
        return run_program(MOBILE_AP_CTL, words);
    };
    ASSERT_EQ(device({"join", "02:00:00:00:00:07", "192.168.225.21", "laptop", "--type", "8", "--rx", "5000000000",
                      "--tx", "12", "--ipv6", "2001:db8::7", "fe80::7"}),
              0);
    ASSERT_EQ(device({"join", "02:00:00:00:00:08", "192.168.225.22", "printer"}), 0);
    ASSERT_TRUE(client.GetConnectedDevicesInfo(&list, &count, &err));
    ASSERT_EQ(count, 2u);
    const qcmap_connected_device& laptop = list.device[0];
    EXPECT_EQ(laptop.device_type, 8u);
    EXPECT_EQ(laptop.ipv4_addr, network("192.168.225.21"));
    EXPECT_EQ(laptop.mac[5], 7);
    EXPECT_STREQ(laptop.host_name, "laptop");
    EXPECT_EQ(laptop.ipv6_count, 2u);
    EXPECT_EQ(laptop.ipv6_addr[0][0], 0x20);
    EXPECT_EQ(laptop.ipv6_addr[1][0], 0xFE);
    EXPECT_EQ(laptop.rx_bytes, 5000000000ull);
    EXPECT_EQ(laptop.tx_bytes, 12u);
    EXPECT_STREQ(list.device[1].host_name, "printer");
    EXPECT_EQ(list.device[1].device_type, 4u);

    ASSERT_TRUE(client.ResetPacketStats(&err));
    ASSERT_TRUE(client.GetConnectedDevicesInfo(&list, &count, &err));
    EXPECT_EQ(list.device[0].rx_bytes, 0u);

    ASSERT_EQ(device({"leave", "--all"}), 0);
    ASSERT_TRUE(client.GetConnectedDevicesInfo(&list, &count, &err));
    EXPECT_EQ(count, 0u);
}

TEST_F(LanServicesHostTest, ATunnelIsReadBackAsItWasSet)
{
    const auto set = tunnel(5);
    {
        OpenClient client;
        ASSERT_TRUE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_MANAGED_V01, set, &err));
    }
    OpenClient client;
    static qcmap_msgr_l2tp_conf_t config;
    ASSERT_TRUE(client.GetL2TPConfig(&config, &err));
    EXPECT_EQ(config.mode, QCMAP_MSGR_L2TP_MODE_MANAGED_V01);
    EXPECT_EQ(config.state, 0u);
    ASSERT_EQ(config.tunnel_count, 1u);
    const auto& got = config.tunnel[0];
    EXPECT_EQ(got.tunnel_id, 5u);
    EXPECT_EQ(got.peer_tunnel_id, 1005u);
    EXPECT_EQ(got.ip_family, 6u);
    EXPECT_EQ(got.encapsulation, 1u);
    EXPECT_EQ(got.local_port, 1701);
    EXPECT_EQ(got.peer_port, 65535);
    EXPECT_EQ(got.local_ipv4, network("10.0.0.1"));
    EXPECT_EQ(got.peer_ipv4, network("10.0.0.2"));
    EXPECT_EQ(got.local_ipv6[0], 0x20);
    EXPECT_EQ(got.peer_ipv6[15], 9);
    EXPECT_EQ(got.mtu, 1460u);
    ASSERT_EQ(got.session_count, 2u);
    EXPECT_EQ(got.session[0].local_session_id, 0xFFFFFFFFu);
    EXPECT_EQ(got.session[1].peer_session_id, 4u);
}

TEST_F(LanServicesHostTest, ATunnelOfTheSameIdIsReplacedAndEightAreTheLimit)
{
    OpenClient client;
    for (uint32_t id = 1; id <= 8; ++id)
        ASSERT_TRUE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01, tunnel(id), &err));
    EXPECT_FALSE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01, tunnel(9), &err));
    EXPECT_EQ(err, QMI_ERR_LIMIT_V01);
    auto changed = tunnel(3);
    changed.mtu = 1280;
    changed.session_count = 1;
    ASSERT_TRUE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01, changed, &err));
    static qcmap_msgr_l2tp_conf_t config;
    ASSERT_TRUE(client.GetL2TPConfig(&config, &err));
    EXPECT_EQ(config.tunnel_count, 8u);
    for (uint32_t i = 0; i < 8; ++i) {
        if (config.tunnel[i].tunnel_id != 3) continue;
        EXPECT_EQ(config.tunnel[i].mtu, 1280u);
        EXPECT_EQ(config.tunnel[i].session_count, 1u);
    }
    changed.session_count = 9;
    EXPECT_FALSE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01, changed, &err));
}

TEST_F(LanServicesHostTest, AnUnknownTunnelAnswers26)
{
    OpenClient client;
    ASSERT_TRUE(client.SetL2TPConfig(QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01, tunnel(1), &err));
    qcmap_msgr_delete_l2tp_config_v01 request = {2};
    EXPECT_FALSE(client.DeleteL2TPTunnelConfig(&request, &err));
    EXPECT_EQ(err, word(26));
    request.tunnel_id = 1;
    EXPECT_TRUE(client.DeleteL2TPTunnelConfig(&request, &err));
    EXPECT_FALSE(client.DeleteL2TPTunnelConfig(&request, &err));
}

TEST_F(LanServicesHostTest, UnmanagedL2tpIsReadBack)
{
    OpenClient client;
    qcmap_set_l2tp_config request = {1, 1450, 1400, 1};
    ASSERT_TRUE(client.SetUnmanagedL2TPStateEx(&request, &err));
    static qcmap_msgr_l2tp_conf_t config;
    ASSERT_TRUE(client.GetL2TPConfig(&config, &err));
    EXPECT_EQ(config.state, 1u);
    EXPECT_EQ(config.mode, QCMAP_MSGR_L2TP_MODE_UNMANAGED_V01);
    EXPECT_EQ(config.mtu, 1450u);
    EXPECT_EQ(config.mss, 1400u);
    EXPECT_EQ(config.clamp_mss, 1);
    ASSERT_TRUE(client.RestoreFactoryConfig(&err));
    ASSERT_TRUE(client.GetL2TPConfig(&config, &err));
    EXPECT_EQ(config.state, 0u);
}

}  // namespace
