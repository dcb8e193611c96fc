#include "area_fixture.h"

namespace ctl {
namespace {

class WanMpdnMappingTest : public AreaTest {
protected:
    void make_bridge(int id)
    {
        sql("INSERT INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip) VALUES (" +
            std::to_string(id) + ", '192.168.9.1', 1, '192.168.9.20', '192.168.9.60')");
    }
};

TEST_F(WanMpdnMappingTest, MapsVlansToProfiles)
{
    const uint32_t second = add_profile();
    for (const int id : {1, 20, 4094})
        make_bridge(id);
    EXPECT_EQ(read("vlans", 1), "none");
    add_entries("vlans", 1, "[4094, 1]");
    add_entries("vlans", second, "[1, 20]");
    EXPECT_EQ(read("vlans", 1), "[1, 4094]");
    EXPECT_EQ(read("vlans", second), "[1, 20]");

    EXPECT_EQ(remove("vlans", 1, Value(1)), "done");
    EXPECT_EQ(read("vlans", 1), "[4094]");
    EXPECT_EQ(read("vlans", second), "[1, 20]");
}

TEST_F(WanMpdnMappingTest, ReadsAShorterListAfterALongerOne)
{
    sql("WITH RECURSIVE n(id) AS (SELECT 1 UNION ALL SELECT id + 1 FROM n WHERE id < 4094)"
        " INSERT INTO pdn_vlan_mapping SELECT 1, id FROM n");
    EXPECT_EQ(value_of("vlans", 1).list().size(), 4094u);
    sql("DELETE FROM pdn_vlan_mapping WHERE vlan_id > 3");
    EXPECT_EQ(read("vlans", 1), "[1, 2, 3]");
}

TEST_F(WanMpdnMappingTest, TellsRefusals)
{
    make_bridge(10);
    EXPECT_EQ(add("vlans", 1, Value(11)), "0x200e zr_nexa_wan_mpdnmapping_add_v1") << "no such VLAN";
    EXPECT_EQ(add("vlans", 9, Value(10)), "0x1009 zr_nexa_wan_mpdnmapping_add_v1") << "no such profile";
    EXPECT_EQ(add("vlans", 1, Value(10)), "done");
    EXPECT_EQ(add("vlans", 1, Value(10)), "0x3076 zr_nexa_wan_mpdnmapping_add_v1") << "twice";
    EXPECT_TRUE(row("vlans").once);
    EXPECT_EQ(problems_of("vlans", parsed("[0, 4095, 10]")),
              "vlans[0]: a whole number in decimal digits, 1 to 4094, not 0\n"
              "vlans[1]: a whole number in decimal digits, 1 to 4094, not 4095\n");
    open("GetPDNtoVLANMappingsEx=fail:3");
    std::map<uint32_t, Value> all;
    EXPECT_EQ(told(row("vlans").read_all(&all)), "0x1003 zr_nexa_wan_mpdnmapping_get_v1");
    EXPECT_TRUE(all.empty());
}

TEST_F(WanMpdnMappingTest, SaysWhatItInterrupts)
{
    EXPECT_EQ(row("vlans").interrupts("office", Value(10), {}), "traffic between VLAN 10 and office begins");
    EXPECT_EQ(row("vlans").interrupts("office", {}, Value(10)), "traffic between VLAN 10 and office ends");
}

}  // namespace
}  // namespace ctl
