#include "area_fixture.h"

namespace ctl {
namespace {

using WanConnectionTest = AreaTest;

TEST_F(WanConnectionTest, SwitchesEachModeOfOneProfile)
{
    const uint32_t second = add_profile();
    for (const std::string name : {"reconnect", "autoconnect", "roaming"}) {
        EXPECT_EQ(read(name, second), "{" + name + ": " + field(name).factory + "}");
        EXPECT_EQ(read(name, second), "{" + name + ": false}");
        EXPECT_EQ(write(name, second, {{name, true}}), "done");
        EXPECT_EQ(read(name, second), "{" + name + ": true}");
        EXPECT_EQ(read(name, 1), "{" + name + ": false}");
        EXPECT_EQ(sql("SELECT " + name + " FROM wwan_profile WHERE handle = 2"), "1");
        EXPECT_EQ(sql("SELECT reconnect + autoconnect + roaming FROM wwan_profile WHERE handle = 2"), "1");
        EXPECT_EQ(write(name, second, {{name, false}}), "done");
        EXPECT_EQ(read(name, second), "{" + name + ": false}");
    }
}

TEST_F(WanConnectionTest, TakesAnyByteButZeroForOn)
{
    sql("UPDATE wwan_profile SET roaming = 2");
    EXPECT_EQ(read("roaming", 1), "{roaming: true}");
    EXPECT_EQ(problems_of("roaming", Value::Map{{"roaming", "yes"}}), "roaming: true or false, not yes\n");
}

TEST_F(WanConnectionTest, TellsRefusals)
{
    Value out;
    EXPECT_EQ(told(row("roaming").read(9, &out)), "0x1009 zr_nexa_wan_roaming_get_v1");
    EXPECT_EQ(in_short(out), "none");
    bool calling = true;
    EXPECT_EQ(told(read_calling(9, &calling)), "0x1009 zr_nexa_wan_status_get_v1");
    open("SetRoaming=fail:3,GetReconnect=fail:4");
    EXPECT_EQ(write("roaming", 1, {{"roaming", true}}), "0x2003 zr_nexa_wan_roaming_set_v1");
    EXPECT_EQ(write("roaming", 1, {{"roaming", false}}), "0x3003 zr_nexa_wan_roaming_set_v1");
    EXPECT_EQ(told(row("reconnect").read(1, &out)), "0x2004 zr_nexa_wan_reconnect_get_v1");
    EXPECT_EQ(read("roaming", 1), "{roaming: false}");
}

TEST_F(WanConnectionTest, SeesACallInEitherFamilyAndEachState)
{
    bool calling = true;
    EXPECT_EQ(told(read_calling(1, &calling)), "done");
    EXPECT_FALSE(calling);
    for (const std::string family : {"4", "6"})
        for (const std::string state : {"connecting", "up", "disconnecting", "down"}) {
            sql("INSERT OR REPLACE INTO wwan_call (profile, family, state) VALUES (1, " + family + ", '" + state +
                "')");
            EXPECT_EQ(told(read_calling(1, &calling)), "done");
            EXPECT_EQ(calling, state != "down") << family << " " << state;
        }
}

}  // namespace
}  // namespace ctl
