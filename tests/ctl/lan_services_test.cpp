#include <arpa/inet.h>
#include <zr_nexa/lan_services.h>
#include <zr_nexa/lan_vlan.h>

#include "area_fixture.h"

namespace ctl {
namespace {

class LanServicesTest : public AreaTest {
protected:
    static Value reservation(const char* mac, const char* name = "", bool enabled = true)
    {
        return Value::Map{{"mac", mac}, {"name", name}, {"enabled", enabled}};
    }
    static std::string reserve(const char* address, const Value& entry)
    {
        return told(row("reservations").add(0, address, entry));
    }

    static Value sessions(std::initializer_list<std::pair<uint32_t, uint32_t>> pairs)
    {
        Value::List list;
        for (const auto& [local, peer] : pairs)
            list.emplace_back(Value::Map{{"local", local}, {"peer", peer}});
        return list;
    }
    static Value udp_tunnel()
    {
        return Value::Map{
            {"peer_tunnel", 8},   {"encapsulation", "udp"}, {"local", "192.0.2.1"}, {"peer", "192.0.2.2"},
            {"local_port", 1701}, {"peer_port", 65535},     {"mtu", 1400},          {"sessions", sessions({{1, 2}})}};
    }
    static Value ip_tunnel()
    {
        return Value::Map{{"peer_tunnel", 4294967295u},
                          {"encapsulation", "ip"},
                          {"local", "2001:db8::1"},
                          {"peer", "2001:db8::2"},
                          {"mtu", 0},
                          {"sessions", sessions({{4294967295u, 3}, {1, 1}})}};
    }
    static std::string add_tunnel(const char* id, const Value& entry, uint32_t lan = 0)
    {
        return told(row("l2tp.tunnels").add(lan, id, entry));
    }
    static std::string judged(const char* path, Value entry)
    {
        Value entries = Value::Map{{path == std::string("reservations") ? "192.168.225.9" : "7", entry}};
        return problems(path, &entries);
    }
    static Value with(Value entry, const char* key, const Value& value)
    {
        entry.map()[key] = value;
        return entry;
    }
    static Value without(Value entry, const char* key)
    {
        entry.map().erase(key);
        return entry;
    }
    std::string modes_written() const
    {
        return sql("SELECT state || ' ' || mode || ' ' || mtu || ' ' || mss || ' ' || clamp_mss FROM l2tp");
    }
};

TEST_F(LanServicesTest, PacketStatisticsAreReadAndSwitched)
{
    EXPECT_EQ(read("general.packet_statistics"), "{general.packet_statistics: false}");
    EXPECT_EQ(write("general.packet_statistics", 0, {{"general.packet_statistics", true}}), "done");
    EXPECT_EQ(read("general.packet_statistics"), "{general.packet_statistics: true}");
    EXPECT_EQ(sql("SELECT enabled FROM packet_stats"), "1");
    EXPECT_EQ(write("general.packet_statistics", 0, {{"general.packet_statistics", false}}), "done");
    EXPECT_EQ(sql("SELECT enabled FROM packet_stats"), "0");
    open("DisablePacketStats=fail:3");
    EXPECT_EQ(write("general.packet_statistics", 0, {}), "0x2003 zr_nexa_lan_packetstats_set_v1");
}

// ---- reservations ----

TEST_F(LanServicesTest, ReservationsAreAddedChangedAndRemoved)
{
    EXPECT_EQ(read("reservations"), "{}");
    EXPECT_EQ(reserve("192.168.225.31", reservation("02:00:00:00:00:0a", "printer", false)), "done");
    EXPECT_EQ(reserve("192.168.225.9", reservation("02:00:00:00:00:21")), "done");
    EXPECT_EQ(sql("SELECT reserved_ip || ' ' || mac || ' ' || device_name || ' ' || enabled FROM dhcp_reservation"
                  " WHERE reserved_ip = '192.168.225.31'"),
              "192.168.225.31 02:00:00:00:00:0a printer 0");
    EXPECT_EQ(read("reservations"),
              "{192.168.225.9: {enabled: true, mac: 02:00:00:00:00:21, name: \"\"}, 192.168.225.31: {enabled: false,"
              " mac: 02:00:00:00:00:0a, name: printer}}");

    const Row& row = ctl::row("reservations");
    EXPECT_EQ(told(row.change(0, "192.168.225.31", reservation("02:00:00:00:00:22", "camera"), {})), "done");
    EXPECT_EQ(told(row.remove(0, "192.168.225.9", {})), "done");
    EXPECT_EQ(read("reservations"), "{192.168.225.31: {enabled: true, mac: 02:00:00:00:00:22, name: camera}}");
    EXPECT_EQ(told(row.remove(0, "192.168.225.9", {})), "0x1019 zr_nexa_lan_dhcp_reserv_record_del_v1");
}

TEST_F(LanServicesTest, AMacIsReservedOnce)
{
    EXPECT_EQ(row("reservations").only_once, "mac");
    EXPECT_EQ(reserve("192.168.225.9", reservation("02:00:00:00:00:01")), "done");
    EXPECT_EQ(reserve("192.168.225.10", reservation("02:00:00:00:00:02")), "done");
    EXPECT_EQ(reserve("192.168.225.9", reservation("02:00:00:00:00:01")),
              "0x1076 zr_nexa_lan_dhcp_reserv_record_add_v1");
    EXPECT_EQ(told(row("reservations").change(0, "192.168.225.9", reservation("02:00:00:00:00:02"), {})),
              "0x1076 zr_nexa_lan_dhcp_reserv_record_edit_v1");
}

TEST_F(LanServicesTest, ANameMayFillItsField)
{
    const std::string longest(100, 'n');
    EXPECT_EQ(reserve("192.168.225.9", reservation("02:00:00:00:00:01", longest.c_str())), "done");
    EXPECT_EQ(reserve("192.168.225.10", reservation("02:00:00:00:00:02", "a\\\\b\\x0a\xc3\xa9\\xff")), "done");
    EXPECT_EQ(read("reservations"), "{192.168.225.9: {enabled: true, mac: 02:00:00:00:00:01, name: " + longest +
                                        "}, 192.168.225.10: {enabled: true, mac: 02:00:00:00:00:02, name:"
                                        " a\\\\b\\x0a\xc3\xa9\\xff}}");
    EXPECT_EQ(judged("reservations", reservation("02:00:00:00:00:01", longest.c_str())), "");
    EXPECT_NE(judged("reservations", reservation("02:00:00:00:00:01", (longest + "n").c_str())), "");
}

TEST_F(LanServicesTest, AReservationNeedsADevice)
{
    EXPECT_EQ(judged("reservations", Value::Map{{"mac", "02:00:00:00:00:0A"}}), "");
    EXPECT_EQ(judged("reservations", Value::Map{}), "reservations.192.168.225.9: mac is missing\n");
    EXPECT_EQ(judged("reservations", reservation("00:00:00:00:00:00")),
              "reservations.192.168.225.9.mac: a device's MAC, not all zero\n");
    Value zero = Value::Map{{"0.0.0.0", reservation("02:00:00:00:00:01")}};
    EXPECT_EQ(problems("reservations", &zero), "reservations: an IPv4 address other than 0.0.0.0, not 0.0.0.0\n");
    Value filled = Value::Map{{"192.168.225.9", Value::Map{{"mac", "02:00:00:00:00:0A"}}}};
    EXPECT_EQ(problems("reservations", &filled), "");
    EXPECT_EQ(in_short(filled), "{192.168.225.9: {enabled: true, mac: 02:00:00:00:00:0a, name: \"\"}}");
}

TEST_F(LanServicesTest, ReservationsThatCannotBeMadeAreLeftOut)
{
    EXPECT_EQ(reserve("192.168.225.9", reservation("02:00:00:00:00:01")), "done");
    sql("INSERT INTO dhcp_reservation VALUES (70, '0.0.0.0', '02:00:00:00:00:02', '', 1),"
        " (71, '192.168.225.7', '00:00:00:00:00:00', '', 1), (72, '192.168.225.8', '02:00:00:00:00:03', '', 2)");
    EXPECT_EQ(read("reservations"),
              "{192.168.225.8: {enabled: true, mac: 02:00:00:00:00:03, name: \"\"}, 192.168.225.9: {enabled: true,"
              " mac: 02:00:00:00:00:01, name: \"\"}}");
}

TEST_F(LanServicesTest, TwentyReservationsAreTheMost)
{
    EXPECT_EQ(row("reservations").most, 20u);
    for (int i = 1; i <= 21; ++i) {
        const std::string mac = mac_text(std::array<uint8_t, 6>{2, 0, 0, 0, 0, static_cast<uint8_t>(i)}.data());
        EXPECT_EQ(reserve(("192.168.225." + std::to_string(i)).c_str(), reservation(mac.c_str())),
                  i <= 20 ? "done" : "0x103e zr_nexa_lan_dhcp_reserv_record_add_v1");
    }
    Value all;
    ASSERT_TRUE(row("reservations").read(0, &all).good());
    EXPECT_EQ(all.map().size(), 20u);
    open("GetDHCPReservRecords=fail:3");
    EXPECT_EQ(read("reservations"), "0x1003 zr_nexa_lan_dhcp_reserv_record_get_v1");
}

// ---- L2TP ----

constexpr char kFactorySwitch[] =
    "{l2tp.clamp_mss: false, l2tp.enabled: false, l2tp.mode: unmanaged, l2tp.mss: 0, l2tp.mtu: 0}";

TEST_F(LanServicesTest, L2tpIsOffAtFirst)
{
    EXPECT_EQ(read("l2tp.enabled"), kFactorySwitch);
    EXPECT_EQ(read("l2tp.tunnels"), "{}");
    EXPECT_EQ(read("l2tp.enabled", 7), "0x100e zr_nexa_lan_l2tp_get_v1");
    EXPECT_EQ(read("l2tp.tunnels", 7), "0x100e zr_nexa_lan_l2tp_get_v1");
}

TEST_F(LanServicesTest, TunnelsAreAddedReplacedAndRemoved)
{
    ASSERT_EQ(zr_nexa_lan_vlan_add_v1(10, ZR_NEXA_LAN_VLAN_IFACE_ETH, 1), 0u);
    EXPECT_EQ(add_tunnel("7", udp_tunnel(), 10), "done");
    EXPECT_EQ(add_tunnel("4294967295", ip_tunnel(), 10), "done");
    EXPECT_EQ(
        read("l2tp.tunnels", 10),
        "{7: {encapsulation: udp, local: 192.0.2.1, local_port: 1701, mtu: 1400, peer: 192.0.2.2, peer_port:"
        " 65535, peer_tunnel: 8, sessions: [{local: 1, peer: 2}]}, 4294967295: {encapsulation: ip, local:"
        " 2001:db8::1, mtu: 0, peer: 2001:db8::2, peer_tunnel: 4294967295, sessions: [{local: 4294967295, peer: 3},"
        " {local: 1, peer: 1}]}}");
    EXPECT_EQ(sql("SELECT ip_family || ' ' || encapsulation || ' ' || local_port || ' ' || local_ipv4 || ' ' ||"
                  " peer_ipv4 FROM l2tp_tunnel WHERE bridge = 10 AND tunnel_id = 7"),
              "4 1 1701 192.0.2.1 192.0.2.2");
    EXPECT_EQ(sql("SELECT ip_family || ' ' || encapsulation || ' ' || local_ipv6 || ' ' || peer_ipv6 FROM l2tp_tunnel"
                  " WHERE tunnel_id = 4294967295"),
              "6 2 2001:db8::1 2001:db8::2");

    const Row& row = ctl::row("l2tp.tunnels");
    EXPECT_EQ(told(row.change(10, "7", ip_tunnel(), udp_tunnel())), "done");
    EXPECT_EQ(told(row.remove(10, "4294967295", {})), "done");
    EXPECT_EQ(told(row.remove(10, "4294967295", {})), "done");  // it is gone already
    EXPECT_EQ(
        read("l2tp.tunnels", 10),
        "{7: {encapsulation: ip, local: 2001:db8::1, mtu: 0, peer: 2001:db8::2, peer_tunnel: 4294967295, sessions:"
        " [{local: 4294967295, peer: 3}, {local: 1, peer: 1}]}}");
    EXPECT_EQ(told(row.remove(11, "7", {})), "0x100e zr_nexa_lan_l2tp_delete_v1");
    EXPECT_EQ(read("l2tp.tunnels", 0), "{}");
}

TEST_F(LanServicesTest, EightTunnelsOfEightSessionsAreTheMost)
{
    EXPECT_EQ(row("l2tp.tunnels").most, 8u);
    const Value many =
        with(udp_tunnel(), "sessions", sessions({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}, {6, 6}, {7, 7}, {8, 8}}));
    for (int id = 1; id <= 8; ++id)
        EXPECT_EQ(add_tunnel(std::to_string(id).c_str(), many), "done");
    EXPECT_EQ(add_tunnel("9", many), "0x203e zr_nexa_lan_l2tp_set_v1");
    Value all;
    ASSERT_TRUE(row("l2tp.tunnels").read(0, &all).good());
    ASSERT_EQ(all.map().size(), 8u);
    EXPECT_EQ(all.child("8").child("sessions").list().size(), 8u);
    Value nine = many;
    nine.map()["sessions"].list().push_back(Value::Map{{"local", 9}, {"peer", 9}});
    EXPECT_EQ(judged("l2tp.tunnels", many), "");
    EXPECT_EQ(judged("l2tp.tunnels", nine), "l2tp.tunnels.7.sessions: 9 entries, 8 are the most\n");
}

TEST_F(LanServicesTest, WhatDoesNotMakeATunnelIsTold)
{
    const auto said = [](const Value& entry) { return judged("l2tp.tunnels", entry); };
    EXPECT_EQ(said(udp_tunnel()), "");
    EXPECT_EQ(said(ip_tunnel()), "");
    EXPECT_EQ(said(without(ip_tunnel(), "mtu")), "");
    EXPECT_EQ(said(without(udp_tunnel(), "peer_port")), "l2tp.tunnels.7: peer_port is missing\n");
    EXPECT_EQ(said(with(ip_tunnel(), "local_port", 5)), "l2tp.tunnels.7.local_port: only with udp\n");
    EXPECT_EQ(said(with(udp_tunnel(), "peer", "2001:db8::2")),
              "l2tp.tunnels.7.peer: an address of local's family, not 2001:db8::2\n");
    EXPECT_EQ(said(with(udp_tunnel(), "local", "0.0.0.0")), "l2tp.tunnels.7.local: an address other than 0.0.0.0\n");
    EXPECT_EQ(said(with(ip_tunnel(), "peer", "0:0::0")), "l2tp.tunnels.7.peer: an address other than ::\n");
    EXPECT_EQ(said(with(udp_tunnel(), "mtu", 575)),
              "l2tp.tunnels.7.mtu: 0 for the service's own, or 576 to 9000, not 575\n");
    for (const char* mtu : {"0", "576", "9000"})
        EXPECT_EQ(said(with(udp_tunnel(), "mtu", mtu)), "");
    EXPECT_NE(said(with(udp_tunnel(), "mtu", 9001)), "");
    EXPECT_NE(said(with(udp_tunnel(), "local_port", 0)), "");
    EXPECT_NE(said(with(udp_tunnel(), "peer_tunnel", 0)), "");
    EXPECT_NE(said(with(udp_tunnel(), "encapsulation", "tcp")), "");
    EXPECT_NE(said(with(udp_tunnel(), "sessions", Value::List{})), "");
    EXPECT_NE(said(with(udp_tunnel(), "sessions", sessions({{0, 1}}))), "");
    Value zero = Value::Map{{"0", udp_tunnel()}};
    EXPECT_NE(problems("l2tp.tunnels", &zero), "");
}

TEST_F(LanServicesTest, TunnelsThatCannotBeMadeAreLeftOut)
{
    for (const char* id : {"1", "2", "3", "4", "5", "6", "7", "8"})
        ASSERT_EQ(add_tunnel(id, udp_tunnel()), "done");
    sql("UPDATE l2tp_tunnel SET encapsulation = 3 WHERE tunnel_id = 1;"
        "UPDATE l2tp_tunnel SET ip_family = 5 WHERE tunnel_id = 2;"
        "UPDATE l2tp_tunnel SET local_port = 0 WHERE tunnel_id = 3;"
        "UPDATE l2tp_tunnel SET mtu = 100 WHERE tunnel_id = 4;"
        "UPDATE l2tp_tunnel SET peer_ipv4 = '0.0.0.0' WHERE tunnel_id = 5;"
        "UPDATE l2tp_session SET peer_session_id = 0 WHERE tunnel_id = 6;"
        "DELETE FROM l2tp_session WHERE tunnel_id = 7");
    Value left;
    ASSERT_TRUE(row("l2tp.tunnels").read(0, &left).good());
    ASSERT_EQ(left.map().size(), 1u);
    EXPECT_EQ(left.map().begin()->first, "8");
    // They do not keep the mode from being written with one that can be.
    EXPECT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "managed"}}), "done");
    EXPECT_EQ(modes_written(), "0 2 0 0 0");
}

