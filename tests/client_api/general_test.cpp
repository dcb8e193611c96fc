#include "api_test.h"

namespace {

using GeneralTest = ApiTest;

TEST_F(GeneralTest, RestoreAsksThePlatformOnce)
{
    EXPECT_ROW(zr_nexa_general_restore_nexa_v1(), 0u,
               "info  entry",
               "call  RestoreFactoryConfig()");
}

TEST_F(GeneralTest, SfeSetPassesTheSwitch)
{
    EXPECT_ROW(zr_nexa_general_sfe_set_v1(0), 0u,
               "info  entry",
               "call  SetDataPathOptStatus(0)",
               "info  Set data path opt status sfe_config=0, error 0");
    platform.on("SetDataPathOptStatus").succeeds(0xFFFF);
    EXPECT_ROW(zr_nexa_general_sfe_set_v1(1), 0xFFFFu,
               "info  entry",
               "call  SetDataPathOptStatus(1)",
               "info  Set data path opt status sfe_config=1, error 65535");
}

TEST_F(GeneralTest, SfeSetRefusesOtherValuesWithoutAPlatformCall)
{
    for (const uint32_t value : {2u, 3u, 256u, 257u, 0xFFFFFFFFu}) {
        EXPECT_ROW(zr_nexa_general_sfe_set_v1(value), 4u, "info  entry");
    }
}

TEST_F(GeneralTest, SfeGetLogsWhereTheSwitchWasWritten)
{
    uint8_t state = 0xA5;
    const std::string where = std::to_string(static_cast<int32_t>(reinterpret_cast<uintptr_t>(&state)));
    platform.on("GetDataPathOptStatus").gives("enable", uint8_t{2});
    EXPECT_ROW(zr_nexa_general_sfe_get_v1(&state), 0u,
               "info  entry",
               "call  GetDataPathOptStatus()",
               "info  Get data path opt status sfe_config=" + where + ", error 0");
    EXPECT_EQ(state, 2);
}

TEST_F(GeneralTest, SfeGetRefusesNull)
{
    EXPECT_ROW(zr_nexa_general_sfe_get_v1(nullptr), 4u, "info  entry");
}

TEST_F(GeneralTest, SfeGetLeavesTheOutputAsThePlatformLeftItOnFailure)
{
    uint8_t state = 0xA5;
    platform.on("GetDataPathOptStatus").fails(3).gives("enable", uint8_t{1});
    EXPECT_ROW(zr_nexa_general_sfe_get_v1(&state), 0x1003u,
               "info  entry",
               "call  GetDataPathOptStatus()",
               "error Get data path opt status error 3");
    EXPECT_EQ(state, 1);
}

}  // namespace
