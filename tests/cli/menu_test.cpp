#include <menu.h>

#include "cli_test.h"

namespace {

std::string menu(const std::vector<std::string>& words)
{
    Words line(words);
    return printed([&] { cli::print_menu(line.argc(), line.argv()); });
}

class MenuTest : public CliTest {
protected:
    // No menu needs the platform.
    ~MenuTest() override
    {
        EXPECT_THAT(platform.journal, testing::IsEmpty());
        EXPECT_THAT(platform.log, testing::IsEmpty());
    }
};

TEST_F(MenuTest, OneWordListsTheSupportedCategories)
{
    EXPECT_EQ(menu({}),
              "Korvane MoblieAP CMD\r\n"
              "\r\n"
              "Main Setting List:\r\n"
              "General             Some general configuration items\r\n"
              "LAN                 LAN network configuration items\r\n"
              "WAN                 WAN/Datacall related configuration items\r\n"
              "NAT                 NAT related configuration items\r\n"
              "\r\n");
}

TEST_F(MenuTest, GeneralHidesGre)
{
    EXPECT_EQ(menu({"General"}),
              "Korvane MoblieAP CMD\r\n"
              "\r\n"
              "General Setting List:\r\n"
              "Restore             Restore nexa factory default settings(Will Auto reboot)\r\n"
              "SFE                 Enable/Disable/Query software shortcut engine\r\n"
              "\r\n");
}

TEST_F(MenuTest, LanHidesMacBindL2tpAndTheDefaultAction)
{
    EXPECT_EQ(menu({"LAN"}),
              "Korvane MoblieAP CMD\r\n"
              "\r\n"
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
    EXPECT_EQ(menu({"WAN"}),
              "Korvane MoblieAP CMD\r\n"
              "\r\n"
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
    EXPECT_EQ(menu({"NAT"}),
              "Korvane MoblieAP CMD\r\n"
              "\r\n"
              "NAT Setting List:\r\n"
              "Type                NAT type configuration for LAN\r\n"
              "IPV4DMZ             IPV4 DMZ configuration\r\n"
              "IPV4PortMapping     IPV4 Port Mapping configuration\r\n"
              "RoutingBH           IPV4 Routing Behind function\r\n"
              "\r\n");
}

TEST_F(MenuTest, AHiddenCategoryIsAHeaderAlone)
{
    EXPECT_EQ(menu({"WLAN"}), "Korvane MoblieAP CMD\r\n\r\nWLAN Setting List:\r\n\r\n");
    EXPECT_EQ(menu({"Firewall"}), "Korvane MoblieAP CMD\r\n\r\nFirewall Setting List:\r\n\r\n");
    EXPECT_EQ(menu({"Tethering"}), "Korvane MoblieAP CMD\r\n\r\nTethering Setting List:\r\n\r\n");
}

TEST_F(MenuTest, AnyOtherWordIsNoCategory)
{
    const std::vector<std::string> others = {"lan",     "",      "LA",       "LANX", "LAN ",
                                             "general", "\xFF%", "%s%n%s%n", "zr",   std::string(100000, 'L')};
    for (const std::string& word : others) {
        EXPECT_EQ(menu({word}), "Korvane MoblieAP CMD\r\n\r\nInput Setting Invalid\r\n\r\n") << word.substr(0, 20);
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
