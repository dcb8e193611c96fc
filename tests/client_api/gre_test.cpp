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

constexpr int32_t kResults[] = {-1, 1, 4, 13, 0x1000, INT32_MAX, -INT32_MAX};

std::string work(uint32_t is_set, const zr_nexa_wan_gre_ipacfg_t& cfg)
{
    std::string bytes;
    for (size_t i = 0; i < sizeof(cfg); ++i) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", reinterpret_cast<const unsigned char*>(&cfg)[i]);
        bytes += digits;
    }
    return "call  ZR_GetSetIpacmConfigFromXML(is_set=" + std::to_string(is_set) + " cfg=" + bytes + ")";
}

// What is said of the addresses before the file work is asked.
std::vector<std::string> addresses(int servers, int masks)
{
    std::vector<std::string> lines;
    for (int i = 0; i < servers; ++i) {
        lines.push_back("info  gre_config.server_ipv4_addr[" + std::to_string(i) + "]:10.0.0." + std::to_string(i + 1));
    }
    for (int i = 0; i < masks; ++i) {
        lines.push_back("info  gre_config.subnet_mask[" + std::to_string(i) + "]:255.255." + std::to_string(i) + ".0");
    }
    return lines;
}

using GreSetTest = ClosedApiTest;
using GreGetTest = ClosedApiTest;
using GreTest = ClosedApiTest;

TEST_F(GreSetTest, RefusesNull)
{
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(nullptr), 4,
               "info  entry",
               "error gre_ipacfg is null");
}

TEST_F(GreSetTest, RefusesTooManyServers)
{
    for (const auto& cfg : {gre_record(1, 11, 0), gre_record(1, 255, 2)}) {
        EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 4,
                   "info  entry",
                   "error num_of_server_addrs greater than 10");
    }
}

TEST_F(GreSetTest, RefusesTooManyMasks)
{
    for (const auto& cfg : {gre_record(1, 10, 3), gre_record(1, 0, 255)}) {
        EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 4,
                   "info  entry",
                   "error num_of_subnet_masks greater than 2");
    }
}

TEST_F(GreSetTest, NamesBothWhenBothAreTooMany)
{
    for (const auto& cfg : {gre_record(1, 11, 3), gre_record(1, 255, 255)}) {
        EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 4,
                   "info  entry",
                   "error num_of_server_addrs greater than 10",
                   "error num_of_subnet_masks greater than 2");
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
        EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&handed), 0,
                   "info  entry",
                   addresses(row.servers, row.masks),
                   work(1, cfg),
                   "info  zr_nexa_gre_ipacfg_set_v1 success");
        EXPECT_EQ(std::memcmp(&handed, &cfg, sizeof(cfg)), 0);
    }
}

TEST_F(GreSetTest, GivesWhatTheFileWorkGives)
{
    const auto cfg = gre_record(1, 0, 1);
    for (const int32_t result : kResults) {
        platform.on("ZR_GetSetIpacmConfigFromXML").fails(static_cast<uint32_t>(result));
        EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), result,
                   "info  entry",
                   "info  gre_config.subnet_mask[0]:255.255.0.0",
                   work(1, cfg),
                   "error zr_nexa_gre_ipacfg_set_v1 failed, ret:" + std::to_string(result));
    }
}

TEST_F(GreGetTest, RefusesNull)
{
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_get_v1(nullptr), 4,
               "info  entry",
               "error gre_ipacfg is null!");
}

TEST_F(GreGetTest, AsksWithAClearRecordAndGivesAllOfIt)
{
    const auto answer = gre_record(1, 10, 2);
    platform.on("ZR_GetSetIpacmConfigFromXML").gives("cfg", answer);
    zr_nexa_wan_gre_ipacfg_t cfg;
    std::memset(&cfg, 0x5A, sizeof(cfg));
    zr_nexa_wan_gre_ipacfg_t clear;
    std::memset(&clear, 0, sizeof(clear));
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0,
               "info  entry",
               work(0, clear),
               "info  zr_nexa_gre_ipacfg_get_v1 success");
    EXPECT_EQ(std::memcmp(&cfg, &answer, sizeof(cfg)), 0) << "padding included";
}

TEST_F(GreGetTest, GivesWhatTheFileWorkGivesAndThenLeavesTheRecord)
{
    for (const int32_t result : kResults) {
        platform.on("ZR_GetSetIpacmConfigFromXML")
            .fails(static_cast<uint32_t>(result))
            .gives("cfg", gre_record(1, 1, 1));
        auto cfg = poisoned<zr_nexa_wan_gre_ipacfg_t>();
        EXPECT_ROW(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), result,
                   "info  entry",
                   work(0, {}),
                   "error zr_nexa_gre_ipacfg_get_v1 failed, ret:" + std::to_string(result));
        EXPECT_TRUE(is_poisoned(cfg));
    }
}

// No call of the platform stands in their rows with a session either.
TEST_F(GreTest, NeedsNoSessionAndUsesNone)
{
    ASSERT_EQ(zr_nexa_client_init(nullptr), 0u);
    platform.forget();
    auto cfg = gre_record(1, 0, 0);
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_set_v1(&cfg), 0,
               "info  entry",
               work(1, cfg),
               "info  zr_nexa_gre_ipacfg_set_v1 success");
    EXPECT_ROW(zr_nexa_wan_gre_ipacfg_get_v1(&cfg), 0,
               "info  entry",
               work(0, {}),
               "info  zr_nexa_gre_ipacfg_get_v1 success");
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
