#include <zr_nexa/firewall.h>

#include "profile_fixture.h"

namespace {

class FirewallRows : public ProfileRowsTest {
protected:
    static constexpr const char* kEntries = "firewall.entries";
    static constexpr const char* kReadOnly = "an entry of a protocol that has no word can be read only";
    static ctl::Value::Map config(bool enabled, const std::string& unmatched)
    {
        return {{"firewall.enabled", enabled}, {"firewall.unmatched", unmatched}};
    }
    static ctl::Value::Map mac_filter(const std::string& state, const ctl::Value::List& stations,
                                      const ctl::Value::List& interfaces)
    {
        return {{"hardware_mac_filter.state", state},
                {"hardware_mac_filter.stations", stations},
                {"hardware_mac_filter.interfaces", interfaces}};
    }
};

TEST_F(FirewallRows, SwitchesAndKeepsThePolicy)
{
    const uint32_t second = add_profile();
    EXPECT_EQ(read("firewall.enabled", second), "{firewall.enabled: false, firewall.unmatched: drop}");
    for (const bool enabled : {true, false})
        for (const std::string policy : {"let-through", "drop"}) {
            EXPECT_EQ(write("firewall.enabled", second, config(enabled, policy)), "0");
            EXPECT_EQ(value("firewall.enabled", second), ctl::Value(config(enabled, policy)));
            EXPECT_EQ(sql("SELECT packets_allowed FROM firewall"), policy == "drop" ? "0" : "1");
        }
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: false, firewall.unmatched: drop}");
}

TEST_F(FirewallRows, TakesWhatIsNotSaidFromTheModule)
{
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.unmatched", "let-through"}}), "0");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: false, firewall.unmatched: let-through}");
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.enabled", true}}), "0");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: true, firewall.unmatched: let-through}");
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.unmatched", "drop"}}), "0");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: true, firewall.unmatched: drop}");

    sql("UPDATE firewall SET enabled = 2, packets_allowed = 5");
    EXPECT_EQ(read("firewall.enabled", 1), "{firewall.enabled: true}");
    EXPECT_EQ(write("firewall.enabled", 1, {{"firewall.enabled", false}}),
              "the module's policy has no word; say unmatched too");
    EXPECT_EQ(write("firewall.enabled", 1, config(false, "drop")), "0");
}

TEST_F(FirewallRows, AddsAndReadsEveryField)
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
    add(kEntries, second, entries);
    expect_entries(kEntries, second, entries);
    EXPECT_EQ(ctl::in_short(value(kEntries, second).list()[2]),
              "{destination: 10.9.8.7/8, direction: 2, family: ipv4, icmp_type: 8, nat_flag: 0, protocol: icmp, "
              "source: 10.1.2.3/255.0.255.0}");
    EXPECT_EQ(ctl::in_short(value(kEntries, second).list()[7]),
              "{family: ipv6, icmp_code: 0, icmp_type: 128, nat_flag: 255, protocol: icmpv6, traffic_class: 8/255}");
    EXPECT_EQ(read(kEntries, 1), "[]");
    EXPECT_EQ(sql("SELECT src_mask || ' ' || dst_addr FROM firewall_entry WHERE handle = 3"), "255.0.255.0 10.9.8.7");
    EXPECT_EQ(sql("SELECT src_port || '+' || src_port_range FROM firewall_entry WHERE handle = 2"), "5000+10");
}

TEST_F(FirewallRows, RemovesByHandle)
{
    add(kEntries, 1, "[{family: ipv6}, {family: ipv4}, {family: ipv4}, {family: ipv4, protocol: udp}]");
    const ctl::Value::List there = value(kEntries, 1).list();
    ASSERT_EQ(there.size(), 4u);
    EXPECT_EQ(there[0], there[1]) << "an entry may stand twice";
    EXPECT_EQ(there[1].tag, 3u);
    EXPECT_EQ(told(row(kEntries).remove(1, "", there[1])), "0");
    expect_entries(kEntries, 1, "[{family: ipv4}, {family: ipv4, protocol: udp}, {family: ipv6}]");
    EXPECT_EQ(value(kEntries, 1).list()[0].tag, 2u);
    EXPECT_EQ(told(row(kEntries).remove(1, "", there[1])), "0x2019");
    EXPECT_FALSE(row(kEntries).once);
}

TEST_F(FirewallRows, HasFiftyEntriesOfBothFamiliesTogether)
{
    EXPECT_EQ(row(kEntries).most, 50u);
    std::string entries;
    for (int i = 0; i < 25; ++i)
        entries += "- {family: ipv4, protocol: tcp, destination_ports: " + std::to_string(i) + "}\n- {family: ipv6}\n";
    add(kEntries, 1, entries);
    expect_entries(kEntries, 1, entries);
    EXPECT_EQ(told(row(kEntries).add(1, "", value(kEntries, 1).list()[0])), "0x203E");
    EXPECT_EQ(problems(kEntries, entries + "- {family: ipv4}\n"), "list: 51 entries, 50 are the most\n");
}

