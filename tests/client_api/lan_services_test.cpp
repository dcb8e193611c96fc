#include <arpa/inet.h>

#include "api_test.h"

namespace {

using LanServicesTest = ApiTest;

uint32_t network(const char* text)
{
    in_addr address = {};
    inet_pton(AF_INET, text, &address);
    return address.s_addr;
}

template <typename Record>
Record a_reservation()
{
    Record record = {};
    const uint8_t mac[6] = {0x00, 0x1A, 0xB2, 0x03, 0xFF, 0x05};
    std::memcpy(record.mac, mac, sizeof(mac));
    record.reserved_ip = network("192.168.225.33");
    std::strcpy(record.device_name, "printer");
    record.enable = 1;
    return record;
}

const std::string kReservationShown = "mac=001ab203ff05 reserved_ip=c0a8e121 device_name=\"printer\" enable=1)";
const std::string kReservationLogged =
    "MAC:00:1a:b2:03:ff:05, Reserved IP:192.168.225.33, Device name:printer, enable:1";

// ---- DHCP reservations ----

TEST_F(LanServicesTest, ReservationAddPassesAllFourFields)
{
    const auto record = a_reservation<zr_nexa_lan_dhcp_reserv_record_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_add_v1(&record), 0u,
               "info  entry",
               "info  Add a DHCP Reservation Record, " + kReservationLogged,
               "call  AddDHCPReservRecord(" + kReservationShown,
               "info  DHCP Reservation Record added successfully");
}

TEST_F(LanServicesTest, ReservationAddTakesANameThatFillsItsField)
{
    auto record = a_reservation<zr_nexa_lan_dhcp_reserv_record_t>();
    std::memset(record.device_name, 'n', sizeof(record.device_name));
    record.enable = 255;
    const std::string name(100, 'n');
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_add_v1(&record), 0u,
               "info  entry",
               "info  Add a DHCP Reservation Record, MAC:00:1a:b2:03:ff:05, Reserved IP:192.168.225.33, Device name:" +
                   name + ", enable:255",
               "call  AddDHCPReservRecord(mac=001ab203ff05 reserved_ip=c0a8e121 device_name=\"" + name +
                   "\" enable=255)",
               "info  DHCP Reservation Record added successfully");
}

TEST_F(LanServicesTest, ReservationFunctionsRefuseNullBeforeAnyRecord)
{
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_add_v1(nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_get_v1(nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_edit_v1(1, nullptr), 4u, "info  entry");
}

TEST_F(LanServicesTest, ReservationEditNamesTheOldAddress)
{
    const auto record = a_reservation<zr_nexa_lan_dhcp_reserv_record_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_edit_v1(network("192.168.225.40"), &record), 0u,
               "info  entry",
               "info  IP addr to edit:192.168.225.40",
               "info  Edit a DHCP Reservation Record, " + kReservationLogged,
               "call  EditDHCPReservRecord(ip_address=c0a8e128 " + kReservationShown,
               "info  DHCP Reservation Record edited successfully");
}

TEST_F(LanServicesTest, ReservationDeleteSpeaksOfEditing)
{
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_del_v1(network("192.168.225.40")), 0u,
               "info  entry",
               "info  IP addr to edit:192.168.225.40",
               "call  DeleteDHCPReservRecord(ip_address=c0a8e128)",
               "info  DHCP Reservation Record deleted successfully");
}

TEST_F(LanServicesTest, AnEmptyReservationListIsSaidSo)
{
    auto list = poisoned<zr_nexa_lan_dhcp_reserv_list_t>();
    platform.on("GetDHCPReservRecords").gives("count", 0u);
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_get_v1(&list), 0u,
               "info  entry",
               "call  GetDHCPReservRecords()",
               "info  No DHCP Reservation Records",
               "info  DHCP Reservation Record get successfully");
    EXPECT_EQ(list.count, 0u);
    EXPECT_TRUE(is_poisoned(list.record[0]));
}

