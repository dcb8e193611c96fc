#include <zr_nexa/nat.h>

#include "area_fixture.h"

namespace ctl {
namespace {

class NatTest : public AreaTest {
protected:
    static constexpr const char* kMappings = "nat.port_mappings";
};

TEST_F(NatTest, TakesEachType)
{
    const uint32_t second = add_profile();
    EXPECT_EQ(read("nat.type", second), "{nat.type: port-restricted-cone}");
    EXPECT_EQ(field("nat.type").factory, "port-restricted-cone");
    uint8_t code = 0;
    for (const std::string type : {"symmetric", "port-restricted-cone", "full-cone", "address-restricted"}) {
        EXPECT_EQ(write("nat.type", second, {{"nat.type", type}}), "done");
        EXPECT_EQ(read("nat.type", second), "{nat.type: " + type + "}");
        EXPECT_EQ(sql("SELECT type FROM nat WHERE profile = 2"), std::to_string(code++));
    }
    EXPECT_EQ(read("nat.type", 1), "{nat.type: port-restricted-cone}");
    sql("UPDATE nat SET type = 7");
    EXPECT_EQ(read("nat.type", second), "{}") << "without a word";
    EXPECT_EQ(problems_of("nat.type", Value::Map{{"nat.type", "cone"}}),
              "nat.type: one of symmetric, port-restricted-cone, full-cone, address-restricted, not cone\n");
}

TEST_F(NatTest, HasOneDmzHostOrNone)
{
    EXPECT_EQ(read("nat.dmz", 1), "{nat.dmz: none}");
    EXPECT_EQ(write("nat.dmz", 1, {{"nat.dmz", "192.168.10.50"}}), "done");
    EXPECT_EQ(read("nat.dmz", 1), "{nat.dmz: 192.168.10.50}");
    EXPECT_EQ(write("nat.dmz", 1, {{"nat.dmz", "1.2.3.4"}}), "done");
    EXPECT_EQ(read("nat.dmz", 1), "{nat.dmz: 1.2.3.4}");
    EXPECT_EQ(sql("SELECT dmz_ip FROM nat"), "1.2.3.4");
    EXPECT_EQ(write("nat.dmz", 1, {{"nat.dmz", "none"}}), "done");
    EXPECT_EQ(read("nat.dmz", 1), "{nat.dmz: none}");
    EXPECT_EQ(problems_of("nat.dmz", Value::Map{{"nat.dmz", "none"}}), "");
    EXPECT_EQ(problems_of("nat.dmz", Value::Map{{"nat.dmz", "0.0.0.0"}}),
              "nat.dmz: an IPv4 address other than 0.0.0.0, or none, not 0.0.0.0\n");
}

TEST_F(NatTest, ShowsADmzHostThatNoDeviceCanBe)
{
    ASSERT_EQ(zr_nexa_nat_ipv4dmz_set_v1(1, 1, 0xffffffff), 0u);
    EXPECT_EQ(read("nat.dmz", 1), "{nat.dmz: 255.255.255.255}");
    EXPECT_EQ(problems_of("nat.dmz", Value::Map{{"nat.dmz", "255.255.255.255"}}), "");
}

TEST_F(NatTest, AddsAndRemovesMappings)
{
    const uint32_t second = add_profile();
    EXPECT_EQ(read(kMappings, second), "[]");
    const std::string rules =
        "- {protocol: tcp, global_port: 1, host: 192.168.10.50, port: 65535}\n"
        "- {protocol: udp, global_port: 65535, host: 0.0.0.1, port: 1}\n"
        "- {protocol: tcp-udp, global_port: 8080, host: 192.168.10.50}\n"
        "- {protocol: icmp, host: 255.255.255.254}\n"
        "- {protocol: esp, host: 192.168.10.51}\n";
    add_entries(kMappings, second, rules);
    EXPECT_EQ(read(kMappings, second),
              "[{global_port: 1, host: 192.168.10.50, port: 65535, protocol: tcp}, "
              "{global_port: 65535, host: 0.0.0.1, port: 1, protocol: udp}, "
              "{global_port: 8080, host: 192.168.10.50, port: 8080, protocol: tcp-udp}, "
              "{host: 255.255.255.254, protocol: icmp}, {host: 192.168.10.51, protocol: esp}]");
    expect_entries(kMappings, second, rules);
    EXPECT_EQ(read(kMappings, 1), "[]");

    const Value there = value_of(kMappings, second);
    for (const Value& rule : there.list()) {
        EXPECT_EQ(remove(kMappings, second, rule), "done") << in_short(rule);
        EXPECT_EQ(remove(kMappings, second, rule), "0x2019 zr_nexa_nat_ipv4portmapping_del_v1") << in_short(rule);
    }
    EXPECT_EQ(read(kMappings, second), "[]");
}

TEST_F(NatTest, TakesAMappingOnceAndFiftyOfThem)
{
    EXPECT_TRUE(row(kMappings).once);
    EXPECT_EQ(row(kMappings).most, 50u);
    std::string rules;
    for (int port = 1; port <= 50; ++port)
        rules += "- {protocol: udp, global_port: " + std::to_string(port) + ", host: 10.0.0.1}\n";
    add_entries(kMappings, 1, rules);
    expect_entries(kMappings, 1, rules);
    EXPECT_EQ(add(kMappings, 1, value_of(kMappings, 1).list()[49]), "0x2076 zr_nexa_nat_ipv4portmapping_add_v1");
    EXPECT_EQ(problems_of(kMappings, parsed(rules + "- {protocol: esp, host: 10.0.0.1}\n")),
              "nat.port_mappings: 51 entries, 50 are the most\n");
}

TEST_F(NatTest, ShowsARuleOfAProtocolWithoutAWord)
{
    sql("INSERT INTO nat_static_entry VALUES (1, 1, '10.0.0.1', 0, 0, 47)");
    const Value rule = value_of(kMappings, 1).list().at(0);
    EXPECT_EQ(in_short(rule), "{host: 10.0.0.1, protocol: other}");
    EXPECT_EQ(problems_of(kMappings, parsed("- {protocol: other, host: 10.0.0.1}")), "");
    const std::string read_only = "a rule of a protocol that has no word can be read only";
    EXPECT_EQ(add(kMappings, 1, rule), read_only);
    EXPECT_EQ(remove(kMappings, 1, rule), read_only);
    EXPECT_EQ(row(kMappings).not_undone(rule, {}), read_only);
    EXPECT_EQ(row(kMappings).not_undone({}, rule), read_only);
    const Value esp(Value::Map{{"protocol", "esp"}, {"host", "10.0.0.1"}});
    EXPECT_EQ(row(kMappings).not_undone(esp, {}) + row(kMappings).not_undone({}, esp), "");
}

TEST_F(NatTest, SaysWhatBelongsTogether)
{
    EXPECT_EQ(problems_of(kMappings, parsed("- {protocol: tcp, host: 10.0.0.1}\n"
                                            "- {protocol: udp, host: 10.0.0.1, port: 5}\n"
                                            "- {protocol: icmp, host: 10.0.0.1, global_port: 5}\n"
                                            "- {protocol: esp, host: 10.0.0.1, port: 5}\n")),
              "nat.port_mappings[0]: global_port is missing\n"
              "nat.port_mappings[1]: global_port is missing\n"
              "nat.port_mappings[2].global_port: only with tcp, udp or tcp-udp, not with icmp\n"
              "nat.port_mappings[3].port: only with tcp, udp or tcp-udp, not with esp\n");
    EXPECT_EQ(problems_of(kMappings, parsed("- {protocol: gre, host: 255.255.255.255, global_port: 65536, port: 0}\n"
                                            "- {global_port: 0}\n")),
              "nat.port_mappings[0].protocol: one of tcp, udp, tcp-udp, icmp, esp, other, not gre\n"
              "nat.port_mappings[0].global_port: a whole number in decimal digits, 1 to 65535, not 65536\n"
              "nat.port_mappings[0].host: an IPv4 address other than 0.0.0.0 and 255.255.255.255, not 255.255.255.255\n"
              "nat.port_mappings[0].port: a whole number in decimal digits, 1 to 65535, not 0\n"
              "nat.port_mappings[1]: protocol is missing\n"
              "nat.port_mappings[1].global_port: a whole number in decimal digits, 1 to 65535, not 0\n"
              "nat.port_mappings[1]: host is missing\n");
}

TEST_F(NatTest, SwitchesRoutingBehind)
{
    const std::string name = "general.routing_behind";
    EXPECT_EQ(read(name, 0), "{general.routing_behind: false}");
    EXPECT_EQ(write(name, 0, {{name, true}}), "done");
    EXPECT_EQ(read(name, 0), "{general.routing_behind: true}");
    EXPECT_EQ(row(name).note, "holds from the module's next start on");
    sql("UPDATE nat_service SET routing_behind = 2");
    EXPECT_EQ(read(name, 0), "{}") << "neither on nor off";
    EXPECT_EQ(told(row(name).write(0, Value::Map{{name, false}}, {})), "done");
    EXPECT_EQ(read(name, 0), "{general.routing_behind: false}");
}

TEST_F(NatTest, TellsRefusals)
{
    open("GetNatType=fail:3,GetDMZ=fail:3,GetStaticNatConfig=fail:3,ZR_GetRoutingBH=fail:3");
    Value out;
    EXPECT_EQ(told(row("nat.type").read(1, &out)), "0x2003 zr_nexa_nat_type_get_v1");
    EXPECT_EQ(told(row("nat.dmz").read(1, &out)), "0x2003 zr_nexa_nat_ipv4dmz_get_v1");
    EXPECT_EQ(told(row(kMappings).read(1, &out)), "0x2003 zr_nexa_nat_ipv4portmapping_get_v1");
    EXPECT_EQ(told(row("general.routing_behind").read(0, &out)), "0x1003 zr_nexa_nat_routingbh_get_v1");
    EXPECT_EQ(in_short(out), "none");
    open("SetNatType=fail:3,AddDMZ=fail:4,DeleteDMZ=fail:5,ZR_SetRoutingBH=fail:6");
    EXPECT_EQ(write("nat.type", 1, {{"nat.type", "symmetric"}}), "0x2003 zr_nexa_nat_type_set_v1");
    EXPECT_EQ(write("nat.dmz", 1, {{"nat.dmz", "10.0.0.1"}}), "0x2004 zr_nexa_nat_ipv4dmz_set_v1");
    EXPECT_EQ(write("nat.dmz", 1, {{"nat.dmz", "none"}}), "0x3005 zr_nexa_nat_ipv4dmz_set_v1");
    EXPECT_EQ(write("general.routing_behind", 0, {{"general.routing_behind", true}}),
              "0x1006 zr_nexa_nat_routingbh_set_v1");
}

}  // namespace
}  // namespace ctl