TEST_F(LanServicesTest, TheSwitchIsWrittenAndReadBack)
{
    EXPECT_EQ(write("l2tp.enabled", 0,
                    {{"l2tp.enabled", true}, {"l2tp.mtu", 1400}, {"l2tp.mss", 1360}, {"l2tp.clamp_mss", true}}),
              "done");
    EXPECT_EQ(read("l2tp.enabled"),
              "{l2tp.clamp_mss: true, l2tp.enabled: true, l2tp.mode: unmanaged, l2tp.mss: 1360, l2tp.mtu: 1400}");
    EXPECT_EQ(modes_written(), "1 1 1400 1360 1");
    for (const auto& [key, value, stored] :
         {std::tuple("l2tp.enabled", Value(false), "0 1 1400 1360 1"),
          std::tuple("l2tp.mtu", Value(9000), "0 1 9000 1360 1"), std::tuple("l2tp.mss", Value(536), "0 1 9000 536 1"),
          std::tuple("l2tp.clamp_mss", Value(false), "0 1 9000 536 0")}) {
        EXPECT_EQ(write("l2tp.enabled", 0, {{key, value}}), "done") << key;
        EXPECT_EQ(modes_written(), stored) << key;
    }
    EXPECT_EQ(write("l2tp.mss", 0, {{"l2tp.mss", 4294967295u}}), "done");  // not judged while it is not clamped to
    EXPECT_NE(read("l2tp.mss").find("l2tp.mss: 4294967295"), std::string::npos);
}