TEST_F(LanServicesTest, ReservationsAreListedInOrderAndThoseBehindStay)
{
    qcmap_msgr_dhcp_reservation_v01 records[2] = {a_reservation<qcmap_msgr_dhcp_reservation_v01>(), {}};
    records[1].mac[5] = 9;
    records[1].reserved_ip = network("10.1.2.3");
    std::memset(records[1].device_name, 'x', sizeof(records[1].device_name));
    records[1].enable = 2;
    platform.on("GetDHCPReservRecords").gives_array("records", records, 2).gives("count", 2u);
    auto list = poisoned<zr_nexa_lan_dhcp_reserv_list_t>();
    EXPECT_ROW(zr_nexa_lan_dhcp_reserv_record_get_v1(&list), 0u,
               "info  entry",
               "call  GetDHCPReservRecords()",
               "info  DHCP Reservation Record get successfully");
    EXPECT_EQ(list.count, 2u);
    EXPECT_EQ(list.record[0].mac[1], 0x1A);
    EXPECT_EQ(list.record[0].reserved_ip, network("192.168.225.33"));
    EXPECT_STREQ(list.record[0].device_name, "printer");
    EXPECT_EQ(list.record[0].enable, 1);
    EXPECT_EQ(list.record[1].mac[5], 9);
    EXPECT_EQ(list.record[1].reserved_ip, network("10.1.2.3"));
    EXPECT_EQ(std::string(list.record[1].device_name, 100), std::string(100, 'x'));
    EXPECT_EQ(list.record[1].enable, 2);
    EXPECT_TRUE(is_poisoned(list.record[2]));
}

TEST_F(LanServicesTest, AReservationCountBeyondTheListIsClamped)
{
    for (const uint32_t count : {20u, 21u, 0xFFFFFFFFu}) {
        platform.on("GetDHCPReservRecords").gives("count", count);
        auto list = poisoned<zr_nexa_lan_dhcp_reserv_list_t>();
        EXPECT_EQ(zr_nexa_lan_dhcp_reserv_record_get_v1(&list), 0u);
        EXPECT_EQ(list.count, 20u);
        EXPECT_EQ(list.record[19].enable, 0);
    }
}

// ---- packet statistics ----

TEST_F(LanServicesTest, PacketStatsAreSwitched)
{
    EXPECT_ROW(zr_nexa_lan_packetstats_set_v1(1), 0u,
               "info  entry",
               "call  EnablePacketStats()",
               "info  Packet Stats Enable successfully");
    EXPECT_ROW(zr_nexa_lan_packetstats_set_v1(0), 0u,
               "info  entry",
               "call  DisablePacketStats()",
               "info  Packet Stats Disable succeeded");
    for (const uint32_t other : {2u, 256u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_packetstats_set_v1(other), 4u, "info  entry");
    }
}

TEST_F(LanServicesTest, PacketStatsStateIsTranslated)
{
    struct Answer {
        uint32_t status;
        uint8_t written;
    };
    for (const Answer answer :
         {Answer{1, 1}, Answer{2, 0}, Answer{0, 0xA5}, Answer{3, 0xA5}, Answer{0x7FFFFFFF, 0xA5}}) {
        platform.on("GetPacketStatsStatus").gives("status", answer.status);
        uint8_t state = 0xA5;
        EXPECT_ROW(zr_nexa_lan_packetstats_get_v1(&state), 0u,
                   "info  entry",
                   "call  GetPacketStatsStatus()",
                   "info  Get Packet Stats succeeded");
        EXPECT_EQ(state, answer.written) << answer.status;
    }
    EXPECT_ROW(zr_nexa_lan_packetstats_get_v1(nullptr), 4u, "info  entry");
}

TEST_F(LanServicesTest, PacketStatsReset)
{
    EXPECT_ROW(zr_nexa_lan_packetstats_reset_v1(), 0u,
               "info  entry",
               "call  ResetPacketStats()",
               "info  Packet Stats reset request succeeded");
}

// ---- connected devices ----

