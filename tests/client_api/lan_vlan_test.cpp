#include "api_test.h"

namespace {

using LanVlanTest = ApiTest;

qcmap_msgr_vlan_config_ex_v01 vlan(int type, int16_t id, uint8_t accelerated)
{
    return {static_cast<qcmap_msgr_interface_type_enum_v01>(type), id, accelerated};
}

// The caller's list, and what stands behind it.
struct ListAndMore {
    zr_nexa_lan_vlan_list_t list;
    uint8_t behind[64];
};

// ---- add ----

TEST_F(LanVlanTest, AddSendsThePlatformsInterfaceTypeAndLogsTheCallers)
{
    const struct {
        uint8_t type;
        const char* platform_type;
    } rows[] = {{1, "2"}, {2, "3"}, {3, "4"}, {4, "6"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_vlan_add_v1(100, row.type, 1), 0u,
                   "info  entry",
                   std::string("call  CreateVLANConfig(interface_type=") + row.platform_type +
                       " vlan_id=100 is_accelerated=1 beside=1)",
                   "info  Create VLAN(100) vlan_type=" + std::to_string(row.type) + " is_accelerated=1 error 0");
    }
    EXPECT_ROW(zr_nexa_lan_vlan_add_v1(100, 1, 0), 0u,
               "info  entry",
               "call  CreateVLANConfig(interface_type=2 vlan_id=100 is_accelerated=0 beside=0)",
               "info  Create VLAN(100) vlan_type=1 is_accelerated=0 error 0");
}

TEST_F(LanVlanTest, AddTakesVlanIds1To4094)
{
    EXPECT_ROW(zr_nexa_lan_vlan_add_v1(1, 1, 0), 0u,
               "info  entry",
               "call  CreateVLANConfig(interface_type=2 vlan_id=1 is_accelerated=0 beside=0)",
               "info  Create VLAN(1) vlan_type=1 is_accelerated=0 error 0");
    for (const uint16_t id : std::vector<uint16_t>{0, 4095, 4096, 32767, 32768, 65535}) {
        EXPECT_ROW(zr_nexa_lan_vlan_add_v1(id, 1, 0), 6u, "info  entry");
    }
}

TEST_F(LanVlanTest, AddChecksItsArgumentsInOrder)
{
    EXPECT_ROW(zr_nexa_lan_vlan_add_v1(0, 0, 2), 6u, "info  entry");
    for (const uint32_t flag : {2u, 255u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_lan_vlan_add_v1(1, 0, flag), 4u, "info  entry");
    }
    for (const uint8_t type : std::vector<uint8_t>{0, 5, 6, 128, 255}) {
        EXPECT_ROW(zr_nexa_lan_vlan_add_v1(1, type, 1), 7u,
                   "info  entry",
                   "error Invalid phy_iface_type:(" + std::to_string(int{type}) + ")");
    }
}

TEST_F(LanVlanTest, AddTakesAVlanThatIsThereForASuccess)
{
    platform.on("CreateVLANConfig").succeeds(118);
    EXPECT_ROW(zr_nexa_lan_vlan_add_v1(4094, 4, 1), 0u,
               "info  entry",
               "call  CreateVLANConfig(interface_type=6 vlan_id=4094 is_accelerated=1 beside=1)",
               "info  Create VLAN(4094) vlan_type=4 is_accelerated=1 error 0");
    // Not for one when the platform says that it failed.
    platform.on("CreateVLANConfig").fails(118);
    EXPECT_ROW(zr_nexa_lan_vlan_add_v1(4094, 4, 1), 0x1076u,
               "info  entry",
               "call  CreateVLANConfig(interface_type=6 vlan_id=4094 is_accelerated=1 beside=1)",
               "error Create VLAN(4094) Config error 118");
}

TEST_F(LanVlanTest, AddTagsAnyOtherErrorOfASuccess)
{
    const struct {
        uint32_t err, result;
    } rows[] = {{1, 0x2001}, {50, 0x2032}, {117, 0x2075}, {119, 0x2077}, {0x2000, 0x2000}, {0xFFFF, 0xFFFF}};
    for (const auto& row : rows) {
        platform.on("CreateVLANConfig").succeeds(row.err);
        EXPECT_ROW(zr_nexa_lan_vlan_add_v1(2, 1, 0), row.result,
                   "info  entry",
                   "call  CreateVLANConfig(interface_type=2 vlan_id=2 is_accelerated=0 beside=0)",
                   "info  Create VLAN(2) vlan_type=1 is_accelerated=0 error " + std::to_string(row.err));
    }
}

TEST_F(LanVlanTest, AddDoesNotReadTheFlagBack)
{
    platform.on("CreateVLANConfig").gives("beside", false);
    EXPECT_ROW(zr_nexa_lan_vlan_add_v1(2, 1, 1), 0u,
               "info  entry",
               "call  CreateVLANConfig(interface_type=2 vlan_id=2 is_accelerated=1 beside=1)",
               "info  Create VLAN(2) vlan_type=1 is_accelerated=1 error 0");
}

// ---- get ----

TEST_F(LanVlanTest, GetCopiesTheListInOrder)
{
    const qcmap_msgr_vlan_config_ex_v01 vlans[] = {vlan(6, 4094, 1), vlan(2, 1, 0), vlan(3, 300, 1), vlan(4, 2, 0)};
    platform.on("GetVLANConfig").gives("count", int32_t{4}).gives_array("vlan", vlans, 4);
    auto list = poisoned<zr_nexa_lan_vlan_list_t>();
    EXPECT_ROW(zr_nexa_lan_vlan_get_v1(&list), 0u,
               "info  entry",
               "call  GetVLANConfig()",
               "info  Get VLAN List Config Len 4, error 0");
    EXPECT_EQ(list.count, 4);
    const uint16_t ids[] = {4094, 1, 300, 2, 0xA5A5};
    const uint8_t types[] = {4, 1, 2, 3, 0xA5};
    const uint8_t accelerated[] = {1, 0, 1, 0, 0xA5};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(list.vlan_id[i], ids[i]) << i;
        EXPECT_EQ(list.phy_iface_type[i], types[i]) << i;
        EXPECT_EQ(list.is_accelerated[i], accelerated[i]) << i;
    }
}

