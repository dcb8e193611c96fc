#include "area_fixture.h"

namespace ctl {
namespace {

class WanProfileTest : public AreaTest {
protected:
    static std::string profiles()
    {
        Value all;
        uint32_t default_handle = 0;
        EXPECT_EQ(told(read_profiles(&all, &default_handle)), "done");
        return in_short(all) + " " + std::to_string(default_handle);
    }
    static Value dial(const std::string& technology, int apn_index, const std::string& family,
                      const std::string& apn_name)
    {
        return Value::Map{
            {"technology", technology}, {"apn_index", apn_index}, {"family", family}, {"apn_name", apn_name}};
    }
    static std::string change(uint32_t handle, const Value& wanted)
    {
        return told(row("dial").write(handle, wanted, value_of("dial", handle)));
    }
};

TEST_F(WanProfileTest, HasOneProfileAtFirst)
{
    EXPECT_EQ(profiles(), "{1: {dial: {apn_index: 1, apn_name: \"\", family: ipv4v6, technology: any}}} 1");
    EXPECT_EQ(read("dial", 1), "{apn_index: 1, apn_name: \"\", family: ipv4v6, technology: any}");
    EXPECT_EQ(read("dial", 2), "none");
    EXPECT_EQ(read("roles.default", 0), "{roles.default: 1}");
    EXPECT_EQ(read("roles.access_point", 0), "{roles.access_point: 1, roles.dns_proxy: 1}");
}

TEST_F(WanProfileTest, AddsAndReadsEachWord)
{
    const std::string longest(50, 'x');
    uint32_t handle = 0;
    EXPECT_EQ(told(add_profile(dial("umts", 16, "ipv4", longest), &handle)), "done");
    EXPECT_EQ(handle, 2u);
    EXPECT_EQ(value_of("dial", 2), dial("umts", 16, "ipv4", longest));
    EXPECT_EQ(told(add_profile(dial("cdma", 2, "ipv6", "a\\x01\\xff\\\\b"), &handle)), "done");
    EXPECT_EQ(value_of("dial", 3), dial("cdma", 2, "ipv6", "a\\x01\\xff\\\\b"));
    EXPECT_EQ(sql("SELECT hex(apn_name) FROM wwan_profile WHERE handle = 3"), "6101FF5C62");
    EXPECT_EQ(told(add_profile(dial("any", 1, "ipv4v6", ""), &handle)), "done") << "a twin";
    EXPECT_EQ(value_of("dial", 4), value_of("dial", 1));
}

TEST_F(WanProfileTest, LeavesTheBringUpModeAloneWhereItCan)
{
    sql("UPDATE wwan_profile SET call_bringup_mode = 2, apn_name = 'internet', ip_family = 4");
    EXPECT_EQ(change(1, dial("cdma", 7, "ipv4", "internet")), "done");
    EXPECT_EQ(value_of("dial", 1), dial("cdma", 7, "ipv4", "internet"));
    EXPECT_EQ(sql("SELECT call_bringup_mode FROM wwan_profile"), "2");

    EXPECT_EQ(change(1, dial("cdma", 7, "ipv6", "internet")), "done");
    EXPECT_EQ(value_of("dial", 1), dial("cdma", 7, "ipv6", "internet"));
    EXPECT_EQ(sql("SELECT call_bringup_mode FROM wwan_profile"), "0");

    sql("UPDATE wwan_profile SET call_bringup_mode = 2");
    EXPECT_EQ(change(1, dial("cdma", 7, "ipv6", "")), "done");
    EXPECT_EQ(value_of("dial", 1), dial("cdma", 7, "ipv6", ""));
    EXPECT_EQ(sql("SELECT call_bringup_mode FROM wwan_profile"), "0");
}

TEST_F(WanProfileTest, GivesWhatHasNoWordAndDoesNotMakeIt)
{
    sql("UPDATE wwan_profile SET tech_pref = 9");
    EXPECT_EQ(value_of("dial", 1), dial("other", 1, "ipv4v6", ""));
    EXPECT_EQ(change(1, dial("other", 2, "ipv4v6", "")), "a technology or family that has no word can be read only");
    EXPECT_EQ(sql("SELECT tech_pref FROM wwan_profile"), "9");
    EXPECT_EQ(row("dial").not_undone(dial("any", 1, "ipv4", ""), value_of("dial", 1)),
              "a technology or family that has no word can be read only");
    EXPECT_EQ(row("dial").not_undone(value_of("dial", 1), dial("any", 1, "ipv4", "")), "");

    sql("UPDATE wwan_profile SET tech_pref = 0, ip_family = 5");
    EXPECT_EQ(value_of("dial", 1), dial("any", 1, "other", ""));
    EXPECT_EQ(change(1, dial("any", 1, "other", "x")), "a technology or family that has no word can be read only");
    EXPECT_EQ(change(1, dial("any", 3, "other", "")), "done") << "the family stays";
    EXPECT_EQ(sql("SELECT ip_family FROM wwan_profile"), "5");
    uint32_t handle = 77;
    EXPECT_EQ(told(add_profile(dial("any", 1, "other", ""), &handle)),
              "a technology or family that has no word can be read only");
    EXPECT_EQ(handle, 77u);
}

TEST_F(WanProfileTest, RemovesWhatHasNoRole)
{
    EXPECT_EQ(told(remove_profile(1)), "0x2030 zr_nexa_wan_wwanconfig_del_v1");
    add_profile();
    sql("INSERT OR REPLACE INTO wwan_call (profile, family, state) VALUES (2, 4, 'up')");
    EXPECT_EQ(told(remove_profile(2)), "0x201a zr_nexa_wan_wwanconfig_del_v1") << "it has a call";
    sql("UPDATE wwan_call SET state = 'down'");
    EXPECT_EQ(told(remove_profile(2)), "done");
    EXPECT_EQ(profiles(), "{1: {dial: {apn_index: 1, apn_name: \"\", family: ipv4v6, technology: any}}} 1");
}

TEST_F(WanProfileTest, KeepsTheModulesFiftyProfiles)
{
    for (uint32_t handle = 2; handle <= 50; ++handle)
        EXPECT_EQ(add_profile(std::to_string(handle)), handle);
    EXPECT_EQ(value_of("dial", 50), dial("any", 1, "ipv4v6", "50"));
    uint32_t handle = 0;
    EXPECT_EQ(told(add_profile(dial("any", 1, "ipv4", ""), &handle)), "0x103e zr_nexa_wan_wwanconfig_add_v2");
    EXPECT_EQ(handle, 0u);
}

TEST_F(WanProfileTest, GivesRolesToProfiles)
{
    add_profile();
    add_profile();
    EXPECT_EQ(write("roles.default", 0, {{"roles.default", 2}}), "done");
    EXPECT_EQ(write("roles.access_point", 0, {{"roles.access_point", 2}, {"roles.dns_proxy", 3}}), "done");
    EXPECT_EQ(read("roles.default", 0), "{roles.default: 2}");
    EXPECT_EQ(read("roles.access_point", 0), "{roles.access_point: 2, roles.dns_proxy: 3}");
}

TEST_F(WanProfileTest, TakesNoRoleAway)
{
    sql("UPDATE wwan_service SET default_profile = 0, ap_profile = 0");
    EXPECT_EQ(read("roles.default", 0), "{roles.default: none}");
    EXPECT_EQ(read("roles.access_point", 0), "{roles.access_point: none, roles.dns_proxy: 1}");
    EXPECT_EQ(write("roles.default", 0, {{"roles.default", "none"}}), "0x4 zr_nexa_wan_wwanconfig_default_set_v1");
    const Value none(Value::Map{{"roles.default", "none"}});
    const Value one(Value::Map{{"roles.default", 1}});
    EXPECT_EQ(row("roles.default").not_undone(one, none),
              "roles.default cannot be taken from a profile, only given to another");
    EXPECT_EQ(row("roles.default").not_undone(none, one), "");
}

TEST_F(WanProfileTest, TellsRefusals)
{
    open("GetWWANPolicyListEx=fail:3,GetAPProfileHandle=fail:5,CreateWWANPolicyEx=fail:52,UpdateWWANPolicyEx#2=fail:9");
    Value all;
    uint32_t handle = 7;
    EXPECT_EQ(told(read_profiles(&all, &handle)), "0x1003 zr_nexa_wan_wwanconfig_get_v2");
    EXPECT_EQ(handle, 7u);
    std::map<uint32_t, Value> by_handle;
    EXPECT_EQ(told(row("dial").read_all(&by_handle)), "0x1003 zr_nexa_wan_wwanconfig_get_v2");
    EXPECT_EQ(told(row("roles.default").read(0, &all)), "0x1003 zr_nexa_wan_wwanconfig_get_v2");
    EXPECT_EQ(told(row("roles.access_point").read(0, &all)), "0x1005 zr_nexa_wan_apwwan_get_v1");
    EXPECT_EQ(in_short(all), "none");
    EXPECT_EQ(told(add_profile(dial("any", 1, "ipv4", ""), &handle)), "0x1034 zr_nexa_wan_wwanconfig_add_v2");
    const Value present = dial("any", 1, "ipv4v6", "");
    EXPECT_EQ(told(change_dial(1, dial("umts", 2, "ipv4v6", ""), present)), "0x3009 zr_nexa_wan_wwanconfig_set_v1");
    open();
    EXPECT_EQ(value_of("dial", 1), dial("umts", 1, "ipv4v6", "")) << "half done";
}

}  // namespace
}  // namespace ctl
