// The GRE functions, on the scripted double and a double of the file work.
#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "api_test.h"
#include "gre_record.h"
#include "ipacm_cfg.h"

static bool waits = false;  // every call, without end
static std::atomic<bool> waiting;

// Writes down the record it is handed, gives its answer's record, and returns its answer's error word.
int32_t ZR_GetSetIpacmConfigFromXML(uint32_t is_set, zr_nexa_wan_gre_ipacfg_t* cfg)
{
    while (waits) {
        waiting = true;
        pause();
    }
    qmi_error_type_v01 result;
    scripted::Call("ZR_GetSetIpacmConfigFromXML")
        .arg("is_set", is_set)
        .bytes("cfg", cfg, sizeof(*cfg))
        .out("cfg", cfg)
        .finish(&result);
    return static_cast<int32_t>(result);
}

namespace {

constexpr const char* kSet = "zr_nexa_wan_gre_ipacfg_set_v1";
constexpr const char* kGet = "zr_nexa_wan_gre_ipacfg_get_v1";

constexpr int32_t kResults[] = {-1, 1, 4, 13, 0x1000, INT32_MAX, -INT32_MAX};

std::string work(uint32_t is_set, const zr_nexa_wan_gre_ipacfg_t& cfg)
{
    std::string bytes;
    for (size_t i = 0; i < sizeof(cfg); ++i) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", reinterpret_cast<const unsigned char*>(&cfg)[i]);
        bytes += digits;
    }
    return "ZR_GetSetIpacmConfigFromXML(is_set=" + std::to_string(is_set) + " cfg=" + bytes + ")";
}

// What is logged before the file work is asked.
std::vector<ExpectedRecord> told(uint8_t servers, uint8_t masks)
{
    std::vector<ExpectedRecord> records = {info("entry")};
    for (int i = 0; i < servers; ++i) {
        records.push_back(
            info("gre_config.server_ipv4_addr[" + std::to_string(i) + "]:10.0.0." + std::to_string(i + 1)));
    }
    for (int i = 0; i < masks; ++i) {
        records.push_back(
            info("gre_config.subnet_mask[" + std::to_string(i) + "]:255.255." + std::to_string(i) + ".0"));
    }
    return records;
}

using GreSetTest = ClosedApiTest;
using GreGetTest = ClosedApiTest;
using GreTest = ClosedApiTest;

TEST_F(GreSetTest, RefusesNull)
{
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(nullptr), 4);
    expect_row(kSet, {}, {info("entry"), error("gre_ipacfg is null")});
}

TEST_F(GreSetTest, RefusesTooMany)
{
    struct Row {
        uint8_t servers;
        uint8_t masks;
        bool servers_logged;
        bool masks_logged;
    };
    for (const Row& row : {Row{11, 0, true, false},
                           {255, 2, true, false},
                           {11, 3, true, true},
                           {255, 255, true, true},
                           {10, 3, false, true},
                           {0, 255, false, true}}) {
        const auto cfg = gre_record(1, row.servers, row.masks);
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 4);
        std::vector<ExpectedRecord> records = {info("entry")};
        if (row.servers_logged) records.push_back(error("num_of_server_addrs greater than 10"));
        if (row.masks_logged) records.push_back(error("num_of_subnet_masks greater than 2"));
        expect_row(kSet, {}, records);
    }
}

TEST_F(GreSetTest, HandsTheRecordOn)
{
    struct Row {
        uint8_t enabled;
        uint8_t servers;
        uint8_t masks;
    };
    // The caller's record is not the one that is worked on.
    platform.on("ZR_GetSetIpacmConfigFromXML").gives("cfg", zr_nexa_wan_gre_ipacfg_t{});
    for (const Row& row :
         {Row{1, 2, 1}, {1, 10, 2}, {1, 0, 0}, {1, 1, 1}, {0, 0, 0}, {0, 1, 1}, {2, 1, 1}, {255, 1, 1}}) {
        const auto cfg = gre_record(row.enabled, row.servers, row.masks);
        const auto handed = cfg;
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&handed), 0);
        auto records = told(row.servers, row.masks);
        records.push_back(info("zr_nexa_gre_ipacfg_set_v1 success"));
        expect_row(kSet, {work(1, cfg)}, records);
        EXPECT_EQ(std::memcmp(&handed, &cfg, sizeof(cfg)), 0);
    }
}

