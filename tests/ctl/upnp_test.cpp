// UPnP as keys of a document.
#include "area_fixture.h"

namespace ctl {
namespace {

using Map = Value::Map;

class UpnpTest : public AreaTest {
protected:
    // Switch, policy and pinholes of profile 1.
    static std::string firewall()
    {
        uint8_t on = 9;
        uint8_t policy = 9;
        uint8_t pinholes = 9;
        EXPECT_EQ(zr_nexa_firewall_config_get_v1(1, &on, &policy), 0U);
        EXPECT_EQ(zr_nexa_media_upnp_pinhole_state_get_v1(1, &pinholes), 0U);
        return std::to_string(on) + std::to_string(policy) + std::to_string(pinholes);
    }
    static std::string allow(bool allowed, uint32_t handle = 1)
    {
        return told(row("upnp_pinholes").write(handle, Map{{"upnp_pinholes", allowed}}, {}));
    }
};

TEST_F(UpnpTest, TheServiceIsAFlag)
{
    EXPECT_EQ(read("upnp.enabled"), "{upnp.enabled: false}");
    EXPECT_EQ(write("upnp.enabled", 0, {{"upnp.enabled", true}}), "done");
    EXPECT_EQ(read("upnp.enabled"), "{upnp.enabled: true}");
    EXPECT_EQ(write("upnp.enabled", 0, {{"upnp.enabled", false}}), "done");
    EXPECT_EQ(read("upnp.enabled"), "{upnp.enabled: false}");
    open("EnableUPNP=fail:3,DisableUPNP=fail:4,GetUPNPStatus#3=fail:5");
    EXPECT_EQ(write("upnp.enabled", 0, {{"upnp.enabled", true}}), "0x1003 zr_nexa_media_upnp_set_v1");
    EXPECT_EQ(write("upnp.enabled", 0, {{"upnp.enabled", false}}), "0x2004 zr_nexa_media_upnp_set_v1");
    EXPECT_EQ(read("upnp.enabled"), "0x1005 zr_nexa_media_upnp_get_v1");
}

TEST_F(UpnpTest, TheIntervalIsInSeconds)
{
    const std::string key = "upnp.notify_seconds";
    EXPECT_EQ(read(key), "{upnp.notify_seconds: 1800}");
    for (const uint32_t seconds : {30U, 31U, 60000U}) {
        EXPECT_EQ(problems_of(key, Map{{key, seconds}}), "");
        EXPECT_EQ(write(key, 0, {{key, seconds}}), "done");
        EXPECT_EQ(read(key), "{upnp.notify_seconds: " + std::to_string(seconds) + "}");
    }
    // The interface would take the last one for 30.
    for (const uint32_t seconds : {0U, 29U, 60001U, 65566U})
        EXPECT_EQ(problems_of(key, Map{{key, seconds}}),
                  "upnp.notify_seconds: a whole number in decimal digits, 30 to 60000, not " + std::to_string(seconds) +
                      "\n");
    sql("UPDATE upnp_service SET notify_interval = 29");
    EXPECT_EQ(read(key), "none");
    sql("UPDATE upnp_service SET notify_interval = 60001");
    EXPECT_EQ(read(key), "none");
    open("SetUPNPNotifyInterval=fail:3,GetUPNPNotifyInterval#2=fail:4");
    EXPECT_EQ(write(key, 0, {{key, 40}}), "0x1003 zr_nexa_media_upnp_notify_interval_set_v1");
    EXPECT_EQ(read(key), "0x1004 zr_nexa_media_upnp_notify_interval_get_v1");
}

TEST_F(UpnpTest, WithTheFirewallOnPinholesAloneAreSet)
{
    EXPECT_EQ(read("upnp_pinholes", 1), "{upnp_pinholes: false}");
    ASSERT_EQ(zr_nexa_firewall_config_set_v1(1, 1, 0), 0U);
    open("SetFirewall=fail:3");
    EXPECT_EQ(allow(true), "done");
    EXPECT_EQ(firewall(), "101");
    EXPECT_EQ(read("upnp_pinholes", 1), "{upnp_pinholes: true}");
    EXPECT_EQ(allow(false), "done");
    EXPECT_EQ(firewall(), "100");
}

TEST_F(UpnpTest, WithTheFirewallOffItIsOffBehindIt)
{
    for (const uint32_t policy : {0U, 1U}) {
        ASSERT_EQ(zr_nexa_firewall_config_set_v1(1, 0, policy), 0U);
        EXPECT_EQ(allow(true), "done");
        EXPECT_EQ(firewall(), "0" + std::to_string(policy) + "1");
        EXPECT_EQ(allow(false), "done");
        EXPECT_EQ(firewall(), "0" + std::to_string(policy) + "0");
    }
}

// For a moment, and letting through.
TEST_F(UpnpTest, TheFirewallIsOnWhilePinholesAreSet)
{
    sql("CREATE TABLE seen (state TEXT);"
        "CREATE TRIGGER see AFTER INSERT ON upnp_pinhole BEGIN INSERT INTO seen"
        " SELECT enabled || packets_allowed FROM firewall WHERE profile = 1; END;");
    EXPECT_EQ(allow(true), "done");
    EXPECT_EQ(sql("SELECT state FROM seen"), "11");
}

TEST_F(UpnpTest, APolicyThatCouldNotBePutBackIsLeftAlone)
{
    sql("INSERT INTO firewall (profile, enabled, packets_allowed) VALUES (1, 0, 7)");
    EXPECT_EQ(allow(true), "the firewall is off, and its policy could not be put back");
    EXPECT_EQ(firewall(), "070");
}

TEST_F(UpnpTest, AfterARefusalTheFirewallIsOffAgain)
{
    open("SetUPNPState=fail:3");
    EXPECT_EQ(allow(true), "0x3003 zr_nexa_media_upnp_pinhole_state_set_v1");
    EXPECT_EQ(firewall(), "000");
    open("SetFirewall#1=fail:3");
    EXPECT_EQ(allow(true), "0x2003 zr_nexa_firewall_config_set_v1");
    EXPECT_EQ(firewall(), "000");
    open("GetFirewall#1=fail:3");
    EXPECT_EQ(allow(true), "0x2003 zr_nexa_firewall_config_get_v1");
    EXPECT_EQ(firewall(), "000");
    EXPECT_EQ(allow(true, 9), "0x1009 zr_nexa_firewall_config_get_v1");
    EXPECT_EQ(read("upnp_pinholes", 9), "0x1009 zr_nexa_media_upnp_pinhole_state_get_v1");
}

TEST_F(UpnpTest, SwitchingOffIsTriedTwice)
{
    open("SetFirewall#2=fail:4");
    EXPECT_EQ(allow(true), "done");
    EXPECT_EQ(firewall(), "001");
    open("SetFirewall#2=fail:4,SetFirewall#3=fail:4");
    EXPECT_EQ(allow(false), "0x2004 zr_nexa_firewall_config_set_v1");
    EXPECT_EQ(firewall(), "110");
}

// Done, with a word beside it: the one who reads back sees it is.
TEST_F(UpnpTest, ABareWordIsHandedOn)
{
    open("SetFirewall#1=ok:43");
    EXPECT_EQ(allow(true), "0x2b zr_nexa_firewall_config_set_v1");
    EXPECT_EQ(firewall(), "001");
}

TEST_F(UpnpTest, FunctionsOfTheFirewallAreNamed)
{
    EXPECT_EQ(row("upnp_pinholes").functions.size(), 4U);
}

}  // namespace
}  // namespace ctl
