// IP passthrough as keys of a document.
#include <arpa/inet.h>

#include "area_fixture.h"

namespace ctl {
namespace {

using Map = Value::Map;

class LanPassthroughTest : public AreaTest {
protected:
    void SetUp() override
    {
        AreaTest::SetUp();
        ASSERT_EQ(zr_nexa_lan_vlan_add_v1(10, 1, 0), 0U);
    }
};

Map nat(const std::string& word)
{
    return {{"general.passthrough_nat", word}};
}

TEST_F(LanPassthroughTest, NatOfTheModuleIsAWord)
{
    EXPECT_EQ(read("general.passthrough_nat"), "{general.passthrough_nat: with-nat}");
    const std::vector<std::string> words = {"without-nat", "with-nat", "with-nat-one-device"};
    for (uint8_t code = 0; code < words.size(); ++code) {
        EXPECT_EQ(write("general.passthrough_nat", 0, nat(words[code])), "done");
        uint8_t mode = 99;
        EXPECT_EQ(zr_nexa_lan_ipptnat_get_v1(&mode), 0U);
        EXPECT_EQ(mode, code);
        EXPECT_EQ(read("general.passthrough_nat"), "{general.passthrough_nat: " + words[code] + "}");
    }
    EXPECT_EQ(problems_of("general.passthrough_nat", nat("default")),
              "general.passthrough_nat: one of without-nat, with-nat, with-nat-one-device, not default\n");
}

TEST_F(LanPassthroughTest, AModuleMayHaveNoNatOfItsOwn)
{
    sql("UPDATE passthrough_service SET nat_mode = 9");
    EXPECT_EQ(read("general.passthrough_nat"), "0x5 zr_nexa_lan_ipptnat_get_v1");
    EXPECT_EQ(row("general.passthrough_nat").missing_codes, (std::vector<uint32_t>{8, 5}));
}

TEST_F(LanPassthroughTest, ARefusalKeepsItsFunctionAndCode)
{
    open("SetFeatureMode=fail:3,GetFeatureMode=fail:4");
    const Result result = row("general.passthrough_nat").write(0, nat("with-nat"), {});
    EXPECT_EQ(result.code, 0x1003U);
    EXPECT_STREQ(result.function, "zr_nexa_lan_ipptnat_set_v1");
    EXPECT_EQ(read("general.passthrough_nat"), "0x1004 zr_nexa_lan_ipptnat_get_v1");
}

TEST_F(LanPassthroughTest, NatOfALanIsAWordOrTheModules)
{
    EXPECT_EQ(read("passthrough_nat", 10), "{passthrough_nat: default}");
    const std::vector<std::string> words = {"default", "without-nat", "with-nat", "with-nat-one-device"};
    for (int code = -1; code < 3; ++code) {
        const std::string word = words[static_cast<size_t>(code + 1)];
        EXPECT_EQ(write("passthrough_nat", 10, {{"passthrough_nat", word}}), "done");
        int8_t mode = 99;
        EXPECT_EQ(zr_nexa_lan_ipptnatpdn_get_v1(10, &mode), 0U);
        EXPECT_EQ(mode, code);
        EXPECT_EQ(read("passthrough_nat", 10), "{passthrough_nat: " + word + "}");
    }
}

TEST_F(LanPassthroughTest, Lan0HasNoNatAndIsNotAsked)
{
    open("ZR_GetIPPTNATPDN=fail:3");
    EXPECT_EQ(read("passthrough_nat"), "none");
    EXPECT_EQ(read("passthrough_nat", 10), "0x2003 zr_nexa_lan_ipptnatpdn_get_v1");
    EXPECT_EQ(read("passthrough_nat", 11), "0x100e zr_nexa_lan_ipptnatpdn_get_v1");
}

TEST_F(LanPassthroughTest, AnUnknownNatOfALanIsLeftOut)
{
    sql("INSERT INTO passthrough_nat VALUES (10, 7)");
    EXPECT_EQ(read("passthrough_nat", 10), "none");
}

TEST_F(LanPassthroughTest, AnotherNatReadBackIsRefused)
{
    open("ZR_SetIPPTNATPDN=ok:0,ZR_GetIPPTNATPDN#2=fail:5");
    EXPECT_EQ(write("passthrough_nat", 10, {{"passthrough_nat", "with-nat"}}), "0x3005 zr_nexa_lan_ipptnatpdn_set_v1");
}

Map on(const std::string& device, const std::string& mac)
{
    return {{"device", device}, {"mac", mac}};
}

// Each device, written and read back.
TEST_F(LanPassthroughTest, PassthroughIsWrittenWhole)
{
    EXPECT_EQ(read("passthrough"), "{device: none}");
    EXPECT_EQ(read("passthrough", 10), "{device: none}");
    const std::vector<Map> all = {
        on("ethernet", "00:01:02:03:04:ab"),
        on("wlan", "00:01:02:03:04:ac"),
        on("ethernet-2", "00:01:02:03:04:ad"),
        {{"device", "usb"}, {"host_name", "my host"}},
        {{"device", "usb"}, {"host_name", std::string(100, 'x')}},
        {{"device", "adaptive"}, {"choice", 0}},
        {{"device", "adaptive"}, {"choice", 1}},
        {{"device", "adaptive"}, {"choice", 10}},
        {{"device", "none"}},
    };
    for (const Map& each : all) {
        EXPECT_EQ(write("passthrough", 0, each), "done");
        EXPECT_EQ(read("passthrough"), in_short(each));
        EXPECT_EQ(problems_of("passthrough", each, "lans.0"), "");
    }
    EXPECT_EQ(write("passthrough", 10, on("ethernet", "00:01:02:03:04:AE")), "done");
    EXPECT_EQ(read("passthrough", 10), "{device: ethernet, mac: 00:01:02:03:04:ae}");
    EXPECT_EQ(read("passthrough"), "{device: none}");
}

TEST_F(LanPassthroughTest, PassthroughReachesTheModule)
{
    zr_nexa_lan_ippt_t record = {};
    EXPECT_EQ(write("passthrough", 10, on("ethernet-2", "00:01:02:03:04:ab")), "done");
    record.lan_id = 10;
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&record), 0U);
    EXPECT_EQ(record.ippt_mode, 4);
    EXPECT_STREQ(record.host_mac, "00:01:02:03:04:ab");
    EXPECT_EQ(write("passthrough", 10, {{"device", "usb"}, {"host_name", "a\\xffb\\\\"}}), "done");
    EXPECT_EQ(zr_nexa_lan_ippt_get_v1(&record), 0U);
    EXPECT_EQ(record.ippt_mode, 3);
    EXPECT_STREQ(record.host_name,
                 "a\xff"
                 "b\\");
    EXPECT_EQ(read("passthrough", 10), "{device: usb, host_name: a\\xffb\\\\}");
}