TEST_F(LanVlanTest, GetLeavesAnUnknownInterfaceTypeAsItWas)
{
    for (const int type : {0, 1, 5, 7, -1, 258, 0x7FFFFFFF}) {
        const auto entry = vlan(type, 7, 1);
        platform.on("GetVLANConfig").gives("count", int32_t{1}).gives_array("vlan", &entry, 1);
        auto list = poisoned<zr_nexa_lan_vlan_list_t>();
        EXPECT_EQ(zr_nexa_lan_vlan_get_v1(&list), 0u);
        EXPECT_EQ(list.count, 1);
        EXPECT_EQ(list.vlan_id[0], 7);
        EXPECT_EQ(list.is_accelerated[0], 1);
        EXPECT_EQ(list.phy_iface_type[0], 0xA5) << type;
    }
}

TEST_F(LanVlanTest, GetTakesAnEmptyListForASuccess)
{
    for (const int32_t count : {0, -1, -2147483647}) {
        platform.on("GetVLANConfig").gives("count", count).succeeds(50);
        auto list = poisoned<zr_nexa_lan_vlan_list_t>();
        EXPECT_ROW(zr_nexa_lan_vlan_get_v1(&list), 0u,
                   "info  entry",
                   "call  GetVLANConfig()",
                   "info  Get VLAN List Config Len 0, error 0");
        EXPECT_EQ(list.count, 0);
        EXPECT_EQ(list.vlan_id[0], 0xA5A5);
    }
    // Not when the platform says that it failed.
    platform.on("GetVLANConfig").fails(50);
    auto list = poisoned<zr_nexa_lan_vlan_list_t>();
    EXPECT_ROW(zr_nexa_lan_vlan_get_v1(&list), 0x1032u,
               "info  entry",
               "call  GetVLANConfig()",
               "error Get VLAN List Config error 50");
    EXPECT_TRUE(is_poisoned(list));
}

TEST_F(LanVlanTest, GetFillsTheListAndTagsAnyOtherErrorOfASuccess)
{
    const struct {
        uint32_t err, result;
    } rows[] = {{1, 0x2001}, {49, 0x2031}, {51, 0x2033}, {118, 0x2076}, {0xFFFF, 0xFFFF}};
    for (const auto& row : rows) {
        const auto entry = vlan(2, 9, 1);
        platform.on("GetVLANConfig").gives("count", int32_t{1}).gives_array("vlan", &entry, 1).succeeds(row.err);
        auto list = poisoned<zr_nexa_lan_vlan_list_t>();
        EXPECT_ROW(zr_nexa_lan_vlan_get_v1(&list), row.result,
                   "info  entry",
                   "call  GetVLANConfig()",
                   "info  Get VLAN List Config Len 1, error " + std::to_string(row.err));
        EXPECT_EQ(list.count, 1);
        EXPECT_EQ(list.vlan_id[0], 9);
    }
}

