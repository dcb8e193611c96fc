#include <command_table.h>
#include <dispatch.h>

#include "cli_test.h"

namespace {

using DispatchTest = CliTest;

constexpr const char* kInvalid = "Input Parameter Invalid\r\n";
constexpr const char* kNotSupported = "Setting Not Support now\r\n";

struct Row {
    int32_t supported;
    std::string name;
    bool callable;
};

void expect_settings(const char* category, const std::vector<Row>& rows)
{
    const cli::Category* const found = cli::find_category(category);
    ASSERT_NE(found, nullptr) << category;
    ASSERT_EQ(found->count, static_cast<int32_t>(rows.size())) << category;
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(found->settings[i].name, rows[i].name);
        EXPECT_EQ(found->settings[i].supported, rows[i].supported) << rows[i].name;
        EXPECT_EQ(found->settings[i].handler != nullptr, rows[i].callable) << rows[i].name;
    }
}

TEST_F(DispatchTest, TheTablesHoldTheirRowsInOrder)
{
    const std::vector<std::pair<std::string, int>> categories = {
        {"General", 1}, {"LAN", 1}, {"WAN", 1}, {"NAT", 1}, {"WLAN", 0}, {"Firewall", 0}, {"Tethering", 0}};
    ASSERT_EQ(cli::kCategoryCount, 7);
    for (size_t i = 0; i < categories.size(); ++i) {
        EXPECT_EQ(cli::kCategories[i].name, categories[i].first);
        EXPECT_EQ(cli::kCategories[i].supported, categories[i].second);
    }
    EXPECT_STREQ(cli::kCategories[4].description, "WLAN/WiFi related configuration items");
    EXPECT_STREQ(cli::kCategories[5].description, "Firewall related configuration items");
    EXPECT_STREQ(cli::kCategories[6].description, "NW Tethering related configuration items");

    expect_settings("General", {{1, "Restore", true}, {1, "SFE", true}, {0, "GRE", false}});
    expect_settings("LAN", {{1, "GWURL", true},
                            {1, "DHCP", true},
                            {0, "MACBind", false},
                            {1, "VLAN", true},
                            {1, "IPPTNAT", true},
                            {1, "IPPTNATPDN", true},
                            {1, "IPPT", true},
                            {1, "IPPTGWFilter", true},
                            {0, "L2TP", false},
                            {0, "DefaultDHCPEnable", true}});
    expect_settings("WAN", {{1, "WWANConfig", true},
                            {1, "APWWAN", true},
                            {1, "Status", true},
                            {0, "Connect", true},
                            {0, "ReConnect", true},
                            {1, "AutoConnect", true},
                            {1, "Info", true},
                            {1, "MPDNMapping", true},
                            {1, "RestartRadvd", true}});
    expect_settings("NAT", {{1, "Type", true},
                            {1, "IPV4DMZ", true},
                            {1, "IPV4PortMapping", true},
                            {1, "RoutingBH", true},
                            {0, "IPV6NAT", false},
                            {0, "IPV6DNS", false}});
    expect_settings("WLAN", {{0, "", false}});
    expect_settings("Firewall", {{0, "", false}});
    expect_settings("Tethering", {{0, "", false}});
}

TEST_F(DispatchTest, HiddenRowsKeepTheirDescriptions)
{
    const cli::Category* const lan = cli::find_category("LAN");
    EXPECT_STREQ(lan->settings[2].description, "LAN DHCP MAC address binding configuration");
    EXPECT_EQ(lan->settings[8].description, nullptr);
    EXPECT_STREQ(lan->settings[9].description, "Start DHCP server when first create VLAN or not");
    const cli::Category* const wan = cli::find_category("WAN");
    EXPECT_STREQ(wan->settings[3].description, "Connect/Disconnect WWAN");
    EXPECT_STREQ(wan->settings[4].description, "Enable/Disable WWAN Reconnect");
}

TEST_F(DispatchTest, AnUnknownCategoryOrSettingIsOneLineWithoutVerdict)
{
    expect_run({"Foo", "Bar"}, kInvalid);
    expect_run({"lan", "DHCP", "get", "0"}, kInvalid);
    expect_run({"", ""}, kInvalid);
    expect_run({"LAN", "dhcp", "get", "0"}, kInvalid);
    expect_run({"LAN", ""}, kInvalid);
    expect_run({"LAN", "SFE"}, kInvalid);
    expect_run({"General", "SFE "}, kInvalid);
    expect_run({"WLAN", "x"}, kInvalid);
    expect_run({std::string(100000, 'x'), std::string(100000, 'y'), std::string(100000, 'z')}, kInvalid);
    expect_run({"\xFF\xFE", "%s%n"}, kInvalid);
}

TEST_F(DispatchTest, ASettingWithoutAHandlerSaysSo)
{
    expect_run({"LAN", "MACBind", "get"}, kNotSupported);
    expect_run({"LAN", "L2TP"}, kNotSupported);
    expect_run({"General", "GRE", "x"}, kNotSupported);
    expect_run({"NAT", "IPV6NAT"}, kNotSupported);
    expect_run({"NAT", "IPV6DNS", "get"}, kNotSupported);
    expect_run({"WLAN", "", "x"}, kNotSupported);
    expect_run({"Firewall", ""}, kNotSupported);
    expect_run({"Tethering", "", "x"}, kNotSupported);
}

TEST_F(DispatchTest, TheVerdictIsTheHandlersResultInHexadecimal)
{
    expect_run({"General", "SFE", "enable"}, "CMD OK\r\n", {"SetDataPathOptStatus(1)"});

    platform.on("SetDataPathOptStatus").fails(3);
    expect_run({"General", "SFE", "enable"}, "CMD Error#0x1003\r\n", {"SetDataPathOptStatus(1)"});
    platform.on("SetDataPathOptStatus").fails(0xABCDE);
    expect_run({"General", "SFE", "enable"}, "CMD Error#0xabcde\r\n", {"SetDataPathOptStatus(1)"});
    platform.on("SetDataPathOptStatus").fails(0xFFFFFFFF);
    expect_run({"General", "SFE", "enable"}, "CMD Error#0xffffffff\r\n", {"SetDataPathOptStatus(1)"});
    platform.on("SetDataPathOptStatus").succeeds(13);
    expect_run({"General", "SFE", "enable"}, "CMD Error#0xd\r\n", {"SetDataPathOptStatus(1)"});
}

TEST_F(DispatchTest, ARejectedOptionIsTheHandlersLineAndTheVerdict)
{
    expect_run({"General", "SFE", "Enable"}, "Input Parameter Invalid\r\nCMD Error#0xffff\r\n");
}

TEST_F(DispatchTest, WithoutASessionTheInterfaceRefuses)
{
    Words line({"General", "SFE", "get"});
    EXPECT_EQ(printed([&] { cli::dispatch(line.argc(), line.argv()); }), "CMD Error#0xd\r\n");
    EXPECT_THAT(platform.journal, testing::IsEmpty());
}

}  // namespace
