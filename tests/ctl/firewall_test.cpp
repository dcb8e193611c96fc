#include <zr_nexa/firewall.h>

#include "area_fixture.h"

namespace ctl {
namespace {

class FirewallTest : public AreaTest {
protected:
    static constexpr const char* kEntries = "firewall.entries";
    static constexpr const char* kReadOnly = "an entry of a protocol that has no word can be read only";
    static Value::Map config(bool enabled, const std::string& unmatched)
    {
        return {{"firewall.enabled", enabled}, {"firewall.unmatched", unmatched}};
    }
    static Value::Map mac_filter(const std::string& state, const Value::List& stations, const Value::List& interfaces)
    {
        return {{"hardware_mac_filter.state", state},
                {"hardware_mac_filter.stations", stations},
                {"hardware_mac_filter.interfaces", interfaces}};
    }
};

TEST_F(FirewallTest, SwitchesAndKeepsThePolicy)
{
    const uint32_t second = add_profile();
    EXPECT_EQ(read("firewall.enabled", second), "{firewall.enabled: false, firewall.unmatched: drop}");
    for (const bool enabled : {true, false})
        for (const std::string policy : {"let-through", "drop"}) {
            EXPECT_EQ(write("firewall.enabled", second, config(enabled, policy)), "done");
            EXPECT_EQ(value_of("firewall.enabled", second), Value(config(enabled, policy)));
            EXPECT_EQ(sql("SELECT packets_allowed FROM firewall"), policy == "drop" ? "0" : "1");
        }
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: false, firewall.unmatched: drop}");
}

TEST_F(FirewallTest, TakesWhatIsNotSaidFromTheModule)
{
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.unmatched", "let-through"}}), "done");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: false, firewall.unmatched: let-through}");
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.enabled", true}}), "done");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: true, firewall.unmatched: let-through}");
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.unmatched", "drop"}}), "done");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: true, firewall.unmatched: drop}");

    sql("UPDATE firewall SET enabled = 2, packets_allowed = 5");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: true}");
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.enabled", false}}),
              "the module's policy has no word; say unmatched too");
    EXPECT_EQ(write("firewall.enabled", 1, config(false, "drop")), "done");
}

TEST_F(FirewallTest, AddsAndReadsEveryField)
{
    const uint32_t second = add_profile();
    EXPECT_EQ(read(kEntries, second), "[]");
    const std::string entries =
        "- {family: ipv4, direction: 1, source: 203.0.113.0/24, protocol: tcp, destination_ports: 22}\n"
        "- {family: ipv4, tos: 16/252, destination: 192.0.2.7/32, protocol: udp, source_ports: 5000-5010}\n"
        "- {family: ipv4, direction: 2, source: 10.1.2.3/255.0.255.0, destination: 10.9.8.7/8, protocol: icmp,"
        " icmp_type: 8}\n"
        "- {family: ipv4, source: 0.0.0.0/0, protocol: esp, spi: 4294967295}\n"
        "- {family: ipv4, protocol: tcp-udp, source_ports: 0-65535, destination_ports: 65535}\n"
        "- {family: ipv4}\n"
        "- {family: ipv6}\n"
        "- {family: ipv6, traffic_class: 8/255, nat_flag: 255, protocol: icmpv6, icmp_type: 128, icmp_code: 0}\n"
        "- {family: ipv6, direction: 2, source: \"::1/129\", destination: \"2001:db8::/32\", protocol: esp, spi: 0}\n"
        "- {family: ipv6, protocol: udp, destination_ports: 1-2}\n";
    add_entries(kEntries, second, entries);
    expect_entries(kEntries, second, entries);
    EXPECT_EQ(in_short(value_of(kEntries, second).list()[2]),
              "{destination: 10.9.8.7/8, direction: 2, family: ipv4, icmp_type: 8, nat_flag: 0, protocol: icmp, "
              "source: 10.1.2.3/255.0.255.0}");
    EXPECT_EQ(in_short(value_of(kEntries, second).list()[7]),
              "{family: ipv6, icmp_code: 0, icmp_type: 128, nat_flag: 255, protocol: icmpv6, traffic_class: 8/255}");
    EXPECT_EQ(read(kEntries, 1), "[]");
    EXPECT_EQ(sql("SELECT src_mask || ' ' || dst_addr FROM firewall_entry WHERE handle = 3"), "255.0.255.0 10.9.8.7");
    EXPECT_EQ(sql("SELECT src_port || '+' || src_port_range FROM firewall_entry WHERE handle = 2"), "5000+10");
}