TEST_F(LanVlanTest, GetFillsTheWholeListAndNothingBehindIt)
{
    std::vector<qcmap_msgr_vlan_config_ex_v01> vlans;
    for (int i = 0; i < 2000; ++i) {
        vlans.push_back(vlan(6, static_cast<int16_t>(i + 1), 1));
    }
    for (const int32_t count : {2000, 2001, 65536, 0x7FFFFFFF}) {
        platform.on("GetVLANConfig").gives("count", count).gives_array("vlan", vlans.data(), vlans.size());
        auto memory = poisoned<ListAndMore>();
        EXPECT_ROW(zr_nexa_lan_vlan_get_v1(&memory.list), 0u,
                   "info  entry",
                   "call  GetVLANConfig()",
                   "info  Get VLAN List Config Len 2000, error 0");
        EXPECT_EQ(memory.list.count, 2000);
        EXPECT_EQ(memory.list.vlan_id[0], 1);
        EXPECT_EQ(memory.list.vlan_id[1999], 2000);
        EXPECT_THAT(memory.list.phy_iface_type, testing::Each(4));
        EXPECT_THAT(memory.list.is_accelerated, testing::Each(1));
        EXPECT_THAT(memory.behind, testing::Each(0xA5));
    }
}

TEST_F(LanVlanTest, GetGivesZerosForEntriesThatThePlatformCountsAndDoesNotFill)
{
    const auto entry = vlan(2, 9, 1);
    platform.on("GetVLANConfig").gives("count", int32_t{2000}).gives_array("vlan", &entry, 1);
    auto list = poisoned<zr_nexa_lan_vlan_list_t>();
    EXPECT_EQ(zr_nexa_lan_vlan_get_v1(&list), 0u);
    EXPECT_EQ(list.count, 2000);
    EXPECT_EQ(list.vlan_id[0], 9);
    for (int i = 1; i < 2000; ++i) {
        ASSERT_EQ(list.vlan_id[i], 0) << i;
        ASSERT_EQ(list.is_accelerated[i], 0) << i;
        ASSERT_EQ(list.phy_iface_type[i], 0xA5) << i;
    }
}

TEST_F(LanVlanTest, GetRefusesNull)
{
    EXPECT_ROW(zr_nexa_lan_vlan_get_v1(nullptr), 4u, "info  entry");
}

// ---- del ----

TEST_F(LanVlanTest, DelSendsAndLogsThePlatformsInterfaceType)
{
    const struct {
        uint8_t type;
        std::string platform_type;
    } rows[] = {{1, "2"}, {2, "3"}, {3, "4"}, {4, "6"}};
    for (const auto& row : rows) {
        EXPECT_ROW(zr_nexa_lan_vlan_del_v1(100, row.type), 0u,
                   "info  entry",
                   "call  DeleteVLANConfig(vlan_id=100 interface_type=" + row.platform_type + ")",
                   "info  Delete VLAN(ID=100 type=" + row.platform_type + ") Config error 0");
    }
}

TEST_F(LanVlanTest, DelChecksItsArgumentsInOrder)
{
    for (const uint16_t id : std::vector<uint16_t>{0, 4095, 65535}) {
        EXPECT_ROW(zr_nexa_lan_vlan_del_v1(id, 0), 6u, "info  entry");
    }
    for (const uint8_t type : std::vector<uint8_t>{0, 5, 255}) {
        EXPECT_ROW(zr_nexa_lan_vlan_del_v1(4094, type), 7u,
                   "info  entry",
                   "error Invalid phy_iface_type:(" + std::to_string(int{type}) + ")");
    }
    EXPECT_ROW(zr_nexa_lan_vlan_del_v1(1, 1), 0u,
               "info  entry",
               "call  DeleteVLANConfig(vlan_id=1 interface_type=2)",
               "info  Delete VLAN(ID=1 type=2) Config error 0");
    EXPECT_ROW(zr_nexa_lan_vlan_del_v1(4094, 4), 0u,
               "info  entry",
               "call  DeleteVLANConfig(vlan_id=4094 interface_type=6)",
               "info  Delete VLAN(ID=4094 type=6) Config error 0");
}

TEST_F(LanVlanTest, DelReturnsTheErrorOfASuccessAsItStands)
{
    for (const uint32_t err : {50u, 118u, 0xFFFFu}) {
        platform.on("DeleteVLANConfig").succeeds(err);
        EXPECT_ROW(zr_nexa_lan_vlan_del_v1(2, 4), err,
                   "info  entry",
                   "call  DeleteVLANConfig(vlan_id=2 interface_type=6)",
                   "info  Delete VLAN(ID=2 type=6) Config error " + std::to_string(err));
    }
}

}  // namespace
