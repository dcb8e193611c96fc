#include "lan_vlan.h"

#include <zr_nexa/lan_vlan.h>

#include "area_fixture.h"

namespace ctl {
namespace {

class LanVlanTest : public AreaTest {
protected:
    static std::string lans()
    {
        Value value;
        const Result result = read_lans(&value);
        return result.good() ? in_short(value) : told(result);
    }
    static Value vlan(const char* interface, bool accelerated)
    {
        return Value::Map{{"interface", interface}, {"accelerated", accelerated}};
    }
};

TEST_F(LanVlanTest, TheDefaultLanIsAlwaysThere)
{
    EXPECT_EQ(lans(), "{0: {}}");
}

TEST_F(LanVlanTest, VlansAreMadeAndRemoved)
{
    EXPECT_EQ(told(add_vlan(100, vlan("rndis", false))), "done");
    EXPECT_EQ(told(add_vlan(20, vlan("ethernet-2", true))), "done");
    EXPECT_EQ(told(add_vlan(1, vlan("ethernet", false))), "done");
    EXPECT_EQ(told(add_vlan(4094, vlan("ecm", true))), "done");
    EXPECT_EQ(lans(),
              "{0: {}, 1: {vlan: {accelerated: false, interface: ethernet}}, 20: {vlan: {accelerated: true, interface:"
              " ethernet-2}}, 100: {vlan: {accelerated: false, interface: rndis}}, 4094: {vlan: {accelerated: true,"
              " interface: ecm}}}");
    zr_nexa_lan_vlan_list_t list = {};
    ASSERT_EQ(zr_nexa_lan_vlan_get_v1(&list), 0u);
    ASSERT_EQ(list.count, 4);
    EXPECT_EQ(list.phy_iface_type[0], ZR_NEXA_LAN_VLAN_IFACE_ETH);
    EXPECT_EQ(list.phy_iface_type[1], ZR_NEXA_LAN_VLAN_IFACE_ETH_NIC2);
    EXPECT_EQ(list.phy_iface_type[2], ZR_NEXA_LAN_VLAN_IFACE_RNDIS);
    EXPECT_EQ(list.phy_iface_type[3], ZR_NEXA_LAN_VLAN_IFACE_ECM);
    EXPECT_EQ(list.is_accelerated[0], 0);
    EXPECT_EQ(list.is_accelerated[1], 1);

    EXPECT_EQ(told(remove_vlan(20, vlan("ethernet", true))), "0x1030 zr_nexa_lan_vlan_del_v1");
    EXPECT_EQ(told(remove_vlan(20, vlan("ethernet-2", true))), "done");
    EXPECT_EQ(told(remove_vlan(1, vlan("ethernet", false))), "done");
    EXPECT_EQ(told(remove_vlan(100, vlan("rndis", false))), "done");
    EXPECT_EQ(told(remove_vlan(4094, vlan("ecm", true))), "done");
    EXPECT_EQ(lans(), "{0: {}}");
}

TEST_F(LanVlanTest, TheSameAgainIsDoneAndAnythingElseRefused)
{
    EXPECT_EQ(told(add_vlan(10, vlan("ethernet", true))), "done");
    EXPECT_EQ(told(add_vlan(10, vlan("ethernet", true))), "done");
    EXPECT_EQ(told(add_vlan(10, vlan("ethernet", false))), "0x1076 zr_nexa_lan_vlan_add_v1");
    EXPECT_EQ(told(add_vlan(10, vlan("ecm", true))), "0x1076 zr_nexa_lan_vlan_add_v1");
}

TEST_F(LanVlanTest, AnInterfaceWithoutAWordIsLeftOut)
{
    ASSERT_EQ(told(add_vlan(10, vlan("ethernet", true))), "done");
    ASSERT_EQ(told(add_vlan(11, vlan("ecm", true))), "done");
    sql("UPDATE vlan SET interface_type = 77, accelerated = 2 WHERE id = 10");
    EXPECT_EQ(lans(), "{0: {}, 10: {vlan: {accelerated: true}}, 11: {vlan: {accelerated: true, interface: ecm}}}");
    Value all;
    ASSERT_TRUE(read_lans(&all).good());
    EXPECT_EQ(told(remove_vlan(10, all.at("10.vlan"))), "0x7 zr_nexa_lan_vlan_del_v1");
}

TEST_F(LanVlanTest, AnIdThatNobodyCanNameIsLeftOut)
{
    ASSERT_EQ(told(add_vlan(4094, vlan("ecm", true))), "done");
    sql("INSERT INTO lan_bridge SELECT 4095, gateway_ip, netmask, dhcp_enabled, dhcp_start_ip, dhcp_end_ip, lease_time,"
        " mtu, dns_mode, primary_dns, secondary_dns, activated FROM lan_bridge WHERE id = 0;"
        "INSERT INTO vlan VALUES (4095, 3, 1), (0, 3, 1)");
    EXPECT_EQ(lans(), "{0: {}, 4094: {vlan: {accelerated: true, interface: ecm}}}");
}

TEST_F(LanVlanTest, AsManyAsThereCanBeAreRead)
{
    sql("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000)"
        " INSERT INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip)"
        " SELECT 2 * i, '10.0.0.1', 1, '10.0.0.2', '10.0.0.3' FROM n;"
        "INSERT INTO vlan SELECT id, 3, 1 FROM lan_bridge WHERE id > 0;");
    Value all;
    ASSERT_TRUE(read_lans(&all).good());
    EXPECT_EQ(all.map().size(), 2001u);
    EXPECT_EQ(all.map().rbegin()->first, "4000");
    EXPECT_EQ(told(add_vlan(4093, vlan("ecm", true))), "0x103e zr_nexa_lan_vlan_add_v1");
}

TEST_F(LanVlanTest, AListThatComesWithAWordCounts)
{
    ASSERT_EQ(told(add_vlan(10, vlan("ethernet", true))), "done");
    open("GetVLANConfig=ok:43");
    EXPECT_EQ(lans(), "{0: {}, 10: {vlan: {accelerated: true, interface: ethernet}}}");
    open("GetVLANConfig=fail:43");
    EXPECT_EQ(lans(), "0x102b zr_nexa_lan_vlan_get_v1");
    open("CreateVLANConfig=fail:3");
    EXPECT_EQ(told(add_vlan(12, vlan("ethernet", true))), "0x1003 zr_nexa_lan_vlan_add_v1");
}

TEST_F(LanVlanTest, TheRowReadsAllAtOnce)
{
    ASSERT_EQ(told(add_vlan(10, vlan("ecm", false))), "done");
    std::map<uint32_t, Value> all;
    ASSERT_TRUE(row("vlan").read_all(&all).good());
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(in_short(all[10]), "{accelerated: false, interface: ecm}");
    EXPECT_FALSE(row("vlan").write);
}

TEST_F(LanVlanTest, AVlanIsNotAcceleratedUnlessItSaysSo)
{
    Value short_one = Value::Map{{"interface", "ecm"}};
    EXPECT_EQ(problems("vlan", &short_one), "");
    EXPECT_EQ(in_short(short_one), "{accelerated: false, interface: ecm}");
    Value none = Value::Map{};
    EXPECT_EQ(problems("vlan", &none), "vlan: interface is missing\n");
    Value other = Value::Map{{"interface", "wlan"}};
    EXPECT_EQ(problems("vlan", &other), "vlan.interface: one of ethernet, ecm, rndis, ethernet-2, not wlan\n");
}

}  // namespace
}  // namespace ctl