TEST_F(FirewallTest, RemovesByHandle)
{
    add_entries(kEntries, 1, "[{family: ipv6}, {family: ipv4}, {family: ipv4}, {family: ipv4, protocol: udp}]");
    const Value::List there = value_of(kEntries, 1).list();
    ASSERT_EQ(there.size(), 4u);
    EXPECT_EQ(there[0], there[1]) << "an entry may stand twice";
    EXPECT_EQ(there[1].tag, 3u);
    EXPECT_EQ(remove(kEntries, 1, there[1]), "done");
    expect_entries(kEntries, 1, "[{family: ipv4}, {family: ipv4, protocol: udp}, {family: ipv6}]");
    EXPECT_EQ(value_of(kEntries, 1).list()[0].tag, 2u);
    EXPECT_EQ(remove(kEntries, 1, there[1]), "0x2019 zr_nexa_firewall_entry_del_v1");
    EXPECT_FALSE(row(kEntries).once);
}

TEST_F(FirewallTest, HasFiftyEntriesOfBothFamiliesTogether)
{
    EXPECT_EQ(row(kEntries).most, 50u);
    std::string entries;
    for (int i = 0; i < 25; ++i)
        entries += "- {family: ipv4, protocol: tcp, destination_ports: " + std::to_string(i) + "}\n- {family: ipv6}\n";
    add_entries(kEntries, 1, entries);
    expect_entries(kEntries, 1, entries);
    EXPECT_EQ(add(kEntries, 1, value_of(kEntries, 1).list()[0]), "0x203e zr_nexa_firewall_entry_add_v1");
    EXPECT_EQ(problems_of(kEntries, parsed(entries + "- {family: ipv4}\n")),
              "firewall.entries: 51 entries, 50 are the most\n");
}

// A number without a code is lost; so is an ICMP of the other family, which reads as one and cannot be made.
TEST_F(FirewallTest, ShowsAndRemovesWhatItCannotMake)
{
    add_entries(kEntries, 1,
                "- {family: ipv4, source: 10.0.0.1/32, protocol: icmp, icmp_type: 3}\n"
                "- {family: ipv6, protocol: icmpv6, icmp_code: 3}\n"
                "- {family: ipv4, protocol: tcp, source_ports: 3}\n");
    sql("UPDATE firewall_entry SET protocol = 58 WHERE handle = 1");
    sql("UPDATE firewall_entry SET protocol = 1 WHERE handle = 2");
    sql("UPDATE firewall_entry SET protocol = 47, direction = 3 WHERE handle = 3");
    const Value::List there = value_of(kEntries, 1).list();
    EXPECT_EQ(in_short(Value(there)),
              "[{family: ipv4, nat_flag: 0, protocol: other, source: 10.0.0.1/32}, "
              "{family: ipv4, nat_flag: 0, protocol: other}, {family: ipv6, nat_flag: 0, protocol: other}]");
    EXPECT_EQ(problems_of(kEntries, parsed("[{family: ipv4, protocol: other}]")), "");
    EXPECT_EQ(add(kEntries, 1, there[0]), kReadOnly);
    EXPECT_EQ(row(kEntries).not_undone({}, there[0]), kReadOnly);
    EXPECT_EQ(row(kEntries).not_undone(there[0], {}), "");
    for (const Value& entry : there)
        EXPECT_EQ(remove(kEntries, 1, entry), "done");
    EXPECT_EQ(read(kEntries, 1), "[]");
}

