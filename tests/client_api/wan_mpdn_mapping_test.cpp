#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <memory>

#include "api_test.h"

namespace {

class WanMpdnMappingTest : public ApiTest {
protected:
    // The platform's list, as the double gives it.
    std::unique_ptr<qcmap_msgr_pdn_to_vlan_mapping_ex_v01> mappings_ =
        std::make_unique<qcmap_msgr_pdn_to_vlan_mapping_ex_v01>();
    // The caller's, in zero pages of its own.
    zr_nexa_wan_mpdnmapping_list_t* list_ = static_cast<zr_nexa_wan_mpdnmapping_list_t*>(
        mmap(nullptr, sizeof(*list_), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));

    ~WanMpdnMappingTest() override
    {
        munmap(list_, sizeof(*list_));
    }
    void map(int at, uint32_t handle, const std::vector<int>& vlan_ids)
    {
        qcmap_pdn_to_vlan_mapping& mapping = mappings_->mapping[at];
        mapping.profile_handle = handle;
        mapping.vlan_count = static_cast<int32_t>(vlan_ids.size());
        for (size_t i = 0; i < vlan_ids.size(); ++i) {
            mapping.vlan_id[i] = static_cast<int16_t>(vlan_ids[i]);
        }
    }
    void platform_lists(int count)
    {
        platform.on("GetPDNtoVLANMappingsEx").succeeds().gives("count", count).gives("mapping", *mappings_);
    }
    std::vector<std::pair<uint32_t, uint32_t>> pairs() const
    {
        std::vector<std::pair<uint32_t, uint32_t>> all;
        for (uint32_t i = 0; i < list_->count; ++i) {
            all.emplace_back(list_->profile_handle[i], list_->vlan_id[i]);
        }
        return all;
    }
    size_t touched_pages() const
    {
        const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        std::vector<unsigned char> pages((sizeof(*list_) + page - 1) / page);
        EXPECT_EQ(mincore(list_, sizeof(*list_), pages.data()), 0);
        size_t touched = 0;
        for (const unsigned char state : pages) {
            touched += state & 1u;
        }
        return touched;
    }
};

using Pairs = std::vector<std::pair<uint32_t, uint32_t>>;

// Of this process, in KiB: pages that hold something of their own, which a page that was only read does not. Less the
// huge ones, in which an emulator keeps its work.
long touched_memory()
{
    long touched = -1;
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string line; std::getline(rollup, line);) {
        if (line.rfind("Anonymous:", 0) == 0) touched = std::stol(line.substr(10));
        if (line.rfind("AnonHugePages:", 0) == 0) touched -= std::stol(line.substr(14));
    }
    return touched;
}

// The first of the tests, because no other has filled the interface's own 400 KiB yet.
TEST_F(WanMpdnMappingTest, AShortListTouchesNoMoreMemoryWhenItIsReadAgain)
{
    map(0, 7, {10, 20, 30});
    platform.on("GetPDNtoVLANMappingsEx").gives("count", 1).gives_array("mapping", mappings_->mapping, 1);
    EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
    const long before = touched_memory();
    ASSERT_GE(before, 0);
    EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
    EXPECT_LT(touched_memory() - before, 200);
    EXPECT_EQ(pairs(), (Pairs{{7, 10}, {7, 20}, {7, 30}}));
}

TEST_F(WanMpdnMappingTest, AddSelectsProfileThenBridge)
{
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_add_v1(3, 100), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(3)",
               "call  SelectLANBridge(100)",
               "call  AddPDNToVLANMapping(vlan_id=100 profile_handle=3)",
               "info  Add PDN 3 To VLAN 100 Mapping success");
}

TEST_F(WanMpdnMappingTest, DelSelectsProfileThenBridge)
{
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_del_v1(3, 100), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(3)",
               "call  SelectLANBridge(100)",
               "call  DeletePDNToVLANMapping(vlan_id=100 profile_handle=3)",
               "info  Delete PDN 3 To 100 VLAN Mapping success");
}

TEST_F(WanMpdnMappingTest, TheHandleIsCheckedBeforeTheVlan)
{
    for (const uint16_t vlan_id : {uint16_t{0}, uint16_t{100}, uint16_t{4095}}) {
        EXPECT_ROW(zr_nexa_wan_mpdnmapping_add_v1(0, vlan_id), 4u, "info  entry");
        EXPECT_ROW(zr_nexa_wan_mpdnmapping_del_v1(0, vlan_id), 4u, "info  entry");
    }
    for (const uint16_t vlan_id : std::vector<uint16_t>{0, 4095, 4096, 32768, 65535}) {
        EXPECT_ROW(zr_nexa_wan_mpdnmapping_add_v1(3, vlan_id), 6u, "info  entry");
        EXPECT_ROW(zr_nexa_wan_mpdnmapping_del_v1(3, vlan_id), 6u, "info  entry");
    }
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_add_v1(0xFFFFFFFF, 1), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(4294967295)",
               "call  SelectLANBridge(1)",
               "call  AddPDNToVLANMapping(vlan_id=1 profile_handle=4294967295)",
               "info  Add PDN -1 To VLAN 1 Mapping success");
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_del_v1(0xFFFFFFFF, 1), 0u,
               "info  entry",
               "call  SetWWANProfileHandlePreference(4294967295)",
               "call  SelectLANBridge(1)",
               "call  DeletePDNToVLANMapping(vlan_id=1 profile_handle=4294967295)",
               "info  Delete PDN -1 To 1 VLAN Mapping success");
}