TEST_F(LanServicesTest, MtuAndMssOfTheSwitchAreJudged)
{
    const auto said = [](const Value::Map& values) {
        Value record = values;
        return problems("l2tp.enabled", &record);
    };
    EXPECT_EQ(said({{"l2tp.mtu", 575}}), ".l2tp.mtu: 0 for the service's own, or 576 to 9000, not 575\n");
    EXPECT_EQ(said({{"l2tp.mtu", 576}}), "");
    EXPECT_EQ(said({{"l2tp.mtu", 0}}), "");
    EXPECT_NE(said({{"l2tp.mtu", 9001}}), "");
    EXPECT_EQ(said({{"l2tp.clamp_mss", true}}), "");
    EXPECT_EQ(said({{"l2tp.clamp_mss", false}, {"l2tp.mss", 1}}), "");
    EXPECT_EQ(said({{"l2tp.clamp_mss", true}, {"l2tp.mss", 535}}),
              ".l2tp.mss: 536 to 8960 where it is clamped to, not 535\n");
    EXPECT_EQ(said({{"l2tp.clamp_mss", true}, {"l2tp.mss", 8961}}),
              ".l2tp.mss: 536 to 8960 where it is clamped to, not 8961\n");
    EXPECT_EQ(said({{"l2tp.clamp_mss", true}, {"l2tp.mss", 536}}), "");
    EXPECT_EQ(said({{"l2tp.clamp_mss", true}, {"l2tp.mss", 8960}}), "");
}