TEST_F(FirewallTest, SaysWhatBelongsTogether)
{
    EXPECT_EQ(
        problems_of(kEntries,
                    parsed("- {family: ipv4, source: \"::/0\", traffic_class: 1/1, nat_flag: 0, protocol: icmpv6}\n"
                           "- {family: ipv6, destination: 10.0.0.0/8, tos: 1/1, protocol: icmp}\n"
                           "- {family: ipv4, protocol: esp, source_ports: 1, destination_ports: 1, icmp_type: 0}\n"
                           "- {family: ipv4, icmp_code: 0, spi: 1}\n"
                           "- {family: ipv4, protocol: tcp, spi: 0}\n")),
        "firewall.entries[0].source: an address of the other family than the entry's, ipv4\n"
        "firewall.entries[0].traffic_class: only with family ipv6, not ipv4\n"
        "firewall.entries[0].nat_flag: only with family ipv6, not ipv4\n"
        "firewall.entries[0].protocol: icmp in ipv4, not icmpv6\n"
        "firewall.entries[1].destination: an address of the other family than the entry's, ipv6\n"
        "firewall.entries[1].tos: only with family ipv4, not ipv6\n"
        "firewall.entries[1].protocol: icmpv6 in ipv6, not icmp\n"
        "firewall.entries[2].source_ports: only with protocol tcp, udp or tcp-udp, not esp\n"
        "firewall.entries[2].destination_ports: only with protocol tcp, udp or tcp-udp, not esp\n"
        "firewall.entries[2].icmp_type: only with protocol icmp or icmpv6, not esp\n"
        "firewall.entries[3].icmp_code: only with protocol icmp or icmpv6\n"
        "firewall.entries[3].spi: only with protocol esp\n"
        "firewall.entries[4].spi: only with protocol esp, not tcp\n");
    EXPECT_EQ(
        problems_of(
            kEntries,
            parsed(
                "- {family: ipv4v6, direction: 3, source: 10.0.0.1, tos: 256/1, nat_flag: 256}\n"
                "- {protocol: gre, source_ports: 9-8, destination_ports: 65536, icmp_type: 256, spi: 4294967296}\n")),
        "firewall.entries[0].family: one of ipv4, ipv6, not ipv4v6\n"
        "firewall.entries[0].direction: a whole number in decimal digits, 1 to 2, not 3\n"
        "firewall.entries[0].source: an address of either family and its prefix length, as 192.168.1.0/24 or "
        "\"2001:db8::/32\", not 10.0.0.1\n"
        "firewall.entries[0].tos: a byte and its mask, as 16/252, not 256/1\n"
        "firewall.entries[0].nat_flag: a whole number in decimal digits, 0 to 255, not 256\n"
        "firewall.entries[1]: family is missing\n"
        "firewall.entries[1].protocol: one of tcp, udp, tcp-udp, icmp, icmpv6, esp, other, not gre\n"
        "firewall.entries[1].source_ports: a port or a range of them, as 80 or 5000-5010, 0 to 65535, not 9-8\n"
        "firewall.entries[1].destination_ports: a port or a range of them, as 80 or 5000-5010, 0 to 65535, not 65536\n"
        "firewall.entries[1].icmp_type: a whole number in decimal digits, 0 to 255, not 256\n"
        "firewall.entries[1].spi: a whole number in decimal digits, 0 to 4294967295, not 4294967296\n");
}