TEST_F(WanMpdnMappingTest, GetFlattensInThePlatformsOrder)
{
    map(0, 7, {10, 20});
    map(1, 9, {});
    map(2, 1, {30});
    map(3, 8, {40});  // beyond the count
    platform_lists(3);
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u,
               "info  entry",
               "call  GetPDNtoVLANMappingsEx()");
    EXPECT_EQ(pairs(), (Pairs{{7, 10}, {7, 20}, {1, 30}}));
}

TEST_F(WanMpdnMappingTest, GetWritesOnlyThePairsAndTheCount)
{
    map(0, 7, {10, -1});
    platform_lists(1);
    std::memset(list_, 0xA5, sizeof(*list_));
    EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
    EXPECT_EQ(pairs(), (Pairs{{7, 10}, {7, 65535}}));
    EXPECT_EQ(list_->profile_handle[2], 0xA5A5A5A5u);
    EXPECT_EQ(list_->vlan_id[2], 0xA5A5u);
    EXPECT_EQ(list_->vlan_id[204699], 0xA5A5u);
}

TEST_F(WanMpdnMappingTest, AnEmptyListIsCount0)
{
    for (const int count : {0, -1, -2147483647}) {
        map(0, 7, {10});
        platform_lists(count);
        list_->count = 5;
        EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
        EXPECT_EQ(list_->count, 0u);
    }
}

TEST_F(WanMpdnMappingTest, GetRefusesNull)
{
    EXPECT_ROW(zr_nexa_wan_mpdnmapping_get_v1(nullptr), 4u, "info  entry");
}

TEST_F(WanMpdnMappingTest, TheLargestListIsGivenWhole)
{
    std::vector<int> all_ids;
    for (int id = 1; id <= 4094; ++id) {
        all_ids.push_back(id);
    }
    for (int i = 0; i < 50; ++i) {
        map(i, static_cast<uint32_t>(i + 1), all_ids);
    }
    platform_lists(50);
    EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
    ASSERT_EQ(list_->count, 204700u);
    for (uint32_t i = 0; i < 204700; ++i) {
        ASSERT_EQ(list_->profile_handle[i], i / 4094 + 1);
        ASSERT_EQ(list_->vlan_id[i], i % 4094 + 1);
    }
}

TEST_F(WanMpdnMappingTest, CountsBeyondTheRecordAreCut)
{
    for (int i = 0; i < 50; ++i) {
        map(i, static_cast<uint32_t>(i + 1), {i + 1});
    }
    mappings_->mapping[0].vlan_count = 4095;
    mappings_->mapping[1].vlan_count = 2147483647;
    mappings_->mapping[2].vlan_count = -1;
    for (const int count : {51, 2147483647}) {
        platform_lists(count);
        EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
        ASSERT_EQ(list_->count, 2 * 4094u + 47);
        EXPECT_EQ(list_->profile_handle[0], 1u);
        EXPECT_EQ(list_->profile_handle[4093], 1u);
        EXPECT_EQ(list_->profile_handle[4094], 2u);
        EXPECT_EQ(list_->profile_handle[8187], 2u);
        EXPECT_EQ(list_->profile_handle[8188], 4u);
        EXPECT_EQ(list_->vlan_id[8188], 4u);
        EXPECT_EQ(list_->profile_handle[8234], 50u);
    }
}

// The double complains when the list it is handed is not clear.
TEST_F(WanMpdnMappingTest, ThePlatformsListIsClearEveryTime)
{
    std::memset(mappings_.get(), 0xA5, sizeof(*mappings_));
    for (auto& mapping : mappings_->mapping) {
        mapping.vlan_count = 1;
    }
    for (const int count : {0, 1, 50}) {
        platform_lists(count);
        EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
        platform.on("GetPDNtoVLANMappingsEx").fails(3);
        EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0x1003u);
    }
    // A single byte that was left, wherever it stands.
    for (const size_t offset : {size_t{0}, size_t{1}, size_t{4}, size_t{5}, sizeof(qcmap_pdn_to_vlan_mapping) - 1}) {
        std::memset(mappings_.get(), 0, sizeof(*mappings_));
        reinterpret_cast<unsigned char*>(&mappings_->mapping[49])[offset] = 1;
        platform_lists(0);
        EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
        EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
    }
    EXPECT_THAT(platform.complaints, testing::IsEmpty());
}

TEST_F(WanMpdnMappingTest, AShortListTouchesLittleMemory)
{
    map(0, 7, {10, 20, 30});
    platform_lists(1);
    ASSERT_EQ(touched_pages(), 0u);
    EXPECT_EQ(zr_nexa_wan_mpdnmapping_get_v1(list_), 0u);
    EXPECT_EQ(touched_pages(), 2u);  // count and handles, VLAN ids
}

}  // namespace