TEST_F(LanServicesTest, ManagedTunnelsAreWrittenAgainBehindTheSwitch)
{
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    ASSERT_EQ(add_tunnel("9", ip_tunnel()), "done");
    const std::string tunnels = read("l2tp.tunnels");
    EXPECT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "managed"}}), "done");
    EXPECT_EQ(modes_written(), "0 2 0 0 0");

    // Every one of them: here the second is refused.
    open("SetL2TPConfig#2=fail:3");
    EXPECT_EQ(write("l2tp.enabled", 0, {{"l2tp.enabled", true}}), "0x2003 zr_nexa_lan_l2tp_set_v1");
    open();
    EXPECT_EQ(write("l2tp.enabled", 0, {{"l2tp.mtu", 1400}}), "done");
    EXPECT_EQ(modes_written(), "1 2 1400 0 0");
    EXPECT_EQ(read("l2tp.tunnels"), tunnels);
    EXPECT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "unmanaged"}}), "done");
    EXPECT_EQ(modes_written(), "1 1 1400 0 0");
    EXPECT_EQ(read("l2tp.tunnels"), tunnels);
}

TEST_F(LanServicesTest, ManagedStaysManagedWhereTheSwitchSucceedsWithAWord)
{
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    ASSERT_EQ(add_tunnel("9", ip_tunnel()), "done");
    ASSERT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "managed"}}), "done");
    open("SetUnmanagedL2TPStateEx=ok:43");
    EXPECT_EQ(write("l2tp.mtu", 0, {{"l2tp.mtu", 1400}}), "0x2b zr_nexa_lan_unmanaged_l2tp_state_set_v1");
    EXPECT_EQ(modes_written(), "0 2 1400 0 0");
    open("SetL2TPConfig#1=fail:3");
    EXPECT_EQ(write("l2tp.mtu", 0, {{"l2tp.mtu", 1300}}), "0x2003 zr_nexa_lan_l2tp_set_v1");
    EXPECT_EQ(modes_written(), "0 2 1300 0 0");
    open("SetUnmanagedL2TPStateEx=fail:43");
    EXPECT_EQ(write("l2tp.mtu", 0, {{"l2tp.mtu", 1200}}), "0x202b zr_nexa_lan_unmanaged_l2tp_state_set_v1");
    EXPECT_EQ(modes_written(), "0 2 1300 0 0");
}