// With a choice the service may name the device that it has taken for now.
TEST_F(LanPassthroughTest, AnAdaptiveOneIsAdaptiveWhateverItHasTaken)
{
    sql("INSERT INTO passthrough VALUES (0, 4, 1, 7, '00:01:02:03:04:05', '')");
    EXPECT_EQ(read("passthrough"), "{choice: 7, device: adaptive}");
}

TEST_F(LanPassthroughTest, WhatCannotBeSetIsReadOnly)
{
    sql("INSERT INTO passthrough VALUES (0, 9, 0, 0, '00:00:00:00:00:00', '')");
    EXPECT_EQ(read("passthrough"), "{device: any-usb}");
    EXPECT_EQ(problems_of("passthrough", Map{{"device", "any-usb"}}), "");
    EXPECT_EQ(write("passthrough", 0, {{"device", "any-usb"}}), "0x5 zr_nexa_lan_ippt_set_v1");
    sql("UPDATE passthrough SET device_type = 3");
    EXPECT_EQ(read("passthrough"), "{device: usb, host_name: \"\"}");
    const Map nameless = {{"device", "usb"}, {"host_name", ""}};
    EXPECT_EQ(problems_of("passthrough", nameless), "");
    EXPECT_EQ(write("passthrough", 0, nameless), "no host name is given");
    EXPECT_EQ(write("passthrough", 0, {{"device", "ethernet"}}), "no MAC address is given");

    const auto& not_undone = row("passthrough").not_undone;
    const Map none = {{"device", "none"}};
    EXPECT_EQ(not_undone(none, Map{{"device", "any-usb"}}), "a passthrough to any-usb can be read only");
    EXPECT_EQ(not_undone(none, nameless), "a passthrough to usb without a host name can be read only");
    EXPECT_EQ(not_undone(none, Map{{"device", "usb"}, {"host_name", "a"}}), "");
    EXPECT_EQ(not_undone(nameless, none), "");
}

TEST_F(LanPassthroughTest, StatesWithoutAWordAreLeftOut)
{
    sql("INSERT INTO passthrough VALUES (0, 2147483647, 1, 11, '00:00:00:00:00:00', '')");
    EXPECT_EQ(read("passthrough"), "none");
    sql("INSERT INTO passthrough VALUES (10, 8, 0, 0, '00:01:02:03:04:05', '')");
    EXPECT_EQ(read("passthrough", 10), "none");
}