TEST_F(FirewallTest, FiltersStationsByHardware)
{
    const std::string name = "hardware_mac_filter.state";
    EXPECT_EQ(read(name, 0), "{hardware_mac_filter.state: disabled}");
    const Value none = value_of(name, 0);
    const std::string needs = "it takes no state without stations and interfaces";
    EXPECT_EQ(write(name, 0, {{name, "enabled"}}), needs);

    const Value::List one(1, Value(Value::List{1, 0, 0, 0, 4294967295u}));
    const char* code = "0";
    for (const std::string state : {"listed", "enabled", "disabled"}) {
        EXPECT_EQ(write(name, 0, mac_filter(state, {"02:00:00:00:00:31"}, one)), "done");
        EXPECT_EQ(value_of(name, 0), Value(mac_filter(state, {"02:00:00:00:00:31"}, one)));
        code = state == "listed" ? "2" : state == "enabled" ? "1" : "0";
        EXPECT_EQ(sql("SELECT state FROM hw_mac_filter"), code);
    }
    EXPECT_EQ(row(name).not_undone(value_of(name, 0), none), needs);
    EXPECT_EQ(row(name).not_undone(none, value_of(name, 0)), "");
    EXPECT_EQ(problems_of("hardware_mac_filter.stations", Value::Map{{"hardware_mac_filter.stations", parsed("[]")}}),
              "hardware_mac_filter.stations: 0 entries, 1 are the fewest\n");
    EXPECT_EQ(
        problems_of("hardware_mac_filter.interfaces", Value::Map{{"hardware_mac_filter.interfaces", parsed("[]")}}),
        "hardware_mac_filter.interfaces: 0 entries, 1 are the fewest\n");
    EXPECT_EQ(problems_of("hardware_mac_filter.interfaces",
                          Value::Map{{"hardware_mac_filter.interfaces", parsed("[[1, 2, 3, 4]]")}}),
              "hardware_mac_filter.interfaces[0]: 4 entries, 5 are the fewest\n");
    EXPECT_EQ(problems_of("hardware_mac_filter.interfaces",
                          Value::Map{{"hardware_mac_filter.interfaces", parsed("[[1, 2, 3, 4, 5, 6]]")}}),
              "hardware_mac_filter.interfaces[0]: 6 entries, 5 are the most\n");

    sql("UPDATE hw_mac_filter SET state = 9");
    EXPECT_EQ(value_of(name, 0).child(name).text(), "");
    EXPECT_EQ(value_of(name, 0).child("hardware_mac_filter.stations").list().size(), 1u);
}

TEST_F(FirewallTest, FiltersUpToSixteenStationsOnEightInterfaces)
{
    const std::string name = "hardware_mac_filter.state";
    Value::List stations;
    for (int i = 16; i < 32; ++i)
        stations.push_back("02:00:00:00:00:" + std::to_string(i));
    Value::List interfaces;
    for (int i = 8; i > 0; --i)
        interfaces.emplace_back(Value::List{i, 1, 2, 3, 4});
    Value::List turned(stations.rbegin(), stations.rend());
    EXPECT_EQ(write(name, 0, mac_filter("listed", turned, interfaces)), "done");
    EXPECT_EQ(value_of(name, 0), Value(mac_filter("listed", stations, interfaces))) << "stations sorted, not these";
    EXPECT_EQ(field("hardware_mac_filter.stations").type.high, 16u);
    EXPECT_EQ(field("hardware_mac_filter.interfaces").type.high, 8u);
}

TEST_F(FirewallTest, TellsRefusals)
{
    open("GetFireWallEntry#2=fail:3,GetFirewall=fail:4,GetHWMACFilteringState=fail:5,SetHWMACFilteringState=fail:6");
    add_entries(kEntries, 1, "[{family: ipv4}, {family: ipv6}]");
    Value out;
    EXPECT_EQ(told(row(kEntries).read(1, &out)), "0x3003 zr_nexa_firewall_entry_get_v1");
    EXPECT_EQ(told(row(kEntries).read(9, &out)), "0x1009 zr_nexa_firewall_entry_get_v1");
    Value unit;
    EXPECT_EQ(told(row("firewall.enabled").read(1, &unit)), "0x2004 zr_nexa_firewall_config_get_v1");
    EXPECT_EQ(told(row("firewall.enabled").write(1, Value::Map{{"firewall.enabled", true}}, {})),
              "0x2004 zr_nexa_firewall_config_get_v1");
    EXPECT_EQ(told(row("hardware_mac_filter.state").read(0, &unit)),
              "0x2005 zr_nexa_firewall_hwfiltering_state_get_v1");
    EXPECT_EQ(in_short(unit), "none");
    const Value filter = mac_filter("listed", {"02:00:00:00:00:31"}, Value::List(1, Value(Value::List{1, 0, 0, 0, 0})));
    EXPECT_EQ(told(row("hardware_mac_filter.state").write(0, filter, {})),
              "0x2006 zr_nexa_firewall_hwfiltering_state_set_v1");
}

}  // namespace
}  // namespace ctl
