#include "cli_test.h"

namespace {

class LanVlanCliTest : public CliTest {
protected:
    void give_vlans(const std::vector<qcmap_msgr_vlan_config_ex_v01>& vlans)
    {
        platform.on("GetVLANConfig")
            .gives("count", static_cast<int32_t>(vlans.size()))
            .gives_array("vlan", vlans.data(), vlans.size());
    }
    static std::string create(const std::string& type, const std::string& id, const std::string& accelerated)
    {
        return "CreateVLANConfig(interface_type=" + type + " vlan_id=" + id + " is_accelerated=" + accelerated +
               " beside=" + accelerated + ")";
    }

    const std::vector<std::string> get_calls = {"GetVLANConfig()"};
};

TEST_F(LanVlanCliTest, GetPrintsTheList)
{
    give_vlans({{QCMAP_MSGR_INTERFACE_TYPE_ETH_NIC2_V01, 4094, 1},
                {QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, 2, 0},
                {QCMAP_MSGR_INTERFACE_TYPE_ECM_V01, 300, 1},
                {QCMAP_MSGR_INTERFACE_TYPE_RNDIS_V01, 3, 0},
                {static_cast<qcmap_msgr_interface_type_enum_v01>(9), 4, 1}});
    const std::string list =
        "LAN VLAN List:\r\n"
        "vlan_id:4094  vlan_type:4  vlan_accelerated:1\r\n"
        "vlan_id:2  vlan_type:1  vlan_accelerated:0\r\n"
        "vlan_id:300  vlan_type:2  vlan_accelerated:1\r\n"
        "vlan_id:3  vlan_type:3  vlan_accelerated:0\r\n"
        "vlan_id:4  vlan_type:0  vlan_accelerated:1\r\n"
        "CMD OK\r\n";
    expect({{"LAN VLAN get", list, get_calls},
            {"LAN VLAN get x y", list, get_calls},
            {"LAN VLAN get x y z", list, get_calls},
            {"LAN VLAN get", "CMD Error#0x1032\r\n", get_calls, "GetVLANConfig", 50}});
    platform.on("GetVLANConfig").succeeds(3);
    expect({{"LAN VLAN get", "CMD Error#0x2003\r\n", get_calls}});
}

TEST_F(LanVlanCliTest, GetPrintsAnEmptyList)
{
    expect({{"LAN VLAN get", "LAN VLAN List is empty\r\nCMD OK\r\n", get_calls}});
    platform.on("GetVLANConfig").succeeds(50);
    expect({{"LAN VLAN get", "LAN VLAN List is empty\r\nCMD OK\r\n", get_calls}});
}

TEST_F(LanVlanCliTest, GetPrintsAllOfTheLongestList)
{
    give_vlans(std::vector<qcmap_msgr_vlan_config_ex_v01>(2000, {QCMAP_MSGR_INTERFACE_TYPE_ETH_V01, 5, 1}));
    std::string list = "LAN VLAN List:\r\n";
    for (int i = 0; i < 2000; ++i)
        list += "vlan_id:5  vlan_type:1  vlan_accelerated:1\r\n";
    expect({{"LAN VLAN get", list + "CMD OK\r\n", get_calls}});
}

TEST_F(LanVlanCliTest, AddCreatesAVlan)
{
    expect({{"LAN VLAN add 2 1 0", "CMD OK\r\n", {create("2", "2", "0")}},
            {"LAN VLAN add 4094 4 1", "CMD OK\r\n", {create("6", "4094", "1")}},
            {"LAN VLAN add 100 2 1", "CMD OK\r\n", {create("3", "100", "1")}},
            {"LAN VLAN add 100 3 no", "CMD OK\r\n", {create("4", "100", "0")}},
            {"LAN VLAN add ' +100x' 257 256", "CMD OK\r\n", {create("2", "100", "0")}},
            {"LAN VLAN add 65538 260 -255", "CMD OK\r\n", {create("6", "2", "1")}},
            {"LAN VLAN add 100 1 1", "CMD Error#0x1076\r\n", {create("2", "100", "1")}, "CreateVLANConfig", 118}});
    platform.on("CreateVLANConfig").succeeds(118);
    expect({{"LAN VLAN add 100 1 1", "CMD OK\r\n", {create("2", "100", "1")}}});

    expect_invalid("LAN VLAN add ? 1 0", {"0", "1", "4095", "65535", "65536", "65537", "-1", "", "x", "99999999999"});
    expect_invalid("LAN VLAN add 100 ? 0", {"0", "5", "255", "256", "-1", "", "ETH"});
    expect_invalid("LAN VLAN add 100 1 ?", {"2", "255", "258", "-1"});
}

TEST_F(LanVlanCliTest, DelDeletesAVlan)
{
    expect({{"LAN VLAN del 2 1", "CMD OK\r\n", {"DeleteVLANConfig(vlan_id=2 interface_type=2)"}},
            {"LAN VLAN del 4094 4", "CMD OK\r\n", {"DeleteVLANConfig(vlan_id=4094 interface_type=6)"}},
            {"LAN VLAN del 65536100 258", "CMD OK\r\n", {"DeleteVLANConfig(vlan_id=100 interface_type=3)"}},
            {"LAN VLAN del 2 3",
             "CMD Error#0x1019\r\n",
             {"DeleteVLANConfig(vlan_id=2 interface_type=4)"},
             "DeleteVLANConfig",
             25}});
    expect_invalid("LAN VLAN del ? 1", {"0", "1", "4095", "65537", "-1", "x"});
    expect_invalid("LAN VLAN del 100 ?", {"0", "5", "256", "-1", "x"});
}

}  // namespace
