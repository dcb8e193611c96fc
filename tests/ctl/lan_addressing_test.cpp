#include <zr_nexa/lan_addressing.h>
#include <zr_nexa/lan_vlan.h>

#include "area_fixture.h"

namespace ctl {
namespace {

using LanAddressingTest = AreaTest;

constexpr char kFactoryAddressing[] =
    "{address: 192.168.225.1/24, dhcp.dns: mode-1, dhcp.first: 192.168.225.20, dhcp.last: 192.168.225.60,"
    " dhcp.lease_seconds: 43200, dhcp.mtu: 1500}";

TEST_F(LanAddressingTest, TheFactoryAddressesAreRead)
{
    EXPECT_EQ(read("address"), kFactoryAddressing);
    EXPECT_EQ(read("dhcp.enabled"), "{dhcp.enabled: true}");
    ASSERT_EQ(zr_nexa_lan_vlan_add_v1(31, ZR_NEXA_LAN_VLAN_IFACE_ECM, 0), 0u);
    EXPECT_EQ(read("address", 31),
              "{address: 10.0.31.1/24, dhcp.dns: mode-1, dhcp.first: 10.0.31.20, dhcp.last: 10.0.31.60,"
              " dhcp.lease_seconds: 43200, dhcp.mtu: 1500}");
}

TEST_F(LanAddressingTest, AddressesAreWrittenWholeAndActivated)
{
    ASSERT_EQ(zr_nexa_lan_vlan_add_v1(10, ZR_NEXA_LAN_VLAN_IFACE_ETH, 1), 0u);
    EXPECT_EQ(write("address", 10,
                    {{"address", "10.1.2.3/16"},
                     {"dhcp.first", "10.1.0.5"},
                     {"dhcp.last", "10.1.255.254"},
                     {"dhcp.lease_seconds", 4294967295u},
                     {"dhcp.mtu", 0},
                     {"dhcp.dns", Value::List{"192.0.2.53", "198.51.100.53"}}}),
              "done");
    EXPECT_EQ(read("address", 10),
              "{address: 10.1.2.3/16, dhcp.dns: [192.0.2.53, 198.51.100.53], dhcp.first: 10.1.0.5,"
              " dhcp.last: 10.1.255.254, dhcp.lease_seconds: 4294967295, dhcp.mtu: 0}");
    EXPECT_EQ(sql("SELECT gateway_ip || ' ' || netmask || ' ' || dhcp_start_ip || ' ' || dhcp_end_ip || ' ' || mtu"
                  " || ' ' || dns_mode || ' ' || primary_dns || ' ' || secondary_dns || ' ' || activated"
                  " FROM lan_bridge WHERE id = 10"),
              "10.1.2.3 255.255.0.0 10.1.0.5 10.1.255.254 0 3 192.0.2.53 198.51.100.53 1");
    EXPECT_EQ(read("address", 0), kFactoryAddressing);
}

TEST_F(LanAddressingTest, EveryDnsModeHasItsWord)
{
    const std::pair<const char*, const char*> modes[] = {{"mode-1", "1"}, {"mode-2", "2"}, {"unset", "0"}};
    for (const auto& [word, code] : modes) {
        ASSERT_EQ(write("dhcp.dns", 0, {{"dhcp.dns", Value::List{"192.0.2.1", "192.0.2.2"}}}), "done");
        EXPECT_EQ(write("dhcp.dns", 0, {{"dhcp.dns", word}}), "done");
        EXPECT_EQ(sql("SELECT dns_mode FROM lan_bridge"), code);
        EXPECT_NE(read("dhcp.dns").find(std::string("dhcp.dns: ") + word), std::string::npos) << word;
    }
    sql("UPDATE lan_bridge SET dns_mode = 9");
    EXPECT_NE(read("dhcp.dns").find("dhcp.dns: unset"), std::string::npos);
}

TEST_F(LanAddressingTest, DnsServersAreTwoOrAWord)
{
    const auto judged = [](Value dns) {
        Value record = Value::Map{{"dhcp.dns", dns}};
        return problems("dhcp.dns", &record);
    };
    EXPECT_EQ(judged(Value::List{"192.0.2.1"}), "dhcp.dns: 1 entries, 2 are the fewest\n");
    EXPECT_EQ(judged(Value::List{"192.0.2.1", "192.0.2.2", "192.0.2.3"}), "dhcp.dns: 3 entries, 2 are the most\n");
    EXPECT_NE(judged(Value::List{"192.0.2.1", "mode-1"}), "");
    EXPECT_NE(judged("mode-3"), "");
    EXPECT_EQ(judged("mode-2"), "");
}

TEST_F(LanAddressingTest, TheSwitchIsFinishedByTheAddressesBehindIt)
{
    EXPECT_EQ(write("dhcp.enabled", 0, {{"dhcp.enabled", false}}), "done");
    EXPECT_EQ(read("dhcp.enabled"), "{dhcp.enabled: false}");
    EXPECT_EQ(sql("SELECT activated FROM lan_bridge"), "0");
    const Row& row = ctl::row("dhcp.enabled");
    EXPECT_TRUE(row.next_follows);
    ASSERT_EQ((&row + 1)->fields[0].key, "address");
    EXPECT_EQ(write("address", 0, {}), "done");
    EXPECT_EQ(sql("SELECT activated || ' ' || dhcp_enabled FROM lan_bridge"), "1 0");
    EXPECT_EQ(write("dhcp.enabled", 0, {{"dhcp.enabled", true}}), "done");
    EXPECT_EQ(sql("SELECT dhcp_enabled FROM lan_bridge"), "1");
    sql("UPDATE lan_bridge SET dhcp_enabled = 2");
    EXPECT_EQ(read("dhcp.enabled"), "{dhcp.enabled: true}");
}

TEST_F(LanAddressingTest, ALanThatIsNotThereSwitchesNothing)
{
    const Value off = Value::Map{{"dhcp.enabled", false}};
    EXPECT_EQ(told(row("dhcp.enabled").write(7, off, {})), "0x100e zr_nexa_lan_dhcp_get_v1");
    EXPECT_EQ(sql("SELECT default_dhcp_action FROM lan_service"), "1");
    EXPECT_EQ(read("address", 7), "0x100e zr_nexa_lan_dhcp_get_v1");
}

TEST_F(LanAddressingTest, RefusedAddressesSayWhichStepFailed)
{
    open("ActivateLAN=fail:3");
    EXPECT_EQ(write("address", 0, {{"dhcp.mtu", 1400}}), "0x4003 zr_nexa_lan_dhcp_set_v1");
    EXPECT_NE(read("address"), kFactoryAddressing);
    open("SetLANConfig=fail:48");
    EXPECT_EQ(write("dhcp.enabled", 0, {{"dhcp.enabled", false}}), "0x3030 zr_nexa_lan_dhcp_srvctl_set_v1");
    open("GetLANConfig=fail:3");
    EXPECT_EQ(read("dhcp.enabled"), "0x2003 zr_nexa_lan_dhcp_srvctl_get_v1");
}

TEST_F(LanAddressingTest, WhoeverChangesAddressesHearsWhatItInterrupts)
{
    const auto said = [](const char* wanted, const char* present) {
        return row("address").interrupts("LAN 10", Value::Map{{"address", wanted}}, Value::Map{{"address", present}});
    };
    EXPECT_EQ(said("10.0.0.1/24", "10.0.0.1/16"),
              "LAN 10 is activated anew: its devices lose the connection for a moment");
    EXPECT_EQ(said("192.168.11.1/24", "10.0.0.1/24"),
              "LAN 10 is activated anew: its devices lose the connection for a moment; the module answers at"
              " 192.168.11.1 then");
    EXPECT_EQ(row("address").interrupts("LAN 10", Value::Map{{"address", "10.0.0.1/8"}}, {}), "");
}

TEST_F(LanAddressingTest, TheGatewayUrlTakesAnyBytesInItsLength)
{
    EXPECT_EQ(read("general.gateway_url"), "{general.gateway_url: mobileap.home}");
    const std::string longest(127, 'u');
    for (const std::string& url :
         {std::string("r"), longest, std::string("caf\xc3\xa9.home"), std::string("a\\\\b\\x0a\\xff")}) {
        EXPECT_EQ(write("general.gateway_url", 0, {{"general.gateway_url", url}}), "done");
        EXPECT_EQ(read("general.gateway_url"), "{general.gateway_url: " + url + "}");
    }
    EXPECT_EQ(sql("SELECT hex(gateway_url) FROM lan_service"), "615C620AFF");
    for (const std::string& url : {std::string(), longest + "u"}) {
        Value record = Value::Map{{"general.gateway_url", url}};
        EXPECT_NE(problems("general.gateway_url", &record), "");
    }
}

TEST_F(LanAddressingTest, AGatewayUrlThatCannotBeSetIsLeftOut)
{
    sql("UPDATE lan_service SET gateway_url = ''");
    EXPECT_EQ(read("general.gateway_url"), "none");
    open("GetGatewayUrl=fail:3");
    EXPECT_EQ(read("general.gateway_url"), "0x1003 zr_nexa_lan_gwurl_get_v1");
    open("SetGatewayUrl=fail:48");
    EXPECT_EQ(write("general.gateway_url", 0, {{"general.gateway_url", "a"}}), "0x1030 zr_nexa_lan_gwurl_set_v1");
}

TEST_F(LanAddressingTest, NewVlansGoByTheDefaultAction)
{
    EXPECT_EQ(read("general.dhcp_for_new_vlans"), "{general.dhcp_for_new_vlans: true}");
    EXPECT_EQ(row("general.dhcp_for_new_vlans").phase, Phase::kNewLans);
    EXPECT_EQ(write("general.dhcp_for_new_vlans", 0, {{"general.dhcp_for_new_vlans", false}}), "done");
    EXPECT_EQ(read("general.dhcp_for_new_vlans"), "{general.dhcp_for_new_vlans: false}");
    ASSERT_EQ(zr_nexa_lan_vlan_add_v1(10, ZR_NEXA_LAN_VLAN_IFACE_ETH, 1), 0u);
    EXPECT_EQ(read("dhcp.enabled", 10), "{dhcp.enabled: false}");
    EXPECT_EQ(write("general.dhcp_for_new_vlans", 0, {{"general.dhcp_for_new_vlans", true}}), "done");
    EXPECT_EQ(sql("SELECT default_dhcp_action FROM lan_service"), "1");
}

TEST_F(LanAddressingTest, Ipv4AndIpv6AreOneUnit)
{
    EXPECT_EQ(read("general.ipv4"), "{general.ipv4: true, general.ipv6: true}");
    EXPECT_EQ(write("general.ipv4", 0, {{"general.ipv6", false}}), "done");
    EXPECT_EQ(read("general.ipv6"), "{general.ipv4: true, general.ipv6: false}");
    EXPECT_EQ(write("general.ipv4", 0, {{"general.ipv4", false}, {"general.ipv6", true}}), "done");
    EXPECT_EQ(sql("SELECT ipv4_enabled || ipv6_enabled FROM lan_service"), "01");

    open("EnableIPV6=fail:3");
    EXPECT_EQ(write("general.ipv4", 0, {{"general.ipv4", true}}), "0x3003 zr_nexa_lan_ipv4v6_set_v1");
    EXPECT_EQ(read("general.ipv4"), "{general.ipv4: true, general.ipv6: true}");
    open("GetIPv6State=fail:3");
    EXPECT_EQ(read("general.ipv4"), "0x3003 zr_nexa_lan_ipv4v6_get_v1");
}

TEST_F(LanAddressingTest, WhoeverSwitchesIpOffHearsIt)
{
    const auto said = [](bool ipv4, bool ipv6) {
        const Value wanted = Value::Map{{"general.ipv4", ipv4}, {"general.ipv6", ipv6}};
        return row("general.ipv4").interrupts("", wanted, Value::Map{{"general.ipv4", true}, {"general.ipv6", true}});
    };
    EXPECT_EQ(said(true, true), "");
    EXPECT_EQ(said(false, true), "no IPv4 on any LAN");
    EXPECT_EQ(said(true, false), "no IPv6 on any LAN");
    EXPECT_EQ(said(false, false), "no IPv4, no IPv6 on any LAN");
}

}  // namespace
}  // namespace ctl