TEST_F(LanPassthroughTest, PassthroughsParts)
{
    const auto said = [](const Map& value) { return problems_of("passthrough", value, "lans.10"); };
    EXPECT_EQ(said({{"device", "ethernet"}}), "lans.10.passthrough: mac is missing\n");
    EXPECT_EQ(said({{"device", "usb"}}), "lans.10.passthrough: host_name is missing\n");
    EXPECT_EQ(said({{"device", "adaptive"}}), "lans.10.passthrough: choice is missing\n");
    EXPECT_EQ(said({{"choice", 1}}), "lans.10.passthrough: device is missing\n");
    EXPECT_EQ(said({{"device", "none"}, {"mac", "00:01:02:03:04:05"}, {"host_name", "a"}, {"choice", 1}}),
              "lans.10.passthrough.choice: only with adaptive\n"
              "lans.10.passthrough.mac: only with ethernet, wlan or ethernet-2\n"
              "lans.10.passthrough.host_name: only with usb\n");
    EXPECT_EQ(said(on("wlan", "00:01:02:03:04:05")), "lans.10.passthrough.device: wlan only on LAN 0\n");
    EXPECT_EQ(said({{"device", "adaptive"}, {"choice", 11}}),
              "lans.10.passthrough.choice: a whole number in decimal digits, 0 to 10, not 11\n");
    EXPECT_NE(said({{"device", "usb"}, {"host_name", std::string(101, 'x')}}), "");
}

TEST_F(LanPassthroughTest, PassthroughTellsWhatItInterrupts)
{
    const auto& interrupts = row("passthrough").interrupts;
    const Map none = {{"device", "none"}};
    EXPECT_EQ(interrupts("LAN 10", on("ethernet", "00:01:02:03:04:05"), none),
              "LAN 10: the passthrough device gets another address");
    EXPECT_EQ(interrupts("LAN 10", none, {}), "");
}

TEST_F(LanPassthroughTest, PassthroughRefused)
{
    open("SetIPPassthroughConfig#2=fail:3");
    EXPECT_EQ(write("passthrough", 0, {{"device", "none"}}), "0x6003 zr_nexa_lan_ippt_set_v1");
    EXPECT_EQ(write("passthrough", 11, {{"device", "none"}}), "0x100e zr_nexa_lan_ippt_set_v1");
    EXPECT_EQ(read("passthrough", 11), "0x100e zr_nexa_lan_ippt_get_v1");
}

Map filter(const std::string& protocol, const std::string& ports = "")
{
    Map entry = {{"protocol", protocol}};
    if (!ports.empty()) entry["ports"] = ports;
    return entry;
}

TEST_F(LanPassthroughTest, FiltersAreAddedBehindAndRemovedByTheirPlace)
{
    EXPECT_EQ(read("gateway_filters", 10), "[]");
    for (const Map& each : {filter("tcp", "80"), filter("udp", "5000-5010"), filter("portless"), filter("tcp", "80"),
                            filter("portless", "1-65534")})
        EXPECT_EQ(add("gateway_filters", 10, each), "done");
    EXPECT_EQ(read("gateway_filters", 10),
              "[{ports: 80, protocol: tcp}, {ports: 5000-5010, protocol: udp}, {protocol: portless}, "
              "{ports: 80, protocol: tcp}, {ports: 1-65534, protocol: portless}]");
    EXPECT_EQ(read("gateway_filters"), "[]");
    EXPECT_EQ(add("gateway_filters", 10, filter("tcp", "81")), "0x2 zr_nexa_lan_ipptgwfilter_add_v1");
    EXPECT_EQ(row("gateway_filters").most, 5U);

    Value list;
    ASSERT_TRUE(row("gateway_filters").read(10, &list).good());
    EXPECT_EQ(remove("gateway_filters", 10, list.list()[3]), "done");
    EXPECT_EQ(remove("gateway_filters", 10, list.list()[1]), "done");
    EXPECT_EQ(read("gateway_filters", 10),
              "[{ports: 80, protocol: tcp}, {protocol: portless}, {ports: 1-65534, protocol: portless}]");
    EXPECT_EQ(remove("gateway_filters", 10, list.list()[4]), "0x2 zr_nexa_lan_ipptgwfilter_del_v1");
}

TEST_F(LanPassthroughTest, NumbersOfAPortlessFilterThatAreNoPortsAreNotShown)
{
    for (const auto& [first, last] : std::vector<std::pair<uint16_t, uint16_t>>{{0, 5}, {90, 80}, {1, 65535}})
        ASSERT_EQ(zr_nexa_lan_ipptgwfilter_add_v1(0, 3, first, last), 0U);
    EXPECT_EQ(read("gateway_filters"), "[{protocol: portless}, {protocol: portless}, {protocol: portless}]");
}