// A number without a code is lost; so is an ICMP of the other family, which reads as one and cannot be made.
TEST_F(FirewallRows, ShowsAndRemovesWhatItCannotMake)
{
    add(kEntries, 1,
        "- {family: ipv4, source: 10.0.0.1/32, protocol: icmp, icmp_type: 3}\n"
        "- {family: ipv6, protocol: icmpv6, icmp_code: 3}\n"
        "- {family: ipv4, protocol: tcp, source_ports: 3}\n");
    sql("UPDATE firewall_entry SET protocol = 58 WHERE handle = 1");
    sql("UPDATE firewall_entry SET protocol = 1 WHERE handle = 2");
    sql("UPDATE firewall_entry SET protocol = 47, direction = 3 WHERE handle = 3");
    const ctl::Value::List there = value(kEntries, 1).list();
    EXPECT_EQ(ctl::in_short(ctl::Value(there)),
              "[{family: ipv4, nat_flag: 0, protocol: other, source: 10.0.0.1/32}, "
              "{family: ipv4, nat_flag: 0, protocol: other}, {family: ipv6, nat_flag: 0, protocol: other}]");
    EXPECT_EQ(problems(kEntries, "[{family: ipv4, protocol: other}]"), "");
    EXPECT_EQ(told(row(kEntries).add(1, "", there[0])), kReadOnly);
    EXPECT_EQ(row(kEntries).not_undone({}, there[0]), kReadOnly);
    EXPECT_EQ(row(kEntries).not_undone(there[0], {}), "");
    for (const ctl::Value& entry : there)
        EXPECT_EQ(told(row(kEntries).remove(1, "", entry)), "0");
    EXPECT_EQ(read(kEntries, 1), "[]");
}

TEST_F(FirewallRows, SaysWhatBelongsTogether)
{
    EXPECT_EQ(problems(kEntries,
                       "- {family: ipv4, source: \"::/0\", traffic_class: 1/1, nat_flag: 0, protocol: icmpv6}\n"
                       "- {family: ipv6, destination: 10.0.0.0/8, tos: 1/1, protocol: icmp}\n"
                       "- {family: ipv4, protocol: esp, source_ports: 1, destination_ports: 1, icmp_type: 0}\n"
                       "- {family: ipv4, icmp_code: 0, spi: 1}\n"
                       "- {family: ipv4, protocol: tcp, spi: 0}\n"),
              "list[0].source: an address of the other family than the entry's, ipv4\n"
              "list[0].traffic_class: only with family ipv6, not ipv4\n"
              "list[0].nat_flag: only with family ipv6, not ipv4\n"
              "list[0].protocol: icmp in ipv4, not icmpv6\n"
              "list[1].destination: an address of the other family than the entry's, ipv6\n"
              "list[1].tos: only with family ipv4, not ipv6\n"
              "list[1].protocol: icmpv6 in ipv6, not icmp\n"
              "list[2].source_ports: only with protocol tcp, udp or tcp-udp, not esp\n"
              "list[2].destination_ports: only with protocol tcp, udp or tcp-udp, not esp\n"
              "list[2].icmp_type: only with protocol icmp or icmpv6, not esp\n"
              "list[3].icmp_code: only with protocol icmp or icmpv6\n"
              "list[3].spi: only with protocol esp\n"
              "list[4].spi: only with protocol esp, not tcp\n");
    EXPECT_EQ(
        problems(kEntries,
                 "- {family: ipv4v6, direction: 3, source: 10.0.0.1, tos: 256/1, nat_flag: 256}\n"
                 "- {protocol: gre, source_ports: 9-8, destination_ports: 65536, icmp_type: 256, spi: 4294967296}\n"),
        "list[0].family: one of ipv4, ipv6, not ipv4v6\n"
        "list[0].direction: a whole number in decimal digits, 1 to 2, not 3\n"
        "list[0].source: an address of either family and its prefix length, as 192.168.1.0/24 or "
        "\"2001:db8::/32\", not 10.0.0.1\n"
        "list[0].tos: a byte and its mask, as 16/252, not 256/1\n"
        "list[0].nat_flag: a whole number in decimal digits, 0 to 255, not 256\n"
        "list[1]: family is missing\n"
        "list[1].protocol: one of tcp, udp, tcp-udp, icmp, icmpv6, esp, other, not gre\n"
        "list[1].source_ports: a port or a range of them, as 80 or 5000-5010, 0 to 65535, not 9-8\n"
        "list[1].destination_ports: a port or a range of them, as 80 or 5000-5010, 0 to 65535, not 65536\n"
        "list[1].icmp_type: a whole number in decimal digits, 0 to 255, not 256\n"
        "list[1].spi: a whole number in decimal digits, 0 to 4294967295, not 4294967296\n");
}

