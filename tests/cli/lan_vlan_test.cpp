#include "cli_test.h"

namespace {

using LanVlanCliTest = CliTest;

std::string create_line(const std::string& type, const std::string& id, const std::string& accelerated)
{
    return "CreateVLANConfig(interface_type=" + type + " vlan_id=" + id + " is_accelerated=" + accelerated +
           " beside=" + accelerated + ")";
}

TEST_F(LanVlanCliTest, Usage)
{
    expect_run({"LAN", "VLAN"},
               "How to use:\r\n"
               "zr_nexa LAN VLAN <option> [parameters]\r\n"
               "\r\n"
               "<option>\r\n"
               "add: zr_nexa LAN VLAN add <vlan_id> <vlan_type> <vlan_accelerated>\r\n"
               "     add a vlan entry\r\n"
               "get: zr_nexa LAN VLAN get\r\n"
               "     get all currently existing vlan entries, no other parameters are required\r\n"
               "del: zr_nexa LAN VLAN del <vlan_id> <vlan_type>\r\n"
               "     delete a currently existing vlan entry\r\n"
               "\r\n"
               "<vlan_id>\r\n"
               "int type, 2-255\r\n"
               "\r\n"
               "<vlan_type>\r\n"
               "int type\r\n"
               "1: ETH type\r\n"
               "2: ECM type\r\n"
               "3: RNDIS type\r\n"
               "4: ETH_NIC2 type\r\n"
               "\r\n"
               "<vlan_accelerated>\r\n"
               "bool type\r\n"
               "1: enable vlan IPA\r\n"
               "0: disable vlan IPA\r\n"
               "\r\n"
               "CMD OK\r\n");
}

TEST_F(LanVlanCliTest, GetPrintsTheList)
{
    const qcmap_msgr_vlan_config_ex_v01 vlans[] = {{QCMAP_MSGR_INTERFACE_TYPE_ETH_NIC2_V01, 4094, 1},
                                                   {QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, 2, 0},
                                                   {QCMAP_MSGR_INTERFACE_TYPE_ECM_V01, 300, 1},
                                                   {QCMAP_MSGR_INTERFACE_TYPE_RNDIS_V01, 3, 0},
                                                   {static_cast<qcmap_msgr_interface_type_enum_v01>(9), 4, 1}};
    platform.on("GetVLANConfig").gives("count", int32_t{5}).gives_array("vlan", vlans, 5);
    const std::string output =
        "LAN VLAN List:\r\n"
        "vlan_id:4094  vlan_type:4  vlan_accelerated:1\r\n"
        "vlan_id:2  vlan_type:1  vlan_accelerated:0\r\n"
        "vlan_id:300  vlan_type:2  vlan_accelerated:1\r\n"
        "vlan_id:3  vlan_type:3  vlan_accelerated:0\r\n"
        "vlan_id:4  vlan_type:0  vlan_accelerated:1\r\n"
        "CMD OK\r\n";
    expect_run({"LAN", "VLAN", "get"}, output, {"GetVLANConfig()"});
    expect_run({"LAN", "VLAN", "get", "x", "y"}, output, {"GetVLANConfig()"});
    expect_run({"LAN", "VLAN", "get", "x", "y", "z"}, output, {"GetVLANConfig()"});
}

TEST_F(LanVlanCliTest, GetPrintsAnEmptyList)
{
    const std::string output = "LAN VLAN List is empty\r\nCMD OK\r\n";
    expect_run({"LAN", "VLAN", "get"}, output, {"GetVLANConfig()"});
    platform.on("GetVLANConfig").succeeds(50);
    expect_run({"LAN", "VLAN", "get"}, output, {"GetVLANConfig()"});
}

TEST_F(LanVlanCliTest, GetPrintsAllOfTheLongestList)
{
    std::vector<qcmap_msgr_vlan_config_ex_v01> vlans(2000, {QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, 5, 1});
    platform.on("GetVLANConfig").gives("count", int32_t{2000}).gives_array("vlan", vlans.data(), vlans.size());
    std::string output = "LAN VLAN List:\r\n";
    for (int i = 0; i < 2000; ++i)
        output += "vlan_id:5  vlan_type:1  vlan_accelerated:1\r\n";
    expect_run({"LAN", "VLAN", "get"}, output + "CMD OK\r\n", {"GetVLANConfig()"});
}

TEST_F(LanVlanCliTest, GetPrintsNothingOnAnError)
{
    platform.on("GetVLANConfig").fails(50);
    expect_run({"LAN", "VLAN", "get"}, "CMD Error#0x1032\r\n", {"GetVLANConfig()"});
    platform.on("GetVLANConfig").succeeds(3).gives("count", int32_t{1});
    expect_run({"LAN", "VLAN", "get"}, "CMD Error#0x2003\r\n", {"GetVLANConfig()"});
}

TEST_F(LanVlanCliTest, AddCreatesAVlan)
{
    const struct {
        const char *id, *type, *accelerated;
        std::string call;
    } rows[] = {{"2", "1", "0", create_line("2", "2", "0")},
                {"4094", "4", "1", create_line("6", "4094", "1")},
                {"100", "2", "1", create_line("3", "100", "1")},
                {"100", "3", "no", create_line("4", "100", "0")},
                {" +100x", "257", "256", create_line("2", "100", "0")},
                {"65538", "260", "-255", create_line("6", "2", "1")}};
    for (const auto& row : rows) {
        expect_run({"LAN", "VLAN", "add", row.id, row.type, row.accelerated}, "CMD OK\r\n", {row.call});
    }
    platform.on("CreateVLANConfig").succeeds(118);
    expect_run({"LAN", "VLAN", "add", "100", "1", "1"}, "CMD OK\r\n", {create_line("2", "100", "1")});
    platform.on("CreateVLANConfig").fails(118);
    expect_run({"LAN", "VLAN", "add", "100", "1", "1"}, "CMD Error#0x1076\r\n", {create_line("2", "100", "1")});
}

TEST_F(LanVlanCliTest, AddRefusesBadNumbers)
{
    for (const char* id : {"0", "1", "4095", "65535", "65536", "65537", "-1", "", "x", "99999999999"}) {
        expect_invalid({"LAN", "VLAN", "add", id, "1", "0"});
    }
    for (const char* type : {"0", "5", "255", "256", "-1", "", "ETH"}) {
        expect_invalid({"LAN", "VLAN", "add", "100", type, "0"});
    }
    for (const char* accelerated : {"2", "255", "258", "-1"}) {
        expect_invalid({"LAN", "VLAN", "add", "100", "1", accelerated});
    }
}

TEST_F(LanVlanCliTest, DelDeletesAVlan)
{
    expect_run({"LAN", "VLAN", "del", "2", "1"}, "CMD OK\r\n", {"DeleteVLANConfig(vlan_id=2 interface_type=2)"});
    expect_run({"LAN", "VLAN", "del", "4094", "4"}, "CMD OK\r\n", {"DeleteVLANConfig(vlan_id=4094 interface_type=6)"});
    expect_run({"LAN", "VLAN", "del", "65536100", "258"}, "CMD OK\r\n",
               {"DeleteVLANConfig(vlan_id=100 interface_type=3)"});
    platform.on("DeleteVLANConfig").fails(25);
    expect_run({"LAN", "VLAN", "del", "2", "3"}, "CMD Error#0x1019\r\n",
               {"DeleteVLANConfig(vlan_id=2 interface_type=4)"});
    for (const char* id : {"0", "1", "4095", "65537", "-1", "x"})
        expect_invalid({"LAN", "VLAN", "del", id, "1"});
    for (const char* type : {"0", "5", "256", "-1", "x"})
        expect_invalid({"LAN", "VLAN", "del", "100", type});
}

TEST_F(LanVlanCliTest, RefusesOtherWordsAndCounts)
{
    expect_invalid({"LAN", "VLAN", "get", "x"});
    expect_invalid({"LAN", "VLAN", "get", "x", "y", "z", "u"});
    expect_invalid({"LAN", "VLAN", "add"});
    expect_invalid({"LAN", "VLAN", "add", "100"});
    expect_invalid({"LAN", "VLAN", "add", "100", "1"});
    expect_invalid({"LAN", "VLAN", "add", "100", "1", "0", "x"});
    expect_invalid({"LAN", "VLAN", "del"});
    expect_invalid({"LAN", "VLAN", "del", "100"});
    expect_invalid({"LAN", "VLAN", "del", "100", "1", "0"});
    for (const char* option : {"", "Get", "ADD", "delete", "set", "ge", "gett"}) {
        for (const size_t words : {0u, 1u, 2u, 3u}) {
            std::vector<std::string> line = {"LAN", "VLAN", option};
            for (size_t i = 0; i < words; ++i)
                line.push_back("2");
            expect_invalid(line);
        }
    }
}

}  // namespace