TEST_F(LanServicesTest, DevicesAreCopiedAndLogged)
{
    qcmap_connected_device given[2] = {};
    given[0].device_type = 4;
    given[0].ipv4_addr = network("192.168.225.21");
    const uint8_t mac[6] = {0xAA, 0xBB, 0xCC, 0x01, 0x02, 0x03};
    std::memcpy(given[0].mac, mac, sizeof(mac));
    std::memset(given[0].host_name, 'h', sizeof(given[0].host_name));
    given[0].ipv6_count = 1;
    given[0].ipv6_addr[0][15] = 7;
    given[0].rx_bytes = 0x1FFFFFFFFull;
    given[0].tx_bytes = 0x100000002ull;
    given[1].device_type = 8;
    given[1].ipv6_count = 7;  // more than an entry holds
    platform.on("GetConnectedDevicesInfo").gives_array("device", given, 2).gives("count", 2u);

    zr_nexa_lan_connected_device_t devices[ZR_NEXA_LAN_CONNECTED_DEVICES_MAX];
    for (auto& device : devices) {
        device = poisoned<zr_nexa_lan_connected_device_t>();
    }
    uint32_t count = 0xA5;
    EXPECT_ROW(zr_nexa_lan_connected_device_info_get_v1(devices, &count), 0u,
               "info  entry",
               "call  GetConnectedDevicesInfo()",
               "info  [No 0]device type(4), IP Addr(192.168.225.21), MAC(aa:bb:cc:01:02:03)",
               "info  [No 0]RX bytes: 4294967295 TX bytes: 2",
               "info  [No 1]device type(8), IP Addr(0.0.0.0), MAC(00:00:00:00:00:00)",
               "info  [No 1]RX bytes: 0 TX bytes: 0",
               "info  GetConnectedDevicesInfo successful");
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(devices[0].device_type, 4u);
    EXPECT_EQ(devices[0].ipv4_addr, network("192.168.225.21"));
    EXPECT_EQ(devices[0].mac[0], 0xAA);
    EXPECT_EQ(std::string(devices[0].host_name, 100), std::string(100, 'h'));
    EXPECT_EQ(devices[0].reserved[0], 0);
    EXPECT_EQ(devices[0].reserved[1], 0);
    EXPECT_EQ(devices[0].ipv6_count, 1u);
    EXPECT_EQ(devices[0].ipv6_addr[0][15], 7);
    EXPECT_EQ(devices[0].rx_bytes, 0x1FFFFFFFFull);
    EXPECT_EQ(devices[0].tx_bytes, 0x100000002ull);
    EXPECT_EQ(devices[1].ipv6_count, 6u);
    EXPECT_TRUE(is_poisoned(devices[2]));
}

TEST_F(LanServicesTest, NoDevicesIsASuccess)
{
    zr_nexa_lan_connected_device_t devices[ZR_NEXA_LAN_CONNECTED_DEVICES_MAX];
    devices[0] = poisoned<zr_nexa_lan_connected_device_t>();
    uint32_t count = 3;
    platform.on("GetConnectedDevicesInfo").gives("count", 0u);
    EXPECT_ROW(zr_nexa_lan_connected_device_info_get_v1(devices, &count), 0u,
               "info  entry",
               "call  GetConnectedDevicesInfo()",
               "info  GetConnectedDevicesInfo successful");
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(is_poisoned(devices[0]));
}

TEST_F(LanServicesTest, ADeviceCountBeyondTheArrayIsClamped)
{
    zr_nexa_lan_connected_device_t devices[ZR_NEXA_LAN_CONNECTED_DEVICES_MAX];
    for (const uint32_t reported : {50u, 51u, 0xFFFFFFFFu}) {
        uint32_t count = 0;
        platform.on("GetConnectedDevicesInfo").gives("count", reported);
        EXPECT_EQ(zr_nexa_lan_connected_device_info_get_v1(devices, &count), 0u);
        EXPECT_EQ(count, 50u);
    }
}

TEST_F(LanServicesTest, DevicesNeedBothOutputs)
{
    zr_nexa_lan_connected_device_t devices[ZR_NEXA_LAN_CONNECTED_DEVICES_MAX];
    uint32_t count = 0xA5;
    EXPECT_ROW(zr_nexa_lan_connected_device_info_get_v1(nullptr, &count), 4u,
               "info  entry",
               "error Error, incorrect input parameter.");
    EXPECT_ROW(zr_nexa_lan_connected_device_info_get_v1(devices, nullptr), 4u,
               "info  entry",
               "error Error, incorrect input parameter.");
    EXPECT_EQ(count, 0xA5u);
    // The service has the caller's own count; it is not clamped on a failure.
    platform.on("GetConnectedDevicesInfo").gives("count", 51u).fails(12);
    EXPECT_ROW(zr_nexa_lan_connected_device_info_get_v1(devices, &count), 0x100Cu,
               "info  entry",
               "call  GetConnectedDevicesInfo()",
               "error GetConnectedDevicesInfo failed(12)");
    EXPECT_EQ(count, 51u);
}

// ---- L2TP ----

zr_nexa_lan_l2tp_cfg_t a_tunnel()
{
    zr_nexa_lan_l2tp_cfg_t config = {};
    config.mode = 2;
    config.tunnel.tunnel_id = 11;
    config.tunnel.peer_tunnel_id = 12;
    config.tunnel.ip_family = 4;
    config.tunnel.encapsulation = 1;
    config.tunnel.local_port = 1701;
    config.tunnel.peer_port = 1702;
    config.tunnel.local_ipv4 = network("10.0.0.1");
    config.tunnel.peer_ipv4 = network("10.0.0.2");
    config.tunnel.mtu = 1460;
    config.tunnel.session_count = 2;
    config.tunnel.session[0] = {21, 22};
    config.tunnel.session[1] = {31, 32};
    config.tunnel.session[2] = {41, 42};  // behind the count
    return config;
}

