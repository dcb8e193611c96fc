#include "profile_fixture.h"

namespace {

using WanConnectionRows = ProfileRowsTest;

TEST_F(WanConnectionRows, SwitchesEachModeOfOneProfile)
{
    const uint32_t second = add_profile();
    for (const std::string name : {"reconnect", "autoconnect", "roaming"}) {
        EXPECT_EQ(read(name, second), "{" + name + ": " + field(name).factory + "}");
        EXPECT_EQ(read(name, second), "{" + name + ": false}");
        EXPECT_EQ(write(name, second, {{name, true}}), "0");
        EXPECT_EQ(read(name, second), "{" + name + ": true}");
        EXPECT_EQ(read(name, 1), "{" + name + ": false}");
        EXPECT_EQ(sql("SELECT " + name + " FROM wwan_profile WHERE handle = 2"), "1");
        EXPECT_EQ(sql("SELECT reconnect + autoconnect + roaming FROM wwan_profile WHERE handle = 2"), "1");
        EXPECT_EQ(write(name, second, {{name, false}}), "0");
        EXPECT_EQ(read(name, second), "{" + name + ": false}");
    }
}

TEST_F(WanConnectionRows, TakesAnyByteButZeroForOn)
{
    sql("UPDATE wwan_profile SET roaming = 2");
    EXPECT_EQ(read("roaming", 1), "{roaming: true}");
    EXPECT_EQ(wrong("roaming", "yes"), "true or false, not yes");
}

TEST_F(WanConnectionRows, TellsRefusals)
{
    ctl::Value out;
    EXPECT_EQ(told(row("roaming").read(9, &out)), "0x1009");
    EXPECT_EQ(ctl::in_short(out), "none");
    bool calling = true;
    EXPECT_EQ(told(ctl::read_calling(9, &calling)), "0x1009");
    open("SetRoaming=fail:3,GetReconnect=fail:4");
    EXPECT_EQ(write("roaming", 1, {{"roaming", true}}), "0x2003");
    EXPECT_EQ(write("roaming", 1, {{"roaming", false}}), "0x3003");
    EXPECT_EQ(told(row("reconnect").read(1, &out)), "0x2004");
    EXPECT_EQ(read("roaming", 1), "{roaming: false}");
}

TEST_F(WanConnectionRows, SeesACallInEitherFamilyAndEachState)
{
    bool calling = true;
    EXPECT_EQ(told(ctl::read_calling(1, &calling)), "0");
    EXPECT_FALSE(calling);
    for (const std::string family : {"4", "6"})
        for (const std::string state : {"connecting", "up", "disconnecting", "down"}) {
            sql("INSERT OR REPLACE INTO wwan_call (profile, family, state) VALUES (1, " + family + ", '" + state +
                "')");
            EXPECT_EQ(told(ctl::read_calling(1, &calling)), "0");
            EXPECT_EQ(calling, state != "down") << family << " " << state;
        }
}

}  // namespace
