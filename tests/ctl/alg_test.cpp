// The ALG switches and the SIP server as keys of a document.
#include "area_fixture.h"

namespace ctl {
namespace {

using Map = Value::Map;

class AlgTest : public AreaTest {
protected:
    // ALG 1 and 2, as the service has them.
    std::string switches() const
    {
        return sql("SELECT enabled FROM alg ORDER BY type");
    }
};

TEST_F(AlgTest, SwitchesAreWrittenOneAtATimeAndNeverRead)
{
    const std::string one = "write_only.alg.1";
    const std::string two = "write_only.alg.2";
    EXPECT_EQ(switches(), "00");
    EXPECT_EQ(write(two, 0, {{two, true}}), "done");
    EXPECT_EQ(switches(), "01");
    EXPECT_EQ(write(one, 0, {{one, true}}), "done");
    EXPECT_EQ(switches(), "11");
    EXPECT_EQ(write(two, 0, {{two, false}}), "done");
    EXPECT_EQ(switches(), "10");
    for (const std::string& key : {one, two}) {
        EXPECT_TRUE(row(key).write_only);
        EXPECT_FALSE(row(key).read);
        EXPECT_EQ(row(key).phase, Phase::kWriteOnly);
    }
    EXPECT_EQ(row(one).not_undone({}, {}), "the switch of ALG 1 cannot be read");
    open("EnableAlg=fail:3,DisableAlg=fail:4");
    EXPECT_EQ(write(one, 0, {{one, true}}), "0x1003 zr_nexa_alg_enable_type_set_v1");
    EXPECT_EQ(write(one, 0, {{one, false}}), "0x2004 zr_nexa_alg_enable_type_set_v1");
}

TEST_F(AlgTest, ASipServerIsAnAddressOrAName)
{
    EXPECT_EQ(read("sip_server"), "{}");
    const std::vector<Map> all = {{{"address", "192.168.10.5"}}, {{"address", "0.0.0.0"}},
                                  {{"name", "sip.example"}},     {{"name", std::string(100, 'x')}},
                                  {{"name", "a\\xffb\\\\"}},     {{"name", ""}}};
    for (const Map& each : all) {
        EXPECT_EQ(problems_of("sip_server", each), "");
        EXPECT_EQ(write("sip_server", 0, each), "done");
        EXPECT_EQ(read("sip_server"), in_short(each));
    }
    EXPECT_EQ(problems_of("sip_server", Map{}), "");
    EXPECT_EQ(problems_of("sip_server", Map{{"address", "1.2.3.4"}, {"name", "a"}}),
              "sip_server.name: address or name, not both\n");
    EXPECT_NE(problems_of("sip_server", Map{{"name", std::string(101, 'x')}}), "");
    EXPECT_NE(problems_of("sip_server", Map{{"address", "fe80::1"}}), "");
}

TEST_F(AlgTest, ASipServerReachesItsLan)
{
    ASSERT_EQ(zr_nexa_lan_vlan_add_v1(10, 1, 0), 0U);
    EXPECT_EQ(write("sip_server", 10, {{"address", "192.168.10.5"}}), "done");
    EXPECT_EQ(read("sip_server"), "{}");
    unsigned char buffer[ZR_NEXA_ALG_SIP_BUFFER_SIZE];
    zr_nexa_sip_server_info_t server;
    int count = 0;
    ASSERT_EQ(zr_nexa_alg_sip_server_info_get_v1(10, 4, &count, buffer), 0U);
    memcpy(&server, buffer, sizeof server);
    EXPECT_EQ(server.pcscf_info_type, 1U);
    EXPECT_EQ(server.ipv4_addr, 0xc0a80a05U);
}

TEST_F(AlgTest, ASipServerCannotBeTakenAway)
{
    const Value none = Map{};
    const Value server = Map{{"address", "1.2.3.4"}};
    const std::string stays = "a SIP server can be replaced, not taken away";
    EXPECT_EQ(told(row("sip_server").write(0, none, {})), "done");
    EXPECT_EQ(told(row("sip_server").write(0, none, none)), "done");
    EXPECT_EQ(told(row("sip_server").write(0, none, server)), stays);
    const auto& not_undone = row("sip_server").not_undone;
    EXPECT_EQ(not_undone(server, none), stays);
    EXPECT_EQ(not_undone(none, server), "");
    EXPECT_EQ(not_undone(server, {}), "");  // goes with its VLAN
    EXPECT_EQ(not_undone(server, Map{{"name", "a"}}), "");
}

TEST_F(AlgTest, SipServersOfTheNetworkAndOtherKindsAreNoSettings)
{
    sql("INSERT INTO sip_server_network (bridge, family, type, address, fqdn) VALUES (0, 4, 1, '9.9.9.9', '')");
    EXPECT_EQ(read("sip_server"), "{}");
    sql("INSERT INTO sip_server_configured VALUES (0, 3, '1.2.3.4', '')");
    EXPECT_EQ(read("sip_server"), "none");
}

TEST_F(AlgTest, SipServersRefused)
{
    EXPECT_EQ(read("sip_server", 11), "0x100e zr_nexa_alg_sip_server_info_get_v1");
    open("GetSIPServerInfo=fail:3,SetSIPServerInfo=fail:4");
    EXPECT_EQ(read("sip_server"), "0x2003 zr_nexa_alg_sip_server_info_get_v1");
    EXPECT_EQ(write("sip_server", 0, {{"address", "1.2.3.4"}}), "0x2004 zr_nexa_alg_sip_server_info_set_v1");
}

}  // namespace
}  // namespace ctl