const char* const kTunnelCall =
    "call  SetL2TPConfig(mode=2 tunnel_id=11 peer_tunnel_id=12 ip_family=4 encapsulation=1 local_port=1701 "
    "peer_port=1702 "
    "local_ipv4=0a000001 peer_ipv4=0a000002 local_ipv6=00000000000000000000000000000000 "
    "peer_ipv6=00000000000000000000000000000000 mtu=1460 session_count=2 local=21 peer=22 local=31 peer=32 local=0 "
    "peer=0 local=0 peer=0 local=0 peer=0 local=0 peer=0 local=0 peer=0 local=0 peer=0)";

TEST_F(LanServicesTest, L2tpSetSelectsTheLanAndPassesTheTunnel)
{
    const auto config = a_tunnel();
    EXPECT_ROW(zr_nexa_lan_l2tp_set_v1(4094, &config), 0u,
               "info  entry",
               "call  SelectLANBridge(4094)",
               kTunnelCall,
               "info  Set L2TP Config succeeds.");
}

TEST_F(LanServicesTest, L2tpSetRefusesABadTunnelBeforeAnyPlatformCall)
{
    struct Row {
        const char* what;
        void (*spoil)(zr_nexa_lan_l2tp_cfg_t&);
        uint32_t result;
    };
    const Row rows[] = {
        {"mode 0", [](auto& c) { c.mode = 0; }, 4},
        {"mode 3", [](auto& c) { c.mode = 3; }, 4},
        {"encapsulation 0", [](auto& c) { c.tunnel.encapsulation = 0; }, 4},
        {"encapsulation 3", [](auto& c) { c.tunnel.encapsulation = 3; }, 4},
        {"tunnel id", [](auto& c) { c.tunnel.tunnel_id = 0; }, 5},
        {"peer tunnel id", [](auto& c) { c.tunnel.peer_tunnel_id = 0; }, 5},
        {"family 0", [](auto& c) { c.tunnel.ip_family = 0; }, 3},
        {"family 10", [](auto& c) { c.tunnel.ip_family = 10; }, 3},
        {"local address", [](auto& c) { c.tunnel.local_ipv4 = 0; }, 7},
        {"peer address", [](auto& c) { c.tunnel.peer_ipv4 = 0; }, 7},
        {"IPv6 without addresses", [](auto& c) { c.tunnel.ip_family = 6; }, 7},
        {"IPv6 without a peer",
         [](auto& c) {
             c.tunnel.ip_family = 6;
             c.tunnel.local_ipv6[0] = 1;
         },
         7},
        {"local port", [](auto& c) { c.tunnel.local_port = 0; }, 8},
        {"peer port", [](auto& c) { c.tunnel.peer_port = 0; }, 8},
        {"mtu 575", [](auto& c) { c.tunnel.mtu = 575; }, 10},
        {"mtu 9001", [](auto& c) { c.tunnel.mtu = 9001; }, 10},
        {"no session", [](auto& c) { c.tunnel.session_count = 0; }, 9},
        {"nine sessions", [](auto& c) { c.tunnel.session_count = 9; }, 9},
        {"session id", [](auto& c) { c.tunnel.session[1].local_session_id = 0; }, 9},
        {"peer session id", [](auto& c) { c.tunnel.session[0].peer_session_id = 0; }, 9},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        auto config = a_tunnel();
        row.spoil(config);
        EXPECT_ROW(zr_nexa_lan_l2tp_set_v1(0, &config), row.result, "info  entry");
        // The LAN id is looked at before the record, the pointer before both.
        EXPECT_ROW(zr_nexa_lan_l2tp_set_v1(4095, &config), 6u, "info  entry");
    }
    EXPECT_ROW(zr_nexa_lan_l2tp_set_v1(4095, nullptr), 4u, "info  entry");
}