TEST_F(LanPassthroughTest, AFilterThatCannotBeSetIsOther)
{
    sql("INSERT INTO gateway_filter VALUES (10, 1, 99, 80, 80), (10, 2, 1, 80, 80), (10, 3, 1, 65535, 65535),"
        "(10, 4, 99, 1, 1)");
    EXPECT_EQ(read("gateway_filters", 10), "[{protocol: other}, {ports: 80, protocol: tcp}, {protocol: other}]");
    EXPECT_EQ(add("gateway_filters", 10, filter("other")), "0xc zr_nexa_lan_ipptgwfilter_add_v1");

    Value list;
    ASSERT_TRUE(row("gateway_filters").read(10, &list).good());
    const auto& not_undone = row("gateway_filters").not_undone;
    EXPECT_EQ(not_undone({}, list.list()[0]), "a gateway filter of an other protocol cannot be made");
    EXPECT_EQ(not_undone(list.list()[0], {}), "");
    EXPECT_EQ(not_undone({}, list.list()[1]), "");
    EXPECT_EQ(remove("gateway_filters", 10, list.list()[2]),
              "0x3030 zr_nexa_lan_ipptgwfilter_del_v1");  // the service judges what stays as well
    sql("DELETE FROM gateway_filter WHERE number > 2");
    EXPECT_EQ(remove("gateway_filters", 10, list.list()[0]), "done");
    EXPECT_EQ(read("gateway_filters", 10), "[{ports: 80, protocol: tcp}]");
}

TEST_F(LanPassthroughTest, PartsOfAFilter)
{
    const auto said = [](const Map& value) { return problems_of("gateway_filters", Value::List{value}); };
    EXPECT_EQ(said(filter("tcp", "65534")), "");
    EXPECT_EQ(said(filter("udp", "1-2")), "");
    EXPECT_EQ(said(filter("portless")), "");
    EXPECT_EQ(said(filter("portless", "7")), "");
    EXPECT_EQ(said(filter("other")), "");
    EXPECT_EQ(said(filter("tcp")), "gateway_filters[0]: ports is missing\n");
    EXPECT_EQ(said(filter("other", "7")), "gateway_filters[0].ports: only with tcp, udp or portless\n");
    EXPECT_NE(said(filter("tcp", "65535")), "");
    EXPECT_NE(said(filter("tcp", "0")), "");
    EXPECT_NE(said(filter("tcp", "2-1")), "");
}

TEST_F(LanPassthroughTest, FiltersRefused)
{
    open("SetIPPassthroughSoftwarePathFilters=fail:3,GetIPPassthroughSoftwarePathFilters#2=fail:4");
    EXPECT_EQ(add("gateway_filters", 0, filter("tcp", "80")), "0x3003 zr_nexa_lan_ipptgwfilter_add_v1");
    EXPECT_EQ(read("gateway_filters"), "0x2004 zr_nexa_lan_ipptgwfilter_get_v1");
}

TEST_F(LanPassthroughTest, SoftwarePathIsAListOfAddresses)
{
    EXPECT_EQ(read("software_path"), "[]");
    for (const char* address : {"192.168.10.7", "1.2.3.4", "192.168.10.9", "192.168.10.10", "255.255.255.255"})
        EXPECT_EQ(add("software_path", 0, address), "done");
    EXPECT_EQ(add("software_path", 0, "192.168.10.8"), "0x103e zr_nexa_lan_swpathfilter_add_v1");
    EXPECT_EQ(read("software_path"), "[192.168.10.7, 1.2.3.4, 192.168.10.9, 192.168.10.10, 255.255.255.255]");
    zr_nexa_lan_swpathfilter_list_t list = {};
    EXPECT_EQ(zr_nexa_lan_swpathfilter_get_v1(&list), 0U);
    EXPECT_EQ(list.ipv4_address[1], htonl(0x01020304));
    EXPECT_EQ(remove("software_path", 0, "1.2.3.4"), "done");
    EXPECT_EQ(remove("software_path", 0, "1.2.3.4"), "0x1019 zr_nexa_lan_swpathfilter_del_v1");
    EXPECT_EQ(add("software_path", 0, "192.168.10.7"), "0x1076 zr_nexa_lan_swpathfilter_add_v1");
    EXPECT_EQ(read("software_path"), "[192.168.10.7, 192.168.10.9, 192.168.10.10, 255.255.255.255]");
    EXPECT_EQ(row("software_path").most, 5U);
    EXPECT_EQ(problems_of("software_path", Value::List{"0.0.0.0"}),
              "software_path[0]: an IPv4 address other than 0.0.0.0, not 0.0.0.0\n");
}

TEST_F(LanPassthroughTest, AnAddressThatNoDocumentCanSayIsLeftOut)
{
    sql("INSERT INTO software_path_address (address) VALUES ('0.0.0.0'), ('1.2.3.4')");
    EXPECT_EQ(read("software_path"), "[1.2.3.4]");
    open("ZR_GetIPFromSWPathFilters=fail:3");
    EXPECT_EQ(read("software_path"), "0x1003 zr_nexa_lan_swpathfilter_get_v1");
}

}  // namespace
}  // namespace ctl