TEST_F(FirewallRows, FiltersStationsByHardware)
{
    const std::string name = "hardware_mac_filter.state";
    EXPECT_EQ(read(name, 0), "{hardware_mac_filter.state: disabled}");
    const ctl::Value none = value(name, 0);
    const std::string needs = "it takes no state without stations and interfaces";
    EXPECT_EQ(write(name, 0, {{name, "enabled"}}), needs);

    const ctl::Value::List one(1, ctl::Value(ctl::Value::List{1, 0, 0, 0, 4294967295u}));
    const char* code = "0";
    for (const std::string state : {"listed", "enabled", "disabled"}) {
        EXPECT_EQ(write(name, 0, mac_filter(state, {"02:00:00:00:00:31"}, one)), "0");
        EXPECT_EQ(value(name, 0), ctl::Value(mac_filter(state, {"02:00:00:00:00:31"}, one)));
        code = state == "listed" ? "2" : state == "enabled" ? "1" : "0";
        EXPECT_EQ(sql("SELECT state FROM hw_mac_filter"), code);
    }
    EXPECT_EQ(row(name).not_undone(value(name, 0), none), needs);
    EXPECT_EQ(row(name).not_undone(none, value(name, 0)), "");
    EXPECT_EQ(wrong("hardware_mac_filter.stations", "[]"), "0 entries, 1 are the fewest");
    EXPECT_EQ(wrong("hardware_mac_filter.interfaces", "[]"), "0 entries, 1 are the fewest");
    EXPECT_EQ(wrong("hardware_mac_filter.interfaces", "[[1, 2, 3, 4]]"), "4 entries, 5 are the fewest");
    EXPECT_EQ(wrong("hardware_mac_filter.interfaces", "[[1, 2, 3, 4, 5, 6]]"), "6 entries, 5 are the most");

    sql("UPDATE hw_mac_filter SET state = 9");
    EXPECT_EQ(value(name, 0).child(name).text(), "");
    EXPECT_EQ(value(name, 0).child("hardware_mac_filter.stations").list().size(), 1u);
}

TEST_F(FirewallRows, FiltersUpToSixteenStationsOnEightInterfaces)
{
    const std::string name = "hardware_mac_filter.state";
    ctl::Value::List stations;
    for (int i = 16; i < 32; ++i)
        stations.push_back("02:00:00:00:00:" + std::to_string(i));
    ctl::Value::List interfaces;
    for (int i = 8; i > 0; --i)
        interfaces.emplace_back(ctl::Value::List{i, 1, 2, 3, 4});
    ctl::Value::List turned(stations.rbegin(), stations.rend());
    EXPECT_EQ(write(name, 0, mac_filter("listed", turned, interfaces)), "0");
    EXPECT_EQ(value(name, 0), ctl::Value(mac_filter("listed", stations, interfaces))) << "stations sorted, not these";
    EXPECT_EQ(field("hardware_mac_filter.stations").type.high, 16u);
    EXPECT_EQ(field("hardware_mac_filter.interfaces").type.high, 8u);
}

TEST_F(FirewallRows, TellsRefusals)
{
    open("GetFireWallEntry#2=fail:3,GetFirewall=fail:4,GetHWMACFilteringState=fail:5,SetHWMACFilteringState=fail:6");
    add(kEntries, 1, "[{family: ipv4}, {family: ipv6}]");
    ctl::Value out;
    EXPECT_EQ(told(row(kEntries).read(1, &out)), "0x3003");
    EXPECT_EQ(told(row(kEntries).read(9, &out)), "0x1009");
    ctl::Value unit;
    EXPECT_EQ(told(row("firewall.enabled").read(1, &unit)), "0x2004");
    EXPECT_EQ(told(row("firewall.enabled").write(1, ctl::Value::Map{{"firewall.enabled", true}}, {})), "0x2004");
    EXPECT_EQ(told(row("hardware_mac_filter.state").read(0, &unit)), "0x2005");
    EXPECT_EQ(ctl::in_short(unit), "none");
    const ctl::Value filter =
        mac_filter("listed", {"02:00:00:00:00:31"}, ctl::Value::List(1, ctl::Value(ctl::Value::List{1, 0, 0, 0, 0})));
    EXPECT_EQ(told(row("hardware_mac_filter.state").write(0, filter, {})), "0x2006");
}

}  // namespace