TEST_F(LanServicesTest, L2tpSetTakesEightSessionsAndNoMore)
{
    struct {
        zr_nexa_lan_l2tp_cfg_t config;
        zr_nexa_lan_l2tp_session_t behind;  // looks like a good session to whoever reads on
    } block = {a_tunnel(), {1, 2}};
    for (auto& session : block.config.tunnel.session) {
        session = {21, 22};
    }
    block.config.tunnel.session_count = 8;
    EXPECT_EQ(zr_nexa_lan_l2tp_set_v1(0, &block.config), 0u);
    EXPECT_THAT(platform.lines("")[2], testing::HasSubstr("session_count=8 local=21 peer=22"));
    EXPECT_THAT(platform.lines("")[2], testing::EndsWith("local=21 peer=22)"));
    platform.forget();
    for (const uint32_t count : {9u, 256u, 0xFFFFFFFFu}) {
        block.config.tunnel.session_count = count;
        EXPECT_ROW(zr_nexa_lan_l2tp_set_v1(0, &block.config), 9u, "info  entry");
    }
}

TEST_F(LanServicesTest, L2tpSetAcceptsWhatIsNotUsed)
{
    auto config = a_tunnel();
    config.tunnel.encapsulation = 2;  // IP: no ports
    config.tunnel.local_port = 0;
    config.tunnel.peer_port = 0;
    config.tunnel.mtu = 0;
    config.mode = 1;
    EXPECT_EQ(zr_nexa_lan_l2tp_set_v1(0, &config), 0u);
    config.tunnel.ip_family = 6;
    config.tunnel.local_ipv4 = 0;
    config.tunnel.local_ipv6[15] = 1;
    config.tunnel.peer_ipv6[15] = 2;
    config.tunnel.mtu = 576;
    EXPECT_EQ(zr_nexa_lan_l2tp_set_v1(0, &config), 0u);
    config.tunnel.mtu = 9000;
    EXPECT_EQ(zr_nexa_lan_l2tp_set_v1(0, &config), 0u);
}

TEST_F(LanServicesTest, UnmanagedL2tpIsSwitched)
{
    const zr_nexa_lan_unmanaged_l2tp_cfg_t config = {1, 1460, 1400, 1};
    EXPECT_ROW(zr_nexa_lan_unmanaged_l2tp_state_set_v1(4094, &config), 0u,
               "info  entry",
               "call  SelectLANBridge(4094)",
               "call  SetUnmanagedL2TPStateEx(state=1 mtu=1460 mss=1400 clamp_mss=1)",
               "info  Set L2TP Unmanaged state succeeds.");
}

TEST_F(LanServicesTest, UnmanagedL2tpRefusesABadRecordBeforeAnyPlatformCall)
{
    struct Refusal {
        zr_nexa_lan_unmanaged_l2tp_cfg_t config;
        uint32_t result;
    };
    for (const Refusal& refusal : {Refusal{{2, 0, 0, 0}, 4},
                                   {{0, 0, 0, 2}, 4},
                                   {{0, 0, 0, 256}, 4},
                                   {{1, 575, 0, 0}, 10},
                                   {{1, 9001, 0, 0}, 10},
                                   {{1, 0, 535, 1}, 10},
                                   {{1, 0, 8961, 1}, 10}}) {
        EXPECT_ROW(zr_nexa_lan_unmanaged_l2tp_state_set_v1(0, &refusal.config), refusal.result, "info  entry");
        EXPECT_ROW(zr_nexa_lan_unmanaged_l2tp_state_set_v1(4095, &refusal.config), 6u, "info  entry");
    }
    EXPECT_ROW(zr_nexa_lan_unmanaged_l2tp_state_set_v1(4095, nullptr), 4u, "info  entry");
    for (const zr_nexa_lan_unmanaged_l2tp_cfg_t& config :
         {zr_nexa_lan_unmanaged_l2tp_cfg_t{1, 576, 535, 0}, {0, 9000, 8960, 1}, {0, 0, 536, 1}}) {
        EXPECT_EQ(zr_nexa_lan_unmanaged_l2tp_state_set_v1(0, &config), 0u);
    }
}