TEST_F(LanServicesTest, WhatIsAsWantedIsNotTouched)
{
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    ASSERT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "managed"}}), "done");
    open("SetL2TPConfig=fail:3,SetUnmanagedL2TPStateEx=fail:3");
    EXPECT_EQ(write("l2tp.mode", 0, {}), "done");
    EXPECT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "unmanaged"}}), "0x2003 zr_nexa_lan_unmanaged_l2tp_state_set_v1");
    EXPECT_EQ(add_tunnel("8", udp_tunnel()), "0x2003 zr_nexa_lan_l2tp_set_v1");
}

TEST_F(LanServicesTest, ATunnelIsWrittenWithTheModeThatIsThere)
{
    EXPECT_TRUE(row("l2tp.tunnels").next_follows);
    EXPECT_EQ((&row("l2tp.tunnels") + 1)->fields.back().key, "l2tp.mode");
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    EXPECT_EQ(modes_written(), "0 1 0 0 0");
    ASSERT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "managed"}}), "done");
    ASSERT_EQ(add_tunnel("8", udp_tunnel()), "done");
    EXPECT_EQ(modes_written(), "0 2 0 0 0");
    open("GetL2TPConfig=fail:3");
    EXPECT_EQ(add_tunnel("9", udp_tunnel()), "0x2003 zr_nexa_lan_l2tp_get_v1");
}

