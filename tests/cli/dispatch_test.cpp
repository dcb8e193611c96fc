#include <command_table.h>
#include <dispatch.h>
#include <zr_nexa_client_api.h>

#include "cli_test.h"

namespace {

using DispatchTest = CliTest;

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
    const std::string long_word(100000, 'x');
    for (const std::string& line : std::vector<std::string>{
             "Foo Bar", "lan DHCP get 0", "'' ''", "LAN dhcp get 0", "LAN ''", "LAN SFE", "General 'SFE '", "WLAN x",
             "\xFF\xFE %s%n", long_word + " " + long_word + " " + long_word}) {
        expect({{line, "Input Parameter Invalid\r\n"}});
    }
}

TEST_F(DispatchTest, ASettingWithoutAHandlerSaysSo)
{
    for (const char* line : {"LAN MACBind get", "LAN L2TP", "General GRE x", "NAT IPV6NAT", "NAT IPV6DNS get",
                             "WLAN '' x", "Firewall ''", "Tethering '' x"}) {
        expect({{line, "Setting Not Support now\r\n"}});
    }
}

TEST_F(DispatchTest, TheVerdictIsTheHandlersResultInHexadecimal)
{
    const std::string enable = "General SFE enable";
    const std::vector<std::string> calls = {"SetDataPathOptStatus(1)"};
    expect({{enable, "CMD OK\r\n", calls},
            {enable, "CMD Error#0x1003\r\n", calls, "SetDataPathOptStatus", 3},
            {enable, "CMD Error#0xabcde\r\n", calls, "SetDataPathOptStatus", 0xABCDE},
            {enable, "CMD Error#0xffffffff\r\n", calls, "SetDataPathOptStatus", 0xFFFFFFFF}});
    platform.on("SetDataPathOptStatus").succeeds(13);
    expect({{enable, "CMD Error#0xd\r\n", calls}});
}

TEST_F(DispatchTest, ARejectedOptionIsTheHandlersLineAndTheVerdict)
{
    expect({{"General SFE Enable", "Input Parameter Invalid\r\nCMD Error#0xffff\r\n"}});
}

TEST_F(DispatchTest, TheHandlersResultIsHandedOn)
{
    const auto result = [](const std::string& line) {
        Words words(line);
        int code = -1;
        printed([&] { code = cli::zr_nexa_dispatch(words.argc(), words.argv()); });
        return code;
    };
    EXPECT_EQ(result("General SFE enable"), 13);  // without a session
    zr_nexa_client_init(nullptr);
    EXPECT_EQ(result("General SFE enable"), 0);
    EXPECT_EQ(result("General SFE"), 0);  // usage
    EXPECT_EQ(result("General SFE Enable"), 65535);
    EXPECT_EQ(result("Foo Bar"), 65535);
    EXPECT_EQ(result("LAN Foo"), 65535);
    EXPECT_EQ(result("NAT IPV6NAT"), 65535);  // without a handler
    platform.on("SetDataPathOptStatus").fails(0xABCDE);
    EXPECT_EQ(result("General SFE enable"), 0xABCDE | 0x1000);
    zr_nexa_client_uninit();
}

TEST_F(DispatchTest, WithoutASessionTheInterfaceRefuses)
{
    Words words("General SFE get");
    EXPECT_EQ(printed([&] { cli::zr_nexa_dispatch(words.argc(), words.argv()); }), "CMD Error#0xd\r\n");
    EXPECT_THAT(platform.journal, testing::IsEmpty());
}

}  // namespace