TEST_F(LanServicesTest, L2tpIsReadBack)
{
    qcmap_msgr_l2tp_conf_t answer = {};
    answer.state = 1;
    answer.mode = QCMAP_MSGR_L2TP_MODE_MANAGED_V01;
    answer.mtu = 1450;
    answer.mss = 1400;
    answer.clamp_mss = 1;
    answer.tunnel_count = 1;
    answer.tunnel[0].tunnel_id = 11;
    answer.tunnel[0].peer_tunnel_id = 12;
    answer.tunnel[0].ip_family = 6;
    answer.tunnel[0].encapsulation = 2;
    answer.tunnel[0].local_port = 1;
    answer.tunnel[0].peer_port = 2;
    answer.tunnel[0].local_ipv4 = 3;
    answer.tunnel[0].peer_ipv4 = 4;
    answer.tunnel[0].local_ipv6[0] = 5;
    answer.tunnel[0].peer_ipv6[15] = 6;
    answer.tunnel[0].mtu = 1280;
    answer.tunnel[0].session_count = 1;
    answer.tunnel[0].session[0] = {21, 22};
    platform.on("GetL2TPConfig").gives("config", answer);
    auto config = poisoned<zr_nexa_lan_l2tp_info_t>();
    EXPECT_ROW(zr_nexa_lan_l2tp_get_v1(4094, &config), 0u,
               "info  entry",
               "call  SelectLANBridge(4094)",
               "call  GetL2TPConfig()",
               "info  Get L2TP Config succeeds.");
    EXPECT_EQ(config.state, 1u);
    EXPECT_EQ(config.mode, 2u);
    EXPECT_EQ(config.mtu, 1450u);
    EXPECT_EQ(config.mss, 1400u);
    EXPECT_EQ(config.clamp_mss, 1u);
    EXPECT_EQ(config.tunnel_count, 1u);
    EXPECT_EQ(config.tunnel[0].tunnel_id, 11u);
    EXPECT_EQ(config.tunnel[0].peer_tunnel_id, 12u);
    EXPECT_EQ(config.tunnel[0].ip_family, 6u);
    EXPECT_EQ(config.tunnel[0].encapsulation, 2u);
    EXPECT_EQ(config.tunnel[0].local_port, 1);
    EXPECT_EQ(config.tunnel[0].peer_port, 2);
    EXPECT_EQ(config.tunnel[0].local_ipv4, 3u);
    EXPECT_EQ(config.tunnel[0].peer_ipv4, 4u);
    EXPECT_EQ(config.tunnel[0].local_ipv6[0], 5);
    EXPECT_EQ(config.tunnel[0].peer_ipv6[15], 6);
    EXPECT_EQ(config.tunnel[0].mtu, 1280u);
    EXPECT_EQ(config.tunnel[0].session_count, 1u);
    EXPECT_EQ(config.tunnel[0].session[0].local_session_id, 21u);
    EXPECT_EQ(config.tunnel[0].session[0].peer_session_id, 22u);
    EXPECT_TRUE(is_poisoned(config.tunnel[0].session[1]));
    EXPECT_TRUE(is_poisoned(config.tunnel[1]));
}

TEST_F(LanServicesTest, L2tpCountsBeyondTheRecordAreClamped)
{
    qcmap_msgr_l2tp_conf_t answer = {};
    answer.tunnel_count = 9;
    answer.tunnel[7].session_count = 0xFFFFFFFF;
    platform.on("GetL2TPConfig").gives("config", answer);
    zr_nexa_lan_l2tp_info_t config;
    EXPECT_EQ(zr_nexa_lan_l2tp_get_v1(0, &config), 0u);
    EXPECT_EQ(config.tunnel_count, 8u);
    EXPECT_EQ(config.tunnel[7].session_count, 8u);
}

TEST_F(LanServicesTest, L2tpGetChecksItsArgumentsInOrder)
{
    zr_nexa_lan_l2tp_info_t config;
    EXPECT_ROW(zr_nexa_lan_l2tp_get_v1(4095, nullptr), 4u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_l2tp_get_v1(4095, &config), 6u, "info  entry");
    EXPECT_ROW(zr_nexa_lan_l2tp_get_v1(65536, &config), 6u, "info  entry");
}

TEST_F(LanServicesTest, L2tpDeleteOfAnUnknownTunnelIsLoggedTwice)
{
    EXPECT_ROW(zr_nexa_lan_l2tp_delete_v1(4094, 77), 0u,
               "info  entry",
               "call  SelectLANBridge(4094)",
               "call  DeleteL2TPTunnelConfig(tunnel_id=77)",
               "info  Delete L2TP Config succeeds.");
    platform.on("DeleteL2TPTunnelConfig").fails(26);
    EXPECT_ROW(zr_nexa_lan_l2tp_delete_v1(0, 0), 0x201Au,
               "info  entry",
               "call  SelectLANBridge(0)",
               "call  DeleteL2TPTunnelConfig(tunnel_id=0)",
               "error Tunnel config is not found to delete.",
               "error Delete L2TP Config fails, Error: 0x1a");
    EXPECT_ROW(zr_nexa_lan_l2tp_delete_v1(4095, 77), 6u, "info  entry");
}

}  // namespace
