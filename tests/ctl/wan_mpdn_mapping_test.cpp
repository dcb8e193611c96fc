#include "profile_fixture.h"

namespace {

class WanMpdnMappingRows : public ProfileRowsTest {
protected:
    void make_bridge(int id)
    {
        sql("INSERT INTO lan_bridge (id, gateway_ip, dhcp_enabled, dhcp_start_ip, dhcp_end_ip) VALUES (" +
            std::to_string(id) + ", '192.168.9.1', 1, '192.168.9.20', '192.168.9.60')");
    }
};

TEST_F(WanMpdnMappingRows, MapsVlansToProfiles)
{
    const uint32_t second = add_profile();
    for (const int id : {1, 20, 4094})
        make_bridge(id);
    EXPECT_EQ(read("vlans", 1), "none");
    add("vlans", 1, "[4094, 1]");
    add("vlans", second, "[1, 20]");
    EXPECT_EQ(read("vlans", 1), "[1, 4094]");
    EXPECT_EQ(read("vlans", second), "[1, 20]");

    EXPECT_EQ(told(row("vlans").remove(1, "", ctl::Value(1))), "0");
    EXPECT_EQ(read("vlans", 1), "[4094]");
    EXPECT_EQ(read("vlans", second), "[1, 20]");
}

TEST_F(WanMpdnMappingRows, ReadsAShorterListAfterALongerOne)
{
    sql("WITH RECURSIVE n(id) AS (SELECT 1 UNION ALL SELECT id + 1 FROM n WHERE id < 4094)"
        " INSERT INTO pdn_vlan_mapping SELECT 1, id FROM n");
    EXPECT_EQ(value("vlans", 1).list().size(), 4094u);
    sql("DELETE FROM pdn_vlan_mapping WHERE vlan_id > 3");
    EXPECT_EQ(read("vlans", 1), "[1, 2, 3]");
}

TEST_F(WanMpdnMappingRows, TellsRefusals)
{
    make_bridge(10);
    EXPECT_EQ(told(row("vlans").add(1, "", ctl::Value(11))), "0x200E") << "no such VLAN";
    EXPECT_EQ(told(row("vlans").add(9, "", ctl::Value(10))), "0x1009") << "no such profile";
    EXPECT_EQ(told(row("vlans").add(1, "", ctl::Value(10))), "0");
    EXPECT_EQ(told(row("vlans").add(1, "", ctl::Value(10))), "0x3076") << "twice";
    EXPECT_TRUE(row("vlans").once);
    EXPECT_EQ(problems("vlans", "[0, 4095, 10]"),
              "list[0]: a whole number in decimal digits, 1 to 4094, not 0\n"
              "list[1]: a whole number in decimal digits, 1 to 4094, not 4095\n");
    open("GetPDNtoVLANMappingsEx=fail:3");
    std::map<uint32_t, ctl::Value> all;
    EXPECT_EQ(told(row("vlans").read_all(&all)), "0x1003");
    EXPECT_TRUE(all.empty());
}

TEST_F(WanMpdnMappingRows, SaysWhatItInterrupts)
{
    EXPECT_EQ(row("vlans").interrupts("office", ctl::Value(10), {}), "traffic between VLAN 10 and office begins");
    EXPECT_EQ(row("vlans").interrupts("office", {}, ctl::Value(10)), "traffic between VLAN 10 and office ends");
}

}  // namespace
