#include <menu.h>

#include "cli_test.h"

namespace {

const std::string kBanner = "Korvane MoblieAP CMD\r\n\r\n";

class MenuTest : public CliTest {
protected:
    static void expect_menu(const std::string& line, const std::string& output)
    {
        Words words(line);
        EXPECT_EQ(printed([&] { cli::zr_nexa_print_menu(words.argc(), words.argv()); }), kBanner + output)
            << line.substr(0, 20);
    }
    // No menu needs the platform.
    ~MenuTest() override
    {
        EXPECT_THAT(platform.journal, testing::IsEmpty());
        EXPECT_THAT(platform.log, testing::IsEmpty());
    }
};

TEST_F(MenuTest, OneWordListsTheSupportedCategories)
{
    expect_menu("",
                "Main Setting List:\r\n"
                "General             Some general configuration items\r\n"
                "LAN                 LAN network configuration items\r\n"
                "WAN                 WAN/Datacall related configuration items\r\n"
                "NAT                 NAT related configuration items\r\n"
                "\r\n");
}

TEST_F(MenuTest, GeneralHidesGre)
{
    expect_menu("General",
                "General Setting List:\r\n"
                "Restore             Restore nexa factory default settings(Will Auto reboot)\r\n"
                "SFE                 Enable/Disable/Query software shortcut engine\r\n"
                "\r\n");
}

TEST_F(MenuTest, LanHidesMacBindL2tpAndTheDefaultAction)
{
    expect_menu("LAN",
                "LAN Setting List:\r\n"
                "GWURL               LAN Gateway URL address configuration\r\n"
                "DHCP                LAN DHCP related configuration\r\n"
                "VLAN                Add/Delete/Get VLAN\r\n"
                "IPPTNAT             IPPassthrough NAT configuration\r\n"
                "IPPTNATPDN          IPPassthrough NAT config for PDN\r\n"
                "IPPT                IPPassthrough enable/disable configuration\r\n"
                "IPPTGWFilter        IPPassthrough mode getway address software filter configuration\r\n"
                "\r\n");
}

TEST_F(MenuTest, WanHidesConnectAndReConnect)
{
    expect_menu("WAN",
                "WAN Setting List:\r\n"
                "WWANConfig          Add/Edit/Delete/Query WWAN handle\r\n"
                "APWWAN              Config/Query the WWAN handle used by the module AP\r\n"
                "Status              Get WWAN connect status\r\n"
                "AutoConnect         Enable/Disable WWAN Auto connect\r\n"
                "Info                Get WWAN Info\r\n"
                "MPDNMapping         Multi-Datacall WWAN to LAN/VLAN Mapping\r\n"
                "RestartRadvd        Restart Radvd (only support on RADVD supported project)\r\n"
                "\r\n");
}

TEST_F(MenuTest, NatHidesTheIpv6Settings)
{
    expect_menu("NAT",
                "NAT Setting List:\r\n"
                "Type                NAT type configuration for LAN\r\n"
                "IPV4DMZ             IPV4 DMZ configuration\r\n"
                "IPV4PortMapping     IPV4 Port Mapping configuration\r\n"
                "RoutingBH           IPV4 Routing Behind function\r\n"
                "\r\n");
}

TEST_F(MenuTest, AHiddenCategoryIsAHeaderAlone)
{
    expect_menu("WLAN", "WLAN Setting List:\r\n\r\n");
    expect_menu("Firewall", "Firewall Setting List:\r\n\r\n");
    expect_menu("Tethering", "Tethering Setting List:\r\n\r\n");
}

TEST_F(MenuTest, AnyOtherWordIsNoCategory)
{
    for (const std::string& word : std::vector<std::string>{"lan", "''", "LA", "LANX", "'LAN '", "general", "\xFF%",
                                                            "%s%n%s%n", "zr", std::string(100000, 'L')}) {
        expect_menu(word, "Input Setting Invalid\r\n\r\n");
    }
}

TEST(MenuText, ANameOfTwentyCharactersMeetsItsDescription)
{
    cli::MenuText menu;
    menu.append_row("1234567890123456789", "nineteen");
    menu.append_row("12345678901234567890", "twenty");
    menu.append_row("", "none");
    EXPECT_STREQ(menu.text(),
                 "1234567890123456789 nineteen\r\n"
                 "12345678901234567890twenty\r\n"
                 "                    none\r\n");
}

TEST(MenuText, ALongerNameIsOverwrittenFromItsTwentyFirstCharacter)
{
    cli::MenuText menu;
    menu.append_row("123456789012345678901234567890", "x");
    menu.append_row("next", "row");
    EXPECT_STREQ(menu.text(),
                 "12345678901234567890x\r\n"
                 "next                row\r\n");
}

TEST(MenuText, WhatDoesNotFitIsCutOff)
{
    cli::MenuText menu;
    menu.append(std::string(2030, 'a').c_str());
    menu.append_row("name", "description");
    menu.append_row("name", "description");
    menu.append("more");
    EXPECT_EQ(std::string(menu.text()), std::string(2030, 'a') + "name" + std::string(13, ' '));

    cli::MenuText long_piece;
    long_piece.append(std::string(5000, 'b').c_str());
    for (int i = 0; i < 3; ++i)
        long_piece.append("more");
    EXPECT_EQ(std::string(long_piece.text()), std::string(2047, 'b'));
}

}  // namespace