TEST_F(LanServicesTest, WithoutTunnelsTheModeSaysNothing)
{
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    ASSERT_EQ(write("l2tp.mode", 0, {{"l2tp.mode", "managed"}}), "done");
    Value managed;
    ASSERT_TRUE(row("l2tp.mode").read(0, &managed).good());
    ASSERT_EQ(told(row("l2tp.tunnels").remove(0, "7", {})), "done");
    EXPECT_EQ(modes_written(), "0 2 0 0 0");
    EXPECT_EQ(read("l2tp.mode"), kFactorySwitch);
    EXPECT_EQ(told(row("l2tp.mode").write(0, managed, managed)), "done");
    // What stayed behind is put right once there is a tunnel.
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    EXPECT_EQ(told(row("l2tp.mode").write(0, Value::Map{{"l2tp.mode", "unmanaged"}}, {})), "done");
    EXPECT_EQ(modes_written(), "0 1 0 0 0");
}

TEST_F(LanServicesTest, OddValuesOfTheSwitchAreLeftOut)
{
    ASSERT_EQ(add_tunnel("7", udp_tunnel()), "done");
    sql("UPDATE l2tp SET state = 3, mode = 5, mtu = 100, mss = 7, clamp_mss = 2");
    EXPECT_EQ(read("l2tp.mode"), "{l2tp.clamp_mss: true, l2tp.enabled: true}");
    // A tunnel is written all the same, and a mode that nobody wants is left alone.
    EXPECT_EQ(add_tunnel("8", udp_tunnel()), "done");
    sql("UPDATE l2tp SET state = 1, mode = 5, mtu = 0, mss = 7, clamp_mss = 0");
    EXPECT_EQ(write("l2tp.mode", 0, {}), "done");
    EXPECT_EQ(modes_written(), "1 5 0 7 0");
}

}  // namespace
}  // namespace ctl