TEST_F(GreSetTest, GivesWhatTheFileWorkGives)
{
    const auto cfg = gre_record(1, 0, 1);
    for (const int32_t result : kResults) {
        platform.on("ZR_GetSetIpacmConfigFromXML").fails(static_cast<uint32_t>(result));
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), result);
        auto records = told(0, 1);
        records.push_back(error("zr_nexa_gre_ipacfg_set_v1 failed, ret:" + std::to_string(result)));
        expect_row(kSet, {work(1, cfg)}, records);
    }
}

TEST_F(GreGetTest, RefusesNull)
{
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(nullptr), 4);
    expect_row(kGet, {}, {info("entry"), error("gre_ipacfg is null!")});
}

TEST_F(GreGetTest, AsksWithAClearRecordAndGivesAllOfIt)
{
    const auto answer = gre_record(1, 10, 2);
    platform.on("ZR_GetSetIpacmConfigFromXML").gives("cfg", answer);
    zr_nexa_wan_gre_ipacfg_t cfg;
    std::memset(&cfg, 0x5A, sizeof(cfg));
    zr_nexa_wan_gre_ipacfg_t clear;
    std::memset(&clear, 0, sizeof(clear));
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    expect_row(kGet, {work(0, clear)}, {info("entry"), info("zr_nexa_gre_ipacfg_get_v1 success")});
    EXPECT_EQ(std::memcmp(&cfg, &answer, sizeof(cfg)), 0) << "padding included";
}

TEST_F(GreGetTest, GivesWhatTheFileWorkGivesAndThenLeavesTheRecord)
{
    for (const int32_t result : kResults) {
        platform.on("ZR_GetSetIpacmConfigFromXML")
            .fails(static_cast<uint32_t>(result))
            .gives("cfg", gre_record(1, 1, 1));
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), result);
        expect_row(kGet, {work(0, {})},
                   {info("entry"), error("zr_nexa_gre_ipacfg_get_v1 failed, ret:" + std::to_string(result))});
        EXPECT_TRUE(is_poisoned(cfg));
    }
}

TEST_F(GreTest, NeedsNoSessionAndUsesNone)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    auto cfg = gre_record(1, 0, 0);
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0);
    EXPECT_EQ(platform.journal, (std::vector<std::string>{work(1, cfg)}));
    platform.forget();
    EXPECT_EQ(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0);
    EXPECT_EQ(platform.journal, (std::vector<std::string>{work(0, {})}));
}

#ifndef ZR_NEXA_NO_CANCELLING
// The file work may wait without end, so a thread in it can be cancelled.
TEST_F(GreTest, AThreadInTheFileWorkCanBeCancelled)
{
    const auto reads = [](void*) -> void* {
        zr_nexa_wan_gre_ipacfg_t cfg;
        zr_nexa_wan_gre_ipacfg_get_v1(&cfg);
        return nullptr;
    };
    const auto writes = [](void*) -> void* {
        const zr_nexa_wan_gre_ipacfg_t cfg = {};
        zr_nexa_wan_gre_ipacfg_set_v1(&cfg);
        return nullptr;
    };
    waits = true;
    for (void* (*const call)(void*) : {+reads, +writes}) {
        waiting = false;
        pthread_t caller;
        ASSERT_EQ(pthread_create(&caller, nullptr, call, nullptr), 0);
        while (!waiting) {
            usleep(1000);
        }
        EXPECT_EQ(pthread_cancel(caller), 0);
        void* result = nullptr;
        EXPECT_EQ(pthread_join(caller, &result), 0);
        EXPECT_EQ(result, PTHREAD_CANCELED);
    }
    waits = false;
}
#endif

}  // namespace
